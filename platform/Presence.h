// Whether somebody is at the computer.
#pragma once

#include <chrono>
#include <optional>

namespace voxmate
{

class Presence
{
public:
    virtual ~Presence() = default;
    /// The time since the user last moved the pointer or pressed a key, in any program's window. Nothing where the
    /// desktop does not tell.
    virtual std::optional<std::chrono::milliseconds> Idle() = 0;
    /// The time since the last input to this program's own windows, at first since its start.
    virtual std::chrono::milliseconds IdleHere() = 0;
};

} // namespace voxmate
