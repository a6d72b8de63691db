// Takes the melody out of a voice that cannot do without one: each moment is played faster or slower, like a tape,
// until its pitch is the same everywhere.
#pragma once

#include "speech/player/Shaper.h"

#include <cstdint>
#include <deque>
#include <span>

namespace voxmate::speech
{

class Flattener
{
public:
    /// All samples will be heard at `hertz`, before the shape that the shaper has been given.
    Flattener(int samplesPerSecond, double hertz) : rate_(samplesPerSecond), hertz_(hertz) {}

    /// Gives a piece of the stretch to the shaper, which must have been begun with `bends`. Best half a second or more:
    /// a pitch is known from what is around it. False when no more is wanted.
    bool Samples(std::span<const std::int16_t> samples, Shaper& shaper);

private:
    const int rate_;
    const double hertz_;
    std::deque<double> factors_; ///< of the moments that sonic still holds
};

} // namespace voxmate::speech
