// The desktop's notifications beside alerts and notice windows, and in place of alerts.
#include "AlertsTest.h"

namespace voxmate
{

namespace
{

using End = DesktopNotifications::End;

const std::string Tea = "Notify 1 Tea|Missed Reminder: 17/03/1975 14:04\nGreen & hot [done: Done] [snooze: Snooze]";
const std::string Bank = "Notify 2 Bank|New Reminder: 17/03/1975 14:05 [done: Done] [snooze: Snooze]";

class AlertNotificationsTest : public AlertsTest
{
protected:
    void SwitchOn() { state.values["alerts.notifications"] = "1"; }
};

TEST_F(AlertNotificationsTest, UnlessTheyAreSwitchedOnThereAreNone)
{
    BeginWithReminders();
    EXPECT_FALSE(notifications.begun);
    Tick();
    EXPECT_TRUE(AlertIsUp(1));
    EXPECT_TRUE(AlertIsUp(2));
    EXPECT_EQ(Notifications(), Lines{});
}

TEST_F(AlertNotificationsTest, OneStandsBesideEachAlertAndGoesWithIt)
{
    SwitchOn();
    BeginWithReminders();
    Tick();
    EXPECT_TRUE(AlertIsUp(1));
    EXPECT_EQ(Notifications(), (Lines{Tea, Bank}));
    Tick();
    EXPECT_EQ(Notifications(), Lines{});
    Alert(1).lblMessage.Click();
    LetGo(1);
    EXPECT_EQ(Notifications(), Lines{"Close notification 1"});
    EXPECT_EQ(Stored(), (Lines{"14:04 Y", "14:05 N", "14:06 N"}));
    EXPECT_TRUE(AlertIsUp(2));
}

TEST_F(AlertNotificationsTest, DoneLetsTheAlertLeaveAndMarksItsReminder)
{
    SwitchOn();
    BeginWithReminders();
    Tick();
    Notifications();
    notifications.Press(2, "done");
    LetGo(2);
    EXPECT_EQ(Stored(), (Lines{"14:04 N", "14:05 Y", "14:06 N"}));
    EXPECT_TRUE(AlertIsUp(1));
    EXPECT_EQ(Notifications(), Lines{});
}

TEST_F(AlertNotificationsTest, SnoozePutsOffByTenMinutesAndLetsTheAlertLeaveWithoutAnAnswer)
{
    SwitchOn();
    BeginWithReminders();
    // The same reminder twice: what is answered is one of them.
    StoreReminder(2, {"Tea", 17, 3, 1975, 14, 4, "Green & hot", false});
    Tick();
    Notifications();
    notifications.Press(1, "snooze");
    EXPECT_EQ(Stored(), (Lines{"14:15 N", "14:04 N", "14:06 N"}));
    LetGo(1);
    EXPECT_EQ(Stored(), (Lines{"14:15 N", "14:04 N", "14:06 N"}));
    EXPECT_TRUE(AlertIsUp(2));
    fake.clock.now.minute = 15;
    Tick();
    EXPECT_EQ(Notifications().front(),
              "Notify 1 Tea|New Reminder: 17/03/1975 14:15\nGreen & hot [done: Done] [snooze: Snooze]");
}

TEST_F(AlertNotificationsTest, TheNoticeWindowsOwnButtonsArePressed)
{
    SwitchOn();
    BeginWithReminders(RemindInNotice);
    Tick();
    EXPECT_EQ(Notifications(), (Lines{Tea, Bank}));
    Notice(2).txtSnooze.Text = "25";
    notifications.Press(1, "done");
    notifications.Press(2, "snooze");
    EXPECT_FALSE(Notice(1).Visible());
    EXPECT_FALSE(Notice(2).Visible());
    EXPECT_EQ(Stored(), (Lines{"14:04 Y", "14:30 N", "14:06 N"}));
}

TEST_F(AlertNotificationsTest, ANoticeThatIsAnsweredTakesItsNotificationWithIt)
{
    SwitchOn();
    BeginWithReminders(RemindInNotice);
    Tick();
    Notifications();
    Notice(1).cmdSnooze.UserClick();
    EXPECT_EQ(Notifications(), Lines{"Close notification 1"});
    Notice(2).cmdOK.UserClick();
    EXPECT_EQ(Notifications(), Lines{"Close notification 2"});
}

TEST_F(AlertNotificationsTest, ANoticeThatWasClosedWithoutAnAnswerCanStillBeAnsweredThere)
{
    SwitchOn();
    BeginWithReminders(RemindInNotice);
    Tick();
    Notice(1).UserClose();
    notifications.Press(1, "snooze");
    EXPECT_EQ(Stored(), (Lines{"14:15 N", "14:05 N", "14:06 N"}));
    // It has been answered.
    notifications.Press(1, "done");
    EXPECT_EQ(Stored(), (Lines{"14:15 N", "14:05 N", "14:06 N"}));
}

TEST_F(AlertNotificationsTest, ClosingANotificationBesideAnAlertAnswersNothing)
{
    SwitchOn();
    BeginWithReminders();
    Tick();
    notifications.EndOf(1, End::Dismissed);
    notifications.EndOf(2, End::Lost);
    EXPECT_TRUE(AlertIsUp(1));
    EXPECT_TRUE(AlertIsUp(2));
    EXPECT_EQ(Stored(), (Lines{"14:04 N", "14:05 N", "14:06 N"}));
}

TEST_F(AlertNotificationsTest, APressThatIsNeitherDoneNorSnoozeAnswersNothing)
{
    SwitchOn();
    BeginWithReminders();
    Tick();
    notifications.Press(1, "default");
    EXPECT_TRUE(AlertIsUp(1));
    EXPECT_EQ(Stored(), (Lines{"14:04 N", "14:05 N", "14:06 N"}));
}

TEST_F(AlertNotificationsTest, AServerThatComesLaterShowsWhatWaits)
{
    SwitchOn();
    notifications.serves = false;
    BeginWithReminders();
    Tick();
    Alert(1).lblMessage.Click();
    LetGo(1);
    EXPECT_EQ(Notifications(), Lines{});
    notifications.Become(true);
    EXPECT_EQ(Notifications(), Lines{Bank});
    notifications.Become(false);
    EXPECT_TRUE(AlertIsUp(2));
    notifications.Become(true);
    EXPECT_EQ(Notifications(), Lines{Bank});
}

TEST_F(AlertNotificationsTest, TheSwitchHoldsAtOnceAndTheItemTellsWhereThereAreNone)
{
    BeginWithReminders();
    notifications.serves = false;
    Tick();
    Menu& item = Item("mnuAlertNotifications");
    OpenMenu();
    EXPECT_FALSE(item.Checked.get());
    EXPECT_EQ(item.Caption.get(), "Desktop &Notification with Each");
    item.UserClick();
    EXPECT_TRUE(notifications.begun);
    EXPECT_EQ(state.values["alerts.notifications"], "1");
    OpenMenu();
    EXPECT_TRUE(item.Checked.get());
    EXPECT_EQ(item.Caption.get(), "Desktop &Notification with Each (none on this desktop)");
    notifications.Become(true);
    EXPECT_EQ(Notifications(), (Lines{Tea, Bank}));
    OpenMenu();
    EXPECT_EQ(item.Caption.get(), "Desktop &Notification with Each");
    item.UserClick();
    EXPECT_EQ(Notifications(), (Lines{"Close notification 1", "Close notification 2"}));
    item.UserClick();
    EXPECT_EQ(Notifications(), (Lines{Tea, Bank}));
}

class StandInTest : public AlertNotificationsTest
{
protected:
    StandInTest() { places.known = false; }
    Timer& Seconds() { return TimerOf("tmrStandIns"); }
    std::ptrdiff_t AlertWindows() const { return std::ranges::count(fake.log, "Window frmAlertWindow shown"); }
};

TEST_F(StandInTest, WhereWindowsCannotBePlacedTheNotificationIsTheAlert)
{
    BeginWithReminders();
    Tick();
    EXPECT_EQ(AlertWindows(), 0);
    EXPECT_EQ(Notifications(), (Lines{Tea, Bank}));
    EXPECT_TRUE(AlertIsUp(1));
    EXPECT_FALSE(Seconds().Enabled);
    Tick();
    EXPECT_EQ(Notifications(), Lines{});
    notifications.Press(1, "done");
    notifications.Press(2, "snooze");
    EXPECT_EQ(Stored(), (Lines{"14:04 Y", "14:15 N", "14:06 N"}));
    EXPECT_FALSE(AlertIsUp(1));
    EXPECT_FALSE(AlertIsUp(2));
}

TEST_F(StandInTest, AServerThatGoesBeforeItHasShownAnAlertLeavesItToAWindow)
{
    BeginWithReminders();
    Tick();
    notifications.shown.clear();
    notifications.Become(false);
    EXPECT_EQ(AlertWindows(), 2);
    EXPECT_TRUE(AlertIsUp(1));
    EXPECT_EQ(Stored(), (Lines{"14:04 N", "14:05 N", "14:06 N"}));
}

TEST_F(StandInTest, ClosingItIsTheClickThatClosesAnAlert)
{
    BeginWithReminders();
    Tick();
    notifications.EndOf(1, End::Dismissed);
    EXPECT_EQ(Stored(), (Lines{"14:04 Y", "14:05 N", "14:06 N"}));
    EXPECT_FALSE(AlertIsUp(1));
}

TEST_F(StandInTest, OneThatClosesByItselfDoesSoAfterItsSeconds)
{
    BeginWithReminders();
    Settings.RemAlertClose = 1;
    Settings.RemAlertCloseTime = 4;
    Tick();
    Notifications();
    for (int second = 0; second < 3; ++second)
        Seconds().Fire();
    EXPECT_TRUE(AlertIsUp(1));
    Seconds().Fire();
    EXPECT_FALSE(AlertIsUp(1));
    EXPECT_FALSE(AlertIsUp(2));
    EXPECT_EQ(Notifications(), (Lines{"Close notification 1", "Close notification 2"}));
    EXPECT_EQ(Stored(), (Lines{"14:04 Y", "14:05 Y", "14:06 N"}));
    EXPECT_FALSE(Seconds().Enabled);
}

TEST_F(StandInTest, WhatTheDesktopLosesOrCannotShowComesAsAWindow)
{
    BeginWithReminders();
    Tick();
    Notifications();
    notifications.EndOf(1, End::Lost);
    EXPECT_EQ(AlertWindows(), 1);
    EXPECT_TRUE(AlertIsUp(1));
    EXPECT_EQ(Stored(), (Lines{"14:04 N", "14:05 N", "14:06 N"}));
    fake.log.clear();
    notifications.Become(false);
    EXPECT_EQ(AlertWindows(), 1);
    fake.clock.now.minute = 6;
    fake.log.clear();
    Tick();
    EXPECT_EQ(AlertWindows(), 1);
    EXPECT_EQ(Notifications(), Lines{});
}

} // namespace

} // namespace voxmate
