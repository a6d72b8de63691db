// The reminders: the list in memory, its file, and the scheduler that announces what is due.
#pragma once

#include "base/Checked.h"
#include "modules/Windows.h"
#include "platform/Clock.h"

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace voxmate
{

// The list: parallel arrays, entry k of each belongs to reminder k, counted from 1; entry 0 is not used.
extern std::vector<std::string> RemTitles;
extern std::vector<std::int16_t> RemDays;
extern std::vector<std::int16_t> RemMonths;
extern std::vector<std::int16_t> RemYears;
extern std::vector<std::int16_t> RemHours;
extern std::vector<std::int16_t> RemMinutes;
extern std::vector<std::string> RemDescs;
extern std::vector<std::string> RemDone; ///< "Y" or "N"
extern std::int16_t RemCount;
/// The last load found the file valid.
extern Boolean RemindersValid;

/// The announcement windows, entry k for reminder k; empty until there is one. They only grow: what is beyond RemCount
/// belongs to reminders that were deleted and may still be on the screen.
extern std::vector<std::unique_ptr<NoticeWindow>> RemNoticeWindows;
extern std::vector<std::unique_ptr<AlertWindow>> RemAlertWindows;

/// One reminder as the editor has it.
struct Reminder {
    std::string Title;
    std::int16_t Day = 0;
    std::int16_t Month = 0;
    std::int16_t Year = 0;
    std::int16_t Hour = 0;
    std::int16_t Minute = 0;
    std::string Description;
    bool Done = false;
    bool operator==(const Reminder&) const = default;
};

/// What was announced last under each number, entry k for reminder k, always as pending. Numbers move up when a
/// reminder is deleted, and a reminder is changed, while its announcement stands there: the answer must not go to
/// another one.
extern std::vector<std::optional<Reminder>> RemAnnounced;
/// An answer to an announcement: the reminder as the file has it, and as it is to become.
struct Answer {
    Reminder Before;
    Reminder After;
};
/// The answers that are not in the file yet. They are in the list, and whatever is saved next saves them, too.
extern std::vector<Answer> RemUnsaved;

/// Empties the list and its windows.
void ResetReminders();

/// Announces a message through the character, shows it in a box of this style titled "Voxmate - Reminders" and returns
/// the button pressed.
int ReminderMessage(const std::string& text, int style, const std::string& animation1 = {},
                    const std::string& animation2 = {}, const std::string& animation3 = {},
                    const std::string& animation4 = {});

// The file.

/// Reads the whole file into the list and switches the reminder timer accordingly; tells the user of an invalid file.
/// With `fillList` the editor's list is filled, too, and its item `selectIndex` (0 means 1) selected. A save that was
/// cut off between the old file and the new one is completed first. A missing file is an empty list. A file that cannot
/// be read leaves reminders off; it is told of in a box, when another program has it open only after a while, and tried
/// again (RetryReminders).
void LoadReminders(bool fillList, std::int16_t selectIndex);
/// Writes the whole list to the file, leaving out entry `skipIndex` (0: none). Raises run-time error 59 "Bad record
/// length" when an entry does not fit its slot of 128 bytes, and the file system's errors; the file is then as before,
/// or its temporary copy holds all that was to be saved. What another program has changed in the file meanwhile stays.
void SaveReminders(std::int16_t skipIndex);
/// Writes one reminder behind the last one of the file, in place. Raises the same errors.
void AppendReminder(const Reminder& reminder);
/// The same for event handlers. Where that fails, or the list is not what the file holds because the last load found it
/// invalid, nothing is lost: the list is read anew from the file, a box says what could not be saved and why, and the
/// answer is false.
bool TrySaveReminders(std::int16_t skipIndex);
bool TryAppendReminder(const Reminder& reminder);
/// Tells the user that a change was made to a list which the file no longer holds.
void TellOfListReadAnew();
/// Stores an answer, whose reminder the list has unless the file cannot be read just now, and keeps it until it is
/// saved; false when the reminder it makes is too long for the file.
bool KeepAnswer(const Answer& answer);
/// Saves the list with the answers that are not in the file yet, and loads it again. What fails is told of once and
/// tried again.
void SaveAnswers();
/// Tries once more to save the answers that are not in the file yet, because the program is about to end; raises
/// nothing.
void SaveLastAnswers();
/// Once a second while something is to be tried again: reads a file that could not be read and saves answers that could
/// not be saved. After five times it tries every tenth time only.
void RetryReminders();
/// Tells the user that a reminder as an answer would make it is too long for the file.
void TellOfTooLongAnswer(const Reminder& after);
/// Whether nothing is known of what the file holds now: the last load could not read it, or emptied it.
bool RemindersUnread();
/// Whether reminders will be on when a file that cannot be read now has been read; and what the user wants then.
bool RemindersWanted();
void WantReminders(bool wanted);
/// The same as LoadReminders(false, 0) for a user who has asked for it and is told at once when the file cannot be
/// read.
void ReadRemindersNow();
/// Puts new values into entry `id` of the list.
void StoreReminder(std::int16_t id, const Reminder& reminder);
/// Puts entry `id` into the editor's fields.
void ShowReminderInEditor(std::int16_t id);
/// Whether a text is a time of day of the form HH:MM, blanks round it aside.
bool IsValidTime(const std::string& text);
/// Whether a text is a whole number, blanks round it aside: decimal digits, a sign before them or not, and nothing else
/// (no separators, points or exponents, so that no locale can read it otherwise). Without `allowZero` it is above 0.
bool IsWholeNumber(const std::string& text, bool allowZero);

// The scheduler.

/// One tick of the reminder timer: announces, in the order of the list, every pending reminder whose minute has come.
void RemTimer_Timer();
/// Opens and speaks one announcement; the numbers are decimal text without padding.
void ShowReminder(bool missed, std::int16_t id, const std::string& title, const std::string& day,
                  const std::string& month, const std::string& year, const std::string& hour, const std::string& minute,
                  const std::string& description);
/// Writes an announcement's outcome back: done, or snoozed by `minutes` (1 to 999) from now, and reloads the file. `id`
/// is the number under which it was announced; does nothing when that reminder is gone or was changed meanwhile.
void FinishReminder(std::int16_t id, bool snooze, std::int16_t minutes);
/// The date and time `minutes` from `now`, by the program's own arithmetic: exact within a day, wrong across midnight.
DateTime SnoozedTime(const DateTime& now, std::int16_t minutes);
/// The menu's commands: switch reminders on, unless the file is invalid; ask and switch them off.
void EnableReminders();
void DisableReminders();
/// Shows the editor with every reminder.
void ShowAllReminders();

} // namespace voxmate
