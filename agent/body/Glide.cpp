#include "agent/body/Glide.h"

#include <algorithm>
#include <cmath>
#include <utility>

namespace voxmate::agent
{

int Glide::WayTime(Point from, Point to)
{
    const double way = std::hypot(double(to.x) - from.x, double(to.y) - from.y);
    return static_cast<int>(
        std::clamp(way * 1000 / Pace, static_cast<double>(ShortestTime), static_cast<double>(LongestTime)));
}

void Glide::Start(Point from, Point to, std::function<void()> done)
{
    from_ = from;
    to_ = to;
    done_ = std::move(done);
    paused_ = false;
    begun_ = stage_.Now();
    time_ = WayTime(from, to);
    timer_ = stage_.After(StepTime, [this] { Step(); });
}

void Glide::Stop()
{
    if (!Going())
        return;
    timer_.reset();
    paused_ = false;
    if (const auto done = std::exchange(done_, nullptr))
        done();
}

void Glide::Pause()
{
    if (!timer_)
        return;
    timer_.reset();
    paused_ = true;
}

void Glide::GoOn(Point from)
{
    if (paused_)
        Start(from, to_, std::exchange(done_, nullptr));
}

void Glide::Step()
{
    const double part = std::min(1.0, static_cast<double>(stage_.Now() - begun_) / time_);
    const double way = part * part * (3 - 2 * part); // begins and ends at rest
    const auto between = [way](int from, int to) { return from + static_cast<int>(std::lround(way * (to - from))); };
    timer_ = stage_.After(StepTime, [this] { Step(); });
    move_({between(from_.x, to_.x), between(from_.y, to_.y)});
    if (part >= 1)
        Stop();
}

} // namespace voxmate::agent
