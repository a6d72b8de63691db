#include "modules/ReminderScheduler.h"

#include "base/Text.h"
#include "modules/Format.h"
#include "modules/Program.h"

#include <algorithm>
#include <array>
#include <optional>
#include <tuple>
#include <utility>

namespace voxmate
{

namespace
{

bool IsDate(const DateTime& date)
{
    return IsRealDate(date.day, date.month, date.year);
}

// Makes room for so many windows. A window stays where it is when its array grows.
template <class Window>
void Grow(std::vector<std::unique_ptr<Window>>& windows, std::int16_t count)
{
    windows.resize(std::max(windows.size(), static_cast<std::size_t>(count) + 1));
}

// The window for reminder `id`: the one that announced it before, else any closed window, else a new one from `make`.
// Closed windows are used again so that a program that runs for weeks does not keep one for each reminder.
template <class Window, class Make>
Window& WindowOf(std::vector<std::unique_ptr<Window>>& windows, std::int16_t id, const Make& make)
{
    std::unique_ptr<Window>& entry = windows.at(static_cast<std::size_t>(id));
    if (entry)
        return *entry;
    const auto closed = std::ranges::find_if(windows, [](const auto& window) { return window && !window->Visible(); });
    entry = closed != windows.end() ? std::move(*closed) : make();
    return *entry;
}

} // namespace

ReminderScheduler::ReminderScheduler(Program& program) : program_(program), list_(program.Reminders.List) {}

// A snooze across midnight can give a day that no calendar has, and that has no name.
std::string ReminderScheduler::SpokenDate(const DateTime& date) const
{
    return IsDate(date) ? FormatSpokenDate(program_.Settings.DateFormat, date) : "";
}

std::string ReminderScheduler::SpokenTime(const DateTime& time) const
{
    return Format(time, program_.Settings.TimeIn24Hour == 1 ? "HH:MM" : "h:nn AM/PM");
}

// Shows an alert window; false when that reminder's is on the screen already.
bool ReminderScheduler::ShowAlert(const NoticeText& text)
{
    AlertWindow& window = WindowOf(RemAlertWindows, text.Id,
                                   [this] { return MakeAlert ? MakeAlert() : program_.Main->NewAlertWindow(); });
    if (window.Visible())
        return false;
    const std::string lines[] = {text.Heading,           "Rem. Id: " + std::to_string(text.Id),
                                 "Title: " + text.Title, "Date: " + text.Date,
                                 "Time: " + text.Time,   "Desc: " + text.Description};
    const SettingsRecord& settings = program_.Settings;
    const auto color = static_cast<std::size_t>(settings.RemAlertColor);
    window.DisplayMessage(
        JoinLines(lines), text.Id, false, settings.RemAlertClose == 1 ? settings.RemAlertCloseTime : 0,
        settings.RemAlertAction == AlertFades, true, settings.RemAlertShape == AlertIsSquare,
        AlertColors.at(color < AlertColors.size() ? color : 0), settings.RemAlertGradient == TubeGradient);
    return true;
}

// The same with a notice window.
bool ReminderScheduler::ShowNotice(const NoticeText& text)
{
    NoticeWindow& window = WindowOf(RemNoticeWindows, text.Id, [this] { return program_.Main->NewNoticeWindow(); });
    if (window.Visible())
        return false;
    window.ShowNotice(text);
    return true;
}

void ReminderScheduler::SpeakReminder(const Reminder& reminder, const DateTime& schedule)
{
    const SettingsRecord& settings = program_.Settings;
    bool first = true;
    const auto speak = [&](std::int16_t setting, const std::string& text) {
        if (setting != 1 || Trim(text).empty())
            return;
        program_.Voice.SpeakText(text, first ? "Announce" : "");
        first = false;
    };
    speak(settings.ReminderSentenceSpeak, settings.ReminderSentence);
    speak(settings.ReminderTitleSpeak, "Title: " + reminder.Title + CrLf);
    speak(settings.ReminderDateSpeak, "Date: " + SpokenDate(schedule) + CrLf);
    speak(settings.ReminderTimeSpeak, "Time: " + SpokenTime(schedule) + CrLf);
    const std::string trimmed = Trim(reminder.Description);
    speak(settings.ReminderDescSpeak, trimmed.empty() ? "" : "Description: " + trimmed);
}

// The list's entry as it is announced.
Reminder ReminderScheduler::Pending(std::int32_t id) const
{
    Reminder reminder = list_.At(id);
    reminder.Done = false;
    return reminder;
}

// Where the reminder that was announced under a number stands now; 0 when it is gone or is not to be told from others.
std::int16_t ReminderScheduler::PlaceNow(std::int16_t id) const
{
    const auto at = static_cast<std::size_t>(std::max<std::int16_t>(id, 0));
    if (at >= RemAnnounced.size() || !RemAnnounced[at])
        return list_.Has(id) ? id : std::int16_t{0};
    const Reminder& announced = *RemAnnounced[at];
    if (list_.Has(id) && announced == Pending(id))
        return id;
    std::int16_t place = 0;
    for (std::int32_t number = 1; number <= list_.RemCount; ++number) {
        if (list_.RemDone[static_cast<std::size_t>(number)] != "N" || announced != Pending(number))
            continue;
        if (place != 0)
            return 0;
        place = static_cast<std::int16_t>(number);
    }
    return place;
}

// The reminder that was announced under a number, as the list has it or, while the file cannot be read, as it was
// announced; nothing when it is gone.
std::optional<Reminder> ReminderScheduler::ToBeAnswered(std::int16_t id) const
{
    if (const std::int16_t place = PlaceNow(id); place != 0)
        return list_.At(place);
    const auto at = static_cast<std::size_t>(std::max<std::int16_t>(id, 0));
    const bool unread = list_.RemindersValid == False && program_.Reminders.RemindersUnread();
    return unread && at < RemAnnounced.size() ? RemAnnounced[at] : std::nullopt;
}

void ReminderScheduler::SpeakSnooze(const DateTime& next, std::int16_t minutes)
{
    program_.Voice.SpeakText("Your reminder has been snoozed by " + std::to_string(minutes) + " minute(s)" + CrLf +
                                 "New schedule for this reminder is " + CrLf + SpokenDate(next) + CrLf +
                                 SpokenTime(next) + CrLf,
                             "Announce");
}

// What a pending reminder's minute is by `now`; a done one is never due.
ReminderScheduler::Due ReminderScheduler::DueAt(std::int32_t number, const DateTime& now) const
{
    const auto at = static_cast<std::size_t>(number);
    if (list_.RemDone[at] != "N")
        return Due::Later;
    const std::tuple<int, int, int, int, int> schedule{list_.RemYears[at], list_.RemMonths[at], list_.RemDays[at],
                                                       list_.RemHours[at], list_.RemMinutes[at]};
    const std::tuple<int, int, int, int, int> minute{now.year, now.month, now.day, now.hour, now.minute};
    if (schedule > minute)
        return Due::Later;
    return schedule < minute ? Due::Missed : Due::Now;
}

// Whether the window is up that would announce a reminder.
bool ReminderScheduler::IsShown(std::int32_t number) const
{
    const auto at = static_cast<std::size_t>(number);
    const auto isUp = [at](const auto& windows) {
        return at < windows.size() && windows[at] && windows[at]->Visible();
    };
    return program_.Settings.ReminderType == RemindInNotice ? isUp(RemNoticeWindows) : isUp(RemAlertWindows);
}

bool ReminderScheduler::AnyToAnnounce() const
{
    if (program_.Messages.IsBusy != False)
        return false;
    const DateTime now = program_.Host.Time.Now();
    for (std::int32_t number = 1; number <= list_.RemCount; ++number) {
        if (DueAt(number, now) != Due::Later && !IsShown(number))
            return true;
    }
    return false;
}

void ReminderScheduler::RemTimer_Timer()
{
    if (list_.RemCount == 0 || program_.Messages.IsBusy != False)
        return;
    DateTime now = program_.Host.Time.Now();
    // Events run while the character is made to speak, and may change the list.
    for (std::int32_t number = 1; number <= list_.RemCount; ++number) {
        const Due due = DueAt(number, now);
        if (due == Due::Later)
            continue;
        ShowReminder(due == Due::Missed, static_cast<std::int16_t>(number), list_.At(number));
        // The user may have switched them off meanwhile.
        if (!program_.Main->ReminderTimerEnabled())
            return;
        now = program_.Host.Time.Now();
    }
}

void ReminderScheduler::ShowReminder(bool missed, std::int16_t id, const Reminder& reminder)
{
    const std::int16_t count = std::max(list_.RemCount, id);
    Grow(RemNoticeWindows, count);
    Grow(RemAlertWindows, count);
    const DateTime schedule{reminder.Year, reminder.Month, reminder.Day, reminder.Hour, reminder.Minute, 0};
    NoticeText text;
    text.Heading = missed ? "Missed Reminder" : "New Reminder";
    text.Id = id;
    text.Title = reminder.Title;
    text.Date = IsDate(schedule)
                    ? program_.Host.Time.ShortDate(schedule)
                    : Padded(schedule.day, 2) + "/" + Padded(schedule.month, 2) + "/" + Padded(schedule.year, 4);
    text.Time = Padded(schedule.hour, 2) + ":" + Padded(schedule.minute, 2);
    text.Description = reminder.Description;
    if (!(program_.Settings.ReminderType == RemindInNotice ? ShowNotice(text) : ShowAlert(text)))
        return;
    const auto at = static_cast<std::size_t>(id);
    RemAnnounced.resize(std::max(RemAnnounced.size(), at + 1));
    if (list_.Has(id))
        RemAnnounced[at] = Pending(id);
    if (Announced)
        Announced(text);
    SpeakReminder(reminder, schedule);
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

void ReminderScheduler::FinishReminder(std::int16_t id, bool snooze, std::int16_t minutes)
{
    if (Answered)
        Answered(id);
    const std::optional<Reminder> before = ToBeAnswered(id);
    if (!before)
        return;
    Reminder outcome = *before;
    outcome.Done = !snooze;
    DateTime next = program_.Host.Time.Now();
    if (snooze) {
        next = SnoozedTime(next, minutes);
        outcome.Day = ToInt16(next.day);
        outcome.Month = ToInt16(next.month);
        outcome.Year = ToInt16(next.year);
        outcome.Hour = ToInt16(next.hour);
        outcome.Minute = ToInt16(next.minute);
    }
    if (!program_.Reminders.KeepAnswer({*before, outcome})) {
        program_.Reminders.TellOfTooLongAnswer(outcome);
        return;
    }
    // Events run meanwhile, which may save the answer, too, or find that its reminder has been deleted.
    if (snooze && program_.Settings.ReminderNextSchSpeak == 1)
        SpeakSnooze(next, minutes);
    program_.Reminders.SaveAnswers();
}

} // namespace voxmate
