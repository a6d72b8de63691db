// The reminders: the list in memory, its file, and the messages about them to the user.
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

    /// Reads the whole file into the list and switches the reminder timer accordingly. With `fillList` it also fills
    /// the editor's list and selects its item `selectIndex` (0 means 1). An interrupted save is completed first. A
    /// missing file means an empty list. For an invalid file the user is asked what to do. A file that cannot be read
    /// leaves reminders switched off and is tried again (RetryReminders); a box says so, but only after a while if
    /// another program has the file open.
    void LoadReminders(bool fillList, std::int16_t selectIndex);
    /// Writes the list to the file without entry `skipIndex` (0: none), or reminders behind the file's last one.
    /// Where that fails, or the list is not what the file holds because the last load found it invalid, nothing is
    /// lost: the list is read anew from the file, a box says what could not be saved and why, and the result is false.
    bool TrySaveReminders(std::int16_t skipIndex);
    bool TryAppendReminder(const Reminder& reminder) { return TryAppendReminders({reminder}); }
    bool TryAppendReminders(const std::vector<Reminder>& reminders);
    /// Tells the user that the last change is lost, because the file no longer held the list that it was made in.
    void TellOfListReadAnew();
    /// Puts an answer into the list and keeps it until it is saved. The list has its reminder, unless the file cannot
    /// be read just now. False when the reminder would become too long for the file.
    bool KeepAnswer(const Answer& answer);
    /// Saves the list with the answers that are not in the file yet, and loads it again. When that fails, a box says so
    /// once, and it is tried again.
    void SaveAnswers();
    /// Tries a last time to save the answers that are not in the file yet, because the program is about to end. Raises
    /// no error.
    void SaveLastAnswers();
    /// Reads a file that could not be read, and saves answers that could not be saved. Called once a second while there
    /// is something to try again. After the first five calls, only every tenth call tries.
    void RetryReminders();
    /// Tells the user that an answer would make a reminder, here `after`, too long for the file.
    void TellOfTooLongAnswer(const Reminder& after);
    /// Whether the list says nothing about the file's content: the last load could not read the file, or emptied it.
    bool RemindersUnread() const { return unread_ || emptied_; }
    /// Sets whether reminders are to be switched on once a file that cannot be read now has been read.
    void WantReminders(bool wanted) { wereEnabled_ = wanted; }

    /// The menu's commands. EnableReminders switches reminders on, unless the file is invalid. DisableReminders asks
    /// the user and switches them off.
    void EnableReminders();
    void DisableReminders();
    /// Shows the editor with all reminders.
    void ShowAllReminders();
    /// Puts entry `id` into the editor's fields.
    void ShowReminderInEditor(std::int16_t id);

private:
    Program& program_;
    bool loading_ = false;
    bool unread_ = false;          ///< the last load could not read the file
    bool emptied_ = false;         ///< the last load emptied the file, as the user wanted
    bool wereEnabled_ = false;     ///< reminders were on before the load that could not read the file
    bool editorWaits_ = false;     ///< that load was also to fill the editor's list
    std::int16_t editorIndex_ = 0; ///< and to select this item
    bool telling_ = false;         ///< the box about a file's error is up
    bool toldUnread_ = false;      ///< the user has been told that the file cannot be read
    bool toldUnsaved_ = false;     ///< the user has been told that answers cannot be saved
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

/// Whether a text is a time of day of the form HH:MM; it may have blanks at its ends.
bool IsValidTime(const std::string& text);
/// Whether a text is a whole number, without `allowZero` one above 0. The text may have blanks at its ends and a sign;
/// otherwise it has only decimal digits. Separators, points and exponents are not allowed, because their meaning
/// depends on the locale.
bool IsWholeNumber(const std::string& text, bool allowZero);

} // namespace voxmate
