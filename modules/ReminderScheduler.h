// The scheduler: announces what is due, and takes the answer.
#pragma once

#include "modules/Reminders.h"
#include "modules/Windows.h"
#include "platform/Clock.h"

#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace voxmate
{

class ReminderScheduler
{
public:
    explicit ReminderScheduler(Program& program);

    /// The announcement windows, entry k for reminder k; empty until there is one. A closed window moves to the next
    /// reminder that has none. The arrays only grow: an entry beyond RemCount belongs to a reminder that was deleted
    /// and may still be on the screen.
    std::vector<std::unique_ptr<NoticeWindow>> RemNoticeWindows;
    std::vector<std::unique_ptr<AlertWindow>> RemAlertWindows;
    /// What was announced last under each number, entry k for reminder k, always as pending. While an announcement is
    /// on the screen its reminder may be changed, or get another number because one before it is deleted. The answer
    /// must not go to another reminder.
    std::vector<std::optional<Reminder>> RemAnnounced;

    /// Called with each announcement, when its window has been shown and before it is spoken; may be empty.
    std::function<void(const NoticeText& text)> Announced;
    /// Called with the number under which a reminder was announced when it is answered, before the answer is saved; may
    /// be empty.
    std::function<void(std::int16_t id)> Answered;
    /// Makes the alert windows; where it is empty, the main window does.
    std::function<std::unique_ptr<AlertWindow>()> MakeAlert;

    /// One tick of the reminder timer: announces, in the order of the list, every pending reminder whose minute has
    /// come.
    void RemTimer_Timer();
    /// Whether the next tick would announce something: a reminder is due that is not on the screen already.
    bool AnyToAnnounce() const;
    /// Opens and speaks one announcement.
    void ShowReminder(bool missed, std::int16_t id, const Reminder& reminder);
    /// Writes an announcement's outcome back: done, or snoozed by `minutes` (1 to 999) from now, and reloads the file.
    /// `id` is the number under which it was announced; does nothing when that reminder is gone or was changed
    /// meanwhile.
    void FinishReminder(std::int16_t id, bool snooze, std::int16_t minutes);

private:
    Program& program_;
    const ReminderList& list_;

    enum class Due : std::uint8_t { Later, Now, Missed };
    Due DueAt(std::int32_t number, const DateTime& now) const;
    bool IsShown(std::int32_t number) const;
    bool ShowAlert(const NoticeText& text);
    bool ShowNotice(const NoticeText& text);
    std::string SpokenDate(const DateTime& date) const;
    std::string SpokenTime(const DateTime& time) const;
    void SpeakReminder(const Reminder& reminder, const DateTime& schedule);
    void SpeakSnooze(const DateTime& next, std::int16_t minutes);
    Reminder Pending(std::int32_t id) const;
    std::int16_t PlaceNow(std::int16_t id) const;
    std::optional<Reminder> ToBeAnswered(std::int16_t id) const;
};

/// The date and time `minutes` from `now`, by the program's own arithmetic: exact within a day, wrong across midnight.
DateTime SnoozedTime(const DateTime& now, std::int16_t minutes);

} // namespace voxmate
