// Keys of the whole desktop, as Windows registers them, and the text that is selected in the program with the keyboard.
#pragma once

#include "platform/GlobalKeys.h"
#include "platform/windows/desktop/MessageWindow.h"

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace voxmate::windows_platform
{

/// "Ctrl+Alt+S" as Windows has it: MOD_ flags (winuser.h) and the key's code; nothing for what names no letter.
struct KeyCode {
    unsigned modifiers = 0;
    unsigned key = 0;
};
std::optional<KeyCode> ParseTrigger(std::string_view trigger);

class WindowsKeys : public GlobalKeys
{
public:
    /// The application object must exist.
    WindowsKeys();
    ~WindowsKeys() override;
    WindowsKeys(const WindowsKeys&) = delete;
    WindowsKeys& operator=(const WindowsKeys&) = delete;

    void Hold(const std::vector<Key>& keys) override;
    /// Asks the text box that has the keyboard. A window that is none, as a browser's page, is sent Ctrl+C, and the
    /// clipboard gets its text back afterwards.
    std::string SelectedText() override;

private:
    void Release();

    MessageWindow window_;
    std::vector<Key> held_; ///< a key's number in the system's list is its place here
};

} // namespace voxmate::windows_platform
