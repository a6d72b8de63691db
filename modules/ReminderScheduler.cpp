// The scheduler: announces what is due, and takes the answer.
#include "base/Text.h"
#include "modules/Declarations.h"
#include "modules/Format.h"
#include "modules/Functions.h"
#include "modules/ReminderList.h"
#include "modules/ReminderRecord.h"
#include "modules/Reminders.h"

#include <algorithm>
#include <array>
#include <optional>
#include <tuple>

namespace voxmate
{

namespace
{

// 0x00BBGGRR of yellow, blue, red and green.
constexpr std::array<std::int32_t, 4> alertColors{0xC0FFFF, 0xFFC3A0, 0xC8C8FF, 0xC8FFC8};

struct Schedule {
    DateTime at;
    bool isDate;
};

Schedule ScheduleOf(const std::string& day, const std::string& month, const std::string& year, const std::string& hour,
                    const std::string& minute)
{
    const auto number = [](const std::string& text) { return WholeNumber(text).value_or(0); };
    const DateTime at{number(year), number(month), number(day), number(hour), number(minute), 0};
    return {at, IsRealDate(at.day, at.month, at.year)};
}

// A snooze across midnight can give a day that no calendar has, and that has no name.
std::string SpokenDate(const DateTime& date)
{
    return IsRealDate(date.day, date.month, date.year) ? FormatSpokenDate(Settings.DateFormat, date) : "";
}

std::string SpokenTime(const DateTime& time)
{
    return Format(time, Settings.TimeIn24Hour == 1 ? "HH:MM" : "h:nn AM/PM");
}

// Makes room for the list's windows and this one's. A window stays where it is when its array grows.
template <class Window>
void Grow(std::vector<std::unique_ptr<Window>>& windows, std::int16_t id)
{
    windows.resize(std::max(windows.size(), static_cast<std::size_t>(std::max(RemCount, id)) + 1));
}

// Shows an alert window; false when that reminder's is on the screen already.
bool ShowAlert(const NoticeText& text)
{
    std::unique_ptr<AlertWindow>& entry = RemAlertWindows.at(static_cast<std::size_t>(text.Id));
    if (!entry)
        entry = Main().NewAlertWindow();
    AlertWindow& window = *entry;
    if (window.Visible())
        return false;
    const std::string lines[] = {text.Heading,           "Rem. Id: " + std::to_string(text.Id),
                                 "Title: " + text.Title, "Date: " + text.Date,
                                 "Time: " + text.Time,   "Desc: " + text.Description};
    const auto color = static_cast<std::size_t>(Settings.RemAlertColor);
    window.DisplayMessage(JoinLines(lines), text.Id, false,
                          Settings.RemAlertClose == 1 ? Settings.RemAlertCloseTime : 0, Settings.RemAlertAction == 1,
                          true, Settings.RemAlertShape == 0, alertColors.at(color < alertColors.size() ? color : 0),
                          Settings.RemAlertGradient == 1);
    return true;
}

// The same with a notice window.
bool ShowNotice(const NoticeText& text)
{
    std::unique_ptr<NoticeWindow>& entry = RemNoticeWindows.at(static_cast<std::size_t>(text.Id));
    if (!entry)
        entry = Main().NewNoticeWindow();
    NoticeWindow& window = *entry;
    if (window.Visible())
        return false;
    window.ShowNotice(text);
    return true;
}

void SpeakReminder(const std::string& title, const Schedule& schedule, const std::string& description)
{
    bool first = true;
    const auto speak = [&first](std::int16_t setting, const std::string& text) {
        if (setting != 1 || Trim(text).empty())
            return;
        SpeakText(text, first ? "Announce" : "");
        first = false;
    };
    speak(Settings.ReminderSentenceSpeak, Settings.ReminderSentence);
    speak(Settings.ReminderTitleSpeak, "Title: " + title + CrLf);
    speak(Settings.ReminderDateSpeak, "Date: " + SpokenDate(schedule.at) + CrLf);
    speak(Settings.ReminderTimeSpeak, "Time: " + SpokenTime(schedule.at) + CrLf);
    const std::string trimmed = Trim(description);
    speak(Settings.ReminderDescSpeak, trimmed.empty() ? "" : "Description: " + trimmed);
}

/// The list's entry as it is announced.
Reminder EntryOf(std::size_t at)
{
    return {RemTitles[at], RemDays[at], RemMonths[at], RemYears[at], RemHours[at], RemMinutes[at], RemDescs[at], false};
}

// Where the reminder that was announced under a number stands now; 0 when it is gone or is not to be told from others.
std::int16_t PlaceNow(std::int16_t id)
{
    const auto at = static_cast<std::size_t>(std::max<std::int16_t>(id, 0));
    if (at >= RemAnnounced.size() || !RemAnnounced[at])
        return InList(id) ? id : std::int16_t{0};
    const Reminder& announced = *RemAnnounced[at];
    if (InList(id) && announced == EntryOf(at))
        return id;
    std::int16_t place = 0;
    for (std::int32_t number = 1; number <= RemCount; ++number) {
        if (RemDone[static_cast<std::size_t>(number)] != "N" || announced != EntryOf(static_cast<std::size_t>(number)))
            continue;
        if (place != 0)
            return 0;
        place = static_cast<std::int16_t>(number);
    }
    return place;
}

// The reminder that was announced under a number, as the list has it or, while the file cannot be read, as it was
// announced; nothing when it is gone.
std::optional<Reminder> ToBeAnswered(std::int16_t id)
{
    if (const std::int16_t place = PlaceNow(id); place != 0)
        return EntryAt(place);
    const auto at = static_cast<std::size_t>(std::max<std::int16_t>(id, 0));
    const bool unread = RemindersValid == False && RemindersUnread();
    return unread && at < RemAnnounced.size() ? RemAnnounced[at] : std::nullopt;
}

void SpeakSnooze(const DateTime& next, std::int16_t minutes)
{
    SpeakText("Your reminder has been snoozed by " + std::to_string(minutes) + " minute(s)" + CrLf +
                  "New schedule for this reminder is " + CrLf + SpokenDate(next) + CrLf + SpokenTime(next) + CrLf,
              "Announce");
}

} // namespace

void RemTimer_Timer()
{
    if (RemCount == 0 || IsBusy != False)
        return;
    DateTime now = Host().Time.Now();
    // Events run while the character is made to speak, and may change the list.
    for (std::int32_t number = 1; number <= RemCount; ++number) {
        const auto at = static_cast<std::size_t>(number);
        if (RemDone[at] != "N")
            continue;
        const std::tuple<int, int, int, int, int> schedule{RemYears[at], RemMonths[at], RemDays[at], RemHours[at],
                                                           RemMinutes[at]};
        const std::tuple<int, int, int, int, int> minute{now.year, now.month, now.day, now.hour, now.minute};
        if (schedule > minute)
            continue;
        const std::string title = RemTitles[at];
        const std::string description = RemDescs[at];
        ShowReminder(schedule < minute, static_cast<std::int16_t>(number), title, std::to_string(RemDays[at]),
                     std::to_string(RemMonths[at]), std::to_string(RemYears[at]), std::to_string(RemHours[at]),
                     std::to_string(RemMinutes[at]), description);
        // The user may have switched them off meanwhile.
        if (!Main().ReminderTimerEnabled())
            return;
        now = Host().Time.Now();
    }
}

void ShowReminder(bool missed, std::int16_t id, const std::string& title, const std::string& day,
                  const std::string& month, const std::string& year, const std::string& hour, const std::string& minute,
                  const std::string& description)
{
    Grow(RemNoticeWindows, id);
    Grow(RemAlertWindows, id);
    const Schedule schedule = ScheduleOf(day, month, year, hour, minute);
    NoticeText text;
    text.Heading = missed ? "Missed Reminder" : "New Reminder";
    text.Id = id;
    text.Title = title;
    text.Date = schedule.isDate ? Host().Time.ShortDate(schedule.at)
                                : Padded(schedule.at.day, 2) + "/" + Padded(schedule.at.month, 2) + "/" +
                                      Padded(schedule.at.year, 4);
    text.Time = Padded(schedule.at.hour, 2) + ":" + Padded(schedule.at.minute, 2);
    text.Description = description;
    if (!(Settings.ReminderType == 1 ? ShowNotice(text) : ShowAlert(text)))
        return;
    const auto at = static_cast<std::size_t>(id);
    RemAnnounced.resize(std::max(RemAnnounced.size(), at + 1));
    if (InList(id))
        RemAnnounced[at] = EntryOf(at);
    SpeakReminder(title, schedule, description);
}

DateTime SnoozedTime(const DateTime& now, std::int16_t minutes)
{
    DateTime next = now;
    next.second = 0;
    next.minute += minutes;
    if (next.minute <= 59)
        return next;
    next.hour += next.minute / 60;
    next.minute %= 60;
    if (next.hour <= 23)
        return next;
    next.hour -= 24;
    ++next.day;
    // Only February has a length here, so that any other month's end, and any day of it, counts as passed, and the
    // month goes back by eleven. The next load then finds the date invalid. Users know it so; it stays.
    int length = next.month == 15 ? 31 : 0;
    if (next.month == 2)
        length = 28 + (next.year % 4 == 0 ? 1 : 0) - (next.year % 100 == 0 ? 1 : 0) + (next.year % 400 == 0 ? 1 : 0);
    if (next.day > length) {
        next.day -= length;
        next.month += 1 - 12;
        ++next.year;
    }
    return next;
}

void FinishReminder(std::int16_t id, bool snooze, std::int16_t minutes)
{
    const std::optional<Reminder> before = ToBeAnswered(id);
    if (!before)
        return;
    Reminder outcome = *before;
    outcome.Done = !snooze;
    DateTime next = Host().Time.Now();
    if (snooze) {
        next = SnoozedTime(next, minutes);
        outcome.Day = ToInt16(next.day);
        outcome.Month = ToInt16(next.month);
        outcome.Year = ToInt16(next.year);
        outcome.Hour = ToInt16(next.hour);
        outcome.Minute = ToInt16(next.minute);
    }
    if (!KeepAnswer({*before, outcome})) {
        TellOfTooLongAnswer(outcome);
        return;
    }
    // Events run meanwhile, which may save the answer, too, or find that its reminder has been deleted.
    if (snooze && Settings.ReminderNextSchSpeak == 1)
        SpeakSnooze(next, minutes);
    SaveAnswers();
}

void EnableReminders()
{
    if (Main().ReminderTimerEnabled())
        return;
    if (RemindersUnread()) {
        WantReminders(true);
        ReadRemindersNow();
        // The user has been told why there is no list, or has had the file emptied, which has switched them on.
        if (RemindersValid == False)
            return;
    }
    if (RemindersValid == False) {
        ReminderMessage(std::string("Following reminders file is not having valid data:") + CrLf + ReminderFilePath +
                            CrLf + CrLf + "To enable reminders delete the above file and then restart the application.",
                        vbOKOnly + vbExclamation, "GetAttention", "GetAttentionContinued", "GetAttentionContinued",
                        "GetAttentionReturn");
        return;
    }
    Main().EnableReminderTimer(true);
    Main().CheckReminderMenus(true, false);
}

void DisableReminders()
{
    if (!Main().ReminderTimerEnabled() && !RemindersWanted())
        return;
    if (ReminderMessage("Are you sure you want to disable the reminders ?", vbYesNo + vbQuestion + vbDefaultButton2,
                        "GetAttention", "GetAttentionContinued", "GetAttentionContinued",
                        "GetAttentionReturn") != vbYes)
        return;
    WantReminders(false);
    Main().CheckReminderMenus(false, true);
    Main().EnableReminderTimer(false);
}

void ShowAllReminders()
{
    Main().Editor().ShowEditor();
    LoadReminders(true, 1);
}

} // namespace voxmate
