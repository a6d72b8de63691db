#include "extras/NearestFree.h"

#include <algorithm>
#include <cstdint>
#include <vector>

namespace voxmate
{

bool Overlap(const Rect& a, const Rect& b)
{
    return a.x < b.Right() && b.x < a.Right() && a.y < b.Bottom() && b.y < a.Bottom();
}

// The nearest place shares each of its coordinates with the present place, or touches there one of the rectangles (with
// the gap) or the edge of the area. So it is enough to try all pairs of such coordinates.
std::optional<Point> NearestFree(const CharacterPlace& from, const Rect& area, std::span<const Rect> taken)
{
    const Rect& window = from.Window;
    const Rect& figure = from.Figure;
    const Point inset{figure.x - window.x, figure.y - window.y};
    const Point last{area.Right() - window.width, area.Bottom() - window.height};
    std::vector<int> columns{window.x, area.x, last.x};
    std::vector<int> rows{window.y, area.y, last.y};
    for (const Rect& rect : taken) {
        columns.push_back(rect.x - FreeGap - figure.width - inset.x);
        columns.push_back(rect.Right() + FreeGap - inset.x);
        rows.push_back(rect.y - FreeGap - figure.height - inset.y);
        rows.push_back(rect.Bottom() + FreeGap - inset.y);
    }
    const auto keep = [](std::vector<int>& values, int least, int most) {
        std::erase_if(values, [=](int value) { return value < least || value > most; });
        std::ranges::sort(values);
        values.erase(std::unique(values.begin(), values.end()), values.end());
    };
    keep(columns, area.x, last.x);
    keep(rows, area.y, last.y);

    std::optional<Point> best;
    std::int64_t shortest = 0;
    for (const int x : columns) {
        for (const int y : rows) {
            const std::int64_t dx = x - window.x;
            const std::int64_t dy = y - window.y;
            const std::int64_t way = dx * dx + dy * dy;
            if (best && way >= shortest)
                continue;
            const Rect room{x + inset.x - FreeGap, y + inset.y - FreeGap, figure.width + 2 * FreeGap,
                            figure.height + 2 * FreeGap};
            if (std::ranges::none_of(taken, [&room](const Rect& rect) { return Overlap(room, rect); })) {
                best = Point{x, y};
                shortest = way;
            }
        }
    }
    return best;
}

} // namespace voxmate
