// The local date and time.
#pragma once

#include <string>

namespace voxmate
{

struct DateTime {
    int year = 1970;
    int month = 1; // 1 to 12
    int day = 1;   // 1 to 31
    int hour = 0;
    int minute = 0;
    int second = 0;
    bool operator==(const DateTime&) const = default;
};

class Clock
{
public:
    virtual ~Clock() = default;
    virtual DateTime Now() = 0;
    /// Formats a valid calendar date in the system's short form.
    virtual std::string ShortDate(const DateTime& date) = 0;
};

} // namespace voxmate
