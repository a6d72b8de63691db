// A window that nobody sees, to which the system and other programs send messages.
#pragma once

#include <cstdint>
#include <functional>
#include <optional>
#include <string>

namespace voxmate::windows_platform
{

class MessageWindow
{
public:
    /// Takes a message and its two parameters; what it returns is the answer, nothing: the system's own. Called on the
    /// thread that made the window, in the middle of the system's work: what takes long, or may fail, is posted on.
    using Handler =
        std::function<std::optional<std::intptr_t>(unsigned message, std::uintptr_t wide, std::intptr_t last)>;

    MessageWindow(const std::wstring& title, Handler handler);
    ~MessageWindow();
    MessageWindow(const MessageWindow&) = delete;
    MessageWindow& operator=(const MessageWindow&) = delete;

    /// The system's handle; nullptr if there could be none.
    void* Handle() const { return handle_; }
    /// Such a window of any program's, by its title; nullptr if there is none.
    static void* Find(const std::wstring& title);

private:
    static std::intptr_t __stdcall Take(void* window, unsigned message, std::uintptr_t wide, std::intptr_t last);

    const Handler handler_;
    void* handle_ = nullptr;
};

} // namespace voxmate::windows_platform
