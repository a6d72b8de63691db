#include "FramePlan.h"

#include "Motion.h"

#include <algorithm>
#include <limits>

namespace voxmate::characters
{

namespace
{

// Largest step between two frames, in pixels, that looks like movement and not like a jump.
constexpr double SmoothStep = 14;

std::size_t Index(int value)
{
    return static_cast<std::size_t>(value);
}

// The frames in the order of time, one for each step. Each shows the pose at the end of its step, so the last one shows
// the animation's end.
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

// Merges consecutive frames that look alike, except where a branch, a sound or the hold needs them apart.
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

// Gives every frame an exit to an earlier or later one that it can change to without a jump, chosen so that following
// the exits is the shortest smooth way to the animation's end.
void FindExits(std::vector<PlannedFrame>& frames, const Painter& painter)
{
    constexpr int unknown = std::numeric_limits<int>::max();
    // The way out should pass no frames with sounds, neither one already heard nor a later one.
    constexpr int soundCost = 1000;
    const std::size_t last = frames.size() - 1;
    std::vector<int> left(frames.size(), unknown); // 1/100 s from leaving this frame until the last is shown
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

// Moves the frame in which the animation ends behind those of the way back, to which only exits lead. A frame that is
// never drawn follows the way back, so that it does not run on into the frame it came from.
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
    for (std::size_t i = 0; i < frames.size(); ++i)
        frames[i].speaks =
            animation.speaks == Speaks::Throughout || (animation.speaks == Speaks::AtTheEnd && i == Index(hold));
    MoveHoldLast(frames, hold, animation);
    return frames;
}

} // namespace voxmate::characters
