// Alerts that wait while the user wants to be left alone.
#include "AlertsTest.h"

namespace voxmate
{

namespace
{

class WaitingAlertsTest : public AlertsTest
{
protected:
    /// Headings and titles of the alerts, by the lines of what they say.
    Lines Alerts()
    {
        Lines alerts;
        for (std::size_t number = 1; number < RemAlertWindows.size(); ++number) {
            if (AlertIsUp(number)) {
                const std::string text = Alert(number).lblMessage.Caption.get();
                const std::size_t begin = text.find("Reminder") - 4;
                alerts.push_back(text.substr(text.find_last_of('\n', begin) + 1));
            }
        }
        for (std::string& alert : alerts)
            alert = alert.substr(0, alert.find('\r')) + alert.substr(alert.find("Title: ") + 6);
        for (std::string& alert : alerts)
            alert = alert.substr(0, alert.find('\r'));
        return alerts;
    }
    void SwitchOn() { state.values["alerts.wait"] = "1"; }
    void Answer(bool isQuiet) { quiet.Answered(isQuiet); }
};

TEST_F(WaitingAlertsTest, UnlessItIsSwitchedOnNobodyIsAsked)
{
    BeginWithReminders();
    Tick();
    EXPECT_EQ(quiet.asked, 0);
    EXPECT_EQ(Alerts(), (Lines{"Missed Reminder Tea", "New Reminder Bank"}));
}

TEST_F(WaitingAlertsTest, TheyComeInTheirOrderWhenItEnds)
{
    SwitchOn();
    BeginWithReminders();
    Tick();
    EXPECT_EQ(quiet.asked, 1);
    Tick(); // the answer is still to come
    EXPECT_EQ(quiet.asked, 1);
    Answer(true);
    for (int tick = 0; tick < WaitingAlerts::TicksToAsk; ++tick)
        Tick();
    EXPECT_EQ(quiet.asked, 1);
    EXPECT_EQ(Alerts(), Lines{});
    fake.clock.now.minute = 6;
    Tick();
    EXPECT_EQ(quiet.asked, 2);
    Answer(false);
    EXPECT_EQ(Alerts(), Lines{});
    Tick();
    EXPECT_EQ(Alerts(), (Lines{"Missed Reminder Tea", "Missed Reminder Bank", "New Reminder Swim"}));
    EXPECT_EQ(quiet.asked, 2);
}

TEST_F(WaitingAlertsTest, NobodyIsAskedWhileNothingIsDueThatIsNotOnTheScreen)
{
    SwitchOn();
    fake.clock.now.minute = 3;
    BeginWithReminders();
    Tick();
    EXPECT_EQ(quiet.asked, 0);
    fake.clock.now.minute = 5;
    Tick();
    Answer(false);
    Tick();
    Tick();
    Tick();
    EXPECT_EQ(quiet.asked, 1);
    fake.clock.now.minute = 6;
    Tick();
    EXPECT_EQ(quiet.asked, 2);
    Answer(true);
    Tick();
    EXPECT_EQ(Alerts(), (Lines{"Missed Reminder Tea", "New Reminder Bank"}));
}

TEST_F(WaitingAlertsTest, NoticeWindowsWaitAsWell)
{
    SwitchOn();
    BeginWithReminders(RemindInNotice);
    Tick();
    Answer(true);
    Tick();
    EXPECT_TRUE(RemNoticeWindows.empty());
    OpenMenu();
    Item("mnuAlertsWait").UserClick();
    EXPECT_EQ(state.values["alerts.wait"], "");
    Tick();
    EXPECT_TRUE(Notice(1).Visible());
    EXPECT_TRUE(Notice(2).Visible());
    Tick();
    EXPECT_EQ(quiet.asked, 1);
}

TEST_F(WaitingAlertsTest, WhatWaitsIsStillPendingInTheFile)
{
    SwitchOn();
    BeginWithReminders();
    Tick();
    Answer(true);
    LoadReminders(false, 0);
    EXPECT_EQ(Stored(), (Lines{"14:04 N", "14:05 N", "14:06 N"}));
    EXPECT_TRUE(form.RemTimer.Enabled);
}

TEST_F(WaitingAlertsTest, WhatWaitedWhileNobodyWasThereStandsInTheListOfMissedReminders)
{
    SwitchOn();
    BeginWithReminders();
    presence.idle = std::chrono::minutes(5);
    Tick();
    Answer(true);
    EXPECT_EQ(state.values["reminders.missed"], "");
    for (int tick = 0; tick <= WaitingAlerts::TicksToAsk; ++tick)
        Tick();
    Answer(false);
    Tick();
    EXPECT_EQ(state.values["reminders.missed"], "17/03/1975\t14:04\tTea\n17/03/1975\t14:05\tBank\n");
}

class WaitingTimeTest : public WaitingAlertsTest
{
protected:
    WaitingTimeTest()
    {
        Begin();
        Settings.SpeakTimeInterval = 1;
        SpeakTimeCounter = 0;
    }
    void Seconds(int count)
    {
        for (int second = 0; second < count; ++second)
            form.SysTime.Fire();
    }
    std::ptrdiff_t Spoken() const
    {
        return std::ranges::count_if(fake.log, [](const std::string& call) { return call.starts_with("Speak "); });
    }
};

TEST_F(WaitingTimeTest, TheTimeIsToldUnlessItIsQuiet)
{
    Seconds(60);
    EXPECT_EQ(Spoken(), 1);
    EXPECT_EQ(quiet.asked, 0);
    SwitchOn();
    Seconds(59);
    EXPECT_EQ(quiet.asked, 1);
    Answer(true);
    Seconds(1);
    EXPECT_EQ(Spoken(), 1);
    Seconds(59);
    EXPECT_EQ(quiet.asked, 2);
    Answer(false);
    Seconds(1);
    EXPECT_EQ(Spoken(), 2);
    // Who does not answer in time does not hold it up.
    Seconds(59);
    EXPECT_EQ(quiet.asked, 3);
    Seconds(1);
    EXPECT_EQ(Spoken(), 3);
}

} // namespace

} // namespace voxmate
