// What was announced while nobody was at the computer.
#include "ExtrasTest.h"
#include "tests/fakes/ReminderSlot.h"

#include <chrono>

namespace voxmate
{

namespace
{

using std::chrono::minutes;
using std::chrono::seconds;

class MissedRemindersTest : public ExtrasTest
{
protected:
    const std::string name = "reminders.missed";
    MissedWindow& window = extras.MissedList();

    MissedRemindersTest()
    {
        Begin();
        presence.idle = minutes(3);
    }
    void Announce(const std::string& title, std::int16_t minute)
    {
        program.Scheduler.ShowReminder(false, minute, {title, 17, 3, 1975, 14, minute, "", false});
    }
    void Ticks(int count)
    {
        for (int tick = 0; tick < count; ++tick)
            TimerOf("tmrMissed").Fire();
    }
    Lines Shown() const
    {
        Lines shown;
        for (const ListItem& item : window.lstMissed.ListItems())
            shown.push_back(item.TextOf(0) + " " + item.TextOf(1) + " " + item.TextOf(2));
        return shown;
    }
};

TEST_F(MissedRemindersTest, TheListComesWithoutTheKeyboardWhenTheUserIsBackAndIsEmptyOnceItWasClosed)
{
    EXPECT_FALSE(Item("mnuMissed").Enabled);
    Announce("Tea", 5);
    Announce("Bank", 6);
    Ticks(60);
    EXPECT_FALSE(window.IsShown());
    presence.idle = seconds(1);
    Ticks(1);
    EXPECT_TRUE(window.IsShown());
    EXPECT_FALSE(window.ShowActivated);
    EXPECT_EQ(Shown(), (Lines{"17/03/1975 14:05 Tea", "17/03/1975 14:06 Bank"}));
    EXPECT_EQ(state.values[name], "17/03/1975\t14:05\tTea\n17/03/1975\t14:06\tBank\n");
    EXPECT_TRUE(Item("mnuMissed").Enabled);
    EXPECT_FALSE(TimerOf("tmrMissed").Enabled);
    window.cmdClose.UserClick();
    EXPECT_FALSE(window.IsShown());
    EXPECT_EQ(state.values[name], "");
    EXPECT_FALSE(Item("mnuMissed").Enabled);
    EXPECT_FALSE(TimerOf("tmrMissed").Enabled);
}

TEST_F(MissedRemindersTest, WhoIsBackWithinAMinuteHasNotMissedIt)
{
    Announce("Tea", 5);
    Ticks(59);
    EXPECT_TRUE(Item("mnuMissed").Enabled);
    presence.idle = seconds(0);
    Ticks(1);
    EXPECT_FALSE(window.IsShown());
    EXPECT_EQ(state.values[name], "");
    EXPECT_FALSE(Item("mnuMissed").Enabled);
    EXPECT_FALSE(TimerOf("tmrMissed").Enabled);
}

TEST_F(MissedRemindersTest, OnlyWhatWasAnnouncedLongerAgoStandsInTheList)
{
    Announce("Tea", 5);
    Ticks(30);
    Announce("Bank", 6);
    Ticks(30);
    presence.idle = seconds(0);
    Ticks(1);
    EXPECT_EQ(Shown(), Lines{"17/03/1975 14:05 Tea"});
}

TEST_F(MissedRemindersTest, WhoWasThereLessThanThreeMinutesBeforeHasNotMissedIt)
{
    presence.idle = seconds(179);
    Announce("Tea", 5);
    EXPECT_FALSE(Item("mnuMissed").Enabled);
    EXPECT_FALSE(TimerOf("tmrMissed").Enabled);
}

TEST_F(MissedRemindersTest, WithoutNewsOfInputTheUserCountsAsPresent)
{
    presence.idle.reset();
    Announce("Tea", 5);
    EXPECT_FALSE(Item("mnuMissed").Enabled);
}

TEST_F(MissedRemindersTest, TheSameReminderStandsInTheListOnce)
{
    Announce("Tea", 5);
    Ticks(60);
    program.Scheduler.RemAlertWindows.clear();
    program.Scheduler.RemNoticeWindows.clear();
    Announce("Tea", 5);
    presence.idle = seconds(0);
    Ticks(1);
    EXPECT_EQ(Shown(), Lines{"17/03/1975 14:05 Tea"});
}

TEST_F(MissedRemindersTest, WhatIsAnnouncedWhileTheListStandsThereIsAddedToIt)
{
    Announce("Tea", 5);
    Ticks(60);
    presence.idle = seconds(0);
    Ticks(1);
    presence.idle = minutes(4);
    Announce("Bank", 6);
    EXPECT_EQ(Shown(), (Lines{"17/03/1975 14:05 Tea", "17/03/1975 14:06 Bank"}));
    EXPECT_TRUE(TimerOf("tmrMissed").Enabled);
    Ticks(60);
    EXPECT_FALSE(TimerOf("tmrMissed").Enabled);
}

TEST_F(MissedRemindersTest, TheMenuShowsItWithTheKeyboard)
{
    Announce("Tea", 5);
    Item("mnuMissed").UserClick();
    EXPECT_TRUE(window.IsShown());
    EXPECT_TRUE(window.ShowActivated);
    EXPECT_EQ(Shown(), Lines{"17/03/1975 14:05 Tea"});
}

class KeptMissedTest : public ProgramTest
{
protected:
    fakes::FakeState state;
    fakes::FakePresence presence;
    frmMain form{program};
    ExtrasMenu menu{form};
};

TEST_F(KeptMissedTest, WhatWasNotLookedAtIsThereAfterTheNextStartAsSoonAsThatHasEnded)
{
    state.values["reminders.missed"] = "17/03/1975\t14:05\tTea\tat four\nno line of the list\n";
    presence.idle = std::chrono::seconds(1);
    MissedReminders missed(menu, program, form, presence, state);
    auto& timer = dynamic_cast<Timer&>(*form.Find("tmrMissed"));
    EXPECT_TRUE(dynamic_cast<Menu&>(*form.Find("mnuMissed")).Enabled);
    EXPECT_TRUE(timer.Enabled);
    timer.Fire();
    EXPECT_FALSE(missed.Window().IsShown());
    program.StartedUp = true;
    timer.Fire();
    EXPECT_TRUE(missed.Window().IsShown());
    ASSERT_EQ(missed.Window().lstMissed.ListItems().size(), 1U);
    EXPECT_EQ(missed.Window().lstMissed.ListItems()[0].TextOf(2), "Tea\tat four");
}

} // namespace

} // namespace voxmate
