// Points, sizes, rectangles and bitmaps in device-independent pixels (1/96 inch at scale 1).
#pragma once

#include <cstdint>
#include <vector>

namespace voxmate
{

struct Point {
    int x = 0;
    int y = 0;
    bool operator==(const Point&) const = default;
};

struct Size {
    int width = 0;
    int height = 0;
    bool operator==(const Size&) const = default;
};

struct Rect {
    int x = 0;
    int y = 0;
    int width = 0;
    int height = 0;
    int Right() const { return x + width; }
    int Bottom() const { return y + height; }
    Point Middle() const { return {x + width / 2, y + height / 2}; }
    bool Contains(Point p) const { return p.x >= x && p.y >= y && p.x < Right() && p.y < Bottom(); }
    bool operator==(const Rect&) const = default;
};

/// Rows from top to bottom, one 0xAARRGGBB value per pixel, alpha not premultiplied; `pixels.size() == width * height`.
struct Bitmap {
    int width = 0;
    int height = 0;
    std::vector<std::uint32_t> pixels;
    bool operator==(const Bitmap&) const = default;
};

} // namespace voxmate
