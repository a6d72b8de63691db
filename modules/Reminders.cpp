// The list of reminders and its file.
#include "modules/Reminders.h"

#include "base/Text.h"
#include "modules/Declarations.h"
#include "modules/Messages.h"
#include "modules/ReminderErrors.h"
#include "modules/ReminderRecord.h"

#include <algorithm>
#include <limits>
#include <optional>

namespace voxmate
{

std::vector<std::string> RemTitles;
std::vector<std::int16_t> RemDays;
std::vector<std::int16_t> RemMonths;
std::vector<std::int16_t> RemYears;
std::vector<std::int16_t> RemHours;
std::vector<std::int16_t> RemMinutes;
std::vector<std::string> RemDescs;
std::vector<std::string> RemDone;
std::int16_t RemCount = 0;
Boolean RemindersValid = False;
std::vector<std::optional<Reminder>> RemAnnounced;
std::vector<Reminder> RemUnsaved;
std::vector<std::unique_ptr<NoticeWindow>> RemNoticeWindows;
std::vector<std::unique_ptr<AlertWindow>> RemAlertWindows;

namespace
{

constexpr std::int32_t MostReminders = std::numeric_limits<std::int16_t>::max();

// Open only within a load, though that may last as long as a question is up.
std::unique_ptr<RandomAccessFile> dataFile;
bool loading = false;
bool unread = false;  // the last load could not read the file
bool telling = false; // the box about a file's error is up

void SwitchReminders(bool on)
{
    Main().EnableReminderTimer(on);
    Main().CheckReminderMenus(on, !on);
}

void CloseDataFile()
{
    if (dataFile)
        dataFile->Close();
    dataFile.reset();
}

bool DataFileExists()
{
    return Host().Files.FileExists(ReminderFilePath);
}

bool TempFileExists()
{
    return Host().Files.FileExists(ReminderTempPath);
}

// A save that ended between deleting the old file and renaming the new one has left all reminders in the new one, under
// its temporary name. Opening the missing file would make an empty one, and the next save would delete them.
void RecoverReminders()
{
    if (!DataFileExists() && TempFileExists())
        Host().Files.MoveFile(ReminderTempPath, ReminderFilePath);
}

// Room for so many reminders, if there can be so many.
void ReserveList(std::int64_t count)
{
    const auto size = static_cast<std::size_t>(std::min<std::int64_t>(count, MostReminders)) + 1;
    for (auto* texts : {&RemTitles, &RemDescs, &RemDone})
        texts->reserve(size);
    for (auto* numbers : {&RemDays, &RemMonths, &RemYears, &RemHours, &RemMinutes})
        numbers->reserve(size);
}

// Cuts the list off, or fills it up, to this number of entries.
void ResizeList(std::int32_t count)
{
    const auto size = static_cast<std::size_t>(count) + 1;
    for (auto* texts : {&RemTitles, &RemDescs, &RemDone})
        texts->resize(size);
    for (auto* numbers : {&RemDays, &RemMonths, &RemYears, &RemHours, &RemMinutes})
        numbers->resize(size);
}

// Puts a record into entry `id`, which the list has or which is its next.
void StoreRecord(std::int32_t id, const ReminderRecord& record, const ReminderSchedule& schedule)
{
    const auto at = static_cast<std::size_t>(id);
    if (at >= RemTitles.size())
        ResizeList(id);
    // Assigned to what is there, so that a list read anew needs no new memory.
    RemTitles[at].assign(record.Title);
    RemDays[at] = schedule.Day;
    RemMonths[at] = schedule.Month;
    RemYears[at] = schedule.Year;
    RemHours[at] = schedule.Time.Hour;
    RemMinutes[at] = schedule.Time.Minute;
    RemDescs[at].assign(record.Description);
    RemDone[at].assign(record.Done);
}

std::string Joined(std::initializer_list<std::string_view> parts)
{
    std::string text;
    for (const std::string_view part : parts)
        text += part;
    return text;
}

// Reads the records of the open data file into the list, up to the first that is not valid or the end; true when all
// are valid. `count` is how many were stored.
bool ReadRecords(ReminderEditor* editor, std::int32_t& count)
{
    ReserveList(dataFile->Count());
    for (;;) {
        const ReminderRecord record = ReadReminder(dataFile->Get(count + 1));
        if (record.Title.find_first_not_of(' ') == std::string_view::npos)
            return true;
        const std::optional<ReminderSchedule> schedule = Validate(record);
        if (!schedule)
            return false;
        if (count == MostReminders)
            throw Overflow();
        ++count;
        StoreRecord(count, record, *schedule);
        if (editor)
            editor->AddListItem(ToInt16(count), record.Done == "Y" ? 1 : 2, std::string(record.Title),
                                Joined({record.Year, "/", record.Month, "/", record.Day}),
                                Joined({record.Hour, ":", record.Minute}));
    }
}

// Reads the open data file into the list, and into the editor's; true when every record is valid.
bool ReadReminderRecords(bool fillList, std::int16_t selectIndex)
{
    RemindersValid = False;
    RemCount = 0;
    ReminderEditor* editor = fillList ? &Main().Editor() : nullptr;
    if (editor)
        editor->ClearList();
    std::int32_t count = 0;
    try {
        const bool valid = ReadRecords(editor, count);
        ResizeList(count);
        if (!valid)
            return false;
    } catch (const RuntimeError&) {
        ResizeList(count);
        throw;
    }
    RemCount = ToInt16(count);
    if (editor && RemCount > 0) {
        const std::int16_t selected = selectIndex == 0 ? std::int16_t{1} : selectIndex;
        editor->SelectListItem(selected);
        ShowReminderInEditor(selected);
    } else if (editor) {
        editor->ClearFields();
    }
    RemindersValid = True;
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
        Host().Files.CreateTextFile(ReminderFilePath);
        SwitchReminders(true);
        return;
    }
    const std::string refusal = std::string("Reminders will not be available until following file is deleted:") + CrLf +
                                CrLf + ReminderFilePath;
    ReminderMessage(refusal, vbOKOnly + vbCritical, "Decline");
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
            loading = false;
            dataFile.reset();
        }
    } const state;
    const bool remindersWereEnabled = Main().EnableRemindersChecked();
    SwitchReminders(false);
    RemindersValid = False;
    RemCount = 0;
    unread = true;
    try {
        RecoverReminders();
        dataFile = Host().Files.OpenRandom(ReminderFilePath, ReminderSlotSize);
        if (!ReadReminderRecords(fillList, selectIndex))
            AskAboutInvalidFile(fillList);
        else if (remindersWereEnabled)
            SwitchReminders(true);
        unread = false;
        CloseDataFile();
    } catch (const RuntimeError& error) {
        return error;
    }
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

void TellOfUnreadFile(const RuntimeError& error)
{
    Tell({"The reminders could not be read: " + Reason(error), "", ReminderFilePath, "",
          "Reminders are disabled until the file has been read.", NumberAndDescription(error)});
}

// Tells why something could not be saved, once the list is what the file holds again.
void TellOfUnsavedList(const RuntimeError& error, const std::string& reason)
{
    std::vector<std::string> lines{"The reminders could not be saved: " + reason, ""};
    bool read = true;
    if (DataFileExists() || TempFileExists()) {
        read = !Load(false, 0);
        const bool whole = DataFileExists();
        lines.emplace_back(whole ? "Their file is as it was before this change:" : "All of them are in this file:");
        lines.push_back(whole ? ReminderFilePath : ReminderTempPath);
    } else {
        // The list in memory is all there is.
        lines.emplace_back("They are kept in memory until Voxmate ends. Their file should be:");
        lines.push_back(ReminderFilePath);
    }
    lines.emplace_back();
    if (!read)
        lines.emplace_back("Reminders are disabled until the file has been read.");
    lines.push_back(NumberAndDescription(error));
    Tell(lines);
}

// After a save that could not give the new file its name: whether it has it now.
bool CompletedLater()
{
    try {
        const bool cutOff = !DataFileExists() && TempFileExists();
        RecoverReminders();
        return cutOff;
    } catch (const RuntimeError&) {
        return false;
    }
}

std::string EncodedEntry(std::int32_t id)
{
    const auto at = static_cast<std::size_t>(id);
    const std::string day = Padded(RemDays[at], 2);
    const std::string month = Padded(RemMonths[at], 2);
    const std::string year = Padded(RemYears[at], 4);
    const std::string hour = Padded(RemHours[at], 2);
    const std::string minute = Padded(RemMinutes[at], 2);
    return WriteReminder({RemTitles[at], day, month, year, hour, minute, RemDescs[at], RemDone[at]});
}

std::string Encoded(const Reminder& reminder)
{
    const std::string day = Padded(reminder.Day, 2);
    const std::string month = Padded(reminder.Month, 2);
    const std::string year = Padded(reminder.Year, 4);
    const std::string hour = Padded(reminder.Hour, 2);
    const std::string minute = Padded(reminder.Minute, 2);
    return WriteReminder(
        {reminder.Title, day, month, year, hour, minute, reminder.Description, reminder.Done ? "Y" : "N"});
}

bool Fits(std::int32_t id)
{
    // Most are so short that whatever their numbers need they fit.
    constexpr std::size_t mostDigits = 6; // -32768
    constexpr std::size_t room = ReminderSlotSize - std::size_t{8} * 2 - 5 * mostDigits;
    const auto at = static_cast<std::size_t>(id);
    return RemTitles[at].size() + RemDescs[at].size() + RemDone[at].size() <= room ||
           EncodedEntry(id).size() <= ReminderSlotSize;
}

// The first entry that does not fit its slot, 0 when all do.
std::int32_t TooLongEntry(std::int16_t skipIndex)
{
    for (std::int32_t id = 1; id <= RemCount; ++id)
        if (id != skipIndex && !Fits(id))
            return id;
    return 0;
}

void WriteTempFile(std::int16_t skipIndex)
{
    const std::unique_ptr<RandomAccessFile> tempFile = Host().Files.OpenRandom(ReminderTempPath, ReminderSlotSize);
    for (std::int32_t id = 1; id <= RemCount; ++id)
        if (id != skipIndex)
            tempFile->Put(skipIndex == 0 || id < skipIndex ? id : id - 1, EncodedEntry(id));
    tempFile->Flush();
    tempFile->Close();
}

void DeleteTempFile()
{
    if (TempFileExists())
        Host().Files.DeleteFile(ReminderTempPath);
}

void DeleteTempFileIfPossible()
{
    try {
        DeleteTempFile();
    } catch (const RuntimeError&) { // NOLINT(bugprone-empty-catch): the next save deletes it
    }
}

} // namespace

void ResetReminders()
{
    dataFile.reset();
    loading = false;
    unread = false;
    telling = false;
    ResizeList(0);
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
    if (const std::optional<RuntimeError> error = Load(fillList, selectIndex))
        TellOfUnreadFile(*error);
}

void SaveReminders(std::int16_t skipIndex)
{
    if (TooLongEntry(skipIndex) != 0)
        throw BadRecordLength();
    DeleteTempFile();
    bool written = false;
    try {
        WriteTempFile(skipIndex);
        written = true;
        CloseDataFile();
        if (DataFileExists())
            Host().Files.DeleteFile(ReminderFilePath);
    } catch (const RuntimeError&) {
        // Half a copy must never be taken for one; a whole one may be the only one.
        if (!written || DataFileExists())
            DeleteTempFileIfPossible();
        throw;
    }
    Host().Files.MoveFile(ReminderTempPath, ReminderFilePath);
}

void AppendReminder(const Reminder& reminder)
{
    const std::string record = Encoded(reminder);
    if (record.size() > ReminderSlotSize)
        throw BadRecordLength();
    const std::int16_t slot = ToInt16(RemCount + 1);
    RecoverReminders();
    const std::unique_ptr<RandomAccessFile> file = Host().Files.OpenRandom(ReminderFilePath, ReminderSlotSize);
    file->Put(slot, record);
    file->Flush();
    file->Close();
}

bool TrySaveReminders(std::int16_t skipIndex)
{
    if (RemindersValid == False) {
        LoadReminders(false, 0);
        if (RemindersValid != False)
            ReminderMessage(
                "The reminders have been read anew from their file, and your last change is not among them. "
                "Please make it again.",
                vbOKOnly + vbExclamation, "Decline");
        return false;
    }
    try {
        SaveReminders(skipIndex);
    } catch (const RuntimeError& error) {
        if (CompletedLater())
            return true;
        const auto tooLong = static_cast<std::size_t>(IsTooLong(error) ? TooLongEntry(skipIndex) : 0);
        TellOfUnsavedList(error, tooLong == 0 ? Reason(error) : TooLongReason(RemTitles[tooLong], RemDescs[tooLong]));
        return false;
    }
    RemUnsaved.clear();
    return true;
}

bool RemindersUnread()
{
    return unread;
}

bool TryAppendReminder(const Reminder& reminder)
{
    if (RemindersValid == False)
        LoadReminders(false, 0);
    if (RemindersValid == False)
        return false;
    try {
        AppendReminder(reminder);
    } catch (const RuntimeError& error) {
        TellOfUnsavedList(error,
                          IsTooLong(error) ? TooLongReason(reminder.Title, reminder.Description) : Reason(error));
        return false;
    }
    return true;
}

void StoreReminder(std::int16_t id, const Reminder& reminder)
{
    if (id < 1 || id > RemCount)
        return;
    const auto at = static_cast<std::size_t>(id);
    RemTitles[at] = reminder.Title;
    RemDays[at] = reminder.Day;
    RemMonths[at] = reminder.Month;
    RemYears[at] = reminder.Year;
    RemHours[at] = reminder.Hour;
    RemMinutes[at] = reminder.Minute;
    RemDescs[at] = reminder.Description;
    RemDone[at] = reminder.Done ? "Y" : "N";
}

void ShowReminderInEditor(std::int16_t id)
{
    if (id < 1 || id > RemCount)
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
