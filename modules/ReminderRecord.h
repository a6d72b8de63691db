// One reminder: as the program has it, and as it stands in the file: eight texts in a slot of 128 bytes, and what they
// may be.
#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace voxmate
{

struct Reminder {
    std::string Title;
    std::int16_t Day = 0;
    std::int16_t Month = 0;
    std::int16_t Year = 0;
    std::int16_t Hour = 0;
    std::int16_t Minute = 0;
    std::string Description;
    bool Done = false;
    bool operator==(const Reminder&) const = default;
};

inline constexpr std::size_t ReminderSlotSize = 128;

/// The fields in their order in the slot. Each is stored as its length in bytes (16 bits, low byte first) and its
/// bytes.
struct ReminderRecord {
    std::string_view Title;
    std::string_view Day;
    std::string_view Month;
    std::string_view Year;
    std::string_view Hour;
    std::string_view Minute;
    std::string_view Description;
    std::string_view Done;
    bool Whole = true; ///< no length points past the slot
};

/// Reads a slot's bytes, of which a file's end may have left fewer than 128: what it lacks is empty. The fields are
/// parts of `slot`.
ReminderRecord ReadReminder(std::string_view slot);
/// The bytes of a record; more than 128 when it does not fit a slot.
std::string WriteReminder(const ReminderRecord& record);

/// Whether there is such a day in the Gregorian calendar of the years 100 to 9999, those of the date type.
bool IsRealDate(int day, int month, int year);

struct TimeOfDay {
    std::int16_t Hour = 0;
    std::int16_t Minute = 0;
};
/// The time a text of the form HH:MM stands for, blanks round it aside; none for anything else.
std::optional<TimeOfDay> ParseTime(std::string_view text);

/// A record's day and time, in a reminder that has nothing else yet; none when the record is not valid. It is
/// valid when it is whole, its day, month and year are 1 to 4 digits each, blanks round them aside, and make a real
/// date, its hour, a colon and its minute make a time, and its flag is Y or N, blanks round it aside.
std::optional<Reminder> Validate(const ReminderRecord& record);

/// The number that a text of digits, a sign before them or not, stands for, blanks round it aside; none for anything
/// else, and what is beyond 32 bits is the nearest number within.
std::optional<std::int32_t> WholeNumber(std::string_view text);

} // namespace voxmate
