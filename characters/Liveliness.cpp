#include "Liveliness.h"

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <numbers>

namespace voxmate::characters
{

namespace
{

// A sway grows from nothing, and comes back to it, in this time (1/100 s).
constexpr double Growth = 40;
// How long lids take to close, stay shut and open again (1/100 s); each takes a frame at least.
constexpr int Closing = 10;
constexpr int Shut = 5;
constexpr int Opening = 15;
// Spread of the logarithms of the intervals between blinks.
constexpr double Spread = 0.5;
// The shortest interval (1/100 s).
constexpr double ShortestInterval = 60;

/// Numbers from 0 to 1 that are the same everywhere, which those of the standard library's distributions are not.
class Chance
{
public:
    explicit Chance(const QString& seed)
    {
        for (const QChar c : seed)
            state_ = (state_ ^ c.unicode()) * 1099511628211u;
    }
    double Even()
    {
        state_ = state_ * 6364136223846793005u + 1442695040888963407u;
        return (static_cast<double>(state_ >> 40) + 0.5) / (1 << 24);
    }
    /// Of mean 0 and variance 1.
    double Normal() { return std::sqrt(-2 * std::log(Even())) * std::cos(2 * std::numbers::pi * Even()); }

private:
    std::uint64_t state_ = 14695981039346656037u;
};

int Frames(int time, int step)
{
    return std::max(1, (time + step / 2) / step);
}

int End(const SourceAnimation& animation)
{
    return animation.hold < 0 ? animation.length : animation.hold;
}

double Smooth(double part)
{
    part = std::clamp(part, 0.0, 1.0);
    return part * part * (3 - 2 * part);
}

} // namespace

std::vector<int> BlinkTimes(const SourceAnimation& animation, int aMinute)
{
    const int step = animation.step;
    const int whole = (Frames(Closing, step) + Frames(Shut, step) + Frames(Opening, step)) * step;
    const double mean = 6000.0 / aMinute;
    const double middle = std::log(mean) - Spread * Spread / 2;
    Chance chance(animation.name);
    std::vector<int> times;
    // The first one comes after a part of an interval: one may have been under way when the animation began.
    for (double at = mean * chance.Even(); at + whole + step < End(animation);
         at += std::max(ShortestInterval, std::exp(middle + Spread * chance.Normal())))
        if (at >= step)
            times.push_back(static_cast<int>(at) / step * step);
    return times;
}

void Enliven(const SourceAnimation& animation, double time, Pose& pose)
{
    const double grown = Smooth((time - animation.step) / Growth) * Smooth((End(animation) - time) / Growth);
    for (const Sway& sway : animation.sways)
        for (const SwayingPart& swaying : sway.parts) {
            const double turn = (time - animation.step - swaying.late) / sway.period;
            const double there = grown * std::sin(2 * std::numbers::pi * turn);
            auto& values = pose[static_cast<std::size_t>(swaying.part)].values;
            for (std::size_t k = 0; k < PropertyCount; ++k)
                values[k] += there * swaying.amounts[k];
        }
    const int step = animation.step;
    const int closing = Frames(Closing, step) * step;
    const int shut = closing + Frames(Shut, step) * step;
    const int open = shut + Frames(Opening, step) * step;
    for (const int blink : animation.blinks) {
        // A frame shows the end of its step, so the first one of the blink is a step after its time.
        const double since = time - blink;
        if (since <= 0 || since > open)
            continue;
        for (const Lid& lid : animation.lids)
            if (int& variant = pose[static_cast<std::size_t>(lid.part)].variant; variant == lid.open)
                variant = since > closing && since <= shut ? lid.shut : lid.half;
    }
}

} // namespace voxmate::characters
