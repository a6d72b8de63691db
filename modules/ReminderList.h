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

/// An answer to an announcement: the reminder as the file has it, and as it is to become.
struct Answer {
    Reminder Before;
    Reminder After;
};

class ReminderList
{
public:
    /// `files` decodes texts that are not UTF-8.
    explicit ReminderList(FileSystem& files) : files_(files) { EndList(); }

    // Parallel arrays, entry k of each belongs to reminder k, counted from 1; entry 0 is not used.
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
    /// The answers that are not in the file yet. They are in the list, and whatever is saved next saves them, too.
    std::vector<Answer> RemUnsaved;

    bool Has(std::int32_t id) const { return id >= 1 && id <= RemCount; }
    /// Entry `id`, which the list has.
    Reminder At(std::int32_t id) const;
    /// Puts new values into entry `id`, if the list has it.
    void Set(std::int32_t id, const Reminder& reminder);
    /// The entry that is this reminder, of several number `preferred` or else the first; 0 for none.
    std::int32_t Find(const Reminder& reminder, std::int32_t preferred = 0) const;

    // For the file.

    /// Empties the list, making room for so many entries if there can be so many.
    void BeginList(std::int64_t count);
    /// Reads a slot into the entry behind the last one and tells what it holds; nothing, and no entry, when it is not
    /// valid. The record's texts are parts of `slot`. Raises run-time error 6 "Overflow" when the list is full.
    std::optional<ReminderRecord> AddEntry(std::string_view slot);
    /// Cuts the list's arrays off behind the last entry.
    void EndList() { Resize(entries_); }
    /// How many entries there are; RemCount says the same once the list is whole.
    std::int32_t EntryCount() const { return entries_; }
    /// What the file had for entry `id` when it was read or written last.
    Reminder InFile(std::int32_t id) const;
    /// The entries that are not as the file had them.
    const std::set<std::int32_t>& Changed() const { return changed_; }
    /// The record of an entry as it is written. A text that is as it was read keeps the bytes that it had.
    std::string Encoded(std::int32_t id) const;
    /// The first entry that does not fit its slot, 0 when all do; entry `skipIndex` is left out.
    std::int32_t TooLongEntry(std::int32_t skipIndex) const;
    bool Fits(std::int32_t id) const;
    /// The slots of the list as the file had them, of 128 bytes each.
    const std::string& SlotsInFile() const { return slots_; }
    /// The file has these slots now, one for each entry in order.
    void EntriesAreSaved(std::string&& slots);

private:
    FileSystem& files_;
    std::int32_t entries_ = 0;
    std::string slots_;              ///< what the file had, entry by entry
    std::set<std::int32_t> changed_; ///< entries that are not as in the file
    std::set<std::int32_t> foreign_; ///< entries with a text in the file that is not UTF-8

    void Resize(std::int32_t count);
    void SetNumbers(std::size_t at, const Reminder& reminder);
    void StoreText(std::string& place, std::string_view bytes, std::int32_t id);
    std::string Shown(std::string_view bytes) const;
    ReminderRecord RecordInFile(std::int32_t id) const;
};

/// The record of a reminder as it is written.
std::string Encoded(const Reminder& reminder);

} // namespace voxmate
