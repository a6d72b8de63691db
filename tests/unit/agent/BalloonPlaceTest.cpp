#include "agent/balloon/BalloonPlace.h"

#include "agent/Stage.h"

#include <gtest/gtest.h>

namespace voxmate::agent
{
namespace
{

constexpr Rect kScreen{0, 0, 1000, 700};

bool Inside(const Rect& rect, const Rect& area)
{
    return rect.x >= area.x && rect.y >= area.y && rect.Right() <= area.Right() && rect.Bottom() <= area.Bottom();
}

TEST(BalloonPlaceTest, StandsAboveTheCharacterWithTheTailToItsHead)
{
    const BalloonPlace place = PlaceBalloon({200, 80}, {400, 300, 100, 150}, kScreen);
    EXPECT_EQ(place.bubble, (Rect{350, 300 - BalloonTailLength - 80, 200, 80}));
    EXPECT_EQ(place.tailTip, (Point{450, 300}));
}

TEST(BalloonPlaceTest, IsMovedInsideAtTheEdgesOfTheScreenWhileTheTailStaysWithTheCharacter)
{
    const BalloonPlace right = PlaceBalloon({200, 80}, {890, 300, 100, 150}, kScreen);
    EXPECT_EQ(right.bubble.x, 800);
    EXPECT_EQ(right.tailTip, (Point{940, 300}));
    const BalloonPlace left = PlaceBalloon({200, 80}, {0, 300, 100, 150}, kScreen);
    EXPECT_EQ(left.bubble.x, 0);
    EXPECT_EQ(left.tailTip, (Point{50, 300}));
}

TEST(BalloonPlaceTest, StandsBesideOnTheRoomierSideWhereThereIsNoRoomAbove)
{
    const BalloonPlace right = PlaceBalloon({200, 80}, {100, 20, 100, 150}, kScreen);
    EXPECT_EQ(right.bubble, (Rect{200 + BalloonTailLength, 30, 200, 80}));
    EXPECT_EQ(right.tailTip, (Point{200, 70}));
    const BalloonPlace left = PlaceBalloon({200, 80}, {800, 20, 100, 150}, kScreen);
    EXPECT_EQ(left.bubble, (Rect{800 - BalloonTailLength - 200, 30, 200, 80}));
    EXPECT_EQ(left.tailTip, (Point{800, 70}));
}

TEST(BalloonPlaceTest, StandsBelowWhereThereIsRoomNeitherAboveNorBeside)
{
    const BalloonPlace place = PlaceBalloon({600, 80}, {450, 20, 100, 150}, kScreen);
    EXPECT_EQ(place.bubble, (Rect{200, 170 + BalloonTailLength, 600, 80}));
    EXPECT_EQ(place.tailTip, (Point{500, 170}));
}

TEST(BalloonPlaceTest, IsWhollyOnTheScreenWhereverTheCharacterStands)
{
    for (const Rect& area : {kScreen, Rect{-500, 100, 640, 480}})
        for (const Size size : {Size{200, 80}, Size{600, 400}, Size{640, 480}, Size{20, 470}})
            for (int x = area.x - 50; x < area.Right(); x += 30)
                for (int y = area.y - 70; y < area.Bottom(); y += 30) {
                    const BalloonPlace place = PlaceBalloon(size, {x, y, 100, 150}, area);
                    ASSERT_TRUE(Inside(place.bubble, area)) << x << ", " << y << ", " << size.width;
                    ASSERT_EQ(place.bubble.width, size.width);
                    ASSERT_EQ(place.bubble.height, size.height);
                    // The tail's tip is on the screen, at the body.
                    ASSERT_TRUE(place.tailTip.x >= area.x && place.tailTip.x <= area.Right()) << x << ", " << y;
                    ASSERT_TRUE(place.tailTip.y >= area.y && place.tailTip.y <= area.Bottom()) << x << ", " << y;
                    ASSERT_TRUE(place.tailTip.x >= x && place.tailTip.x <= x + 100) << x << ", " << y;
                }
}

TEST(BalloonPlaceTest, NeverCoversTheCharacterWhenThereIsRoomSomewhere)
{
    for (int x = 0; x <= 900; x += 25)
        for (int y = 0; y <= 550; y += 25) {
            const Rect body{x, y, 100, 150};
            const Rect b = PlaceBalloon({200, 80}, body, kScreen).bubble;
            const bool apart =
                b.Right() <= body.x || b.x >= body.Right() || b.Bottom() <= body.y || b.y >= body.Bottom();
            ASSERT_TRUE(apart) << x << ", " << y;
        }
}

TEST(BalloonPlaceTest, MovesARectangleInsideByTheShortestWay)
{
    EXPECT_EQ(MovedInside({-20, 690, 100, 50}, kScreen), (Rect{0, 650, 100, 50}));
    EXPECT_EQ(MovedInside({10, 10, 100, 50}, kScreen), (Rect{10, 10, 100, 50}));
    EXPECT_EQ(MovedInside({300, 300, 2000, 50}, kScreen), (Rect{0, 300, 2000, 50}));
}

} // namespace
} // namespace voxmate::agent
