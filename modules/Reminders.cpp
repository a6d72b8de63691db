// Loading and saving the reminders, and what the user is told of it.
#include "modules/Reminders.h"

#include "base/Text.h"
#include "modules/Declarations.h"
#include "modules/Messages.h"
#include "modules/ReminderErrors.h"
#include "modules/ReminderFile.h"
#include "modules/ReminderList.h"
#include "modules/ReminderRecord.h"

#include <algorithm>
#include <optional>
#include <utility>

namespace voxmate
{

Boolean RemindersValid = False;
std::vector<std::optional<Reminder>> RemAnnounced;
std::vector<Answer> RemUnsaved;
std::vector<std::unique_ptr<NoticeWindow>> RemNoticeWindows;
std::vector<std::unique_ptr<AlertWindow>> RemAlertWindows;

namespace
{

bool loading = false;
bool unread = false;          // the last load could not read the file
bool emptied = false;         // the last load emptied the file, as the user wanted
bool wereEnabled = false;     // reminders were on before the load that could not read the file
bool editorWaits = false;     // that load was to fill the editor's list, too,
std::int16_t editorIndex = 0; // and to select this item
bool telling = false;         // the box about a file's error is up
bool toldUnread = false;      // the user knows that the file cannot be read, or
bool toldUnsaved = false;     // that answers cannot be saved
int retries = 0;

// Retries are a second apart. What another program holds is mostly free again within the first ones.
constexpr int QuickRetries = 5;
constexpr int SeldomRetry = 10;

void SwitchReminders(bool on)
{
    Main().EnableReminderTimer(on);
    Main().CheckReminderMenus(on, !on);
}

void BeginRetrying()
{
    retries = 0;
    Main().EnableReminderRetry(true);
}

// Puts the answers that are not in the file into the list as it was read; those to reminders that are no longer as they
// were announced have gone to none.
void AnswerAgain()
{
    std::erase_if(RemUnsaved, [](const Answer& answer) {
        const std::int32_t id = FindEntry(answer.Before);
        StoreReminder(static_cast<std::int16_t>(id), answer.After);
        return id == 0;
    });
}

// Reads the open data file into the list, and into the editor's; true when every record is valid.
bool ReadReminderRecords(bool fillList, std::int16_t selectIndex)
{
    RemindersValid = False;
    RemCount = 0;
    ReminderEditor* editor = fillList ? &Main().Editor() : nullptr;
    if (editor)
        editor->ClearList();
    if (!ReadDataFile(editor))
        return false;
    RemCount = ToInt16(EntryCount());
    RemindersValid = True;
    AnswerAgain();
    if (editor && RemCount > 0) {
        const std::int16_t selected = selectIndex == 0 ? std::int16_t{1} : selectIndex;
        editor->SelectListItem(selected);
        ShowReminderInEditor(selected);
    } else if (editor) {
        editor->ClearFields();
    }
    return true;
}

// The file has something that is no reminder: what becomes of it is the user's decision.
void AskAboutInvalidFile(bool fillList)
{
    if (fillList)
        Main().Editor().UnloadEditor();
    const std::string question = std::string("Reminders file is not having valid data. Its recommended that you delete "
                                             "the below file:") +
                                 CrLf + CrLf + ReminderFilePath + CrLf +
                                 "Do you want Voxmate to delete this file and create the new file?";
    if (ReminderMessage(question, vbYesNo + vbCritical, "Decline") == vbYes) {
        CloseDataFile();
        KeepDated(DataPath());
        Host().Files.CreateTextFile(DataPath());
        emptied = true;
        SwitchReminders(true);
        return;
    }
    const std::string refusal = std::string("Reminders will not be available until following file is deleted:") + CrLf +
                                CrLf + ReminderFilePath;
    ReminderMessage(refusal, vbOKOnly + vbCritical, "Decline");
}

// What a load does while it holds the file.
void LoadHeld(bool fillList, std::int16_t selectIndex)
{
    const std::unique_ptr<FileLock> lock = HoldReminders();
    RecoverReminders();
    const bool exists = OpenDataFile();
    const bool valid = ReadReminderRecords(fillList, selectIndex);
    if (!valid)
        AskAboutInvalidFile(fillList);
    else if (wereEnabled)
        SwitchReminders(true);
    CloseDataFile();
    if (valid && exists)
        DeleteStaleCopy();
}

// Loads the list; the run-time error that kept the file from being read, if one did. While one load asks about an
// invalid file, announcement windows may end and want another: that one's answer holds for both.
std::optional<RuntimeError> Load(bool fillList, std::int16_t selectIndex)
{
    if (loading)
        return std::nullopt;
    struct Loading {
        Loading() { loading = true; }
        ~Loading()
        {
            DropDataFile();
            loading = false;
        }
    } const state;
    // What a load that could not read the file has switched off does not tell what the user wants.
    if (!unread)
        wereEnabled = Main().EnableRemindersChecked();
    SwitchReminders(false);
    RemindersValid = False;
    RemCount = 0;
    unread = true;
    emptied = false;
    try {
        LoadHeld(fillList, selectIndex);
    } catch (const RuntimeError& error) {
        editorWaits = fillList;
        editorIndex = selectIndex;
        return error;
    }
    unread = false;
    toldUnread = false;
    return std::nullopt;
}

// Shows a box about the file, unless one is up already: several announcements may be answered at a time.
void Tell(const std::vector<std::string>& lines)
{
    if (telling)
        return;
    struct Telling {
        Telling() { telling = true; }
        ~Telling() { telling = false; }
    } const state;
    ReminderMessage(JoinLines(lines), vbOKOnly + vbExclamation, "Decline");
}

bool IsTooLong(const RuntimeError& error)
{
    return error.Number == BadRecordLength().Number;
}

// Another program has the file, for a moment as a rule.
bool IsHeld(const RuntimeError& error)
{
    return error.Number == PermissionDenied().Number;
}

void TellOfUnreadFile(const RuntimeError& error)
{
    toldUnread = true;
    std::vector<std::string> lines{"The reminders could not be read: " + Reason(error), "", ReminderFilePath, "",
                                   "Reminders are disabled until the file has been read."};
    if (!RemUnsaved.empty())
        lines.emplace_back("Your answer is kept in memory until then.");
    lines.push_back(NumberAndDescription(error));
    Tell(lines);
}

void AddWhereTheyAre(std::vector<std::string>& lines)
{
    if (DataFileExists()) {
        lines.insert(lines.end(), {"Their file is as it was before this change:", ReminderFilePath});
    } else if (CopyExists()) {
        lines.insert(lines.end(), {"All of them are in this file:", CopyPath()});
    } else {
        // The list in memory is all there is.
        lines.insert(lines.end(),
                     {"They are kept in memory until Voxmate ends. Their file should be:", ReminderFilePath});
    }
    lines.emplace_back();
}

// Tells why something could not be saved, once the list is what the file holds again.
void TellOfUnsavedList(const RuntimeError& error, const std::string& reason)
{
    std::vector<std::string> lines{"The reminders could not be saved: " + reason, ""};
    bool read = true;
    if (DataFileExists() || CopyExists())
        read = !Load(false, 0);
    AddWhereTheyAre(lines);
    if (!read) {
        BeginRetrying();
        toldUnread = true;
        lines.emplace_back("Reminders are disabled until the file has been read.");
    }
    lines.push_back(NumberAndDescription(error));
    Tell(lines);
}

void TellOfUnsavedAnswers(const RuntimeError& error)
{
    toldUnsaved = true;
    std::vector<std::string> lines{"The reminders could not be saved: " + Reason(error), ""};
    AddWhereTheyAre(lines);
    lines.emplace_back("Your answer is kept in memory and will be saved as soon as that is possible.");
    lines.push_back(NumberAndDescription(error));
    Tell(lines);
}

// Saves the list; the error, if there was one. Where another program has left an invalid file, the user is asked.
std::optional<RuntimeError> SaveForAnswers()
{
    try {
        WriteReminders(0);
    } catch (const RuntimeError& error) {
        // What another program has made of the file could not be read: it is read when that can be done.
        if (RemindersValid == False && !unread) {
            wereEnabled = Main().EnableRemindersChecked();
            unread = true;
        }
        return error;
    }
    toldUnsaved = false;
    return std::nullopt;
}

// Reads the file without asking the user anything; true when there is a list now.
bool ReadQuietly()
{
    const std::unique_ptr<FileLock> lock = HoldReminders();
    RecoverReminders();
    const bool valid = OpenDataFile() && ReadReminderRecords(false, 0);
    DropDataFile();
    return valid;
}

} // namespace

void ResetReminders()
{
    ForgetDataFile();
    loading = unread = emptied = wereEnabled = editorWaits = telling = toldUnread = toldUnsaved = false;
    retries = 0;
    RemUnsaved.clear();
    RemCount = 0;
    RemindersValid = False;
    RemNoticeWindows.clear();
    RemAlertWindows.clear();
    RemAnnounced.clear();
}

int ReminderMessage(const std::string& text, int style, const std::string& animation1, const std::string& animation2,
                    const std::string& animation3, const std::string& animation4)
{
    return Announce(text, style, "Voxmate - Reminders", animation1, animation2, animation3, animation4);
}

void LoadReminders(bool fillList, std::int16_t selectIndex)
{
    const std::optional<RuntimeError> error = Load(fillList, selectIndex);
    if (error) {
        BeginRetrying();
        if (!IsHeld(*error) && !toldUnread)
            TellOfUnreadFile(*error);
    } else if (!RemUnsaved.empty() && RemindersValid != False) {
        BeginRetrying();
    }
}

void ReadRemindersNow()
{
    if (const std::optional<RuntimeError> error = Load(false, 0)) {
        BeginRetrying();
        TellOfUnreadFile(*error);
    }
}

void SaveReminders(std::int16_t skipIndex)
{
    WriteReminders(skipIndex);
}

void AppendReminder(const Reminder& reminder)
{
    AppendRecord(Encoded(reminder));
}

void TellOfListReadAnew()
{
    ReminderMessage("The reminders have been read anew from their file, and your last change is not among them. "
                    "Please make it again.",
                    vbOKOnly + vbExclamation, "Decline");
}

bool TrySaveReminders(std::int16_t skipIndex)
{
    if (RemindersValid == False) {
        LoadReminders(false, 0);
        if (RemindersValid != False)
            TellOfListReadAnew();
        return false;
    }
    try {
        if (WriteReminders(skipIndex))
            return true;
    } catch (const RuntimeError& error) {
        const std::int32_t tooLong = IsTooLong(error) ? TooLongEntry(skipIndex) : 0;
        TellOfUnsavedList(
            error, tooLong == 0 ? Reason(error)
                                : TooLongReason(RemTitles[static_cast<std::size_t>(tooLong)], EncodedEntry(tooLong)));
        return false;
    }
    // Another program has changed what was to be changed here, or has left something invalid.
    LoadReminders(false, 0);
    if (RemindersValid != False)
        TellOfListReadAnew();
    return false;
}

bool TryAppendReminder(const Reminder& reminder)
{
    if (RemindersValid == False)
        LoadReminders(false, 0);
    if (RemindersValid == False)
        return false;
    const std::string record = Encoded(reminder);
    try {
        if (AppendRecord(record))
            return true;
    } catch (const RuntimeError& error) {
        TellOfUnsavedList(error, IsTooLong(error) ? TooLongReason(reminder.Title, record) : Reason(error));
        return false;
    }
    LoadReminders(false, 0);
    return false;
}

bool KeepAnswer(const Answer& answer)
{
    const auto id = static_cast<std::int16_t>(FindEntry(answer.Before));
    StoreReminder(id, answer.After);
    if (id != 0 && !EntryFits(id)) {
        StoreReminder(id, answer.Before);
        return false;
    }
    // A reminder whose answer is not in the file yet may be announced and answered again.
    const auto earlier = std::ranges::find(RemUnsaved, answer.Before, &Answer::After);
    if (earlier != RemUnsaved.end())
        earlier->After = answer.After;
    else
        RemUnsaved.push_back(answer);
    return true;
}

void SaveAnswers()
{
    if (RemUnsaved.empty() || loading)
        return;
    if (RemindersValid == False) {
        BeginRetrying();
        return;
    }
    const std::optional<RuntimeError> error = SaveForAnswers();
    if (!error) {
        LoadReminders(false, 0);
        return;
    }
    BeginRetrying();
    if (!IsHeld(*error) && !toldUnsaved)
        TellOfUnsavedAnswers(*error);
}

void SaveLastAnswers()
{
    if (RemUnsaved.empty() || loading)
        return;
    try {
        if (RemindersValid != False || (unread && ReadQuietly()))
            WriteReminders(0);
    } catch (const RuntimeError&) { // NOLINT(bugprone-empty-catch): the end is no time to ask
        DropDataFile();
    }
}

void RetryReminders()
{
    if (loading)
        return;
    ++retries;
    if (retries > QuickRetries && retries % SeldomRetry != 0)
        return;
    const bool tell = retries >= QuickRetries;
    // A load may want to ask something, for which it waits until no box is up.
    if (unread && IsBusy == False) {
        // Later the user may have typed something into the editor, which filling it would overwrite.
        const bool fill = std::exchange(editorWaits, false) && retries <= QuickRetries;
        const std::optional<RuntimeError> error = Load(fill, editorIndex);
        if (error && tell && !toldUnread)
            TellOfUnreadFile(*error);
    }
    if (!RemUnsaved.empty() && RemindersValid != False) {
        const std::optional<RuntimeError> error = SaveForAnswers();
        if (!error)
            LoadReminders(false, 0);
        else if (tell && !toldUnsaved)
            TellOfUnsavedAnswers(*error);
    }
    if (!unread && (RemUnsaved.empty() || RemindersValid == False))
        Main().EnableReminderRetry(false);
}

void TellOfTooLongAnswer(const Reminder& after)
{
    const RuntimeError error = BadRecordLength();
    std::vector<std::string> lines{"The reminders could not be saved: " + TooLongReason(after.Title, Encoded(after)),
                                   ""};
    AddWhereTheyAre(lines);
    lines.push_back(NumberAndDescription(error));
    Tell(lines);
}

bool RemindersWanted()
{
    return unread && wereEnabled;
}

void WantReminders(bool wanted)
{
    wereEnabled = wanted;
}

bool RemindersUnread()
{
    return unread || emptied;
}

void ShowReminderInEditor(std::int16_t id)
{
    if (!InList(id))
        return;
    const auto at = static_cast<std::size_t>(id);
    Main().Editor().ShowFields(RemTitles[at], RemDays[at], RemMonths[at], RemYears[at],
                               Padded(RemHours[at], 2) + ":" + Padded(RemMinutes[at], 2), RemDescs[at],
                               RemDone[at] != "N");
}

bool IsValidTime(const std::string& text)
{
    return ParseTime(text).has_value();
}

bool IsWholeNumber(const std::string& text, bool allowZero)
{
    const std::optional<std::int32_t> number = WholeNumber(text);
    return number && (allowZero || *number > 0);
}

} // namespace voxmate
