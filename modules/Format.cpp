#include "modules/Format.h"

#include "base/Text.h"

#include <algorithm>
#include <array>
#include <chrono>

namespace voxmate
{

namespace
{

constexpr std::array<const char*, 7> weekdays{"Sunday",   "Monday", "Tuesday", "Wednesday",
                                              "Thursday", "Friday", "Saturday"};
constexpr std::array<const char*, 12> months{"January", "February", "March",     "April",   "May",      "June",
                                             "July",    "August",   "September", "October", "November", "December"};

// The name of a day of the week, in the Gregorian calendar.
const char* DayName(const DateTime& date)
{
    using namespace std::chrono;
    const year_month_day day{year(date.year), month(static_cast<unsigned>(date.month)),
                             std::chrono::day(static_cast<unsigned>(date.day))};
    return weekdays.at(weekday(sys_days(day)).c_encoding());
}

} // namespace

std::string Format(const DateTime& date, std::string_view pattern)
{
    const bool twelveHours = ContainsNoCase(pattern, "AM/PM");
    const int hour = twelveHours ? (date.hour + 11) % 12 + 1 : date.hour;
    const std::string letters = LowerAscii(pattern);
    std::string out;
    bool afterHour = false;
    for (std::size_t at = 0; at < pattern.size();) {
        if (EqualNoCase(pattern.substr(at, 5), "AM/PM")) {
            out += date.hour < 12 ? "AM" : "PM";
            at += 5;
            continue;
        }
        const char letter = letters[at];
        const std::size_t run = std::min(letters.find_first_not_of(letter, at), letters.size()) - at;
        switch (letter) {
        case 'd':
            out += run == 4 ? DayName(date) : Padded(date.day, run);
            break;
        case 'm':
            if (afterHour)
                out += Padded(date.minute, run);
            else
                out += run == 4 ? months.at(static_cast<std::size_t>(date.month - 1)) : Padded(date.month, run);
            break;
        case 'y':
            out += run == 2 ? Padded(date.year % 100, 2) : Padded(date.year, 4);
            break;
        case 'h':
            out += Padded(hour, run);
            break;
        case 'n':
            out += Padded(date.minute, run);
            break;
        case 's':
            out += Padded(date.second, run);
            break;
        default:
            out += pattern.substr(at, run);
            break;
        }
        // Characters that are no letters may stand between an hour and its minutes.
        if (IsLetter(letter))
            afterHour = letter == 'h';
        at += run;
    }
    return out;
}

} // namespace voxmate
