// Waiting for a file that another program looks at for a moment, such as a virus scanner.
#pragma once

#include <chrono>
#include <cstdint>
#include <thread>

namespace voxmate::windows_platform
{

/// Repeats `act`, which returns one of the system's error codes, for half a second while that says that the file is in
/// use. Returns the last code.
template <class Act>
std::uint32_t WhileInUse(Act act)
{
    constexpr std::uint32_t sharingViolation = 32; // winerror.h
    constexpr std::uint32_t lockViolation = 33;
    constexpr std::chrono::milliseconds patience{500};
    constexpr std::chrono::milliseconds lookEvery{5};
    const auto last = std::chrono::steady_clock::now() + patience;
    for (;;) {
        const std::uint32_t code = act();
        if ((code != sharingViolation && code != lockViolation) || std::chrono::steady_clock::now() > last)
            return code;
        std::this_thread::sleep_for(lookEvery);
    }
}

} // namespace voxmate::windows_platform
