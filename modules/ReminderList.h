// The list of reminders in memory.
#pragma once

#include "base/Checked.h"
#include "modules/ReminderRecord.h"
#include "platform/FileSystem.h"

#include <cstddef>
#include <cstdint>
#include <optional>
#include <set>
#include <string>
#include <string_view>
#include <vector>

namespace voxmate
{

/// An answer to an announcement: the reminder as it is in the file, and as the answer makes it.
struct Answer {
    Reminder Before;
    Reminder After;
};

class ReminderList
{
public:
    /// `files` decodes texts that are not UTF-8.
    explicit ReminderList(FileSystem& files) : files_(files) { EndList(); }

    // Parallel arrays: entry k of each belongs to reminder k, counted from 1. Entry 0 is not used.
    std::vector<std::string> RemTitles;
    std::vector<std::int16_t> RemDays;
    std::vector<std::int16_t> RemMonths;
    std::vector<std::int16_t> RemYears;
    std::vector<std::int16_t> RemHours;
    std::vector<std::int16_t> RemMinutes;
    std::vector<std::string> RemDescs;
    std::vector<std::string> RemDone; ///< "Y" or "N"
    std::int16_t RemCount = 0;
    /// The last load found the file valid.
    Boolean RemindersValid = False;
    /// The answers that are not in the file yet. They are in the list already, so the next save includes them.
    std::vector<Answer> RemUnsaved;

    bool Has(std::int32_t id) const { return id >= 1 && id <= RemCount; }
    /// Entry `id`, which must exist.
    Reminder At(std::int32_t id) const;
    /// Puts new values into entry `id`, if it exists.
    void Set(std::int32_t id, const Reminder& reminder);
    /// The number of the entry that equals this reminder, 0 for none. Among equal entries it is `preferred`, if that is
    /// one of them, or else the first.
    std::int32_t Find(const Reminder& reminder, std::int32_t preferred = 0) const;

    // For the file.

    /// Empties the list and reserves memory for `count` entries, or for as many as a list can have.
    void BeginList(std::int64_t count);
    /// Adds an entry with the content of a slot and returns its record, whose texts are parts of `slot`. Adds none and
    /// returns nothing when the record is not valid. Raises run-time error 6 "Overflow" when the list is full.
    std::optional<ReminderRecord> AddEntry(std::string_view slot);
    /// Cuts the list's arrays off behind the last entry.
    void EndList() { Resize(entries_); }
    /// The number of entries read; RemCount is the same once the list is complete.
    std::int32_t EntryCount() const { return entries_; }
    /// Entry `id` as it was in the file when that was last read or written.
    Reminder InFile(std::int32_t id) const;
    /// The numbers of the entries that differ from the file.
    const std::set<std::int32_t>& Changed() const { return changed_; }
    /// The record of an entry as it is written. A text that has not been changed keeps its original bytes.
    std::string Encoded(std::int32_t id) const;
    /// The first entry that does not fit its slot, 0 when all do; entry `skipIndex` is left out.
    std::int32_t TooLongEntry(std::int32_t skipIndex) const;
    bool Fits(std::int32_t id) const;
    /// The slots of the list as they were in the file, 128 bytes each.
    const std::string& SlotsInFile() const { return slots_; }
    /// Notes that the file now has these slots, one for each entry in order.
    void EntriesAreSaved(std::string&& slots);

private:
    FileSystem& files_;
    std::int32_t entries_ = 0;
    std::string slots_;              ///< the slots of the entries as they were in the file
    std::set<std::int32_t> changed_; ///< entries that differ from the file
    std::set<std::int32_t> foreign_; ///< entries with a text that is not UTF-8 in the file

    void Resize(std::int32_t count);
    void SetNumbers(std::size_t at, const Reminder& reminder);
    void StoreText(std::string& place, std::string_view bytes, std::int32_t id);
    std::string Shown(std::string_view bytes) const;
    ReminderRecord RecordInFile(std::int32_t id) const;
};

/// The record of a reminder as it is written.
std::string Encoded(const Reminder& reminder);

} // namespace voxmate
