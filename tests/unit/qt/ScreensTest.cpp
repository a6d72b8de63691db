// The computations behind work areas and full-screen windows.
#include "qt/system/Screens.h"
#include "qt/alerts/PlacedWindow.h"

#include <gtest/gtest.h>

namespace voxmate::qt
{

namespace
{

// Two screens beside each other, the second one lower.
const QRect Left(0, 0, 1600, 1200);
const QRect Right(1600, 0, 1280, 1024);
const QSize Both(2880, 1200);

QRect Without(const QRect& screen, const Strut& strut)
{
    return WithoutPanels(screen, Both, {strut});
}

} // namespace

TEST(ScreensTest, APanelTakesOfItsOwnScreenAndOfNoOther)
{
    const Strut panel{Strut::Bottom, 60, 0, 1599};
    EXPECT_EQ(Without(Left, panel), QRect(0, 0, 1600, 1140));
    EXPECT_EQ(Without(Right, panel), Right);
}

TEST(ScreensTest, APanelCountsFromTheEdgeOfTheDesktopWhereItsScreenEndsBefore)
{
    const Strut panel{Strut::Bottom, 1200 - 1024 + 40, 1600, 2879};
    EXPECT_EQ(Without(Right, panel), QRect(1600, 0, 1280, 984));
    EXPECT_EQ(Without(Left, panel), Left);
}

TEST(ScreensTest, APanelAtAnInnerEdgeTakesNothingOfTheScreenBeyond)
{
    const Strut panel{Strut::Left, 1640, 0, 1023};
    EXPECT_EQ(Without(Left, panel), Left);
    EXPECT_EQ(Without(Right, panel), QRect(1640, 0, 1240, 1024));
    const Strut other{Strut::Right, 1280 + 50, 0, 1199};
    EXPECT_EQ(Without(Left, other), QRect(0, 0, 1550, 1200));
    EXPECT_EQ(Without(Right, other), Right);
}

TEST(ScreensTest, PanelsAtAllEdgesAddUpAndTheDeepestCounts)
{
    const QList<Strut> panels{{Strut::Top, 24, 0, 1599},
                              {Strut::Bottom, 40, 0, 1599},
                              {Strut::Bottom, 64, 200, 900},
                              {Strut::Left, 10, 0, 1199},
                              {Strut::Left, 48, 100, 300}};
    EXPECT_EQ(WithoutPanels(Left, Both, panels), QRect(48, 24, 1552, 1112));
}

TEST(ScreensTest, PanelsThatLeaveNothingAreNotBelieved)
{
    EXPECT_EQ(WithoutPanels(Left, Both, {{Strut::Top, 700, 0, 1599}, {Strut::Bottom, 700, 0, 1599}}), Left);
    EXPECT_EQ(WithoutPanels(Left, Both, {{Strut::Bottom, 0, 0, 1599}, {Strut::Top, 30, 500, 400}}), Left);
}

TEST(ScreensTest, OfAFractionOfAPixelNothingIsFree)
{
    EXPECT_EQ(WholePixels({0, 0, 1600, 1100}, {0, 0}, 1), QRect(0, 0, 1600, 1100));
    EXPECT_EQ(WholePixels({0, 0, 1600, 1100}, {0, 0}, 2), QRect(0, 0, 800, 550));
    EXPECT_EQ(WholePixels({0, 0, 1600, 1100}, {0, 0}, 1.5), QRect(0, 0, 1066, 733));
    EXPECT_EQ(WholePixels({0, 25, 1600, 1035}, {0, 0}, 1.5), QRect(0, 17, 1066, 689));
    // A screen's first pixel is the same in both kinds of pixels.
    EXPECT_EQ(WholePixels({1600, 31, 1280, 993}, {1600, 0}, 1.25), QRect(1600, 25, 1024, 794));
}

TEST(ScreensTest, AWindowsEdgesStayWithinTheirPixelsAtEveryScale)
{
    for (const double ratio : {1.0, 1.25, 1.5, 1.75, 2.0, 2.25, 3.0}) {
        for (int y = 0; y < 200; ++y) {
            for (const int height : {38, 133, 134, 217}) {
                const QPoint place = WithinDevicePixels({7, y, 160, height}, ratio);
                EXPECT_LE(qRound(place.y() * ratio) + qRound(height * ratio), (y + height) * ratio)
                    << y << " " << ratio;
                EXPECT_GE(place.y(), y - 1);
                if (ratio == 1 || ratio == 2 || ratio == 3) {
                    EXPECT_EQ(place, QPoint(7, y));
                }
            }
        }
    }
}

// Full-screen windows.

TEST(ScreensTest, AFullScreenWindowFillsTheScreenItStandsOn)
{
    const ListedWindow work{.rect = {100, 100, 600, 400}};
    const ListedWindow film{.rect = Left, .fullScreen = true};
    EXPECT_FALSE(IsFilled(Left, {work}));
    EXPECT_TRUE(IsFilled(Left, {work, film}));
    EXPECT_FALSE(IsFilled(Right, {work, film}));
    // It has declared itself full-screen but is not yet that large.
    EXPECT_TRUE(IsFilled(Left, {{.rect = {300, 200, 400, 300}, .fullScreen = true}}));
    // Over all screens.
    const ListedWindow wide{.rect = {0, 0, 2880, 1200}, .fullScreen = true};
    EXPECT_TRUE(IsFilled(Left, {wide}));
    EXPECT_TRUE(IsFilled(Right, {wide}));
}

TEST(ScreensTest, AWindowAboveItMeansThatTheUserIsElsewhere)
{
    const ListedWindow film{.rect = Left, .fullScreen = true};
    EXPECT_FALSE(IsFilled(Left, {film, {.rect = {100, 100, 600, 400}}}));
    EXPECT_TRUE(IsFilled(Left, {film, {.rect = {1700, 100, 600, 400}}})) << "on the other screen";
    EXPECT_TRUE(IsFilled(Left, {film, {.rect = {100, 100, 600, 400}, .ordinary = false}})) << "its controls, a notice";
}

TEST(ScreensTest, TheProgramsOwnWindowsCountWhileTheUserIsAtThem)
{
    const ListedWindow film{.rect = Left, .fullScreen = true};
    ListedWindow own{.rect = {100, 100, 600, 400}, .own = true};
    EXPECT_TRUE(IsFilled(Left, {film, own})) << "it came by itself";
    own.active = true;
    EXPECT_FALSE(IsFilled(Left, {film, own}));
    EXPECT_TRUE(IsFilled(Left, {own, film}));
}

} // namespace voxmate::qt
