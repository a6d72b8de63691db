#include "modules/ReminderRecord.h"

#include "base/Text.h"
#include "controls/MonthView.h"

#include <algorithm>
#include <array>
#include <limits>

namespace voxmate
{

namespace
{

// The length stored at byte `at` of a slot: 16 bits, low byte first.
std::size_t LengthAt(std::string_view slot, std::size_t at)
{
    const auto low = static_cast<unsigned char>(slot[at]);
    const auto high = static_cast<unsigned char>(slot[at + 1]);
    return static_cast<std::size_t>(low | high << 8);
}

// The number of two digits; -1 for other characters.
int TwoDigits(const char* digits)
{
    return IsDigit(digits[0]) && IsDigit(digits[1]) ? (digits[0] - '0') * 10 + (digits[1] - '0') : -1;
}

// The number of one to four digits, which may have blanks at their ends; -1 for any other text.
int DateNumber(std::string_view text)
{
    // Nearly all numbers have two digits, or four.
    if (text.size() == 2 || text.size() == 4) {
        const int high = text.size() == 4 ? TwoDigits(text.data()) : 0;
        const int low = TwoDigits(text.data() + text.size() - 2);
        if (high >= 0 && low >= 0)
            return high * 100 + low;
    }
    const std::string_view digits = Trimmed(text);
    if (digits.empty() || digits.size() > 4 || !std::ranges::all_of(digits, IsDigit))
        return -1;
    int value = 0;
    for (const char digit : digits)
        value = value * 10 + (digit - '0');
    return value;
}

bool IsFlag(std::string_view text)
{
    return text.size() == 1 && (text[0] == 'Y' || text[0] == 'N');
}

// The time of two fields. Nearly all have two digits each.
std::optional<TimeOfDay> TimeOf(std::string_view hour, std::string_view minute)
{
    if (hour.size() == 2 && minute.size() == 2) {
        const int hours = TwoDigits(hour.data());
        const int minutes = TwoDigits(minute.data());
        if (hours >= 0 && hours <= 23 && minutes >= 0 && minutes <= 59)
            return TimeOfDay{static_cast<std::int16_t>(hours), static_cast<std::int16_t>(minutes)};
    }
    std::string text(hour);
    text += ':';
    text += minute;
    return ParseTime(text);
}

} // namespace

ReminderRecord ReadReminder(std::string_view slot)
{
    std::size_t at = 0;
    bool whole = true;
    const auto next = [&](std::size_t usual) -> std::string_view {
        // A length that is cut in two by the end is not read.
        if (at + 2 > slot.size())
            return {};
        const std::size_t length = LengthAt(slot, at);
        at += 2;
        // Comparing with the usual length lets the processor go on before it has read the length.
        if (length == usual && at + usual <= slot.size()) {
            at += usual;
            return {slot.data() + at - usual, usual};
        }
        whole = whole && length <= ReminderSlotSize - at;
        const std::string_view field = slot.substr(at, length);
        at += field.size();
        return field;
    };
    constexpr std::size_t any = ReminderSlotSize;
    // Braces guarantee that the fields are read in order.
    ReminderRecord record{next(any), next(2), next(2), next(4), next(2), next(2), next(any), next(1)};
    record.Whole = whole;
    return record;
}

std::string WriteReminder(const ReminderRecord& record)
{
    const std::array fields{record.Title, record.Day,    record.Month,       record.Year,
                            record.Hour,  record.Minute, record.Description, record.Done};
    std::string bytes;
    bytes.reserve(ReminderSlotSize);
    for (const std::string_view field : fields) {
        bytes += static_cast<char>(field.size() & 0xFFu);
        bytes += static_cast<char>(field.size() >> 8 & 0xFFu);
        bytes += field;
    }
    return bytes;
}

bool IsRealDate(int day, int month, int year)
{
    return IsCalendarDate({year, month, day});
}

std::optional<TimeOfDay> ParseTime(std::string_view text)
{
    // Only ASCII characters pass, so bytes can be counted as characters.
    const std::string_view time = Trimmed(text);
    if (time.size() != 5 || time[2] != ':')
        return std::nullopt;
    const std::optional<std::int32_t> hour = WholeNumber(time.substr(0, 2));
    const std::optional<std::int32_t> minute = WholeNumber(time.substr(3));
    if (!hour || *hour < 0 || *hour > 23 || !minute || *minute < 0 || *minute > 59)
        return std::nullopt;
    return TimeOfDay{static_cast<std::int16_t>(*hour), static_cast<std::int16_t>(*minute)};
}

std::optional<Reminder> Validate(const ReminderRecord& record)
{
    const int day = DateNumber(record.Day);
    const int month = DateNumber(record.Month);
    const int year = DateNumber(record.Year);
    if (!record.Whole || !(IsFlag(record.Done) || IsFlag(Trimmed(record.Done))) || !IsRealDate(day, month, year))
        return std::nullopt;
    const std::optional<TimeOfDay> time = TimeOf(record.Hour, record.Minute);
    if (!time)
        return std::nullopt;
    return Reminder{{},
                    static_cast<std::int16_t>(day),
                    static_cast<std::int16_t>(month),
                    static_cast<std::int16_t>(year),
                    time->Hour,
                    time->Minute,
                    {},
                    false};
}

std::optional<std::int32_t> WholeNumber(std::string_view text)
{
    std::string_view digits = Trimmed(text);
    const bool negative = digits.starts_with('-');
    if (negative || digits.starts_with('+'))
        digits.remove_prefix(1);
    if (digits.empty() || !std::ranges::all_of(digits, IsDigit))
        return std::nullopt;
    constexpr std::int64_t most = std::numeric_limits<std::int32_t>::max();
    std::int64_t value = 0;
    for (const char c : digits)
        value = std::min(value * 10 + (c - '0'), most);
    return static_cast<std::int32_t>(negative ? -value : value);
}

} // namespace voxmate
