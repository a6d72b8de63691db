#include "modules/ReminderFile.h"

#include "base/RuntimeError.h"
#include "base/Text.h"
#include "modules/Format.h"

#include <algorithm>
#include <optional>
#include <utility>

namespace voxmate
{

namespace
{

constexpr std::size_t DatedCopies = 5;

} // namespace

// The folder of a path, with the separator at its end.
std::string ReminderFile::FolderOf(const std::string& path) const
{
    const std::string separator = files_.PathSeparator();
    const std::size_t end = path.rfind(separator);
    return end == std::string::npos ? "" : path.substr(0, end + separator.size());
}

// Whether the copy holds everything that was written to it. It does not if a slot is incomplete or was never written.
// An invalid record proves nothing, because a save may have written it.
bool ReminderFile::CopyIsWhole()
{
    const auto copy = files_.OpenRandomExisting(CopyPath(), ReminderSlotSize);
    const std::int64_t count = copy->Count();
    bool whole = true;
    for (std::int32_t number = 1; whole && number <= count; ++number) {
        const std::string_view slot = copy->Get(number);
        const ReminderRecord record = ReadReminder(slot);
        whole =
            slot.size() == ReminderSlotSize && record.Whole && !Trimmed(record.Title).empty() && !record.Done.empty();
    }
    copy->Close();
    return whole;
}

// Whether the open file still holds what was last read from it or written to it.
bool ReminderFile::FileIsAsKnown()
{
    const std::string_view known = list_.SlotsInFile();
    std::int32_t number = 1;
    for (std::size_t at = 0; at < known.size(); at += ReminderSlotSize, ++number) {
        const std::string_view slot = dataFile_->Get(number);
        const std::string_view expected = known.substr(at, ReminderSlotSize);
        // The zeros that fill up the last slot may be missing at the file's end.
        if (!expected.starts_with(slot) || expected.find_first_not_of('\0', slot.size()) != std::string_view::npos)
            return false;
    }
    return Trimmed(ReadReminder(dataFile_->Get(number)).Title).empty();
}

// A change made to an entry since it was read.
struct ReminderFile::Change {
    std::int32_t Id;
    Reminder Before;
    std::optional<Reminder> After; ///< nothing when the entry is to be deleted
};

std::vector<ReminderFile::Change> ReminderFile::Changes(std::int16_t skipIndex) const
{
    std::vector<Change> changes;
    for (const std::int32_t id : list_.Changed())
        if (id != skipIndex)
            changes.push_back({id, list_.InFile(id), list_.At(id)});
    if (list_.Has(skipIndex))
        changes.push_back({skipIndex, list_.InFile(skipIndex), std::nullopt});
    return changes;
}

// Whether a change is the answer to an announcement. An answer is meant for the reminder as it was announced, not for
// one that has been changed since.
bool ReminderFile::IsAnswer(const Change& change) const
{
    return std::ranges::any_of(list_.RemUnsaved, [&](const Answer& answer) { return answer.Before == change.Before; });
}

// Makes a change again in the list that was read anew. False when the entry to be changed is not there; only an answer
// may then be dropped.
bool ReminderFile::MakeAgain(const Change& change, std::int16_t& skipIndex)
{
    const auto id = static_cast<std::int16_t>(list_.Find(change.Before, change.Id));
    if (!change.After) {
        skipIndex = id;
        return id != 0;
    }
    if (id != 0)
        list_.Set(id, *change.After);
    return id != 0 || IsAnswer(change) || list_.Find(*change.After) != 0;
}

// With the file open: if another program has changed it, reads it anew and makes the changes of this program again.
// False when the file must not be replaced. While the file cannot be read to its end, RemindersValid is False.
bool ReminderFile::CatchUp(std::int16_t& skipIndex)
{
    if (!fileKnown_)
        return !cutShort_;
    if (FileIsAsKnown())
        return true;
    const std::vector<Change> changes = Changes(skipIndex);
    list_.RemCount = 0;
    list_.RemindersValid = False;
    if (!ReadDataFile(nullptr))
        return false;
    list_.RemCount = ToInt16(list_.EntryCount());
    list_.RemindersValid = True;
    bool made = true;
    for (const Change& change : changes)
        made = MakeAgain(change, skipIndex) && made;
    return made;
}

void ReminderFile::DeleteCopy()
{
    if (CopyExists())
        files_.DeleteFile(CopyPath());
}

// Writes the list to the copy and returns its slots.
std::string ReminderFile::WriteCopy(std::int16_t skipIndex)
{
    std::string slots;
    slots.reserve(static_cast<std::size_t>(list_.RemCount) * ReminderSlotSize);
    const auto copy = files_.OpenRandom(CopyPath(), ReminderSlotSize);
    for (std::int32_t id = 1; id <= list_.RemCount; ++id) {
        if (id == skipIndex)
            continue;
        const std::string record = list_.Encoded(id);
        copy->Put(skipIndex == 0 || id < skipIndex ? id : id - 1, record);
        slots += record;
        slots.resize((slots.size() + ReminderSlotSize - 1) / ReminderSlotSize * ReminderSlotSize, '\0');
    }
    copy->Flush();
    copy->Close();
    return slots;
}

// Notes that the file has been replaced by the list without entry `skipIndex`.
void ReminderFile::Written(std::int16_t skipIndex, std::string&& slots)
{
    // A deleted entry stays in the list until the list is read anew.
    fileKnown_ = skipIndex == 0;
    if (fileKnown_)
        list_.EntriesAreSaved(std::move(slots));
    list_.RemUnsaved.clear();
}

void ReminderFile::ReplaceDataFile(std::int16_t skipIndex)
{
    DeleteCopy();
    bool written = false;
    std::string slots;
    try {
        slots = WriteCopy(skipIndex);
        written = true;
        CloseDataFile();
        if (DataFileExists())
            files_.DeleteFile(DataPath());
    } catch (const RuntimeError&) {
        // An incomplete copy must never be taken for a whole one. A whole copy may be all that is left of the
        // reminders; it only still needs its name.
        if (!written || DataFileExists()) {
            DeleteStaleCopy();
            throw;
        }
    }
    files_.MoveFile(CopyPath(), DataPath());
    Written(skipIndex, std::move(slots));
}

std::string ReminderFile::DataPath() const
{
    return files_.LinkTarget(ReminderFilePath);
}

std::string ReminderFile::CopyPath() const
{
    // Behind a link the copy's name contains the whole name of the file, so that it is neither the file itself nor the
    // copy of another file with the same base name.
    const std::string data = DataPath();
    return data == ReminderFilePath ? ReminderTempPath : data + ".tmp";
}

bool ReminderFile::DataFileExists() const
{
    return files_.FileExists(DataPath());
}

bool ReminderFile::CopyExists() const
{
    return files_.FileExists(CopyPath());
}

void ReminderFile::RecoverReminders()
{
    if (DataFileExists() || !CopyExists())
        return;
    if (CopyIsWhole())
        files_.MoveFile(CopyPath(), DataPath());
    else
        KeepDated(CopyPath());
}

void ReminderFile::DeleteStaleCopy()
{
    try {
        DeleteCopy();
    } catch (const RuntimeError&) { // NOLINT(bugprone-empty-catch): the next save deletes it
    }
}

void ReminderFile::KeepDated(const std::string& path)
{
    if (!files_.FileExists(path))
        return;
    const std::string data = DataPath();
    const std::string folder = FolderOf(data);
    const std::string base = files_.GetBaseName(data) + "-";
    DateTime now = clock_.Now();
    const auto name = [&] { return base + Format(now, "yyyy-mm-dd-HHnnss") + ".txt"; };
    // Two files may be renamed within one second.
    while (files_.FileExists(folder + name()))
        ++now.second;
    const std::string made = name();
    files_.MoveFile(path, folder + made);
    const std::string two = "[0-9][0-9]";
    std::vector<std::string> kept =
        files_.ListFiles(folder, "*-" + two + two + "-" + two + "-" + two + "-" + two + two + two + ".txt");
    // The new file is kept even if the clock was set back and it seems to be the oldest.
    std::erase_if(kept, [&](const std::string& other) {
        return other == made || other.size() != made.size() || !other.starts_with(base);
    });
    for (std::size_t number = 0; number + DatedCopies <= kept.size(); ++number) {
        try {
            files_.DeleteFile(folder + kept[number]);
        } catch (const RuntimeError&) { // NOLINT(bugprone-empty-catch): one more is no harm
        }
    }
}

bool ReminderFile::OpenDataFile()
{
    dataFile_.reset();
    try {
        dataFile_ = files_.OpenRandomExisting(DataPath(), ReminderSlotSize);
    } catch (const RuntimeError& error) {
        // Only this error means that the file is missing. Others occur when its folder cannot be reached just now.
        if (error.Number != FileNotFound().Number)
            throw;
    }
    return dataFile_ != nullptr;
}

void ReminderFile::CloseDataFile()
{
    if (dataFile_)
        dataFile_->Close();
    dataFile_.reset();
}

bool ReminderFile::ReadDataFile(ReminderEditor* editor)
{
    struct Ending {
        ReminderList& list;
        ~Ending() { list.EndList(); }
    } const ending{list_};
    fileKnown_ = false;
    cutShort_ = true;
    list_.BeginList(dataFile_ ? dataFile_->Count() : 0);
    while (dataFile_) {
        const std::string_view slot = dataFile_->Get(list_.EntryCount() + 1);
        if (Trimmed(ReadReminder(slot).Title).empty())
            break;
        const std::optional<ReminderRecord> record = list_.AddEntry(slot);
        if (!record)
            return false;
        if (editor)
            editor->AddListItem(
                ToInt16(list_.EntryCount()), record->Done == "Y" ? DoneImage : PendingImage,
                list_.RemTitles[static_cast<std::size_t>(list_.EntryCount())],
                std::string(record->Year).append("/").append(record->Month).append("/").append(record->Day),
                std::string(record->Hour).append(":").append(record->Minute));
    }
    fileKnown_ = true;
    cutShort_ = false;
    return true;
}

bool ReminderFile::WriteReminders(std::int16_t skipIndex)
{
    if (list_.TooLongEntry(skipIndex) != 0)
        throw BadRecordLength();
    const Held held = HoldReminders();
    RecoverReminders();
    // Without a file there is only the list in memory.
    if (OpenDataFile() && !CatchUp(skipIndex))
        return false;
    ReplaceDataFile(skipIndex);
    return true;
}

bool ReminderFile::AppendRecords(const std::vector<std::string>& records)
{
    if (std::ranges::any_of(records, [](const std::string& record) { return record.size() > ReminderSlotSize; }))
        throw BadRecordLength();
    const Held held = HoldReminders();
    RecoverReminders();
    std::int16_t none = 0;
    if (!OpenDataFile() && list_.RemCount > 0)
        ReplaceDataFile(0);
    else if (dataFile_ && !CatchUp(none))
        return false;
    CloseDataFile();
    const std::int16_t last = ToInt16(list_.RemCount + static_cast<std::int64_t>(records.size()));
    const auto file = files_.OpenRandom(DataPath(), ReminderSlotSize);
    std::int32_t slot = last - static_cast<std::int32_t>(records.size());
    for (const std::string& record : records)
        file->Put(++slot, record);
    file->Flush();
    file->Close();
    return true;
}

} // namespace voxmate
