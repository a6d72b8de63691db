// What tests of alerts start from: two reminders are due, a third one is yet to come.
#pragma once

#include "ExtrasTest.h"
#include "forms/frmAlertWindow.h"
#include "forms/frmShowRem.h"

#include <algorithm>
#include <string>

namespace voxmate
{

/// The clock stands at 14:05 on 17 March 1975. Nothing is spoken.
class AlertsTest : public ExtrasTest
{
protected:
    AlertsTest()
    {
        for (const char* speaks : {"ReminderSentenceSpeak", "ReminderTitleSpeak", "ReminderDateSpeak",
                                   "ReminderTimeSpeak", "ReminderDescSpeak", "ReminderNextSchSpeak"})
            fake.store.SetDword(speaks, 0);
    }
    /// Starts the program with alerts, or with `settings`.
    void BeginWithReminders(std::int16_t type = RemindInAlert)
    {
        Begin();
        program.StartedUp = true;
        Settings.ReminderType = type;
        form.CheckReminderMenus(true, false);
        for (const Reminder& reminder :
             {Reminder{"Tea", 17, 3, 1975, 14, 4, "Green & hot", false},
              Reminder{"Bank", 17, 3, 1975, 14, 5, "", false}, Reminder{"Swim", 17, 3, 1975, 14, 6, "Pool", false}}) {
            AppendReminder(reminder);
            ++RemCount;
        }
        LoadReminders(false, 0);
        fake.log.clear();
    }
    /// Lets the timer of the reminders tick once.
    void Tick() { form.RemTimer.Fire(); }
    frmAlertWindow& Alert(std::size_t number) { return dynamic_cast<frmAlertWindow&>(*RemAlertWindows.at(number)); }
    frmShowRem& Notice(std::size_t number) { return dynamic_cast<frmShowRem&>(*RemNoticeWindows.at(number)); }
    /// Lets an alert that is leaving go until it is gone.
    void LetGo(std::size_t number)
    {
        for (int tick = 0; Alert(number).IsLoaded() && tick < 10'000; ++tick)
            Alert(number).Timer1.Fire();
        EXPECT_FALSE(Alert(number).Visible());
    }
    bool AlertIsUp(std::size_t number) const
    {
        return number < RemAlertWindows.size() && RemAlertWindows[number] && RemAlertWindows[number]->Visible();
    }
    /// Each reminder as "14:05 N".
    Lines Stored() const
    {
        Lines stored;
        for (std::size_t at = 1; at <= static_cast<std::size_t>(RemCount); ++at)
            stored.push_back(std::to_string(RemHours[at]) + ":" + (RemMinutes[at] < 10 ? "0" : "") +
                             std::to_string(RemMinutes[at]) + " " + RemDone[at]);
        return stored;
    }
    /// What was shown as notifications, and taken away, since the last call.
    Lines Notifications()
    {
        Lines calls;
        std::ranges::copy_if(fake.log, std::back_inserter(calls), [](const std::string& call) {
            return call.starts_with("Notify ") || call.starts_with("Close notification ");
        });
        fake.log.clear();
        return calls;
    }
};

} // namespace voxmate
