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

// Whether the copy holds all that was written to it. Half a slot, and one that was never written, say that it does not;
// a record that is not valid says nothing, as a save may have written it.
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

// Whether what is in the file that is open is what was read from it or written to it last.
bool ReminderFile::FileIsAsKnown()
{
    const std::string_view known = list_.SlotsInFile();
    std::int32_t number = 1;
    for (std::size_t at = 0; at < known.size(); at += ReminderSlotSize, ++number) {
        const std::string_view slot = dataFile_->Get(number);
        const std::string_view expected = known.substr(at, ReminderSlotSize);
        // The file's end may cut off what fills the last slot.
        if (!expected.starts_with(slot) || expected.find_first_not_of('\0', slot.size()) != std::string_view::npos)
            return false;
    }
    return Trimmed(ReadReminder(dataFile_->Get(number)).Title).empty();
}

// What was done to an entry since it was read.
struct ReminderFile::Change {
    std::int32_t Id;
    Reminder Before;
    std::optional<Reminder> After; ///< nothing: it is to be deleted
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

// An answer to an announcement goes to the reminder as it was announced and to none that has become another.
bool ReminderFile::IsAnswer(const Change& change) const
{
    return std::ranges::any_of(list_.RemUnsaved, [&](const Answer& answer) { return answer.Before == change.Before; });
}

// Makes the change in the list as it was read anew; false when there is nothing that it could be made to.
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

// With the file open: reads it anew when another program has changed it, and makes the changes of this one again. False
// when it must not be replaced. A list that could not be read to its end is none: RemindersValid is False until it is.
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

// The file has been replaced by the list without that entry.
void ReminderFile::Written(std::int16_t skipIndex, std::string&& slots)
{
    // A deleted entry stays in the list until that is read anew.
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
        // Half a copy must never be taken for one; a whole one may be the only one, and needs no more than its name.
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
    // Behind a link the whole name is kept, so that the copy is neither the file itself nor another's of the same name.
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
    // Two of one second.
    while (files_.FileExists(folder + name()))
        ++now.second;
    const std::string made = name();
    files_.MoveFile(path, folder + made);
    const std::string two = "[0-9][0-9]";
    std::vector<std::string> kept =
        files_.ListFiles(folder, "*-" + two + two + "-" + two + "-" + two + "-" + two + two + two + ".txt");
    // This one stays even when the clock was set back and it seems to be the oldest.
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
        // A file in a folder that cannot be reached just now is not missing.
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
                ToInt16(list_.EntryCount()), record->Done == "Y" ? 1 : 2,
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
    // Without a file the list in memory is all there is.
    if (OpenDataFile() && !CatchUp(skipIndex))
        return false;
    ReplaceDataFile(skipIndex);
    return true;
}

bool ReminderFile::AppendRecord(const std::string& record)
{
    if (record.size() > ReminderSlotSize)
        throw BadRecordLength();
    const Held held = HoldReminders();
    RecoverReminders();
    std::int16_t none = 0;
    if (!OpenDataFile() && list_.RemCount > 0)
        ReplaceDataFile(0);
    else if (dataFile_ && !CatchUp(none))
        return false;
    CloseDataFile();
    const std::int16_t slot = ToInt16(list_.RemCount + 1);
    const auto file = files_.OpenRandom(DataPath(), ReminderSlotSize);
    file->Put(slot, record);
    file->Flush();
    file->Close();
    return true;
}

} // namespace voxmate
