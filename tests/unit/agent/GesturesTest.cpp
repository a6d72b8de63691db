#include "agent/body/Gestures.h"

#include <gtest/gtest.h>

#include <string>

namespace voxmate::agent
{
namespace
{

class GesturesTest : public testing::Test
{
protected:
    GesturesTest()
    {
        const auto note = [this](const char* what) {
            return [this, what](int button, int shift, Point at) {
                log += std::string(what) + " " + std::to_string(button) + "/" + std::to_string(shift) + " " +
                       std::to_string(at.x) + "," + std::to_string(at.y) + "; ";
            };
        };
        gestures.Click = note("click");
        gestures.DblClick = note("dblclick");
        gestures.DragStart = note("start");
        gestures.DragComplete = note("complete");
        gestures.Drag = [this](Point topLeft, Point) {
            log += "to " + std::to_string(topLeft.x) + "," + std::to_string(topLeft.y) + "; ";
        };
        gestures.Menu = [this](Point at) { log += "menu " + std::to_string(at.x) + "," + std::to_string(at.y) + "; "; };
    }
    /// The window's upper left corner is at (500, 300).
    void Do(MouseAction action, int button, Point at, int shift = 0)
    {
        gestures.Handle({action, button, shift, at, {500 + at.x, 300 + at.y}});
    }

    Gestures gestures;
    std::string log;
};

TEST_F(GesturesTest, PressAndReleaseInPlaceIsAClick)
{
    Do(MouseAction::Press, 1, {10, 20});
    Do(MouseAction::Release, 1, {10, 20}, 3);
    EXPECT_EQ(log, "click 1/3 10,20; ");
}

TEST_F(GesturesTest, AMoveOfAFewPixelsIsStillAClick)
{
    Do(MouseAction::Press, 1, {10, 20});
    Do(MouseAction::Move, 0, {14, 16});
    Do(MouseAction::Release, 1, {14, 16});
    EXPECT_EQ(log, "click 1/0 14,16; ");
}

TEST_F(GesturesTest, AFartherMoveIsADrag)
{
    Do(MouseAction::Press, 1, {10, 20}, 2);
    Do(MouseAction::Move, 0, {15, 20});
    Do(MouseAction::Move, 0, {110, 70});
    Do(MouseAction::Release, 1, {110, 70});
    EXPECT_EQ(log, "start 1/2 10,20; to 505,300; to 600,350; complete 1/0 110,70; ");
}

TEST_F(GesturesTest, ADragThatComesBackIsNoClick)
{
    Do(MouseAction::Press, 1, {10, 20});
    Do(MouseAction::Move, 0, {10, 40});
    Do(MouseAction::Move, 0, {10, 20});
    Do(MouseAction::Release, 1, {10, 20});
    EXPECT_EQ(log, "start 1/0 10,20; to 500,320; to 500,300; complete 1/0 10,20; ");
}

TEST_F(GesturesTest, ADoubleClickIsAClickAndADblClick)
{
    Do(MouseAction::Press, 1, {10, 20});
    Do(MouseAction::Release, 1, {10, 20});
    Do(MouseAction::DoubleClick, 1, {11, 20});
    Do(MouseAction::Release, 1, {11, 20});
    EXPECT_EQ(log, "click 1/0 10,20; dblclick 1/0 11,20; ");
}

TEST_F(GesturesTest, ARightClickWantsTheMenuToo)
{
    Do(MouseAction::Press, 2, {10, 20});
    Do(MouseAction::Release, 2, {10, 20});
    EXPECT_EQ(log, "click 2/0 10,20; menu 510,320; ");
}

TEST_F(GesturesTest, MovesWithoutAButtonAndReleasesWithoutAPressMeanNothing)
{
    Do(MouseAction::Move, 0, {100, 100});
    Do(MouseAction::Release, 1, {100, 100});
    Do(MouseAction::Move, 0, {200, 100});
    EXPECT_EQ(log, "");
}

TEST_F(GesturesTest, AButtonThatIsNeitherLeftNorRightMeansNothing)
{
    Do(MouseAction::Press, 0, {10, 20});
    Do(MouseAction::Release, 0, {10, 20});
    Do(MouseAction::DoubleClick, 0, {10, 20});
    EXPECT_EQ(log, "");
}

TEST_F(GesturesTest, ASecondButtonMeanwhileChangesNothing)
{
    Do(MouseAction::Press, 1, {10, 20});
    Do(MouseAction::Press, 2, {10, 20});
    Do(MouseAction::Release, 2, {10, 20});
    Do(MouseAction::Release, 1, {10, 20});
    EXPECT_EQ(log, "click 1/0 10,20; ");
}

TEST_F(GesturesTest, AWindowThatWentAwayForgetsTheButton)
{
    Do(MouseAction::Press, 1, {10, 20});
    gestures.Reset();
    Do(MouseAction::Move, 0, {100, 100});
    Do(MouseAction::Release, 1, {100, 100});
    EXPECT_EQ(log, "");
}

} // namespace
} // namespace voxmate::agent
