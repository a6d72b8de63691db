// The time since the last input: from the X11 server's screen saver, and that to the program's own windows.
#pragma once

#include "platform/Presence.h"
#include "qt/system/InputWatch.h"

namespace voxmate::linux_platform
{

class X11Presence : public Presence
{
public:
    /// Nothing without an X11 server or its screen saver extension, and in Wayland sessions, whose X server sees only
    /// part of the input.
    std::optional<std::chrono::milliseconds> Idle() override;
    std::chrono::milliseconds IdleHere() override { return watch_.SinceInput(); }

private:
    qt::InputWatch watch_;
};

} // namespace voxmate::linux_platform
