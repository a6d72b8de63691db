// Loads and saves the reminders, and tells the user what went wrong.
#include "modules/Reminders.h"

#include "base/Text.h"
#include "modules/Command.h"
#include "modules/Program.h"
#include "modules/ReminderErrors.h"

#include <algorithm>
#include <optional>
#include <utility>

namespace voxmate
{

namespace
{

// Retries are one second apart. A file that another program holds is usually free again within the first few.
constexpr int QuickRetries = 5;
constexpr int SeldomRetry = 10;

bool IsTooLong(const RuntimeError& error)
{
    return error.Number == BadRecordLength().Number;
}

// Whether another program has the file open, which usually lasts only a moment.
bool IsHeld(const RuntimeError& error)
{
    return error.Number == PermissionDenied().Number;
}

} // namespace

Reminders::Reminders(Program& program)
    : List(program.Host.Files), File(program.Host.Files, program.Host.Time, List), program_(program)
{
}

void Reminders::SwitchReminders(bool on)
{
    program_.Main->EnableReminderTimer(on);
    program_.Main->CheckReminderMenus(on, !on);
}

void Reminders::BeginRetrying()
{
    retries_ = 0;
    program_.Main->EnableReminderRetry(true);
}

// Puts the answers that are not in the file yet into the list that was just read. Answers to reminders that are no
// longer as they were announced are dropped.
void Reminders::AnswerAgain()
{
    std::erase_if(List.RemUnsaved, [this](const Answer& answer) {
        const std::int32_t id = List.Find(answer.Before);
        List.Set(static_cast<std::int16_t>(id), answer.After);
        return id == 0;
    });
}

// Reads the open data file into the list, and with `fillList` into the editor's; true when every record is valid.
bool Reminders::ReadReminderRecords(bool fillList, std::int16_t selectIndex)
{
    List.RemindersValid = False;
    List.RemCount = 0;
    ReminderEditor* editor = fillList ? &program_.Main->Editor() : nullptr;
    if (editor)
        editor->ClearList();
    if (!File.ReadDataFile(editor))
        return false;
    List.RemCount = ToInt16(List.EntryCount());
    List.RemindersValid = True;
    AnswerAgain();
    if (editor && List.RemCount > 0) {
        const std::int16_t selected = selectIndex == 0 ? std::int16_t{1} : selectIndex;
        editor->SelectListItem(selected);
        ShowReminderInEditor(selected);
    } else if (editor) {
        editor->ClearFields();
    }
    return true;
}

// Asks the user what to do with a file that holds something other than reminders.
void Reminders::AskAboutInvalidFile(bool fillList)
{
    if (fillList)
        program_.Main->Editor().UnloadEditor();
    const std::string question = std::string("Reminders file is not having valid data. Its recommended that you delete "
                                             "the below file:") +
                                 CrLf + CrLf + File.ReminderFilePath + CrLf +
                                 "Do you want Voxmate to delete this file and create the new file?";
    if (ReminderMessage(question, vbYesNo + vbCritical, "Decline") == vbYes) {
        File.CloseDataFile();
        File.KeepDated(File.DataPath());
        program_.Host.Files.CreateTextFile(File.DataPath());
        emptied_ = true;
        SwitchReminders(true);
        return;
    }
    const std::string refusal = std::string("Reminders will not be available until following file is deleted:") + CrLf +
                                CrLf + File.ReminderFilePath;
    ReminderMessage(refusal, vbOKOnly + vbCritical, "Decline");
}

// The part of a load during which the file is locked.
void Reminders::LoadHeld(bool fillList, std::int16_t selectIndex)
{
    const ReminderFile::Held held = File.HoldReminders();
    File.RecoverReminders();
    const bool exists = File.OpenDataFile();
    const bool valid = ReadReminderRecords(fillList, selectIndex);
    if (!valid)
        AskAboutInvalidFile(fillList);
    else if (wereEnabled_)
        SwitchReminders(true);
    File.CloseDataFile();
    if (valid && exists)
        File.DeleteStaleCopy();
}

// Loads the list. Returns the run-time error that kept the file from being read, if there was one. While a load asks
// about an invalid file, an announcement window may close and want another load. That one does nothing, because the
// user's decision holds for both.
std::optional<RuntimeError> Reminders::Load(bool fillList, std::int16_t selectIndex)
{
    const Command load(loading_);
    if (!load.Begun())
        return std::nullopt;
    // After a load that could not read the file, reminders are off without the user having wanted it.
    if (!unread_)
        wereEnabled_ = program_.Main->EnableRemindersChecked();
    SwitchReminders(false);
    List.RemindersValid = False;
    List.RemCount = 0;
    unread_ = true;
    emptied_ = false;
    try {
        LoadHeld(fillList, selectIndex);
    } catch (const RuntimeError& error) {
        editorWaits_ = fillList;
        editorIndex_ = selectIndex;
        return error;
    }
    unread_ = false;
    toldUnread_ = false;
    return std::nullopt;
}

// Shows a box about the file, unless one is up already: several announcements may be answered at the same time.
void Reminders::Tell(const std::vector<std::string>& lines)
{
    if (const Command tell(telling_); tell.Begun())
        ReminderMessage(JoinLines(lines), vbOKOnly + vbExclamation, "Decline");
}

void Reminders::TellOfUnreadFile(const RuntimeError& error)
{
    toldUnread_ = true;
    std::vector<std::string> lines{"The reminders could not be read: " + Reason(error), "", File.ReminderFilePath, "",
                                   "Reminders are disabled until the file has been read."};
    if (!List.RemUnsaved.empty())
        lines.emplace_back("Your answer is kept in memory until then.");
    lines.push_back(NumberAndDescription(error));
    Tell(lines);
}

void Reminders::AddWhereTheyAre(std::vector<std::string>& lines)
{
    if (File.DataFileExists()) {
        lines.insert(lines.end(), {"Their file is as it was before this change:", File.ReminderFilePath});
    } else if (File.CopyExists()) {
        lines.insert(lines.end(), {"All of them are in this file:", File.CopyPath()});
    } else {
        // There is only the list in memory.
        lines.insert(lines.end(),
                     {"They are kept in memory until Voxmate ends. Their file should be:", File.ReminderFilePath});
    }
    lines.emplace_back();
}

// Reads the list anew from the file, then tells the user why something could not be saved.
void Reminders::TellOfUnsavedList(const RuntimeError& error, const std::string& reason)
{
    std::vector<std::string> lines{"The reminders could not be saved: " + reason, ""};
    bool read = true;
    if (File.DataFileExists() || File.CopyExists())
        read = !Load(false, 0);
    AddWhereTheyAre(lines);
    if (!read) {
        BeginRetrying();
        toldUnread_ = true;
        lines.emplace_back("Reminders are disabled until the file has been read.");
    }
    lines.push_back(NumberAndDescription(error));
    Tell(lines);
}

void Reminders::TellOfUnsavedAnswers(const RuntimeError& error)
{
    toldUnsaved_ = true;
    std::vector<std::string> lines{"The reminders could not be saved: " + Reason(error), ""};
    AddWhereTheyAre(lines);
    lines.emplace_back("Your answer is kept in memory and will be saved as soon as that is possible.");
    lines.push_back(NumberAndDescription(error));
    Tell(lines);
}

// Saves the list and returns the error, if there was one. For an invalid file that another program has left, the user
// is asked by the load that follows.
std::optional<RuntimeError> Reminders::SaveForAnswers()
{
    try {
        File.WriteReminders(0);
    } catch (const RuntimeError& error) {
        // The file that another program has changed could not be read. It will be read when that is possible.
        if (List.RemindersValid == False && !unread_) {
            wereEnabled_ = program_.Main->EnableRemindersChecked();
            unread_ = true;
        }
        return error;
    }
    toldUnsaved_ = false;
    return std::nullopt;
}

// Reads the file without asking the user anything; true when the list was read.
bool Reminders::ReadQuietly()
{
    const ReminderFile::Held held = File.HoldReminders();
    File.RecoverReminders();
    return File.OpenDataFile() && ReadReminderRecords(false, 0);
}

int Reminders::ReminderMessage(const std::string& text, int style, const std::string& animation1,
                               const std::string& animation2, const std::string& animation3,
                               const std::string& animation4)
{
    return program_.Messages.Announce(text, style, "Voxmate - Reminders", animation1, animation2, animation3,
                                      animation4);
}

void Reminders::LoadReminders(bool fillList, std::int16_t selectIndex)
{
    const std::optional<RuntimeError> error = Load(fillList, selectIndex);
    if (error) {
        BeginRetrying();
        if (!IsHeld(*error) && !toldUnread_)
            TellOfUnreadFile(*error);
    } else if (!List.RemUnsaved.empty() && List.RemindersValid != False) {
        BeginRetrying();
    }
}

void Reminders::TellOfListReadAnew()
{
    ReminderMessage("The reminders have been read anew from their file, and your last change is not among them. "
                    "Please make it again.",
                    vbOKOnly + vbExclamation, "Decline");
}

bool Reminders::TrySaveReminders(std::int16_t skipIndex)
{
    try {
        if (List.RemindersValid != False && File.WriteReminders(skipIndex))
            return true;
    } catch (const RuntimeError& error) {
        const std::int32_t tooLong = IsTooLong(error) ? List.TooLongEntry(skipIndex) : 0;
        TellOfUnsavedList(error, tooLong == 0 ? Reason(error)
                                              : TooLongReason(List.RemTitles[static_cast<std::size_t>(tooLong)],
                                                              List.Encoded(tooLong)));
        return false;
    }
    // The last load found the file invalid, or another program has changed what was to be changed here or has left
    // something invalid.
    LoadReminders(false, 0);
    if (List.RemindersValid != False)
        TellOfListReadAnew();
    return false;
}

bool Reminders::TryAppendReminders(const std::vector<Reminder>& reminders)
{
    if (List.RemindersValid == False)
        LoadReminders(false, 0);
    if (List.RemindersValid == False)
        return false;
    std::vector<std::string> records;
    records.reserve(reminders.size());
    for (const Reminder& reminder : reminders)
        records.push_back(Encoded(reminder));
    try {
        if (File.AppendRecords(records))
            return true;
    } catch (const RuntimeError& error) {
        const auto tooLong = std::ranges::find_if(records, [](const auto& r) { return r.size() > ReminderSlotSize; });
        const auto at = static_cast<std::size_t>(tooLong - records.begin());
        TellOfUnsavedList(error, IsTooLong(error) && tooLong != records.end()
                                     ? TooLongReason(reminders[at].Title, *tooLong)
                                     : Reason(error));
        return false;
    }
    LoadReminders(false, 0);
    return false;
}

bool Reminders::KeepAnswer(const Answer& answer)
{
    const auto id = static_cast<std::int16_t>(List.Find(answer.Before));
    List.Set(id, answer.After);
    if (id != 0 && !List.Fits(id)) {
        List.Set(id, answer.Before);
        return false;
    }
    // Before an answer is in the file, its reminder may be announced and answered again.
    const auto earlier = std::ranges::find(List.RemUnsaved, answer.Before, &Answer::After);
    if (earlier != List.RemUnsaved.end())
        earlier->After = answer.After;
    else
        List.RemUnsaved.push_back(answer);
    return true;
}

void Reminders::SaveAnswers()
{
    if (List.RemUnsaved.empty() || loading_)
        return;
    if (List.RemindersValid == False) {
        BeginRetrying();
        return;
    }
    const std::optional<RuntimeError> error = SaveForAnswers();
    if (!error) {
        LoadReminders(false, 0);
        return;
    }
    BeginRetrying();
    if (!IsHeld(*error) && !toldUnsaved_)
        TellOfUnsavedAnswers(*error);
}

void Reminders::SaveLastAnswers()
{
    if (List.RemUnsaved.empty() || loading_)
        return;
    try {
        if (List.RemindersValid != False || (unread_ && ReadQuietly()))
            File.WriteReminders(0);
    } catch (const RuntimeError&) { // NOLINT(bugprone-empty-catch): the ending program asks no questions
    }
}

void Reminders::RetryReminders()
{
    if (loading_)
        return;
    ++retries_;
    if (retries_ > QuickRetries && retries_ % SeldomRetry != 0)
        return;
    const bool tell = retries_ >= QuickRetries;
    // A load may have to ask something, so it waits until no box is up.
    if (unread_ && program_.Messages.IsBusy == False) {
        // Later the user may have typed something into the editor, and filling it would overwrite that.
        const bool fill = std::exchange(editorWaits_, false) && retries_ <= QuickRetries;
        const std::optional<RuntimeError> error = Load(fill, editorIndex_);
        if (error && tell && !toldUnread_)
            TellOfUnreadFile(*error);
    }
    if (!List.RemUnsaved.empty() && List.RemindersValid != False) {
        const std::optional<RuntimeError> error = SaveForAnswers();
        if (!error)
            LoadReminders(false, 0);
        else if (tell && !toldUnsaved_)
            TellOfUnsavedAnswers(*error);
    }
    if (!unread_ && (List.RemUnsaved.empty() || List.RemindersValid == False))
        program_.Main->EnableReminderRetry(false);
}

void Reminders::TellOfTooLongAnswer(const Reminder& after)
{
    const RuntimeError error = BadRecordLength();
    std::vector<std::string> lines{"The reminders could not be saved: " + TooLongReason(after.Title, Encoded(after)),
                                   ""};
    AddWhereTheyAre(lines);
    lines.push_back(NumberAndDescription(error));
    Tell(lines);
}

void Reminders::EnableReminders()
{
    if (program_.Main->ReminderTimerEnabled())
        return;
    if (RemindersUnread()) {
        wereEnabled_ = true;
        // A user who switches reminders on is told at once when the file cannot be read.
        if (const std::optional<RuntimeError> error = Load(false, 0)) {
            BeginRetrying();
            TellOfUnreadFile(*error);
        }
        // The user has been told why there is no list, or has had the file emptied, which switches reminders on.
        if (List.RemindersValid == False)
            return;
    }
    if (List.RemindersValid == False) {
        ReminderMessage(std::string("Following reminders file is not having valid data:") + CrLf +
                            File.ReminderFilePath + CrLf + CrLf +
                            "To enable reminders delete the above file and then restart the application.",
                        vbOKOnly + vbExclamation, "GetAttention", "GetAttentionContinued", "GetAttentionContinued",
                        "GetAttentionReturn");
        return;
    }
    SwitchReminders(true);
}

void Reminders::DisableReminders()
{
    if (!program_.Main->ReminderTimerEnabled() && !(unread_ && wereEnabled_))
        return;
    if (ReminderMessage("Are you sure you want to disable the reminders ?", vbYesNo + vbQuestion + vbDefaultButton2,
                        "GetAttention", "GetAttentionContinued", "GetAttentionContinued",
                        "GetAttentionReturn") != vbYes)
        return;
    wereEnabled_ = false;
    program_.Main->CheckReminderMenus(false, true);
    program_.Main->EnableReminderTimer(false);
}

void Reminders::ShowAllReminders()
{
    program_.Main->Editor().ShowEditor();
    LoadReminders(true, 1);
}

void Reminders::ShowReminderInEditor(std::int16_t id)
{
    if (List.Has(id))
        program_.Main->Editor().ShowFields(List.At(id));
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
