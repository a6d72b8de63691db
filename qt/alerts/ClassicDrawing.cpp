#include "qt/alerts/ClassicDrawing.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdint>
#include <cstdlib>
#include <utility>

namespace voxmate::qt
{

namespace
{

/// The device pixel at which a device-independent coordinate begins.
int ToDevice(int coordinate, qreal ratio)
{
    return static_cast<int>(std::lround(coordinate * ratio));
}

QRect ToDevice(QRect rect, qreal ratio)
{
    const QPoint from(ToDevice(rect.x(), ratio), ToDevice(rect.y(), ratio));
    const QPoint to(ToDevice(rect.x() + rect.width(), ratio), ToDevice(rect.y() + rect.height(), ratio));
    return QRect(from, QSize(to.x() - from.x(), to.y() - from.y()));
}

using Channels = std::array<std::int64_t, 3>;

Channels ChannelsOf(const TriVertex& vertex)
{
    return {static_cast<std::uint16_t>(vertex.Red), static_cast<std::uint16_t>(vertex.Green),
            static_cast<std::uint16_t>(vertex.Blue)};
}

/// The upper bytes of three 16-bit channels.
QRgb ToPixel(const Channels& channels)
{
    return qRgb(static_cast<int>(channels[0] >> 8), static_cast<int>(channels[1] >> 8),
                static_cast<int>(channels[2] >> 8));
}

QRgb* Row(QImage& image, int y)
{
    return reinterpret_cast<QRgb*>(image.scanLine(y));
}

/// Twice the area of the triangle from `a` over `b` to `c`, positive when that is clockwise on the screen.
std::int64_t Area(QPoint a, QPoint b, QPoint c)
{
    return std::int64_t{b.x() - a.x()} * (c.y() - a.y()) - std::int64_t{b.y() - a.y()} * (c.x() - a.x());
}

void FillTriangle(QImage& image, std::array<const TriVertex*, 3> corners)
{
    std::array<QPoint, 3> at;
    std::array<Channels, 3> colours;
    const qreal ratio = image.devicePixelRatio();
    for (std::size_t i = 0; i < corners.size(); ++i) {
        at[i] = {ToDevice(corners[i]->x, ratio), ToDevice(corners[i]->y, ratio)};
        colours[i] = ChannelsOf(*corners[i]);
    }
    std::int64_t whole = Area(at[0], at[1], at[2]);
    if (whole == 0)
        return;
    if (whole < 0) {
        std::swap(at[1], at[2]);
        std::swap(colours[1], colours[2]);
        whole = -whole;
    }
    const auto [left, right] = std::minmax({at[0].x(), at[1].x(), at[2].x()});
    const auto [top, bottom] = std::minmax({at[0].y(), at[1].y(), at[2].y()});
    for (int y = std::max(top, 0); y < std::min(bottom, image.height()); ++y) {
        QRgb* const row = Row(image, y);
        for (int x = std::max(left, 0); x < std::min(right, image.width()); ++x) {
            const QPoint here(x, y);
            const std::array<std::int64_t, 3> share{Area(at[1], at[2], here), Area(at[2], at[0], here),
                                                    Area(at[0], at[1], here)};
            if (*std::min_element(share.begin(), share.end()) < 0)
                continue;
            Channels mixed{};
            for (std::size_t channel = 0; channel < mixed.size(); ++channel) {
                for (std::size_t i = 0; i < share.size(); ++i)
                    mixed[channel] += share[i] * colours[i][channel];
                mixed[channel] /= whole;
            }
            row[x] = ToPixel(mixed);
        }
    }
}

void FillRectDown(QImage& image, const TriVertex& first, const TriVertex& second)
{
    const bool downwards = first.y <= second.y;
    const TriVertex& upper = downwards ? first : second;
    const TriVertex& lower = downwards ? second : first;
    const qreal ratio = image.devicePixelRatio();
    const int top = ToDevice(upper.y, ratio);
    const int bottom = ToDevice(lower.y, ratio);
    const int left = std::clamp(ToDevice(std::min(first.x, second.x), ratio), 0, image.width());
    const int right = std::clamp(ToDevice(std::max(first.x, second.x), ratio), 0, image.width());
    const Channels from = ChannelsOf(upper);
    const Channels to = ChannelsOf(lower);
    const std::int64_t height = bottom - top;
    for (int y = std::max(top, 0); y < std::min(bottom, image.height()); ++y) {
        Channels mixed{};
        for (std::size_t channel = 0; channel < mixed.size(); ++channel)
            mixed[channel] = (from[channel] * (bottom - y) + to[channel] * (y - top)) / height;
        QRgb* const row = Row(image, y);
        std::fill(row + left, row + right, ToPixel(mixed));
    }
}

void FillDevice(QImage& image, QRect device, QRgb colour)
{
    device &= image.rect();
    for (int y = device.top(); y <= device.bottom(); ++y) {
        QRgb* const row = Row(image, y);
        std::fill(row + device.left(), row + device.right() + 1, colour);
    }
}

/// A rounded rectangle in device pixels.
struct Rounded {
    QRect rect;
    qreal radiusX;
    qreal radiusY;

    Rounded(QRect area, QSize ellipse, qreal ratio)
        : rect(ToDevice(area, ratio)), radiusX(std::min(ellipse.width() * ratio, qreal(rect.width())) / 2),
          radiusY(std::min(ellipse.height() * ratio, qreal(rect.height())) / 2)
    {
    }

    bool Contains(int x, int y) const
    {
        if (!rect.contains(x, y))
            return false;
        const qreal right = rect.x() + rect.width() - radiusX;
        const qreal bottom = rect.y() + rect.height() - radiusY;
        const qreal dx = x + 0.5 - std::clamp(x + 0.5, rect.x() + radiusX, std::max(rect.x() + radiusX, right));
        const qreal dy = y + 0.5 - std::clamp(y + 0.5, rect.y() + radiusY, std::max(rect.y() + radiusY, bottom));
        // The ellipse's equation without divisions, so that it is exact for radii of whole and half pixels.
        return dx * dx * radiusY * radiusY + dy * dy * radiusX * radiusX <= radiusX * radiusX * radiusY * radiusY;
    }
};

} // namespace

bool FillTriangles(QImage& image, std::span<const TriVertex> vertices, std::span<const GradientTriangle> mesh)
{
    for (const GradientTriangle& triangle : mesh) {
        if (std::max({triangle.Vertex1, triangle.Vertex2, triangle.Vertex3}) >= vertices.size())
            return false;
    }
    for (const GradientTriangle& triangle : mesh)
        FillTriangle(image, {&vertices[triangle.Vertex1], &vertices[triangle.Vertex2], &vertices[triangle.Vertex3]});
    return true;
}

bool FillRectsDown(QImage& image, std::span<const TriVertex> vertices, std::span<const GradientRect> mesh)
{
    for (const GradientRect& rect : mesh) {
        if (std::max(rect.UpperLeft, rect.LowerRight) >= vertices.size())
            return false;
    }
    for (const GradientRect& rect : mesh)
        FillRectDown(image, vertices[rect.UpperLeft], vertices[rect.LowerRight]);
    return true;
}

void DrawLine(QImage& image, QPoint from, QPoint to, QColor colour)
{
    const int dx = std::abs(to.x() - from.x());
    const int dy = std::abs(to.y() - from.y());
    const int stepX = from.x() < to.x() ? 1 : -1;
    const int stepY = from.y() < to.y() ? 1 : -1;
    int error = dx - dy;
    for (QPoint at = from; at != to;) {
        FillDevice(image, ToDevice(QRect(at, QSize(1, 1)), image.devicePixelRatio()), colour.rgb());
        const int twice = 2 * error;
        if (twice > -dy) {
            error -= dy;
            at.rx() += stepX;
        }
        if (twice < dx) {
            error += dx;
            at.ry() += stepY;
        }
    }
}

void DrawRoundRect(QImage& image, QRect rect, QSize ellipse, QColor colour)
{
    const qreal ratio = image.devicePixelRatio();
    const Rounded shape(rect, ellipse, ratio);
    // A pixel belongs to the outline if the nearest pixel outside is no further away than the pen's width.
    const int pen = std::max(static_cast<int>(std::lround(ratio)), 1);
    const auto nearOutside = [&](int x, int y) {
        for (int dy = -pen; dy <= pen; ++dy) {
            for (int dx = -pen; dx <= pen; ++dx) {
                if (dx * dx + dy * dy <= pen * pen && !shape.Contains(x + dx, y + dy))
                    return true;
            }
        }
        return false;
    };
    // Only the corners are curved, so pixels this far from all four edges need no test.
    const int edgeX = static_cast<int>(std::ceil(shape.radiusX)) + pen;
    const int edgeY = static_cast<int>(std::ceil(shape.radiusY)) + pen;
    const QRect inside = shape.rect.adjusted(edgeX, edgeY, -edgeX, -edgeY);
    const QRect visible = shape.rect & image.rect();
    for (int y = visible.top(); y <= visible.bottom(); ++y) {
        QRgb* const row = Row(image, y);
        for (int x = visible.left(); x <= visible.right(); ++x) {
            if (!inside.contains(x, y) && shape.Contains(x, y) && nearOutside(x, y))
                row[x] = colour.rgb();
        }
    }
}

QRegion RoundRectRegion(QRect rect, QSize ellipse, qreal ratio)
{
    const Rounded shape(rect, ellipse, ratio);
    QRegion region;
    for (int y = shape.rect.top(); y <= shape.rect.bottom(); ++y) {
        int left = shape.rect.left();
        while (left <= shape.rect.right() && !shape.Contains(left, y))
            ++left;
        int right = shape.rect.right();
        while (right >= left && !shape.Contains(right, y))
            --right;
        if (right >= left)
            region += QRect(left, y, right - left + 1, 1);
    }
    return region;
}

} // namespace voxmate::qt
