#include "modules/Format.h"

#include "base/Text.h"

#include <array>
#include <cctype>

namespace voxmate
{

namespace
{

constexpr std::array<const char*, 7> weekdays{"Sunday",   "Monday", "Tuesday", "Wednesday",
                                              "Thursday", "Friday", "Saturday"};
constexpr std::array<const char*, 12> months{"January", "February", "March",     "April",   "May",      "June",
                                             "July",    "August",   "September", "October", "November", "December"};

std::string Padded(int value, std::size_t digits)
{
    std::string text = std::to_string(value);
    return text.size() < digits ? std::string(digits - text.size(), '0') + text : text;
}

char Lower(char c)
{
    return static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
}

} // namespace

int Weekday(int year, int month, int day)
{
    static constexpr std::array<int, 12> offsets{0, 3, 2, 5, 0, 3, 5, 1, 4, 6, 2, 4};
    const int y = month < 3 ? year - 1 : year;
    return (y + y / 4 - y / 100 + y / 400 + offsets.at(static_cast<std::size_t>(month - 1)) + day) % 7;
}

std::string Format(const DateTime& date, std::string_view pattern)
{
    const bool twelveHours = ContainsNoCase(pattern, "AM/PM");
    const int hour = twelveHours ? (date.hour + 11) % 12 + 1 : date.hour;
    std::string out;
    bool afterHour = false;
    for (std::size_t at = 0; at < pattern.size();) {
        if (EqualNoCase(pattern.substr(at, 5), "AM/PM")) {
            out += date.hour < 12 ? "AM" : "PM";
            at += 5;
            continue;
        }
        const char letter = Lower(pattern[at]);
        std::size_t run = 1;
        while (at + run < pattern.size() && Lower(pattern[at + run]) == letter)
            ++run;
        switch (letter) {
        case 'd':
            out += run == 4 ? weekdays.at(static_cast<std::size_t>(Weekday(date.year, date.month, date.day)))
                            : Padded(date.day, run);
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
        // What separates an hour from its minutes is no letter.
        if (std::isalpha(static_cast<unsigned char>(letter)))
            afterHour = letter == 'h';
        at += run;
    }
    return out;
}

} // namespace voxmate
