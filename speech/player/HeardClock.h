// How far a stream has been heard, between the moments at which its sound server says so.
#pragma once

#include <algorithm>
#include <chrono>
#include <cstdint>

namespace voxmate::speech
{

class HeardClock
{
public:
    using Clock = std::chrono::steady_clock;

    /// At `moment` so many microseconds of the stream had been heard; less than 0 while its first sample is still under
    /// way. `running` says whether the stream is being played and not held up.
    void Set(std::int64_t microseconds, Clock::time_point moment, bool running)
    {
        microseconds_ = microseconds;
        moment_ = moment;
        running_ = running;
    }

    /// The microseconds heard at `moment`. What was said last is carried on for 40 ms at the most: a sink may be held
    /// up, and nothing may be told as heard that is not.
    std::int64_t At(Clock::time_point moment) const
    {
        if (!running_)
            return microseconds_;
        const auto since = std::clamp<Clock::duration>(moment - moment_, {}, std::chrono::milliseconds(40));
        return microseconds_ + std::chrono::duration_cast<std::chrono::microseconds>(since).count();
    }

private:
    std::int64_t microseconds_ = 0;
    Clock::time_point moment_;
    bool running_ = false;
};

} // namespace voxmate::speech
