// Calls to the copy of the program that runs, by a message of Windows (WM_COPYDATA).
#pragma once

#include "platform/Activation.h"
#include "platform/windows/desktop/MessageWindow.h"

#include <optional>
#include <string>
#include <string_view>

namespace voxmate::windows_platform
{

/// A call as the bytes of a message, and back; nothing for bytes that are none.
std::string EncodeCall(const Call& call);
std::optional<Call> DecodeCall(std::string_view bytes);

class WindowsActivation : public Activation
{
public:
    /// The application object must exist. Copies that work on different folders do not call each other.
    WindowsActivation();

    void Listen() override;
    bool PassOn(const Call& call, std::chrono::milliseconds patience) override;

private:
    std::wstring title_;
    std::optional<MessageWindow> window_;
};

} // namespace voxmate::windows_platform
