#include "modules/ReminderList.h"

#include "base/Text.h"
#include "modules/Declarations.h"

#include <algorithm>
#include <limits>
#include <set>
#include <utility>

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

namespace
{

constexpr std::int32_t MostReminders = std::numeric_limits<std::int16_t>::max();

std::int32_t entries = 0;
std::string slots;              // what the file had, entry by entry
std::set<std::int32_t> changed; // entries that are not as in the file
std::set<std::int32_t> foreign; // entries with a text in the file that is not UTF-8

// Cuts the list off, or fills it up, to this number of entries.
void ResizeList(std::int32_t count)
{
    const auto size = static_cast<std::size_t>(count) + 1;
    for (auto* texts : {&RemTitles, &RemDescs, &RemDone})
        texts->resize(size);
    for (auto* numbers : {&RemDays, &RemMonths, &RemYears, &RemHours, &RemMinutes})
        numbers->resize(size);
}

// A text from an older system, which is not UTF-8, as text files of that kind are shown.
std::string Shown(std::string_view bytes)
{
    return IsValidUtf8(bytes) ? std::string(bytes) : Host().Files.DecodeText(bytes);
}

ReminderRecord RecordInFile(std::int32_t id)
{
    return ReadReminder(
        std::string_view(slots).substr(static_cast<std::size_t>(id - 1) * ReminderSlotSize, ReminderSlotSize));
}

// Puts a text into an entry's place for it; assigned to what is there, so that a list read anew needs no new memory.
void StoreText(std::string& place, std::string_view bytes, std::int32_t id)
{
    if (IsValidUtf8(bytes)) {
        place.assign(bytes);
        return;
    }
    place = Host().Files.DecodeText(bytes);
    foreign.insert(id);
}

std::string Numbers(const ReminderRecord& texts, const Reminder& numbers)
{
    ReminderRecord record = texts;
    const std::string day = Padded(numbers.Day, 2);
    const std::string month = Padded(numbers.Month, 2);
    const std::string year = Padded(numbers.Year, 4);
    const std::string hour = Padded(numbers.Hour, 2);
    const std::string minute = Padded(numbers.Minute, 2);
    record.Day = day;
    record.Month = month;
    record.Year = year;
    record.Hour = hour;
    record.Minute = minute;
    return WriteReminder(record);
}

} // namespace

void BeginList(std::int64_t count)
{
    const auto size = static_cast<std::size_t>(std::min<std::int64_t>(count, MostReminders)) + 1;
    for (auto* texts : {&RemTitles, &RemDescs, &RemDone})
        texts->reserve(size);
    for (auto* numbers : {&RemDays, &RemMonths, &RemYears, &RemHours, &RemMinutes})
        numbers->reserve(size);
    slots.reserve((size - 1) * ReminderSlotSize);
    slots.clear();
    changed.clear();
    foreign.clear();
    entries = 0;
}

std::optional<ReminderRecord> AddEntry(std::string_view slot)
{
    const ReminderRecord record = ReadReminder(slot);
    const std::optional<ReminderSchedule> schedule = Validate(record);
    if (!schedule)
        return std::nullopt;
    if (entries == MostReminders)
        throw Overflow();
    ++entries;
    const auto at = static_cast<std::size_t>(entries);
    if (at >= RemTitles.size())
        ResizeList(entries);
    slots.append(slot);
    slots.resize(at * ReminderSlotSize, '\0');
    StoreText(RemTitles[at], record.Title, entries);
    RemDays[at] = schedule->Day;
    RemMonths[at] = schedule->Month;
    RemYears[at] = schedule->Year;
    RemHours[at] = schedule->Time.Hour;
    RemMinutes[at] = schedule->Time.Minute;
    StoreText(RemDescs[at], record.Description, entries);
    RemDone[at].assign(record.Done);
    return record;
}

void EndList()
{
    ResizeList(entries);
}

std::int32_t EntryCount()
{
    return entries;
}

bool InList(std::int32_t id)
{
    return id >= 1 && id <= RemCount;
}

Reminder EntryAt(std::int32_t id)
{
    const auto at = static_cast<std::size_t>(id);
    return {RemTitles[at], RemDays[at],    RemMonths[at], RemYears[at],
            RemHours[at],  RemMinutes[at], RemDescs[at],  RemDone[at] != "N"};
}

Reminder EntryInFile(std::int32_t id)
{
    const ReminderRecord record = RecordInFile(id);
    const ReminderSchedule schedule = Validate(record).value_or(ReminderSchedule{});
    return {Shown(record.Title),
            schedule.Day,
            schedule.Month,
            schedule.Year,
            schedule.Time.Hour,
            schedule.Time.Minute,
            Shown(record.Description),
            record.Done != "N"};
}

std::int32_t FindEntry(const Reminder& reminder, std::int32_t preferred)
{
    if (InList(preferred) && EntryAt(preferred) == reminder)
        return preferred;
    for (std::int32_t id = 1; id <= RemCount; ++id)
        if (RemTitles[static_cast<std::size_t>(id)] == reminder.Title && EntryAt(id) == reminder)
            return id;
    return 0;
}

std::vector<std::int32_t> ChangedEntries()
{
    return {changed.begin(), changed.end()};
}

void StoreReminder(std::int16_t id, const Reminder& reminder)
{
    if (!InList(id))
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
    changed.insert(id);
}

std::string EncodedEntry(std::int32_t id)
{
    const auto at = static_cast<std::size_t>(id);
    ReminderRecord record;
    record.Title = RemTitles[at];
    record.Description = RemDescs[at];
    record.Done = RemDone[at];
    if (foreign.contains(id)) {
        const ReminderRecord inFile = RecordInFile(id);
        if (Shown(inFile.Title) == RemTitles[at])
            record.Title = inFile.Title;
        if (Shown(inFile.Description) == RemDescs[at])
            record.Description = inFile.Description;
    }
    return Numbers(record, {"", RemDays[at], RemMonths[at], RemYears[at], RemHours[at], RemMinutes[at], "", false});
}

std::string Encoded(const Reminder& reminder)
{
    ReminderRecord record;
    record.Title = reminder.Title;
    record.Description = reminder.Description;
    record.Done = reminder.Done ? "Y" : "N";
    return Numbers(record, reminder);
}

bool EntryFits(std::int32_t id)
{
    // Most are so short that whatever their numbers need they fit.
    constexpr std::size_t mostDigits = 6; // -32768
    constexpr std::size_t room = ReminderSlotSize - std::size_t{8} * 2 - 5 * mostDigits;
    const auto at = static_cast<std::size_t>(id);
    return RemTitles[at].size() + RemDescs[at].size() + RemDone[at].size() <= room ||
           EncodedEntry(id).size() <= ReminderSlotSize;
}

std::int32_t TooLongEntry(std::int32_t skipIndex)
{
    for (std::int32_t id = 1; id <= RemCount; ++id)
        if (id != skipIndex && !EntryFits(id))
            return id;
    return 0;
}

const std::string& SlotsInFile()
{
    return slots;
}

void EntriesAreSaved(std::string&& written)
{
    slots = std::move(written);
    changed.clear();
    std::erase_if(foreign, [](std::int32_t id) {
        const ReminderRecord record = RecordInFile(id);
        return IsValidUtf8(record.Title) && IsValidUtf8(record.Description);
    });
}

} // namespace voxmate
