// Estimates how much of a stream has been heard, between the reports of the sound server.
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

    /// Records a report: at `moment`, `microseconds` of the stream had been heard (negative while its first sample is
    /// still on its way). `running` says whether the stream is playing and not held up.
    void Set(std::int64_t microseconds, Clock::time_point moment, bool running)
    {
        microseconds_ = microseconds;
        moment_ = moment;
        running_ = running;
    }

    /// The microseconds heard at `moment`. The last report is extrapolated by at most 40 ms, because a sink may be held
    /// up and nothing may be reported as heard before it is.
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
