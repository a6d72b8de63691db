// Trying what may crash.
#pragma once

#include <chrono>
#include <cstdint>
#include <functional>
#include <optional>

namespace voxmate
{

struct TrialLimits {
    std::chrono::seconds time;
    std::uint64_t memory; ///< bytes of addresses
};

/// Runs `act` in a process of its own, which has nothing of this one's but its memory, and returns what it returned;
/// false when it crashed or went over a limit. Nothing when it could not be tried, or was given up because `wanted`,
/// asked again and again, was false. `act` must not need any other thread of the program.
std::optional<bool> TryInProcess(const std::function<bool()>& act, const TrialLimits& limits,
                                 const std::function<bool()>& wanted);

} // namespace voxmate
