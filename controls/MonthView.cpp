#include "controls/MonthView.h"

#include <chrono>

namespace voxmate
{

bool IsCalendarDate(const CalendarDate& date)
{
    constexpr int firstYear = 100;
    constexpr int lastYear = 9999;
    constexpr int mostDays = 31;
    if (date.Year < firstYear || date.Year > lastYear || date.Month < 1 || date.Month > 12 || date.Day < 1 ||
        date.Day > mostDays)
        return false;
    using namespace std::chrono;
    return (year(date.Year) / date.Month / date.Day).ok();
}

bool MonthView::SetValue(const CalendarDate& date)
{
    if (!IsCalendarDate(date))
        return false;
    if (date == value_)
        return true;
    value_ = date;
    Changed(Property::Value);
    Raise(SelChange);
    return true;
}

void MonthView::UserSelect(const CalendarDate& date)
{
    if (!Enabled || !IsCalendarDate(date) || date == value_)
        return;
    value_ = date;
    const Event edited = Edited; // a handler may destroy this control
    Raise(SelChange);
    Raise(edited);
}

} // namespace voxmate
