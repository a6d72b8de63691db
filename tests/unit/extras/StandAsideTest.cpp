#include "tests/unit/extras/ExtrasTest.h"

namespace voxmate
{
namespace
{

// At home the character's figure covers 1050 to 1150 by 520 to 700.
const Rect kUnder{1000, 600, 60, 20};
const Rect kElsewhere{100, 100, 300, 200};

class StandAsideTest : public ExtrasTest
{
protected:
    StandAsideTest()
    {
        Begin();
        fake.windows.boxes.clear();
    }
    fakes::FakeCharacter& Character() { return dynamic_cast<fakes::FakeCharacter&>(*program.Character); }
    static WindowPlace Window(std::uintptr_t id, std::vector<Rect> controls, bool active = true)
    {
        return {id, active, false, std::move(controls)};
    }
    static WindowPlace Alert(std::uintptr_t id, const Rect& place) { return {id, false, true, {place}}; }
    Timer& Ticker() { return TimerOf("tmrAside"); }
    void Ticks(int count)
    {
        for (int tick = 0; tick < count; ++tick)
            Ticker().Fire();
    }
    /// Ticks until there is nothing to wait for.
    void Settle()
    {
        for (int tick = 0; tick < 100 && Ticker().Enabled; ++tick)
            Ticker().Fire();
        EXPECT_FALSE(Ticker().Enabled);
    }
    /// What the character was asked for since the last call.
    Lines Asked() { return std::exchange(fake.log, {}); }
};

TEST_F(StandAsideTest, GoesAsideWhenAWindowOpensBeneathIt)
{
    places.Become({Window(1, {kUnder})});
    Ticks(StandAside::LooksToSettle - 1);
    EXPECT_EQ(Asked(), (Lines{})) << "the window manager may still move the window";
    Settle();
    EXPECT_EQ(Asked(), (Lines{"StandAside 1018,500"}));
}

TEST_F(StandAsideTest, StaysWhereAWindowHasNothingBeneathIt)
{
    places.Become({Window(1, {kElsewhere, {1160, 500, 100, 100}})});
    Settle();
    EXPECT_EQ(Asked(), (Lines{}));
}

TEST_F(StandAsideTest, GoesAsideWhenAWindowIsActivated)
{
    places.Become({Window(1, {kElsewhere}), Window(2, {kElsewhere}, false)});
    Settle();
    // It has been moved beneath the character.
    places.Become({Window(1, {kElsewhere}), Window(2, {kUnder}, false)});
    Settle();
    EXPECT_EQ(Asked(), (Lines{}));
    places.Become({Window(1, {kElsewhere}, false), Window(2, {kUnder})});
    Settle();
    EXPECT_EQ(Asked(), (Lines{"StandAside 1018,500"}));
}

TEST_F(StandAsideTest, CoversNoControlOfAnotherWindowEither)
{
    places.Become({Window(1, {kUnder}), Window(2, {{1160, 0, 120, 720}}, false)});
    Settle();
    EXPECT_EQ(Asked(), (Lines{"StandAside 1000,392"})) << "above the control";
}

TEST_F(StandAsideTest, StaysWhereThereIsNoRoom)
{
    places.Become({Window(1, {{0, 0, 1280, 720}})});
    Settle();
    EXPECT_EQ(Asked(), (Lines{}));
}

TEST_F(StandAsideTest, ComesBackAMomentAfterTheWindowHasClosed)
{
    places.Become({Window(1, {kUnder})});
    Settle();
    Asked();
    places.Become({});
    Ticks(StandAside::LooksToReturn - 1);
    EXPECT_EQ(Asked(), (Lines{}));
    Settle();
    EXPECT_EQ(Asked(), (Lines{"StandAtHome"}));
}

TEST_F(StandAsideTest, AWindowInPlaceOfTheOneThatClosedKeepsItAside)
{
    places.Become({Window(1, {kUnder})});
    Settle();
    Asked();
    places.Become({});
    Ticks(StandAside::LooksToReturn / 2);
    places.Become({Window(2, {kUnder})});
    Settle();
    EXPECT_EQ(Asked(), (Lines{}));
}

TEST_F(StandAsideTest, ComesBackWhenTheWindowIsLeftAndCoversNothingAnyMore)
{
    places.Become({Window(1, {kUnder})});
    Settle();
    Asked();
    places.Become({Window(1, {kUnder}, false)});
    Settle();
    EXPECT_EQ(Asked(), (Lines{})) << "left, but still there";
    places.Become({Window(1, {kElsewhere})});
    Settle();
    EXPECT_EQ(Asked(), (Lines{})) << "moved away, but in use";
    places.Become({Window(1, {kElsewhere}, false)});
    Settle();
    EXPECT_EQ(Asked(), (Lines{"StandAtHome"}));
}

TEST_F(StandAsideTest, StaysWhereTheUserHasPutIt)
{
    places.Become({Window(1, {kUnder})});
    Settle();
    Asked();
    Character().Drag({980, 480});
    places.Become({});
    Settle();
    EXPECT_EQ(Asked(), (Lines{}));
}

TEST_F(StandAsideTest, StaysWhereTheUserPutsItOverAWindowThatHasJustOpened)
{
    places.Become({Window(1, {{900, 300, 100, 100}})});
    Ticks(1);
    Character().Drag({820, 280});
    Settle();
    EXPECT_EQ(Asked(), (Lines{}));
}

TEST_F(StandAsideTest, WaitsUntilItCanGo)
{
    Character().free = false;
    places.Become({Window(1, {kUnder})});
    Ticks(StandAside::LooksToSettle + 1);
    Character().free = true;
    Settle();
    EXPECT_EQ(Asked(), (Lines{"StandAside 1018,500"}));
    places.Become({});
    Character().free = false;
    Ticks(10 * StandAside::LooksToReturn);
    EXPECT_TRUE(Ticker().Enabled);
    Character().free = true;
    Settle();
    EXPECT_EQ(Asked(), (Lines{"StandAtHome"}));
}

TEST_F(StandAsideTest, MakesRoomForAnAlertAtOnceWhileItStillSlidesUp)
{
    places.Become({Alert(7, {1120, 715, 160, 133})});
    EXPECT_EQ(Asked(), (Lines{"StandAside 962,500 at once"})) << "out of the column in which alerts pile up";
    places.Become({Alert(7, {1120, 587, 160, 133})});
    Settle();
    EXPECT_EQ(Asked(), (Lines{}));
    places.Become({});
    Settle();
    EXPECT_EQ(Asked(), (Lines{"StandAtHome"}));
}

TEST_F(StandAsideTest, AnAlertThatDoesNotReachItLeavesItInPeace)
{
    Character().Drag({100, 100});
    places.Become({Alert(7, {1120, 587, 160, 133})});
    Settle();
    EXPECT_EQ(Asked(), (Lines{}));
}

TEST_F(StandAsideTest, MakesRoomForAnAlertEvenInItsColumnWhereThereIsNoOther)
{
    places.Become({Window(1, {{0, 0, 1060, 720}}, false)});
    Settle();
    Asked();
    Character().Drag({1079, 500});
    places.Become({Window(1, {{0, 0, 1060, 720}}, false), Alert(7, {1120, 587, 160, 133})});
    Settle();
    EXPECT_EQ(Asked(), (Lines{"StandAside 1079,379 at once"})) << "above the alert";
}

TEST_F(StandAsideTest, KeepsItsBalloonOffTheControlsToo)
{
    // Straight to the right of the control there is another one above, which the balloon would cover.
    const std::vector<Rect> controls{kUnder, {1150, 400, 100, 60}};
    Character().balloon = Size{120, 80};
    places.Become({Window(1, controls)});
    Settle();
    EXPECT_EQ(Asked(), (Lines{"StandAside 982,392"}));
}

TEST_F(StandAsideTest, PutsTheBalloonOverAControlWhereThereIsNoOtherPlace)
{
    Character().balloon = Size{1280, 80};
    places.Become({Window(1, {kUnder, {0, 0, 1280, 400}})});
    Settle();
    EXPECT_EQ(Asked(), (Lines{"StandAside 1018,500"}));
}

TEST_F(StandAsideTest, GoesAsideWhenTheWindowTurnsToAnotherTab)
{
    WindowPlace window = Window(1, {kElsewhere});
    places.Become({window});
    Settle();
    window.Controls = {kUnder};
    window.Page = 1;
    places.Become({window});
    Settle();
    EXPECT_EQ(Asked(), (Lines{"StandAside 1018,500"}));
}

TEST_F(StandAsideTest, MakesRoomForAnAlertOverAWindowThatFillsTheScreen)
{
    places.Become({Window(1, {{0, 0, 1280, 720}}), Alert(7, {1120, 587, 160, 133})});
    Settle();
    EXPECT_EQ(Asked(), (Lines{"StandAside 962,500 at once"}));
}

TEST_F(StandAsideTest, IsSwitchedOffAndOnInTheMenu)
{
    OpenMenu();
    EXPECT_TRUE(Item("mnuStandAside").Checked);
    EXPECT_EQ(Item("mnuStandAside").Caption.get(), "&Character Stands Aside");
    places.Become({Window(1, {kUnder})});
    Settle();
    Asked();
    Item("mnuStandAside").UserClick();
    EXPECT_FALSE(Item("mnuStandAside").Checked);
    EXPECT_EQ(state.values["character.stays"], "1");
    Settle();
    EXPECT_EQ(Asked(), (Lines{"StandAtHome"}));
    places.Become({Window(2, {kUnder})});
    Settle();
    EXPECT_EQ(Asked(), (Lines{}));
    Item("mnuStandAside").UserClick();
    EXPECT_EQ(state.values["character.stays"], "0");
    places.Become({Window(3, {kUnder})});
    Settle();
    EXPECT_EQ(Asked(), (Lines{"StandAside 1018,500"}));
}

TEST_F(StandAsideTest, IsGreyWhereTheDesktopTellsNoPlaces)
{
    places.known = false;
    OpenMenu();
    EXPECT_FALSE(Item("mnuStandAside").Enabled);
    EXPECT_FALSE(Item("mnuStandAside").Checked);
    EXPECT_EQ(Item("mnuStandAside").Caption.get(), "&Character Stands Aside (not on this desktop)");
}

TEST_F(StandAsideTest, DoesWithoutACharacter)
{
    AgentCharacter* const character = std::exchange(program.Character, nullptr);
    places.Become({Window(1, {kUnder})});
    Settle();
    EXPECT_EQ(Asked(), (Lines{}));
    program.Character = character;
}

} // namespace
} // namespace voxmate
