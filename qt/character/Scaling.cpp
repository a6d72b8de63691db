#include "qt/character/Scaling.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <vector>

namespace voxmate::qt
{

namespace
{

constexpr std::size_t Channels = 4; // red, green, blue, mask

/// Rows of pixels; the four channels of a pixel stand side by side, each 0 to 255.
struct Plane {
    /// Makes all of it 0. The memory of larger planes before is used again: getting new pages from the system takes as
    /// long as all the arithmetic.
    void Clear(int w, int h)
    {
        width = w;
        height = h;
        values.assign(static_cast<std::size_t>(w) * static_cast<std::size_t>(h) * Channels, 0);
    }
    float* Row(int y)
    {
        return values.data() + static_cast<std::size_t>(y) * static_cast<std::size_t>(width) * Channels;
    }
    const float* Row(int y) const
    {
        return values.data() + static_cast<std::size_t>(y) * static_cast<std::size_t>(width) * Channels;
    }
    int width = 0;
    int height = 0;
    std::vector<float> values;
};

/// Width of the transparent rim around the bitmap, with which curves at its edges are drawn like all others.
constexpr int Rim = 2;

/// Rows [from, to) of the bitmap with its rim; row 0 is the rim's first.
void WithRim(const Bitmap& bitmap, int from, int to, Plane& plane)
{
    plane.Clear(bitmap.width + 2 * Rim, to - from);
    for (int y = std::max(from, Rim); y < std::min(to, bitmap.height + Rim); ++y) {
        const std::uint32_t* pixel =
            bitmap.pixels.data() + static_cast<std::size_t>(y - Rim) * static_cast<std::size_t>(bitmap.width);
        float* to4 = plane.Row(y - from) + Rim * Channels;
        for (int x = 0; x < bitmap.width; ++x, ++pixel, to4 += Channels) {
            to4[0] = static_cast<float>(*pixel >> 16 & 0xFF);
            to4[1] = static_cast<float>(*pixel >> 8 & 0xFF);
            to4[2] = static_cast<float>(*pixel & 0xFF);
            to4[3] = static_cast<float>(*pixel >> 24);
        }
    }
}

/// Gives transparent pixels next to drawn ones the mean colour of those, so that colours interpolated across the
/// outline are the figure's own. Done twice, because cubics reach two pixels.
void GrowColours(Plane& plane)
{
    const auto w = static_cast<std::size_t>(plane.width);
    std::vector<std::uint8_t> coloured(w * static_cast<std::size_t>(plane.height));
    for (std::size_t i = 0; i < coloured.size(); ++i)
        coloured[i] = plane.values[i * Channels + 3] > 0 ? 1 : 0;
    for (int round = 0; round < 2; ++round) {
        std::vector<std::size_t> grown;
        for (int y = 1; y + 1 < plane.height; ++y) {
            for (std::size_t x = 1, i = static_cast<std::size_t>(y) * w + 1; x + 1 < w; ++x, ++i) {
                if (coloured[i])
                    continue;
                const std::array<std::size_t, 8> around{i - w - 1, i - w,     i - w + 1, i - 1,
                                                        i + 1,     i + w - 1, i + w,     i + w + 1};
                std::array<float, 3> sum{};
                float count = 0;
                for (const std::size_t k : around) {
                    if (!coloured[k])
                        continue;
                    ++count;
                    for (std::size_t c = 0; c < 3; ++c)
                        sum[c] += plane.values[k * Channels + c];
                }
                if (count == 0)
                    continue;
                grown.push_back(i);
                for (std::size_t c = 0; c < 3; ++c)
                    plane.values[i * Channels + c] = sum[c] / count;
            }
        }
        for (const std::size_t i : grown)
            coloured[i] = 1;
    }
}

/// Softens the mask by a binomial filter, 1 4 6 4 1 in both directions, which makes slopes of one-pixel steps. Lines of
/// a single pixel, which would nearly vanish, keep the mask along their middle.
void SoftenMask(Plane& plane)
{
    std::vector<std::size_t> drawn;
    for (std::size_t i = 3; i < plane.values.size(); i += Channels)
        if (plane.values[i] > 0)
            drawn.push_back(i);
    const auto soften = [](float* first, std::size_t step, int count) {
        float before = 0;
        for (int i = 0; i < count; ++i, first += step) {
            const float here = *first;
            const float after = i + 1 < count ? first[step] : 0;
            *first = (before + 2 * here + after) / 4;
            before = here;
        }
    };
    for (int round = 0; round < 2; ++round) {
        for (int y = 0; y < plane.height; ++y)
            soften(plane.Row(y) + 3, Channels, plane.width);
        for (int x = 0; x < plane.width; ++x)
            soften(plane.Row(0) + static_cast<std::size_t>(x) * Channels + 3,
                   static_cast<std::size_t>(plane.width) * Channels, plane.height);
    }
    // At an edge a pixel keeps more than `thin`; the middle of a line one pixel wide has 6/16.
    constexpr float thin = 255 * 0.44F;
    constexpr float kept = 255 * 0.65F;
    for (const std::size_t i : drawn)
        if (plane.values[i] < thin)
            plane.values[i] = kept;
}

/// Position of an output pixel among the input's, and the weights of the four input pixels around it (the Catmull-Rom
/// cubic).
struct Taps {
    int first = 0;
    std::array<float, 4> weights{};
};

std::vector<Taps> TapsFor(int from, int to)
{
    std::vector<Taps> taps(static_cast<std::size_t>(to));
    for (int i = 0; i < to; ++i) {
        const double at = (i + 0.5) * from / to - 0.5 + Rim;
        const double whole = std::floor(at);
        const double t = at - whole;
        const double t2 = t * t;
        const double t3 = t2 * t;
        taps[static_cast<std::size_t>(i)] = {
            static_cast<int>(whole) - 1,
            {static_cast<float>((-t3 + 2 * t2 - t) / 2), static_cast<float>((3 * t3 - 5 * t2 + 2) / 2),
             static_cast<float>((-3 * t3 + 4 * t2 + t) / 2), static_cast<float>((t3 - t2) / 2)}};
    }
    return taps;
}

/// Rows [from, to) of a plane, each resampled to one pixel per entry of `taps`.
void Wider(const Plane& plane, int from, int to, const std::vector<Taps>& taps, Plane& wide)
{
    wide.Clear(static_cast<int>(taps.size()), to - from);
    for (int y = from; y < to; ++y) {
        float* out = wide.Row(y - from);
        for (const Taps& tap : taps) {
            const float* in = plane.Row(y) + static_cast<std::size_t>(tap.first) * Channels;
            for (std::size_t c = 0; c < Channels; ++c)
                out[c] = in[c] * tap.weights[0] + in[c + Channels] * tap.weights[1] +
                         in[c + 2 * Channels] * tap.weights[2] + in[c + 3 * Channels] * tap.weights[3];
            out += Channels;
        }
    }
}

/// Number of the bitmap's rows processed at a time; the planes of a whole large one would take half a gigabyte.
constexpr int BandRows = 32;
/// How many rows above and below influence a row's colours and mask.
constexpr int Reach = 2;

/// Rows [from, to) of the bitmap with its rim, with softened mask and grown colours, resampled to the output's width,
/// in `wide`; `plane` is working space.
void Band(const Bitmap& bitmap, int from, int to, const std::vector<Taps>& across, Plane& plane, Plane& wide)
{
    const int above = std::max(0, from - Reach);
    WithRim(bitmap, above, std::min(to + Reach, bitmap.height + 2 * Rim), plane);
    GrowColours(plane);
    SoftenMask(plane);
    Wider(plane, from - above, to - above, across, wide);
}

// For values that are not negative. std::lround is a call of the library, four times for each pixel.
int Rounded(float value)
{
    return static_cast<int>(value + 0.5F); // NOLINT(bugprone-incorrect-roundings)
}

QImage Enlarged(const Bitmap& bitmap, QSize size, const std::stop_token& stop)
{
    const std::vector<Taps> across = TapsFor(bitmap.width, size.width());
    const std::vector<Taps> taps = TapsFor(bitmap.height, size.height());
    // At a straight edge the softened mask rises by 3/8 per input pixel; on the screen the edge shall be one pixel
    // wide.
    constexpr float level = 255 * 0.5F;
    const float slope =
        8 / 3.0F *
        static_cast<float>(std::max(1.0, std::sqrt(static_cast<double>(size.width()) / bitmap.width *
                                                   (static_cast<double>(size.height()) / bitmap.height))));
    QImage image(size, QImage::Format_ARGB32_Premultiplied);
    const std::size_t length = static_cast<std::size_t>(size.width()) * Channels;
    std::vector<float> row(length);
    Plane plane;
    Plane wide;
    int first = 0; // the band's rows
    int last = 0;
    for (int y = 0; y < size.height() && !stop.stop_requested(); ++y) {
        const Taps& tap = taps[static_cast<std::size_t>(y)];
        if (tap.first + 4 > last) {
            first = tap.first;
            last = std::min(first + BandRows, bitmap.height + 2 * Rim);
            Band(bitmap, first, last, across, plane, wide);
        }
        const int at = tap.first - first;
        const std::array<const float*, 4> in{wide.Row(at), wide.Row(at + 1), wide.Row(at + 2), wide.Row(at + 3)};
        for (std::size_t i = 0; i < length; ++i)
            row[i] = in[0][i] * tap.weights[0] + in[1][i] * tap.weights[1] + in[2][i] * tap.weights[2] +
                     in[3][i] * tap.weights[3];
        auto* out = reinterpret_cast<QRgb*>(image.scanLine(y));
        const float* value = row.data();
        for (int x = 0; x < size.width(); ++x, value += Channels) {
            const float alpha = std::min((value[3] - level) * slope / 255 + 0.5F, 1.0F);
            if (alpha <= 0) {
                out[x] = 0;
                continue;
            }
            const auto channel = [&](std::size_t c) { return Rounded(std::clamp(value[c], 0.0F, 255.0F) * alpha); };
            out[x] = qRgba(channel(0), channel(1), channel(2), Rounded(alpha * 255));
        }
    }
    return image;
}

} // namespace

QImage Scaled(const Bitmap& bitmap, QSize size, const std::stop_token& stop)
{
    if (bitmap.width <= 0 || bitmap.height <= 0 || size.isEmpty())
        return {};
    if (size.width() > bitmap.width || size.height() > bitmap.height)
        return Enlarged(bitmap, size, stop);
    const QImage image = QImage(reinterpret_cast<const uchar*>(bitmap.pixels.data()), bitmap.width, bitmap.height,
                                qsizetype{bitmap.width} * qsizetype{sizeof(std::uint32_t)}, QImage::Format_ARGB32)
                             .convertToFormat(QImage::Format_ARGB32_Premultiplied);
    return image.size() == size ? image : image.scaled(size, Qt::IgnoreAspectRatio, Qt::SmoothTransformation);
}

} // namespace voxmate::qt
