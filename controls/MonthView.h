// Shows the days of a month, of which one is chosen.
#pragma once

#include "controls/Control.h"

namespace voxmate
{

/// A day of the Gregorian calendar.
struct CalendarDate {
    int Year = 1970; ///< 100 to 9999, the years of the date type
    int Month = 1;   ///< 1 to 12
    int Day = 1;     ///< 1 to the month's length
    bool operator==(const CalendarDate&) const = default;
};

/// Whether the calendar has such a day.
bool IsCalendarDate(const CalendarDate& date);

/// Shows a month with the chosen day in it. SelChange is raised by every new day, whether the user or the code chooses
/// it.
class MonthView : public Control
{
public:
    using Control::Control;

    const CalendarDate& Value() const { return value_; }
    int Year() const { return value_.Year; }
    int Month() const { return value_.Month; }
    int Day() const { return value_.Day; }
    /// Chooses a day. Returns false, and keeps the day chosen before, when there is no such day.
    bool SetValue(const CalendarDate& date);

    Event SelChange;
    Event Edited; ///< the user has chosen another day; raised after SelChange

    void UserSelect(const CalendarDate& date);

private:
    CalendarDate value_;
};

} // namespace voxmate
