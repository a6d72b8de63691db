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

namespace
{

bool IsFree(const Rect& part, std::span<const Rect> taken)
{
    const Rect room{part.x - FreeGap, part.y - FreeGap, part.width + 2 * FreeGap, part.height + 2 * FreeGap};
    return std::ranges::none_of(taken, [&room](const Rect& rect) { return Overlap(room, rect); });
}

} // namespace

// The nearest place shares each of its coordinates with the present place, or touches there one of the rectangles (with
// the gap) or the edge of the area, with the figure or with the balloon. So it is enough to try all pairs of such
// coordinates.
std::optional<Point> NearestFree(const CharacterPlace& from, const Rect& area, std::span<const Rect> taken,
                                 const std::function<std::optional<Rect>(Point)>& balloonAt)
{
    const Rect& window = from.Window;
    const Rect& figure = from.Figure;
    const auto balloon = [&balloonAt](Point corner) { return balloonAt ? balloonAt(corner) : std::nullopt; };
    const Rect beside = balloon({window.x, window.y}).value_or(figure);
    const Point last{area.Right() - window.width, area.Bottom() - window.height};
    std::vector<int> columns{window.x, area.x, last.x};
    std::vector<int> rows{window.y, area.y, last.y};
    for (const Rect& rect : taken) {
        for (const Rect& part : {figure, beside}) {
            columns.push_back(window.x + rect.x - FreeGap - part.Right());
            columns.push_back(window.x + rect.Right() + FreeGap - part.x);
            rows.push_back(window.y + rect.y - FreeGap - part.Bottom());
            rows.push_back(window.y + rect.Bottom() + FreeGap - part.y);
        }
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
            if (!IsFree({figure.x + static_cast<int>(dx), figure.y + static_cast<int>(dy), figure.width, figure.height},
                        taken))
                continue;
            if (const auto bubble = balloon({x, y}); bubble && !IsFree(*bubble, taken))
                continue;
            best = Point{x, y};
            shortest = way;
        }
    }
    return best;
}

} // namespace voxmate
