// Keys become movement: the pose of an animation at any time.
#pragma once

#include "Source.h"

namespace voxmate::characters
{

/// Where an easing stands after `part` (0 to 1) of its time: 0 at the start, 1 at the end, beyond either in between for
/// the lively ones.
double Eased(Ease ease, double part);

/// The pose at `time` (1/100 s). Each property of each part goes by itself from one key that sets it to the next.
Pose PoseAt(const SourceAnimation& animation, double time);

} // namespace voxmate::characters
