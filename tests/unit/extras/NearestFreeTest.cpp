#include "extras/NearestFree.h"

#include <gtest/gtest.h>

#include <vector>

namespace voxmate
{
namespace
{

// A window of 200 by 200 whose figure leaves 50 pixels free at each side and 20 at the top.
constexpr CharacterPlace kFrom{{1000, 500, 200, 200}, {1050, 520, 100, 180}};
constexpr Rect kArea{0, 0, 1280, 720};

std::optional<Point> Nearest(const std::vector<Rect>& taken)
{
    return NearestFree(kFrom, kArea, taken);
}

TEST(NearestFreeTest, StaysWhereNothingIsTaken)
{
    EXPECT_EQ(Nearest({}), (Point{1000, 500}));
    EXPECT_EQ(Nearest({{1000, 500, 42, 200}}), (Point{1000, 500})) << "beneath the transparent part";
}

TEST(NearestFreeTest, GoesTheShortestWay)
{
    EXPECT_EQ(Nearest({{900, 500, 170, 220}}), (Point{1000 + 28, 500})) << "to the right, with a gap of 8";
    EXPECT_EQ(Nearest({{1120, 500, 160, 220}}), (Point{1000 - 38, 500})) << "to the left";
    EXPECT_EQ(Nearest({{800, 680, 480, 40}}), (Point{1000, 500 - 28})) << "up";
}

TEST(NearestFreeTest, TheWholeWindowStaysInTheArea)
{
    // 28 pixels down would do, but then the window would reach below the area.
    EXPECT_EQ(Nearest({{1000, 480, 200, 60}}), (Point{842, 500}));
}

TEST(NearestFreeTest, GoesAroundSeveral)
{
    EXPECT_EQ(Nearest({{1040, 520, 120, 180}, {780, 0, 260, 720}, {1160, 0, 120, 720}}), (Point{1000, 312}));
}

TEST(NearestFreeTest, FindsNothingWhereAllIsTaken)
{
    EXPECT_EQ(Nearest({{0, 0, 1280, 720}}), std::nullopt);
    EXPECT_EQ(NearestFree(kFrom, {0, 0, 150, 720}, {}), std::nullopt) << "an area narrower than the window";
}

} // namespace
} // namespace voxmate
