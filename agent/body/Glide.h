// The way of a character's window from one place to another.
#pragma once

#include "agent/Stage.h"

#include <cstdint>
#include <functional>
#include <memory>

namespace voxmate::agent
{

class Glide
{
public:
    /// `move` is called with each place on the way, in steps of StepTime.
    Glide(Stage& stage, std::function<void(Point)> move) : stage_(stage), move_(std::move(move)) {}

    /// Goes from one point to the other, slowly at both ends, in the time of WayTime. A glide that is going on is
    /// replaced: its `done` is not called.
    void Start(Point from, Point to, std::function<void()> done);
    /// Stays where it is, and calls `done` if it was going.
    void Stop();
    bool Going() const { return timer_ != nullptr || paused_; }
    /// Rests on its way until GoOn, which takes it from a point to the same end. Neither does anything elsewhere.
    void Pause();
    void GoOn(Point from);
    Point To() const { return to_; }

    static constexpr int StepTime = 16; ///< milliseconds, one picture of a screen with 60 Hz
    /// Pixels in a second. A person walks across the screen at about this pace without being in a hurry.
    static constexpr int Pace = 450;
    /// A short way takes this many milliseconds. The animations Move... take up to 0.66 s to get into their pose.
    static constexpr int ShortestTime = 700;
    static constexpr int LongestTime = 2500;
    /// Milliseconds for the way from one point to the other.
    static int WayTime(Point from, Point to);

private:
    void Step();

    Stage& stage_;
    std::function<void(Point)> move_;
    std::function<void()> done_;
    std::unique_ptr<StageTimer> timer_;
    Point from_;
    Point to_;
    std::int64_t begun_ = 0;
    int time_ = 0;
    bool paused_ = false;
};

} // namespace voxmate::agent
