// Where a balloon stands beside its character.
#pragma once

#include "base/Geometry.h"

namespace voxmate::agent
{

struct BalloonPlace {
    Rect bubble;
    Point tailTip;
};

/// Places a bubble of `size` near `body` (the drawn part of the character on the screen): above it, else beside it on
/// the roomier side, else below it, each when there is room for bubble and tail within `area`; where there is no room
/// at all, above and over the character. The bubble is always wholly inside `area` if it is no larger than that; the
/// tip of the tail touches the body on the bubble's side.
BalloonPlace PlaceBalloon(Size size, const Rect& body, const Rect& area);

/// Moves a rectangle the shortest way into `area`; one that is larger stands at the area's left or upper edge.
Rect MovedInside(const Rect& rect, const Rect& area);

} // namespace voxmate::agent
