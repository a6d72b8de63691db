#include "modules/ReminderList.h"

#include "base/Text.h"

#include <algorithm>
#include <limits>
#include <utility>

namespace voxmate
{

namespace
{

constexpr std::int32_t MostReminders = std::numeric_limits<std::int16_t>::max();

// The bytes of a record with the texts of `record` and the numbers of `numbers`.
std::string WithNumbers(ReminderRecord record, const Reminder& numbers)
{
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

// Cuts all arrays off at this number of entries, or extends them to it.
void ReminderList::Resize(std::int32_t count)
{
    const auto size = static_cast<std::size_t>(count) + 1;
    for (auto* texts : {&RemTitles, &RemDescs, &RemDone})
        texts->resize(size);
    for (auto* numbers : {&RemDays, &RemMonths, &RemYears, &RemHours, &RemMinutes})
        numbers->resize(size);
}

// A text of the file as it is shown. One that is not UTF-8 comes from an older system and is decoded as such text files
// are.
std::string ReminderList::Shown(std::string_view bytes) const
{
    return IsValidUtf8(bytes) ? std::string(bytes) : files_.DecodeText(bytes);
}

ReminderRecord ReminderList::RecordInFile(std::int32_t id) const
{
    return ReadReminder(
        std::string_view(slots_).substr(static_cast<std::size_t>(id - 1) * ReminderSlotSize, ReminderSlotSize));
}

// Stores a text of entry `id` in `place`. It is assigned to the old text, so that a list that is read anew needs no new
// memory.
void ReminderList::StoreText(std::string& place, std::string_view bytes, std::int32_t id)
{
    if (IsValidUtf8(bytes)) {
        place.assign(bytes);
        return;
    }
    place = files_.DecodeText(bytes);
    foreign_.insert(id);
}

void ReminderList::BeginList(std::int64_t count)
{
    const auto size = static_cast<std::size_t>(std::min<std::int64_t>(count, MostReminders)) + 1;
    for (auto* texts : {&RemTitles, &RemDescs, &RemDone})
        texts->reserve(size);
    for (auto* numbers : {&RemDays, &RemMonths, &RemYears, &RemHours, &RemMinutes})
        numbers->reserve(size);
    slots_.reserve((size - 1) * ReminderSlotSize);
    slots_.clear();
    changed_.clear();
    foreign_.clear();
    entries_ = 0;
}

std::optional<ReminderRecord> ReminderList::AddEntry(std::string_view slot)
{
    const ReminderRecord record = ReadReminder(slot);
    const std::optional<Reminder> numbers = Validate(record);
    if (!numbers)
        return std::nullopt;
    if (entries_ == MostReminders)
        throw Overflow();
    ++entries_;
    const auto at = static_cast<std::size_t>(entries_);
    if (at >= RemTitles.size())
        Resize(entries_);
    slots_.append(slot);
    slots_.resize(at * ReminderSlotSize, '\0');
    StoreText(RemTitles[at], record.Title, entries_);
    SetNumbers(at, *numbers);
    StoreText(RemDescs[at], record.Description, entries_);
    RemDone[at].assign(record.Done);
    return record;
}

Reminder ReminderList::At(std::int32_t id) const
{
    const auto at = static_cast<std::size_t>(id);
    return {RemTitles[at], RemDays[at],    RemMonths[at], RemYears[at],
            RemHours[at],  RemMinutes[at], RemDescs[at],  RemDone[at] != "N"};
}

Reminder ReminderList::InFile(std::int32_t id) const
{
    const ReminderRecord record = RecordInFile(id);
    Reminder reminder = Validate(record).value_or(Reminder{});
    reminder.Title = Shown(record.Title);
    reminder.Description = Shown(record.Description);
    reminder.Done = record.Done != "N";
    return reminder;
}

std::int32_t ReminderList::Find(const Reminder& reminder, std::int32_t preferred) const
{
    if (Has(preferred) && At(preferred) == reminder)
        return preferred;
    for (std::int32_t id = 1; id <= RemCount; ++id)
        if (RemTitles[static_cast<std::size_t>(id)] == reminder.Title && At(id) == reminder)
            return id;
    return 0;
}

void ReminderList::SetNumbers(std::size_t at, const Reminder& reminder)
{
    RemDays[at] = reminder.Day;
    RemMonths[at] = reminder.Month;
    RemYears[at] = reminder.Year;
    RemHours[at] = reminder.Hour;
    RemMinutes[at] = reminder.Minute;
}

void ReminderList::Set(std::int32_t id, const Reminder& reminder)
{
    if (!Has(id))
        return;
    const auto at = static_cast<std::size_t>(id);
    SetNumbers(at, reminder);
    RemTitles[at] = reminder.Title;
    RemDescs[at] = reminder.Description;
    RemDone[at] = reminder.Done ? "Y" : "N";
    changed_.insert(id);
}

std::string ReminderList::Encoded(std::int32_t id) const
{
    const auto at = static_cast<std::size_t>(id);
    ReminderRecord record;
    record.Title = RemTitles[at];
    record.Description = RemDescs[at];
    record.Done = RemDone[at];
    if (foreign_.contains(id)) {
        const ReminderRecord inFile = RecordInFile(id);
        if (Shown(inFile.Title) == RemTitles[at])
            record.Title = inFile.Title;
        if (Shown(inFile.Description) == RemDescs[at])
            record.Description = inFile.Description;
    }
    return WithNumbers(record, {{}, RemDays[at], RemMonths[at], RemYears[at], RemHours[at], RemMinutes[at], {}, false});
}

std::string Encoded(const Reminder& reminder)
{
    ReminderRecord record;
    record.Title = reminder.Title;
    record.Description = reminder.Description;
    record.Done = reminder.Done ? "Y" : "N";
    return WithNumbers(record, reminder);
}

bool ReminderList::Fits(std::int32_t id) const
{
    // Most texts are so short that the record fits whatever its numbers are.
    constexpr std::size_t mostDigits = 6; // -32768
    constexpr std::size_t room = ReminderSlotSize - std::size_t{8} * 2 - 5 * mostDigits;
    const auto at = static_cast<std::size_t>(id);
    return RemTitles[at].size() + RemDescs[at].size() + RemDone[at].size() <= room ||
           Encoded(id).size() <= ReminderSlotSize;
}

std::int32_t ReminderList::TooLongEntry(std::int32_t skipIndex) const
{
    for (std::int32_t id = 1; id <= RemCount; ++id)
        if (id != skipIndex && !Fits(id))
            return id;
    return 0;
}

void ReminderList::EntriesAreSaved(std::string&& written)
{
    slots_ = std::move(written);
    changed_.clear();
    std::erase_if(foreign_, [this](std::int32_t id) {
        const ReminderRecord record = RecordInFile(id);
        return IsValidUtf8(record.Title) && IsValidUtf8(record.Description);
    });
}

} // namespace voxmate
