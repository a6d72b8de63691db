// How much a character moves that has nothing to do.
#include "ExtrasTest.h"

#include <chrono>

namespace voxmate
{

namespace
{

using std::chrono::seconds;
using Lives = std::vector<IdleLife>;

class LivelyCharacterTest : public ExtrasTest
{
protected:
    Lives& lives = fake.agent.lives;

    void Looks(int count)
    {
        for (int look = 0; look < count; ++look)
            TimerOf("tmrLively").Fire();
    }
    /// Time passes without an input until the next look.
    void Idle(int time)
    {
        presence.idle = seconds(time);
        Looks(1);
    }
};

TEST_F(LivelyCharacterTest, AMinuteAfterTheLastInputItBreathesSlowlyThenStandsStillAndWakesWithTheNext)
{
    EXPECT_EQ(lives, (Lives{IdleLife::Full}));
    for (const int time : {0, 59, 60, 74, 75, 4000, 1, 2})
        Idle(time);
    EXPECT_EQ(lives, (Lives{IdleLife::Full, IdleLife::Slow, IdleLife::None, IdleLife::Full}));
    EXPECT_EQ(TimerOf("tmrLively").Interval, 2000);
}

TEST_F(LivelyCharacterTest, WhereTheDesktopDoesNotTellTheInputToTheProgramCounts)
{
    presence.idle.reset();
    presence.here = seconds(30);
    Looks(1);
    presence.here = seconds(75);
    Looks(1);
    presence.here = seconds(0);
    Looks(1);
    EXPECT_EQ(lives, (Lives{IdleLife::Full, IdleLife::None, IdleLife::Full}));
}

TEST_F(LivelyCharacterTest, OnBatteryOnlyItsPlaysAreLeft)
{
    power.onBattery = true;
    Looks(1);
    EXPECT_EQ(lives, (Lives{IdleLife::Full, IdleLife::PlaysOnly}));
    power.onBattery = false;
    Looks(LivelyCharacter::LooksToAsk - 1);
    EXPECT_EQ(lives.size(), 2u);
    Looks(1);
    EXPECT_EQ(lives.back(), IdleLife::Full);
}

TEST_F(LivelyCharacterTest, TheSameWhileTheUserWantsToBeLeftAlone)
{
    Looks(1);
    EXPECT_EQ(characterQuiet.asked, 1);
    EXPECT_EQ(quiet.asked, 0);
    characterQuiet.Answered(true);
    EXPECT_EQ(lives.back(), IdleLife::PlaysOnly);
    Idle(80);
    EXPECT_EQ(lives.back(), IdleLife::None);
    Idle(0);
    EXPECT_EQ(lives.back(), IdleLife::PlaysOnly);
    Looks(LivelyCharacter::LooksToAsk);
    EXPECT_EQ(characterQuiet.asked, 2);
    characterQuiet.Answered(false);
    EXPECT_EQ(lives.back(), IdleLife::Full);
}

TEST_F(LivelyCharacterTest, NothingIsAskedTwiceBeforeTheAnswerOrWhileNobodyIsThere)
{
    Looks(3 * LivelyCharacter::LooksToAsk);
    EXPECT_EQ(characterQuiet.asked, 1);
    characterQuiet.Answered(false);
    presence.idle = seconds(80);
    Looks(3 * LivelyCharacter::LooksToAsk);
    EXPECT_EQ(characterQuiet.asked, 1);
}

TEST_F(LivelyCharacterTest, SwitchedOffOnlyItsPlaysAreLeftAndThatIsKept)
{
    Begin();
    OpenMenu();
    EXPECT_TRUE(Item("mnuLively").Checked);
    Item("mnuLively").UserClick();
    EXPECT_FALSE(Item("mnuLively").Checked);
    EXPECT_EQ(state.values["character.still"], "1");
    EXPECT_EQ(lives.back(), IdleLife::PlaysOnly);
    Idle(80);
    EXPECT_EQ(lives.back(), IdleLife::PlaysOnly); // as in a program that knows nothing of this
    EXPECT_EQ(characterQuiet.asked, 0);
    Idle(0);
    Item("mnuLively").UserClick();
    EXPECT_EQ(state.values["character.still"], "");
    EXPECT_EQ(lives.back(), IdleLife::Full);
}

} // namespace
} // namespace voxmate
