#include "agent/balloon/BalloonPlace.h"

#include "agent/Stage.h"

#include <algorithm>

namespace voxmate::agent
{

Rect MovedInside(const Rect& rect, const Rect& area)
{
    Rect moved = rect;
    moved.x = std::max(area.x, std::min(rect.x, area.Right() - rect.width));
    moved.y = std::max(area.y, std::min(rect.y, area.Bottom() - rect.height));
    return moved;
}

BalloonPlace PlaceBalloon(Size size, const Rect& body, const Rect& area)
{
    const int middle = std::clamp(body.x + body.width / 2, area.x, std::max(area.x, area.Right() - 1));
    // Beside the character the tail points at its upper third, where a head is.
    const int head = std::clamp(body.y + body.height / 3, area.y, std::max(area.y, area.Bottom() - 1));
    const Rect above{middle - size.width / 2, body.y - BalloonTailLength - size.height, size.width, size.height};
    const Rect left{body.x - BalloonTailLength - size.width, head - size.height / 2, size.width, size.height};
    const Rect right{body.Right() + BalloonTailLength, head - size.height / 2, size.width, size.height};
    const Rect below{middle - size.width / 2, body.Bottom() + BalloonTailLength, size.width, size.height};

    if (above.y >= area.y)
        return {MovedInside(above, area), {middle, body.y}};
    const bool leftFits = left.x >= area.x;
    const bool rightFits = right.Right() <= area.Right();
    if (rightFits && (!leftFits || area.Right() - body.Right() > body.x - area.x))
        return {MovedInside(right, area), {body.Right(), head}};
    if (leftFits)
        return {MovedInside(left, area), {body.x, head}};
    if (below.Bottom() <= area.Bottom())
        return {MovedInside(below, area), {middle, body.Bottom()}};
    const Rect over = MovedInside(above, area);
    return {over, {middle, std::max(body.y, over.Bottom())}};
}

} // namespace voxmate::agent
