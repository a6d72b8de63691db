// Runs code that may crash, in a separate process.
#pragma once

#include <chrono>
#include <cstdint>
#include <functional>
#include <optional>

namespace voxmate
{

struct TrialLimits {
    std::chrono::seconds time;
    std::uint64_t memory; ///< bytes of address space
};

/// Runs `act` in a separate process and returns its result; false when it crashed or exceeded a limit. That process has
/// a copy of this one's memory and nothing else of it. Nothing when it could not be run, or was given up because
/// `wanted`, which is polled, returned false. `act` must not need any other thread of the program.
std::optional<bool> TryInProcess(const std::function<bool()>& act, const TrialLimits& limits,
                                 const std::function<bool()>& wanted);

} // namespace voxmate
