// The reminders: the list in memory, its file, and the scheduler that announces what is due.
#pragma once

#include "base/Checked.h"
#include "platform/Clock.h"

#include <cstdint>
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
};

/// Empties the list and its windows.
void ResetReminders();

// The file.

/// Reads the whole file into the list and switches the reminder timer accordingly; tells the user of an invalid file.
/// With `fillList` the editor's list is filled, too, and its item `selectIndex` (0 means 1) selected.
void LoadReminders(bool fillList, std::int16_t selectIndex);
/// Writes the whole list to the file, leaving out entry `skipIndex` (0: none). Raises run-time error 59 "Bad record
/// length" when an entry does not fit its slot of 128 bytes, and the file system's errors; the file is then as before.
void SaveReminders(std::int16_t skipIndex);
/// Writes one reminder behind the last one of the file, in place. Raises the same errors.
void AppendReminder(const Reminder& reminder);
/// Puts new values into entry `id` of the list.
void StoreReminder(std::int16_t id, const Reminder& reminder);
/// Puts entry `id` into the editor's fields.
void ShowReminderInEditor(std::int16_t id);
/// Whether a text is a time of day of the form HH:MM, blanks round it aside.
bool IsValidTime(const std::string& text);
/// Whether a text is a number without a decimal point; one whose integer part is 0 only with `allowZero`.
bool IsWholeNumber(const std::string& text, bool allowZero);

// The scheduler.

/// One tick of the reminder timer: announces, in the order of the list, every pending reminder whose minute has come.
void RemTimer_Timer();
/// Opens and speaks one announcement; the numbers are decimal text without padding.
void ShowReminder(bool missed, std::int16_t id, const std::string& title, const std::string& day,
                  const std::string& month, const std::string& year, const std::string& hour, const std::string& minute,
                  const std::string& description);
/// Writes an announcement's outcome back: done, or snoozed by `minutes` (1 to 999) from now, and reloads the file.
void FinishReminder(std::int16_t id, bool snooze, std::int16_t minutes);
/// The date and time `minutes` from `now`, by the program's own arithmetic: exact within a day, wrong across midnight.
DateTime SnoozedTime(const DateTime& now, std::int16_t minutes);
/// The menu's commands: switch reminders on, unless the file is invalid; ask and switch them off.
void EnableReminders();
void DisableReminders();
/// Shows the editor with every reminder.
void ShowAllReminders();

} // namespace voxmate
