#include "base/RuntimeError.h"
#include "tests/unit/agent/ServerTest.h"

namespace voxmate::agent::test
{
namespace
{

class ServerDesktopTest : public ServerTest
{
protected:
    void Drag(Point from, Point to)
    {
        stage.Mouse(MouseAction::Press, 1, from);
        (*stage.Window().mouse)({MouseAction::Move, 0, 0, from, to});
        (*stage.Window().mouse)({MouseAction::Release, 1, 0, from, to});
        stage.Settle();
    }
    Point Place() { return stage.Window().place; }
};

TEST_F(ServerDesktopTest, StandsFirstNearTheLowerRightOfThePrimaryWorkArea)
{
    stage.workAreas = {{100, 50, 1000, 600}, {1100, 0, 1920, 1080}};
    LoadShown();
    EXPECT_EQ(Place(), (Point{1100 - 40 - 40, 650 - 60 - 16}));
}

TEST_F(ServerDesktopTest, StandsWhollyOnAWorkAreaWithHardlyAnyRoom)
{
    stage.workAreas = {{10, 20, 50, 65}};
    LoadShown();
    EXPECT_EQ(Place(), (Point{10, 20}));
}

TEST_F(ServerDesktopTest, KeepsItsPlaceAfterADragAndAfterHiding)
{
    AgentCharacter& bo = LoadShown();
    Drag({10, 10}, {310, 210});
    EXPECT_EQ(Place(), (Point{300, 200}));
    bo.Hide(true);
    bo.Show(true);
    stage.Settle();
    EXPECT_EQ(Place(), (Point{300, 200}));
}

TEST_F(ServerDesktopTest, CannotBeDraggedOffTheScreen)
{
    stage.workAreas = {{0, 30, 1000, 600}};
    LoadShown();
    Drag({10, 10}, {-5000, -5000});
    EXPECT_EQ(Place(), (Point{-20, 30 - 30}));
    Drag({10, 10}, {5000, 5000});
    EXPECT_EQ(Place(), (Point{999 - 20, 629 - 30}));
}

TEST_F(ServerDesktopTest, MayBeDraggedToAnotherScreen)
{
    stage.workAreas = {{0, 0, 1000, 600}, {1000, 0, 800, 600}};
    LoadShown();
    Drag({10, 10}, {1310, 210});
    EXPECT_EQ(Place(), (Point{1300, 200}));
}

TEST_F(ServerDesktopTest, ComesBackWhenItsScreenHasGone)
{
    stage.workAreas = {{0, 0, 1000, 600}, {1000, 0, 800, 600}};
    AgentCharacter& bo = LoadShown();
    Drag({10, 10}, {1310, 210});
    bo.Hide(true);
    stage.workAreas.pop_back();
    bo.Show(true);
    stage.Settle();
    EXPECT_EQ(Place(), (Point{960, 200}));
}

TEST_F(ServerDesktopTest, ComesBackAtOnceWhenItsScreenGoesWhileItStandsThere)
{
    stage.workAreas = {{0, 0, 1000, 600}, {1000, 0, 800, 600}};
    LoadShown();
    Drag({10, 10}, {1310, 210});
    stage.ChangeScreens({{0, 0, 1000, 600}});
    EXPECT_EQ(Place(), (Point{960, 200}));
}

TEST_F(ServerDesktopTest, StaysWhereTheUserPutItWhileItsMiddleIsOnAWorkArea)
{
    LoadShown();
    Drag({10, 10}, {810, 210});
    const int moves = stage.Window().moves;
    stage.ChangeScreens({{0, 0, 821, 600}});
    EXPECT_EQ(Place(), (Point{800, 200}));
    EXPECT_EQ(stage.Window().moves, moves);
    stage.ChangeScreens({{0, 0, 820, 600}});
    EXPECT_EQ(Place(), (Point{780, 200}));
}

TEST_F(ServerDesktopTest, GoesBackToItsPlaceWhenASmallerScreenHasGrownAgain)
{
    LoadShown();
    Drag({10, 10}, {1260, 210});
    EXPECT_EQ(Place(), (Point{1250, 200}));
    stage.ChangeScreens({{0, 0, 640, 480}});
    EXPECT_EQ(Place(), (Point{600, 200}));
    stage.ChangeScreens({{0, 0, 800, 600}});
    EXPECT_EQ(Place(), (Point{760, 200}));
    const Point home{1250, 200};
    stage.ChangeScreens({{0, 0, 1300, 720}});
    EXPECT_EQ(Place(), home);
}

TEST_F(ServerDesktopTest, AScreenThatComesBackTakesTheCharacterBackThatWasHiddenMeanwhile)
{
    stage.workAreas = {{0, 0, 1280, 720}, {1280, 0, 1024, 768}};
    AgentCharacter& bo = LoadShown();
    Drag({10, 10}, {1810, 310});
    EXPECT_EQ(Place(), (Point{1800, 300}));
    bo.Hide(true);
    stage.Settle();
    stage.ChangeScreens({{0, 0, 1280, 720}});
    bo.Show(true);
    stage.Settle();
    EXPECT_EQ(Place(), (Point{1240, 300}));
    stage.ChangeScreens({{0, 0, 1280, 720}, {1280, 0, 1024, 768}});
    EXPECT_EQ(Place(), (Point{1800, 300}));
}

TEST_F(ServerDesktopTest, WhereTheUserPutItOnTheSmallerScreenItStaysWhenThatGrows)
{
    LoadShown();
    Drag({10, 10}, {1210, 210});
    stage.ChangeScreens({{0, 0, 640, 480}});
    Drag({10, 10}, {110, 110});
    stage.ChangeScreens({{0, 0, 1280, 720}});
    EXPECT_EQ(Place(), (Point{100, 100}));
}

TEST_F(ServerDesktopTest, NeverMovedByTheUserItStaysNearTheLowerRightWhenTheScreenChanges)
{
    LoadShown();
    stage.ChangeScreens({{0, 0, 1270, 700}});
    EXPECT_EQ(Place(), (Point{1270 - 40 - 40, 700 - 60 - 16}));
}

TEST_F(ServerDesktopTest, AHiddenCharacterDoesNotMoveUntilItIsShown)
{
    AgentCharacter& bo = LoadShown();
    Drag({10, 10}, {810, 210});
    bo.Hide(true);
    stage.Settle();
    const int moves = stage.Window().moves;
    stage.ChangeScreens({{0, 0, 640, 480}});
    EXPECT_EQ(stage.Window().moves, moves);
    bo.Show(true);
    stage.Settle();
    EXPECT_EQ(Place(), (Point{600, 200}));
}

TEST_F(ServerDesktopTest, ShowBringsBackACharacterThatIsVisibleButLost)
{
    AgentCharacter& bo = LoadShown();
    stage.MoveWindow({3000, 200});
    bo.Show(false);
    stage.Settle();
    EXPECT_EQ(Place(), (Point{1240, 200}));
    stage.MoveWindow({-20, 300});
    bo.Show(false);
    stage.Settle();
    EXPECT_EQ(Place(), (Point{-20, 300}));
}

TEST_F(ServerDesktopTest, WhereTheWindowManagerPutsItIsItsPlace)
{
    AgentCharacter& bo = LoadShown();
    const int moves = stage.Window().moves;
    stage.MoveWindow({300, 200});
    EXPECT_EQ(stage.Window().moves, moves);
    bo.SetWidth(80);
    EXPECT_EQ(Place(), (Point{280, 200}));
    bo.Hide(true);
    bo.Show(true);
    stage.Settle();
    EXPECT_EQ(Place(), (Point{280, 200}));
}

TEST_F(ServerDesktopTest, TheBalloonFollowsWhenWindowManagerOrScreenMoveTheCharacter)
{
    AgentCharacter& bo = LoadShown();
    bo.Speak("Hello", "");
    stage.Settle();
    voice.Begin();
    ASSERT_TRUE(stage.BalloonVisible());
    const auto tail = [this] { return stage.View().tailTip; };
    stage.MoveWindow({300, 200});
    EXPECT_EQ(tail(), (Point{320, 200}));
    stage.ChangeScreens({{0, 0, 310, 720}});
    EXPECT_EQ(Place(), (Point{270, 200}));
    EXPECT_EQ(tail(), (Point{290, 200}));
    EXPECT_LE(stage.View().bubble.Right(), 310);
}

TEST_F(ServerDesktopTest, GrowingAtAnEdgeAndShrinkingAgainLeadsBackToWhereTheUserPutIt)
{
    AgentCharacter& bo = LoadShown();
    Drag({10, 10}, {1210, 210});
    ASSERT_EQ(Place(), (Point{1200, 200}));
    bo.SetWidth(400);
    EXPECT_EQ(Place(), (Point{880, 200}));
    bo.SetWidth(40);
    EXPECT_EQ(Place(), (Point{1200, 200}));
}

TEST_F(ServerDesktopTest, TheNextCharacterStandsWhereTheUserPutTheLastOnesFeet)
{
    AgentCharacter& bo = LoadShown("Bo");
    bo.SetWidth(80);
    bo.SetHeight(120);
    Drag({10, 10}, {310, 210});
    ASSERT_EQ(Place(), (Point{300, 200}));
    server.Unload("Bo");
    LoadShown("Al");
    EXPECT_EQ(Place(), (Point{320, 260}));
    server.Unload("Al");
    AgentCharacter& cy = LoadShown("Cy");
    EXPECT_EQ(Place(), (Point{320, 260}));
    cy.SetWidth(80);
    cy.SetHeight(120);
    EXPECT_EQ(Place(), (Point{300, 200}));
}

TEST_F(ServerDesktopTest, AFileThatCannotBeLoadedDoesNotLoseThePlace)
{
    LoadShown("Bo");
    Drag({10, 10}, {310, 210});
    server.Unload("Bo");
    const AcsDescription good = std::exchange(description, {});
    EXPECT_THROW(Load("Al"), RuntimeError);
    description = good;
    LoadShown("Cy");
    EXPECT_EQ(Place(), (Point{300, 200}));
}

TEST_F(ServerDesktopTest, ACharacterTheUserNeverMovedHandsNoPlaceOnAndAPlaceIsHandedOnOnce)
{
    LoadShown("Bo");
    const Point corner = Place();
    stage.ChangeScreens({{0, 0, 1000, 600}});
    server.Unload("Bo");
    stage.ChangeScreens({{0, 0, 1280, 720}});
    LoadShown("Al");
    EXPECT_EQ(Place(), corner);
    Drag({10, 10}, {310, 210});
    server.Unload("Al");
    LoadShown("Cy");
    LoadShown("Di");
    EXPECT_EQ(Place(), corner);
}

TEST_F(ServerDesktopTest, AMovedCharacterIsNotDrawnAgain)
{
    LoadShown();
    Pictures();
    Drag({10, 10}, {310, 210});
    EXPECT_EQ(Pictures(), Numbers{});
}

TEST_F(ServerDesktopTest, WidthAndHeightScaleSeparately)
{
    AgentCharacter& bo = LoadShown();
    bo.SetWidth(80);
    EXPECT_EQ(stage.Window().size, (Size{80, 60}));
    bo.SetHeight(30);
    EXPECT_EQ(stage.Window().size, (Size{80, 30}));
    EXPECT_EQ(bo.Width(), 80);
    EXPECT_EQ(bo.Height(), 30);
    EXPECT_EQ(bo.OriginalWidth(), 40);
    EXPECT_EQ(Place(), (Point{1280 - 80 - 40, 720 - 30 - 16}));
}

TEST_F(ServerDesktopTest, ASizeBelowOneMeansOne)
{
    AgentCharacter& bo = LoadShown();
    bo.SetWidth(0);
    bo.SetHeight(-5);
    EXPECT_EQ(bo.Width(), 1);
    EXPECT_EQ(bo.Height(), 1);
}

TEST_F(ServerDesktopTest, ASizeSetWhileHiddenHoldsWhenShown)
{
    AgentCharacter& bo = Load();
    bo.SetWidth(20);
    bo.SetHeight(30);
    bo.Show(false);
    stage.Settle();
    EXPECT_EQ(stage.Window().size, (Size{20, 30}));
}

TEST_F(ServerDesktopTest, ADraggedCharacterGrowsOnItsFeetAndStaysOnTheScreen)
{
    AgentCharacter& bo = LoadShown();
    Drag({10, 10}, {310, 210});
    bo.SetWidth(80);
    bo.SetHeight(120);
    EXPECT_EQ(Place(), (Point{280, 140}));
    Drag({10, 10}, {5, 10});
    bo.SetWidth(160);
    EXPECT_EQ(Place().x, 0);
}

TEST_F(ServerDesktopTest, TheSameSizeAgainChangesNothing)
{
    AgentCharacter& bo = LoadShown();
    Pictures();
    const int moves = stage.Window().moves;
    bo.SetWidth(40);
    bo.SetHeight(60);
    EXPECT_EQ(Pictures(), Numbers{});
    EXPECT_EQ(stage.Window().moves, moves);
}

TEST_F(ServerDesktopTest, ClicksAndDragsAreToldWithTheCharactersName)
{
    LoadShown();
    stage.Mouse(MouseAction::Press, 1, {10, 20});
    stage.Mouse(MouseAction::Release, 1, {10, 20}, 1);
    EXPECT_EQ(Log(), Lines{});
    stage.Settle();
    EXPECT_EQ(Log(), (Lines{"click Bo 1/1 10,20"}));
    stage.Mouse(MouseAction::DoubleClick, 1, {11, 20});
    stage.Mouse(MouseAction::Release, 1, {11, 20});
    stage.Settle();
    EXPECT_EQ(Log(), (Lines{"dblclick Bo 1/0 11,20"}));
    Drag({10, 10}, {310, 210});
    EXPECT_EQ(Log(), (Lines{"dragstart Bo 1/0 10,10", "dragcomplete Bo 1/0 10,10"}));
}

TEST_F(ServerDesktopTest, TheMenuShowsTheVisibleCommandsThenARuleAndHide)
{
    AgentCharacter& bo = LoadShown();
    bo.Commands().Add("mnuStop", "&Stop", "", true, true);
    bo.Commands().Add("mnuSecret", "Secret", "", true, false);
    bo.Commands().Add("mnuTime", "Tell me &Time", "", false, true);
    stage.Mouse(MouseAction::Press, 2, {10, 20});
    stage.Mouse(MouseAction::Release, 2, {10, 20});
    ASSERT_EQ(stage.menu.size(), 4u);
    EXPECT_EQ(stage.menu[0].name, "mnuStop");
    EXPECT_EQ(stage.menu[0].caption, "&Stop");
    EXPECT_TRUE(stage.menu[0].enabled);
    EXPECT_EQ(stage.menu[1].name, "mnuTime");
    EXPECT_FALSE(stage.menu[1].enabled);
    EXPECT_EQ(stage.menu[2].caption, "-");
    EXPECT_EQ(stage.menu[3].caption, "Hide");
    EXPECT_EQ(stage.menuAt, (Point{Place().x + 10, Place().y + 20}));
    stage.Settle();
    EXPECT_EQ(Log(), (Lines{"click Bo 2/0 10,20"}));
}

TEST_F(ServerDesktopTest, WithOnlyInvisibleCommandsTheMenuIsJustHideWithoutARule)
{
    AgentCharacter& bo = LoadShown();
    bo.Commands().Add("mnuSecret", "Secret", "", true, false);
    stage.Mouse(MouseAction::Press, 2, {10, 20});
    stage.Mouse(MouseAction::Release, 2, {10, 20});
    ASSERT_EQ(stage.menu.size(), 1u);
    EXPECT_EQ(stage.menu[0].caption, "Hide");
}

TEST_F(ServerDesktopTest, WithoutCommandsTheMenuIsJustHide)
{
    LoadShown();
    stage.Mouse(MouseAction::Press, 2, {10, 20});
    stage.Mouse(MouseAction::Release, 2, {10, 20});
    ASSERT_EQ(stage.menu.size(), 1u);
    EXPECT_EQ(stage.menu[0].caption, "Hide");
}

TEST_F(ServerDesktopTest, AChosenCommandIsToldByItsName)
{
    AgentCharacter& bo = LoadShown();
    bo.Commands().Add("mnuStop", "&Stop", "", true, true);
    stage.Mouse(MouseAction::Press, 2, {10, 20});
    stage.Mouse(MouseAction::Release, 2, {10, 20});
    stage.Settle();
    Log();
    stage.menuChosen("mnuStop");
    EXPECT_EQ(Log(), Lines{});
    stage.Settle();
    EXPECT_EQ(Log(), (Lines{"command mnuStop"}));
}

TEST_F(ServerDesktopTest, HideOfTheMenuEndsWhatIsGoingOnAndHidesForTheUser)
{
    AgentCharacter& bo = LoadShown();
    bo.Commands().Add("Hide", "A command of that name", "", true, true);
    Named("speak", bo.Speak("Hello", ""));
    Named("wave", bo.Play("Wave"));
    stage.Settle();
    voice.Begin();
    stage.Mouse(MouseAction::Press, 2, {10, 20});
    stage.Mouse(MouseAction::Release, 2, {10, 20});
    stage.Settle();
    Log();
    stage.menuChosen(stage.menu.back().name);
    EXPECT_EQ(voice.stops, 1);
    stage.Run(1000);
    EXPECT_EQ(Log(), (Lines{"end speak 3", "end wave 3", "hidden Bo 1"}));
    EXPECT_FALSE(bo.Visible());
}

TEST_F(ServerDesktopTest, ChoicesOfAMenuThatIsStillOpenWhenTheCharacterHasBeenHiddenDoNoHarm)
{
    AgentCharacter& bo = LoadShown();
    bo.Commands().Add("mnuTime", "Tell me &Time", "", true, true);
    stage.Mouse(MouseAction::Press, 2, {10, 20});
    stage.Mouse(MouseAction::Release, 2, {10, 20});
    bo.Hide(true);
    stage.Settle();
    Log();
    stage.menuChosen(stage.menu.back().name);
    stage.menuChosen("mnuTime");
    stage.Run(1000);
    EXPECT_EQ(Log(), (Lines{"command mnuTime"}));
    EXPECT_FALSE(bo.Visible());
}

TEST_F(ServerDesktopTest, WhatWasAskedForAfterAHideOutlivesTheStopAllOfItsHandler)
{
    AgentCharacter& bo = LoadShown();
    const auto note = server.Hidden;
    server.Hidden = [&](const std::string& character, VisibilityCause cause) {
        note(character, cause);
        bo.StopAll("");
    };
    Named("hide", bo.Hide(true));
    Named("show", bo.Show(false));
    Named("wave", bo.Play("Wave"));
    stage.Run(1000);
    EXPECT_EQ(Log(), (Lines{"start hide", "hidden Bo 3", "end hide 0", "start show", "shown Bo 4", "end show 0",
                            "start wave", "end wave 0"}));
}

TEST_F(ServerDesktopTest, WhatWasAskedForWhileTheUsersHideWentOnOutlivesTheStopAllOfItsHandler)
{
    AgentCharacter& bo = LoadShown();
    server.Hidden = [&](const std::string&, VisibilityCause) { bo.StopAll("Move, Play, Speak"); };
    stage.Mouse(MouseAction::Press, 2, {10, 20});
    stage.Mouse(MouseAction::Release, 2, {10, 20});
    stage.menuChosen(stage.menu.back().name);
    stage.Run(100);
    ASSERT_TRUE(bo.Visible());
    bo.Show(false);
    const auto speak = bo.Speak("Hello", "");
    const auto rest = bo.Play("RestPose");
    stage.Run(1000);
    EXPECT_TRUE(bo.Visible());
    ASSERT_EQ(StatusOf(speak), 4);
    voice.Begin();
    voice.End(true);
    stage.Run(1000);
    EXPECT_EQ(StatusOf(speak), 0);
    EXPECT_EQ(StatusOf(rest), 0);
}

TEST_F(ServerDesktopTest, TheStopAllOfAHiddenHandlerReachesWhatAnotherCharacterWasAskedForBeforeTheHide)
{
    AgentCharacter& bo = LoadShown("Bo");
    AgentCharacter& al = LoadShown("Al");
    server.Hidden = [&](const std::string&, VisibilityCause) { al.StopAll("Play"); };
    const auto before = al.Play("Wave");
    bo.Hide(true);
    const auto after = al.Play("Bow");
    stage.Run(1000);
    EXPECT_EQ(StatusOf(before), 3);
    EXPECT_EQ(StatusOf(after), 0);
}

TEST_F(ServerDesktopTest, OnceAHiddenHandlerHasReturnedOrFailedStopAllReachesEverythingAgain)
{
    AgentCharacter& bo = LoadShown();
    for (const bool fails : {false, true}) {
        server.Hidden = [&](const std::string&, VisibilityCause) {
            if (fails)
                throw Overflow();
        };
        bo.Hide(true);
        bo.Show(true);
        if (fails) {
            EXPECT_THROW(stage.Settle(), RuntimeError);
        }
        stage.Settle();
        const auto wave = bo.Play("Wave");
        const auto bow = bo.Play("Bow");
        stage.Run(100);
        bo.StopAll("");
        EXPECT_EQ(StatusOf(wave), 3) << fails;
        EXPECT_EQ(StatusOf(bow), 3) << fails;
    }
}

TEST_F(ServerDesktopTest, AMenuChoiceThatComesAfterUnloadingIsLost)
{
    AgentCharacter& bo = LoadShown();
    bo.Commands().Add("mnuStop", "&Stop", "", true, true);
    stage.Mouse(MouseAction::Press, 2, {10, 20});
    stage.Mouse(MouseAction::Release, 2, {10, 20});
    stage.Settle();
    server.Unload("Bo");
    Log();
    stage.menuChosen("mnuStop");
    stage.menuChosen(stage.menu.back().name);
    stage.Settle();
    EXPECT_EQ(Log(), Lines{});
}

TEST_F(ServerDesktopTest, AWindowHiddenInMidDragEndsTheDrag)
{
    AgentCharacter& bo = LoadShown();
    stage.Mouse(MouseAction::Press, 1, {10, 10});
    bo.Hide(true);
    bo.Show(true);
    stage.Settle();
    const Point place = Place();
    (*stage.Window().mouse)({MouseAction::Move, 0, 0, {10, 10}, {100, 100}});
    EXPECT_EQ(Place(), place);
}

} // namespace
} // namespace voxmate::agent::test
