#include "FramePlan.h"

#include "Motion.h"

#include <algorithm>
#include <limits>

namespace voxmate::characters
{

namespace
{

// A step from one frame to the next that looks like movement and not like a jump, in pixels.
constexpr double SmoothStep = 14;

std::size_t Index(int value)
{
    return static_cast<std::size_t>(value);
}

// The frames in the order of time, one for each step; each shows the pose at its end, so that the last one shows that
// of the animation's end.
std::vector<PlannedFrame> Sampled(const SourceAnimation& animation, const Painter& painter)
{
    std::vector<PlannedFrame> frames;
    for (int at = 0; at < animation.length; at += animation.step) {
        PlannedFrame& frame = frames.emplace_back();
        frame.duration = std::min(animation.step, animation.length - at);
        frame.pose = PoseAt(animation, at + frame.duration);
        frame.picture = painter.render(frame.pose);
    }
    const auto holding = [&](int time) { return static_cast<std::uint16_t>(time / animation.step); };
    const auto ending = [&](int time) { return static_cast<std::uint16_t>((time - 1) / animation.step); };
    for (const SourceBranch& branch : animation.branches)
        frames[ending(branch.from)].branches.push_back(
            {holding(branch.to), static_cast<std::uint16_t>(branch.percent)});
    for (const SourceSound& sound : animation.sounds)
        frames[std::min<std::size_t>(holding(sound.at), frames.size() - 1)].sound = sound.sound;
    return frames;
}

// Takes frames that look alike together, except where something leads to or from the later one.
void Merge(std::vector<PlannedFrame>& frames, int& hold)
{
    const int last = static_cast<int>(frames.size()) - 1;
    std::vector<bool> entered(frames.size());
    for (const PlannedFrame& frame : frames)
        for (const agent::Branch& branch : frame.branches)
            entered[branch.frame] = true;
    std::vector<int> moved(frames.size());
    std::vector<PlannedFrame> merged;
    for (std::size_t i = 0; i < frames.size(); ++i) {
        const bool apart = merged.empty() || entered[i] || frames[i].sound >= 0 || !merged.back().branches.empty() ||
                           (hold < last && (static_cast<int>(i) == hold || static_cast<int>(i) == hold + 1)) ||
                           merged.back().picture != frames[i].picture;
        if (apart) {
            merged.push_back(frames[i]);
        } else {
            merged.back().duration += frames[i].duration;
            merged.back().branches = frames[i].branches;
        }
        moved[i] = static_cast<int>(merged.size()) - 1;
    }
    for (PlannedFrame& frame : merged)
        for (agent::Branch& branch : frame.branches)
            branch.frame = static_cast<std::uint16_t>(moved[branch.frame]);
    hold = moved[Index(hold)];
    frames = std::move(merged);
}

// Leads every frame on to one that it can pass into without a jump, earlier or later, such that following these exits
// is the shortest smooth way to the animation's end.
void FindExits(std::vector<PlannedFrame>& frames, const Painter& painter)
{
    constexpr int unknown = std::numeric_limits<int>::max();
    // A sound that was heard, or has yet to come, is not heard on the way out.
    constexpr int soundCost = 1000;
    const std::size_t last = frames.size() - 1;
    std::vector<int> left(frames.size(), unknown); // 1/100 s from leaving this frame until the last is there
    std::vector<bool> settled(frames.size());
    left[last] = 0;
    for (;;) {
        std::size_t nearest = frames.size();
        for (std::size_t i = 0; i < frames.size(); ++i)
            if (!settled[i] && left[i] != unknown && (nearest == frames.size() || left[i] < left[nearest]))
                nearest = i;
        if (nearest == frames.size())
            break;
        settled[nearest] = true;
        const int wait = nearest == last ? 0 : frames[nearest].duration + (frames[nearest].sound >= 0 ? soundCost : 0);
        for (std::size_t i = 0; i < last; ++i) {
            if (settled[i] || left[i] <= left[nearest] + wait ||
                (i + 1 != nearest && painter.distance(frames[i].pose, frames[nearest].pose) > SmoothStep))
                continue;
            left[i] = left[nearest] + wait;
            frames[i].exit = static_cast<int>(nearest);
        }
    }
}

// Puts the frame in which the animation ends behind those of the way back, where only exits lead. The way back ends in
// a frame behind everything that is never drawn, so that it does not run on into the frame it came from.
void MoveHoldLast(std::vector<PlannedFrame>& frames, int hold, const SourceAnimation& animation)
{
    const int last = static_cast<int>(frames.size()) - 1;
    if (hold == last)
        return;
    if (hold == 0 || !frames[Index(hold - 1)].branches.empty())
        throw SourceError("animations." + animation.name +
                          ".hold: the frame before the one it ends in must go straight on to it");
    const auto moved = [&](int index) { return index < hold ? index : index == hold ? last : index - 1; };
    for (PlannedFrame& frame : frames) {
        if (frame.exit >= 0)
            frame.exit = moved(frame.exit);
        for (agent::Branch& branch : frame.branches)
            branch.frame = static_cast<std::uint16_t>(moved(branch.frame));
    }
    std::rotate(frames.begin() + hold, frames.begin() + hold + 1, frames.end());
    frames[Index(hold - 1)].branches = {{static_cast<std::uint16_t>(last), 100}};
    frames[Index(last - 1)].exit = last + 1;
    frames.emplace_back();
}

} // namespace

std::vector<PlannedFrame> PlanFrames(const SourceAnimation& animation, const Painter& painter)
{
    std::vector<PlannedFrame> frames = Sampled(animation, painter);
    int hold = animation.hold < 0 ? static_cast<int>(frames.size()) - 1 : (animation.hold - 1) / animation.step;
    Merge(frames, hold);
    FindExits(frames, painter);
    frames[Index(hold)].speaks = animation.speaks;
    MoveHoldLast(frames, hold, animation);
    return frames;
}

} // namespace voxmate::characters
