// What moves in an animation besides its keys: breath and other sways, and the blinks.
#pragma once

#include "Source.h"

#include <vector>

namespace voxmate::characters
{

/// The times (1/100 s) of blinks, `aMinute` on average, that begin and end within an animation. The intervals are
/// log-normal, as those of people are, and the same at every build: they follow from the animation's name.
std::vector<int> BlinkTimes(const SourceAnimation& animation, int aMinute);

/// Adds to a pose of the animation what its sways and blinks change at `time` (1/100 s). At the animation's first and
/// last frame that is nothing, so that another one can follow without a jump.
void Enliven(const SourceAnimation& animation, double time, Pose& pose);

} // namespace voxmate::characters
