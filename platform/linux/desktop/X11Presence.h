// The time since the last input: from the X11 server's screen saver, and that to the program's own windows.
#pragma once

#include "platform/Presence.h"

#include <memory>

class QObject;

namespace voxmate::linux_platform
{

class X11Presence : public Presence
{
public:
    /// The application object must exist, and outlive this object.
    X11Presence();
    ~X11Presence() override;
    X11Presence(const X11Presence&) = delete;
    X11Presence& operator=(const X11Presence&) = delete;

    /// Nothing without an X11 server or its screen saver extension, and in Wayland sessions, whose X server sees only
    /// part of the input.
    std::optional<std::chrono::milliseconds> Idle() override;
    std::chrono::milliseconds IdleHere() override;

private:
    std::chrono::steady_clock::time_point last_ = std::chrono::steady_clock::now(); ///< when the last input here came
    std::unique_ptr<QObject> watch_;
};

} // namespace voxmate::linux_platform
