// Where a balloon stands beside its character.
#pragma once

#include "base/Geometry.h"

namespace voxmate::agent
{

struct BalloonPlace {
    Rect bubble;
    Point tailTip;
};

/// Places a bubble of `size` near `body` (the drawn part of the character on the screen), at the first of these places
/// where `area` has room for bubble and tail: above the body, beside it on the roomier side, below it. Without room
/// anywhere the bubble stands above and overlaps the character. It is always wholly inside `area` unless it is larger
/// than that. The tip of the tail touches the body on the bubble's side.
BalloonPlace PlaceBalloon(Size size, const Rect& body, const Rect& area);

/// Moves a rectangle into `area` by the shortest way. One that is larger than `area` stands at its left or upper edge.
Rect MovedInside(const Rect& rect, const Rect& area);

} // namespace voxmate::agent
