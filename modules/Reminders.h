// The reminders: the list in memory, its file, and what the user is told of it.
#pragma once

#include "modules/ReminderFile.h"
#include "modules/ReminderList.h"

#include <array>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace voxmate
{

class Program;
class RuntimeError;

/// The colours of alert windows, 0x00BBGGRR: yellow, blue, red and green, as the setting RemAlertColor numbers them.
inline constexpr std::array<std::int32_t, 4> AlertColors{0xC0FFFF, 0xFFC3A0, 0xC8C8FF, 0xC8FFC8};

class Reminders
{
public:
    explicit Reminders(Program& program);

    ReminderList List;
    ReminderFile File;

    /// Announces a message through the character, shows it in a box of this style titled "Voxmate - Reminders" and
    /// returns the button pressed.
    int ReminderMessage(const std::string& text, int style, const std::string& animation1 = {},
                        const std::string& animation2 = {}, const std::string& animation3 = {},
                        const std::string& animation4 = {});

    /// Reads the whole file into the list and switches the reminder timer accordingly; tells the user of an invalid
    /// file. With `fillList` the editor's list is filled, too, and its item `selectIndex` (0 means 1) selected. A save
    /// that was cut off between the old file and the new one is completed first. A missing file is an empty list. A
    /// file that cannot be read leaves reminders off; it is told of in a box, when another program has it open only
    /// after a while, and tried again (RetryReminders).
    void LoadReminders(bool fillList, std::int16_t selectIndex);
    /// Writes the list to the file without entry `skipIndex` (0: none), or one reminder behind the file's last one.
    /// Where that fails, or the list is not what the file holds because the last load found it invalid, nothing is
    /// lost: the list is read anew from the file, a box says what could not be saved and why, and the result is false.
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
    /// Once a second while something is to be tried again: reads a file that could not be read and saves answers that
    /// could not be saved. After five times it tries every tenth time only.
    void RetryReminders();
    /// Tells the user that a reminder as an answer would make it is too long for the file.
    void TellOfTooLongAnswer(const Reminder& after);
    /// Whether nothing is known of what the file holds now: the last load could not read it, or emptied it.
    bool RemindersUnread() const { return unread_ || emptied_; }
    /// What the user wants when a file that cannot be read now has been read.
    void WantReminders(bool wanted) { wereEnabled_ = wanted; }

    /// The menu's commands: switch reminders on, unless the file is invalid; ask and switch them off.
    void EnableReminders();
    void DisableReminders();
    /// Shows the editor with every reminder.
    void ShowAllReminders();
    /// Puts entry `id` into the editor's fields.
    void ShowReminderInEditor(std::int16_t id);

private:
    Program& program_;
    bool loading_ = false;
    bool unread_ = false;          ///< the last load could not read the file
    bool emptied_ = false;         ///< the last load emptied the file, as the user wanted
    bool wereEnabled_ = false;     ///< reminders were on before the load that could not read the file
    bool editorWaits_ = false;     ///< that load was to fill the editor's list, too,
    std::int16_t editorIndex_ = 0; ///< and to select this item
    bool telling_ = false;         ///< the box about a file's error is up
    bool toldUnread_ = false;      ///< the user knows that the file cannot be read, or
    bool toldUnsaved_ = false;     ///< that answers cannot be saved
    int retries_ = 0;

    void SwitchReminders(bool on);
    void BeginRetrying();
    void AnswerAgain();
    bool ReadReminderRecords(bool fillList, std::int16_t selectIndex);
    void AskAboutInvalidFile(bool fillList);
    void LoadHeld(bool fillList, std::int16_t selectIndex);
    std::optional<RuntimeError> Load(bool fillList, std::int16_t selectIndex);
    bool ReadQuietly();
    std::optional<RuntimeError> SaveForAnswers();
    void Tell(const std::vector<std::string>& lines);
    void TellOfUnreadFile(const RuntimeError& error);
    void AddWhereTheyAre(std::vector<std::string>& lines);
    void TellOfUnsavedList(const RuntimeError& error, const std::string& reason);
    void TellOfUnsavedAnswers(const RuntimeError& error);
};

/// Whether a text is a time of day of the form HH:MM, blanks round it aside.
bool IsValidTime(const std::string& text);
/// Whether a text is a whole number, blanks round it aside: decimal digits, a sign before them or not, and nothing else
/// (no separators, points or exponents, so that no locale can read it otherwise). Without `allowZero` it is above 0.
bool IsWholeNumber(const std::string& text, bool allowZero);

} // namespace voxmate
