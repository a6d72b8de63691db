#include "agent/body/Breathing.h"

#include "agent/body/Idling.h"

#include <algorithm>
#include <cmath>
#include <numbers>
#include <utility>

namespace voxmate::agent
{

namespace
{

// In milliseconds. When it is later than this (a suspended machine, a stalled desktop), frames are not hurried.
constexpr std::int64_t kMaxLateness = 500;

/// The time of all frames, in 1/100 s.
int Length(const Animation& animation)
{
    int length = 0;
    for (const Frame& frame : animation.frames)
        length += frame.duration;
    return length;
}

/// The frame with lids on show so many 1/100 s after the animation's beginning. Its last frame, in which the lids open
/// again for those who play it alone, is not meant: the one before stands for it.
const Frame* Lidded(const Animation& animation, int time)
{
    const Frame* found = nullptr;
    const Frame* next = nullptr;
    for (const Frame& frame : animation.frames) {
        if (frame.duration == 0)
            continue;
        found = next;
        next = &frame;
        if (found && time < 0)
            break;
        time -= frame.duration;
    }
    return found;
}

} // namespace

Breathing::Breathing(Stage& stage, const AcsFile& file, std::function<void(const Frame&)> show)
    : stage_(stage), show_(std::move(show))
{
    const auto half = StateAnimations(file, "BreathingHalfShut");
    const auto shut = StateAnimations(file, "BreathingShut");
    // Those of one movement stand at the same place in each state.
    const auto open = StateAnimations(file, "Breathing");
    const bool blinks = half.size() == open.size() && shut.size() == open.size();
    for (std::size_t i = 0; i < open.size(); ++i)
        if (Length(*open[i]) > 0)
            breaths_.push_back(blinks ? Breath{open[i], half[i], shut[i]} : Breath{open[i]});
}

void Breathing::Begin()
{
    if (breaths_.empty() || shown_)
        return;
    const std::int64_t now = stage_.Now();
    lids_ = Lids::Open;
    // Lids that would have moved meanwhile do not hurry to.
    if (!std::exchange(begun_, true) || lidsDue_ < now)
        lidsDue_ = now + BlinkInterval();
    due_ = now;
    NextBreath();
    Draw();
    Wait();
}

void Breathing::Stop()
{
    timer_.reset();
    shown_ = nullptr;
}

/// Begins an animation at the time `due_`, not the last one again if there is another.
void Breathing::NextBreath()
{
    if (breaths_.size() > 1) {
        const auto step = 1 + stage_.Random(static_cast<int>(breaths_.size()) - 1);
        breath_ = (breath_ + static_cast<std::size_t>(step)) % breaths_.size();
    }
    pace_ = ShortestPace + stage_.Random(PaceSpread + 1);
    pauses_ = false;
    since_ = 0;
    at_ = 0;
    const auto& frames = breaths_[breath_].open->frames;
    while (frames[at_].duration == 0)
        ++at_;
    due_ += std::int64_t{frames[at_].duration} * 10 * pace_ * (slow_ ? 2 : 1) / 100;
}

/// The time of the frame on show is over.
void Breathing::Advance()
{
    const auto& frames = breaths_[breath_].open->frames;
    if (pauses_) {
        NextBreath();
        return;
    }
    std::size_t next = at_ + 1;
    while (next < frames.size() && frames[next].duration == 0)
        ++next;
    if (next == frames.size()) {
        pauses_ = true;
        due_ += stage_.Random(PauseSpread + 1);
        return;
    }
    since_ += frames[at_].duration;
    at_ = next;
    due_ += std::int64_t{frames[at_].duration} * 10 * pace_ * (slow_ ? 2 : 1) / 100;
}

void Breathing::MoveLids()
{
    const std::int64_t begun = lidsDue_;
    switch (lids_) {
    case Lids::Open:
        lids_ = Lids::Closing;
        lidsDue_ = begun + LidsClose;
        break;
    case Lids::Closing:
        lids_ = Lids::Shut;
        lidsDue_ = begun + LidsShut;
        break;
    case Lids::Shut:
        lids_ = Lids::Opening;
        lidsDue_ = begun + LidsOpen;
        break;
    case Lids::Opening:
        lids_ = Lids::Open;
        // The interval is counted from the beginning of one blink to that of the next.
        lidsDue_ = begun + BlinkInterval() - LidsClose - LidsShut - LidsOpen;
        break;
    }
}

void Breathing::Draw()
{
    const Breath& breath = breaths_[breath_];
    const Frame* frame = &breath.open->frames[at_];
    const Animation* lidded = lids_ == Lids::Open ? nullptr : lids_ == Lids::Shut ? breath.shut : breath.half;
    if (const Frame* other = lidded ? Lidded(*lidded, since_) : nullptr)
        frame = other;
    if (frame == std::exchange(shown_, frame))
        return;
    show_(*frame);
}

void Breathing::Wait()
{
    const std::int64_t next = Blinks() ? std::min(due_, lidsDue_) : due_;
    timer_ = stage_.After(static_cast<int>(std::max<std::int64_t>(0, next - stage_.Now())), [this] { Tick(); });
}

void Breathing::Tick()
{
    timer_.reset();
    const std::int64_t now = stage_.Now();
    if (now - due_ > kMaxLateness)
        due_ = now;
    if (now - lidsDue_ > kMaxLateness)
        lidsDue_ = now;
    while (due_ <= now)
        Advance();
    if (lidsDue_ <= now)
        MoveLids();
    Draw();
    // What is shown may end this.
    if (shown_)
        Wait();
}

/// Milliseconds from one blink to the next, at random: their logarithms are normally distributed.
int Breathing::BlinkInterval()
{
    constexpr double mean = 60000.0 / BlinksAMinute;
    const double normal = std::sqrt(-2 * std::log(Even())) * std::cos(2 * std::numbers::pi * Even());
    const double interval = std::exp(std::log(mean) - BlinkSpread * BlinkSpread / 2 + BlinkSpread * normal);
    return static_cast<int>(std::clamp<double>(interval, ShortestInterval, LongestInterval));
}

/// A number between 0 and 1, at random.
double Breathing::Even()
{
    constexpr int steps = 1 << 20;
    return (stage_.Random(steps) + 0.5) / steps;
}

} // namespace voxmate::agent
