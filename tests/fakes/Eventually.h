// Waits for what other threads do.
#pragma once

#include <chrono>
#include <functional>
#include <thread>

namespace voxmate::fakes
{

/// Lets other threads work until `done` returns true; false when that takes more than five seconds.
inline bool Eventually(const std::function<bool()>& done)
{
    const auto until = std::chrono::steady_clock::now() + std::chrono::seconds(5);
    while (!done()) {
        if (std::chrono::steady_clock::now() > until)
            return false;
        std::this_thread::sleep_for(std::chrono::milliseconds(1));
    }
    return true;
}

} // namespace voxmate::fakes
