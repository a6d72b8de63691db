// The entries of the list of reminders as the reminders' own code handles them; others see modules/Reminders.h alone.
#pragma once

#include "modules/ReminderRecord.h"
#include "modules/Reminders.h"

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace voxmate
{

/// Empties the list, making room for so many entries if there can be so many.
void BeginList(std::int64_t count);
/// Reads a slot into the entry behind the last one and tells what it holds; nothing, and no entry, when it is not
/// valid. The record's texts are parts of `slot`. Raises run-time error 6 "Overflow" when the list is full.
std::optional<ReminderRecord> AddEntry(std::string_view slot);
/// Cuts the list's arrays off behind the last entry.
void EndList();
/// How many entries there are; RemCount says the same once the list is whole.
std::int32_t EntryCount();

bool InList(std::int32_t id);
/// Entry `id` of the list, which has it.
Reminder EntryAt(std::int32_t id);
/// What the file had for entry `id` when it was read or written last.
Reminder EntryInFile(std::int32_t id);
/// The entry that is this reminder, of several number `preferred` or else the first; 0 for none.
std::int32_t FindEntry(const Reminder& reminder, std::int32_t preferred = 0);
/// The numbers of the entries that are not as the file had them, in order.
std::vector<std::int32_t> ChangedEntries();

/// The record of an entry as it is written. A text that is as it was read keeps the bytes that it had.
std::string EncodedEntry(std::int32_t id);
std::string Encoded(const Reminder& reminder);
bool EntryFits(std::int32_t id);
/// The first entry that does not fit its slot, 0 when all do; entry `skipIndex` is left out.
std::int32_t TooLongEntry(std::int32_t skipIndex);

/// The slots of the list as the file had them, of 128 bytes each.
const std::string& SlotsInFile();
/// The file has these slots now, one for each entry in order.
void EntriesAreSaved(std::string&& slots);

} // namespace voxmate
