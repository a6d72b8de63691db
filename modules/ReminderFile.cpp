#include "modules/ReminderFile.h"

#include "base/RuntimeError.h"
#include "base/Text.h"
#include "modules/Declarations.h"
#include "modules/ReminderList.h"

#include <algorithm>
#include <optional>
#include <utility>
#include <vector>

namespace voxmate
{

namespace
{

// Open only within a load or a save, though a load may last as long as a question is up.
std::unique_ptr<RandomAccessFile> dataFile;
// The list's slots are those of the file, as far as this program knows.
bool fileKnown = false;
// The file was not read to its end when it was read last: the list is not what it holds, and must not replace it.
bool cutShort = false;

constexpr std::size_t DatedCopies = 5;

bool IsBlank(std::string_view title)
{
    return title.find_first_not_of(' ') == std::string_view::npos;
}

// The folder of a path, with the separator at its end.
std::string FolderOf(const std::string& path)
{
    const std::size_t end = path.rfind(PathSeparator());
    return end == std::string::npos ? "" : path.substr(0, end + PathSeparator().size());
}

// Whether the copy holds all that was written to it. Half a slot, and one that was never written, say that it does not;
// a record that is not valid says nothing, as a save may have written it.
bool CopyIsWhole()
{
    const auto copy = Host().Files.OpenRandomExisting(CopyPath(), ReminderSlotSize);
    const std::int64_t count = copy->Count();
    bool whole = true;
    for (std::int32_t number = 1; whole && number <= count; ++number) {
        const std::string_view slot = copy->Get(number);
        const ReminderRecord record = ReadReminder(slot);
        whole = slot.size() == ReminderSlotSize && record.Whole && !IsBlank(record.Title) && !record.Done.empty();
    }
    copy->Close();
    return whole;
}

// Whether what is in the file that is open is what was read from it or written to it last.
bool FileIsAsKnown()
{
    const std::string_view known = SlotsInFile();
    std::int32_t number = 1;
    for (std::size_t at = 0; at < known.size(); at += ReminderSlotSize, ++number) {
        const std::string_view slot = dataFile->Get(number);
        const std::string_view expected = known.substr(at, ReminderSlotSize);
        // The file's end may cut off what fills the last slot.
        if (!expected.starts_with(slot) || expected.find_first_not_of('\0', slot.size()) != std::string_view::npos)
            return false;
    }
    return IsBlank(ReadReminder(dataFile->Get(number)).Title);
}

// What was done to an entry since it was read.
struct Change {
    std::int32_t Id;
    Reminder Before;
    std::optional<Reminder> After; ///< nothing: it is to be deleted
};

std::vector<Change> Changes(std::int16_t skipIndex)
{
    std::vector<Change> changes;
    for (const std::int32_t id : ChangedEntries())
        if (id != skipIndex)
            changes.push_back({id, EntryInFile(id), EntryAt(id)});
    if (InList(skipIndex))
        changes.push_back({skipIndex, EntryInFile(skipIndex), std::nullopt});
    return changes;
}

// An answer to an announcement goes to the reminder as it was announced and to none that has become another.
bool IsAnswer(const Change& change)
{
    return std::ranges::any_of(RemUnsaved, [&](const Answer& answer) { return answer.Before == change.Before; });
}

// Makes the change in the list as it was read anew; false when there is nothing that it could be made to.
bool MakeAgain(const Change& change, std::int16_t& skipIndex)
{
    const auto id = static_cast<std::int16_t>(FindEntry(change.Before, change.Id));
    if (!change.After) {
        skipIndex = id;
        return id != 0;
    }
    if (id != 0)
        StoreReminder(id, *change.After);
    return id != 0 || IsAnswer(change) || FindEntry(*change.After) != 0;
}

// With the file open: reads it anew when another program has changed it, and makes the changes of this one again. False
// when it must not be replaced. A list that could not be read to its end is none: RemindersValid is False until it is.
bool CatchUp(std::int16_t& skipIndex)
{
    if (!fileKnown)
        return !cutShort;
    if (FileIsAsKnown())
        return true;
    const std::vector<Change> changes = Changes(skipIndex);
    RemCount = 0;
    RemindersValid = False;
    if (!ReadDataFile(nullptr))
        return false;
    RemCount = ToInt16(EntryCount());
    RemindersValid = True;
    bool made = true;
    for (const Change& change : changes)
        made = MakeAgain(change, skipIndex) && made;
    return made;
}

void DeleteCopy()
{
    if (CopyExists())
        Host().Files.DeleteFile(CopyPath());
}

// Writes the list to the copy and returns its slots.
std::string WriteCopy(std::int16_t skipIndex)
{
    std::string slots;
    slots.reserve(static_cast<std::size_t>(RemCount) * ReminderSlotSize);
    const auto copy = Host().Files.OpenRandom(CopyPath(), ReminderSlotSize);
    for (std::int32_t id = 1; id <= RemCount; ++id) {
        if (id == skipIndex)
            continue;
        const std::string record = EncodedEntry(id);
        copy->Put(skipIndex == 0 || id < skipIndex ? id : id - 1, record);
        slots += record;
        slots.resize((slots.size() + ReminderSlotSize - 1) / ReminderSlotSize * ReminderSlotSize, '\0');
    }
    copy->Flush();
    copy->Close();
    return slots;
}

// The file has been replaced by the list without that entry.
void Written(std::int16_t skipIndex, std::string&& slots)
{
    // A deleted entry stays in the list until that is read anew.
    fileKnown = skipIndex == 0;
    if (fileKnown)
        EntriesAreSaved(std::move(slots));
    RemUnsaved.clear();
}

void ReplaceDataFile(std::int16_t skipIndex)
{
    DeleteCopy();
    bool written = false;
    std::string slots;
    try {
        slots = WriteCopy(skipIndex);
        written = true;
        CloseDataFile();
        if (DataFileExists())
            Host().Files.DeleteFile(DataPath());
    } catch (const RuntimeError&) {
        // Half a copy must never be taken for one; a whole one may be the only one, and needs no more than its name.
        if (!written || DataFileExists()) {
            DeleteStaleCopy();
            throw;
        }
    }
    Host().Files.MoveFile(CopyPath(), DataPath());
    Written(skipIndex, std::move(slots));
}

std::string Joined(std::initializer_list<std::string_view> parts)
{
    std::string text;
    for (const std::string_view part : parts)
        text += part;
    return text;
}

// Closes the file however a function is left.
struct Closing {
    ~Closing() { DropDataFile(); }
};

} // namespace

std::string DataPath()
{
    return Host().Files.LinkTarget(ReminderFilePath);
}

std::string CopyPath()
{
    // Behind a link the whole name is kept, so that the copy is neither the file itself nor another's of the same name.
    const std::string data = DataPath();
    return data == ReminderFilePath ? ReminderTempPath : data + ".tmp";
}

bool DataFileExists()
{
    return Host().Files.FileExists(DataPath());
}

bool CopyExists()
{
    return Host().Files.FileExists(CopyPath());
}

std::unique_ptr<FileLock> HoldReminders()
{
    return Host().Files.Lock(DataPath());
}

void RecoverReminders()
{
    if (DataFileExists() || !CopyExists())
        return;
    if (CopyIsWhole())
        Host().Files.MoveFile(CopyPath(), DataPath());
    else
        KeepDated(CopyPath());
}

void DeleteStaleCopy()
{
    try {
        DeleteCopy();
    } catch (const RuntimeError&) { // NOLINT(bugprone-empty-catch): the next save deletes it
    }
}

void KeepDated(const std::string& path)
{
    FileSystem& files = Host().Files;
    if (!files.FileExists(path))
        return;
    const std::string data = DataPath();
    const std::string folder = FolderOf(data);
    const std::string base = files.GetBaseName(data) + "-";
    DateTime now = Host().Time.Now();
    const auto name = [&] {
        return base + Padded(now.year, 4) + "-" + Padded(now.month, 2) + "-" + Padded(now.day, 2) + "-" +
               Padded(now.hour, 2) + Padded(now.minute, 2) + Padded(now.second, 2) + ".txt";
    };
    // Two of one second.
    while (files.FileExists(folder + name()))
        ++now.second;
    const std::string made = name();
    files.MoveFile(path, folder + made);
    const std::string two = "[0-9][0-9]";
    std::vector<std::string> kept =
        files.ListFiles(folder, "*-" + two + two + "-" + two + "-" + two + "-" + two + two + two + ".txt");
    // This one stays even when the clock was set back and it seems to be the oldest.
    std::erase_if(kept, [&](const std::string& other) {
        return other == made || other.size() != made.size() || !other.starts_with(base);
    });
    for (std::size_t number = 0; number + DatedCopies <= kept.size(); ++number) {
        try {
            files.DeleteFile(folder + kept[number]);
        } catch (const RuntimeError&) { // NOLINT(bugprone-empty-catch): one more is no harm
        }
    }
}

bool OpenDataFile()
{
    dataFile.reset();
    try {
        dataFile = Host().Files.OpenRandomExisting(DataPath(), ReminderSlotSize);
    } catch (const RuntimeError& error) {
        // A file in a folder that cannot be reached just now is not missing.
        if (error.Number != FileNotFound().Number)
            throw;
    }
    return dataFile != nullptr;
}

void CloseDataFile()
{
    if (dataFile)
        dataFile->Close();
    dataFile.reset();
}

void DropDataFile()
{
    dataFile.reset();
}

bool ReadDataFile(ReminderEditor* editor)
{
    struct Ending {
        ~Ending() { EndList(); }
    } const ending;
    fileKnown = false;
    cutShort = true;
    BeginList(dataFile ? dataFile->Count() : 0);
    while (dataFile) {
        const std::string_view slot = dataFile->Get(EntryCount() + 1);
        if (IsBlank(ReadReminder(slot).Title))
            break;
        const std::optional<ReminderRecord> record = AddEntry(slot);
        if (!record)
            return false;
        if (editor)
            editor->AddListItem(ToInt16(EntryCount()), record->Done == "Y" ? 1 : 2,
                                RemTitles[static_cast<std::size_t>(EntryCount())],
                                Joined({record->Year, "/", record->Month, "/", record->Day}),
                                Joined({record->Hour, ":", record->Minute}));
    }
    fileKnown = true;
    cutShort = false;
    return true;
}

bool WriteReminders(std::int16_t skipIndex)
{
    if (TooLongEntry(skipIndex) != 0)
        throw BadRecordLength();
    const std::unique_ptr<FileLock> lock = HoldReminders();
    const Closing closing;
    RecoverReminders();
    // Without a file the list in memory is all there is.
    if (OpenDataFile() && !CatchUp(skipIndex))
        return false;
    ReplaceDataFile(skipIndex);
    return true;
}

bool AppendRecord(const std::string& record)
{
    if (record.size() > ReminderSlotSize)
        throw BadRecordLength();
    const std::unique_ptr<FileLock> lock = HoldReminders();
    const Closing closing;
    RecoverReminders();
    std::int16_t none = 0;
    if (!OpenDataFile() && RemCount > 0)
        ReplaceDataFile(0);
    else if (dataFile && !CatchUp(none))
        return false;
    CloseDataFile();
    const std::int16_t slot = ToInt16(RemCount + 1);
    const auto file = Host().Files.OpenRandom(DataPath(), ReminderSlotSize);
    file->Put(slot, record);
    file->Flush();
    file->Close();
    return true;
}

void ForgetDataFile()
{
    dataFile.reset();
    fileKnown = cutShort = false;
    BeginList(0);
    EndList();
}

} // namespace voxmate
