// Frames in other sizes.
#include "qt/character/Scaling.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <functional>

namespace voxmate::qt
{

namespace
{

constexpr std::uint32_t Blue = 0xFF2040C0;

Bitmap Filled(int width, int height, const std::function<bool(double x, double y)>& inside)
{
    Bitmap bitmap{width, height, {}};
    for (int y = 0; y < height; ++y)
        for (int x = 0; x < width; ++x)
            bitmap.pixels.push_back(inside(x + 0.5, y + 0.5) ? Blue : 0);
    return bitmap;
}

double Covered(const QImage& image)
{
    double sum = 0;
    for (int y = 0; y < image.height(); ++y)
        for (int x = 0; x < image.width(); ++x)
            sum += qAlpha(image.pixel(x, y)) / 255.0;
    return sum;
}

/// The greatest distance, in pixels, between the half-opaque border of a drawn disc and a circle, along the rows.
double Waviness(const QImage& image, double centre, double radius)
{
    double worst = 0;
    for (int y = 0; y < image.height(); ++y) {
        const double dy = y + 0.5 - centre;
        if (std::abs(dy) > radius * 0.7)
            continue;
        for (int x = 1; x < image.width() / 2; ++x) {
            const int before = qAlpha(image.pixel(x - 1, y));
            const int here = qAlpha(image.pixel(x, y));
            if (before >= 128 || here < 128)
                continue;
            const double at = x - 0.5 + (127.5 - before) / (here - before);
            worst = std::max(worst, std::abs(at - (centre - std::sqrt(radius * radius - dy * dy))));
        }
    }
    return worst;
}

} // namespace

TEST(ScalingTest, ABitmapInItsOwnSizeIsKeptToThePixel)
{
    Bitmap bitmap{3, 2, {0xFF010203, 0, 0xFFFFFFFF, 0, 0xFF000000, 0xFF804020}};
    const QImage image = Scaled(bitmap, QSize(3, 2));
    for (int y = 0; y < 2; ++y)
        for (int x = 0; x < 3; ++x)
            EXPECT_EQ(image.pixel(x, y), bitmap.pixels[static_cast<std::size_t>(y * 3 + x)]);
}

TEST(ScalingTest, HalfTheSizeAveragesPixels)
{
    const Bitmap bitmap = Filled(8, 8, [](double x, double y) { return x < 4 || (x < 5 && y < 4); });
    const QImage image = Scaled(bitmap, QSize(4, 4));
    EXPECT_EQ(qAlpha(image.pixel(1, 0)), 255);
    EXPECT_NEAR(qAlpha(image.pixel(2, 1)), 128, 2);
    EXPECT_EQ(qAlpha(image.pixel(2, 3)), 0);
    EXPECT_EQ(qAlpha(image.pixel(3, 0)), 0);
}

TEST(ScalingTest, AnEnlargedDiscHasASmoothOutlineInItsOwnColourAndPlace)
{
    const Bitmap disc = Filled(64, 64, [](double x, double y) { return std::hypot(x - 32, y - 32) < 25; });
    for (const int factor : {2, 3}) {
        const QImage image = Scaled(disc, QSize(64, 64) * factor);
        // With steps of whole pixels the border would deviate by a pixel of the bitmap.
        EXPECT_LT(Waviness(image, 32.0 * factor, 25.0 * factor), 0.3 * factor) << factor;
        EXPECT_NEAR(std::sqrt(Covered(image) / M_PI), 25.0 * factor, 0.25 * factor) << factor;
        for (int y = 0; y < image.height(); ++y)
            for (int x = 0; x < image.width(); ++x)
                if (const QRgb pixel = qUnpremultiply(image.pixel(x, y)); qAlpha(pixel) > 60) {
                    ASSERT_NEAR(qRed(pixel), 0x20, 3);
                    ASSERT_NEAR(qGreen(pixel), 0x40, 3);
                    ASSERT_NEAR(qBlue(pixel), 0xC0, 3);
                }
    }
}

TEST(ScalingTest, AnEnlargedLineOfOnePixelIsStillThere)
{
    const Bitmap line = Filled(32, 32, [](double x, double) { return x > 16 && x < 17; });
    const QImage image = Scaled(line, QSize(64, 64));
    for (int y = 4; y < 60; ++y)
        EXPECT_GE(std::max(qAlpha(image.pixel(32, y)), qAlpha(image.pixel(33, y))), 128) << y;
}

TEST(ScalingTest, WidthAndHeightAreScaledByThemselves)
{
    const Bitmap bitmap = Filled(20, 20, [](double x, double y) { return x > 5 && x < 15 && y > 5 && y < 15; });
    const QImage image = Scaled(bitmap, QSize(40, 10));
    EXPECT_EQ(image.size(), QSize(40, 10));
    EXPECT_EQ(qAlpha(image.pixel(20, 5)), 255);
    EXPECT_EQ(qAlpha(image.pixel(2, 5)), 0);
    EXPECT_NEAR(Covered(image), 10 * 10, 15);
}

// Bitmaps are processed in bands of rows whose seams must not show: the same figure further down comes out the same.
TEST(ScalingTest, ATallBitmapHasNoSeams)
{
    constexpr int height = 300;
    std::uint32_t chance = 7;
    constexpr int blank = 6; // blank rows above the figure, so that its upper edge is not the bitmap's
    Bitmap figure{12, height, std::vector<std::uint32_t>(std::size_t{12} * blank)};
    for (int i = 0; i < 12 * (height - blank); ++i) {
        chance = chance * 1664525u + 1013904223u; // the constants of Numerical Recipes
        figure.pixels.push_back(chance >> 30 == 0 ? 0 : 0xFF000000u | chance >> 8);
    }
    const QImage whole = Scaled(figure, QSize(24, 2 * height));
    for (const int down : {1, 13, 40, 61}) {
        Bitmap lower{12, height + down, std::vector<std::uint32_t>(static_cast<std::size_t>(12 * down))};
        lower.pixels.insert(lower.pixels.end(), figure.pixels.begin(), figure.pixels.end());
        const QImage image = Scaled(lower, QSize(24, 2 * (height + down)));
        EXPECT_EQ(image.copy(0, 2 * down, 24, 2 * height), whole) << down;
    }
}

TEST(ScalingTest, NothingIsNothing)
{
    EXPECT_TRUE(Scaled({}, QSize(10, 10)).isNull());
    EXPECT_TRUE(Scaled(Filled(4, 4, [](double, double) { return true; }), QSize(0, 4)).isNull());
}

} // namespace voxmate::qt
