// One reminder, as the program has it and as the file has it: eight texts in a slot of 128 bytes. Also checks whether
// such texts are valid.
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
    bool Whole = true; ///< no length reaches past the slot
};

/// Reads the bytes of a slot; at the end of a file there may be fewer than 128. Fields that are missing are empty. The
/// fields are parts of `slot`.
ReminderRecord ReadReminder(std::string_view slot);
/// The bytes of a record: more than 128 when it does not fit its slot.
std::string WriteReminder(const ReminderRecord& record);

/// Whether the Gregorian calendar has this day in the years 100 to 9999, the years of the date type.
bool IsRealDate(int day, int month, int year);

struct TimeOfDay {
    std::int16_t Hour = 0;
    std::int16_t Minute = 0;
};
/// The time of day of a text of the form HH:MM, which may have blanks at its ends; nothing for any other text.
std::optional<TimeOfDay> ParseTime(std::string_view text);

/// A record's day and time as a reminder whose other fields are empty; nothing when the record is not valid. A record
/// is valid when it is whole, its day, month and year have 1 to 4 digits each and form a real date, its hour, a colon
/// and its minute form a time for ParseTime, and its flag is Y or N. Blanks at the ends of these texts do not matter.
std::optional<Reminder> Validate(const ReminderRecord& record);

/// The number of a text of decimal digits, which may have a sign in front and blanks at its ends; nothing for any other
/// text. A number of more than 32 bits becomes 2147483647 or its negative.
std::optional<std::int32_t> WholeNumber(std::string_view text);

} // namespace voxmate
