// The time since the last input, from the X11 server's screen saver.
#pragma once

#include "platform/Presence.h"

namespace voxmate::linux_platform
{

class X11Presence : public Presence
{
public:
    /// Nothing without an X11 server or its screen saver extension, and in Wayland sessions, whose X server sees only
    /// part of the input.
    std::optional<std::chrono::milliseconds> Idle() override;
};

} // namespace voxmate::linux_platform
