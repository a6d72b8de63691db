// Turns keys into movement: the pose of an animation at any time.
#pragma once

#include "Source.h"

namespace voxmate::characters
{

/// The value of an easing after `part` (0 to 1) of its time: 0 at the start, 1 at the end; lively easings go outside
/// these limits in between.
double Eased(Ease ease, double part);

/// The pose at `time` (1/100 s). Each property of each part moves on its own, from one key that sets it to the next;
/// the animation's sways and blinks are added.
Pose PoseAt(const SourceAnimation& animation, double time);

} // namespace voxmate::characters
