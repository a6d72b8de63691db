// The local date and time.
#pragma once

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
};

} // namespace voxmate
