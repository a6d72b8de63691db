#include "controls/MonthView.h"

namespace voxmate
{

bool IsCalendarDate(const CalendarDate& date)
{
    constexpr int firstYear = 100;
    constexpr int lastYear = 9999;
    constexpr int lengths[] = {31, 28, 31, 30, 31, 30, 31, 31, 30, 31, 30, 31};
    if (date.Year < firstYear || date.Year > lastYear || date.Month < 1 || date.Month > 12)
        return false;
    const bool leap = date.Year % 4 == 0 && (date.Year % 100 != 0 || date.Year % 400 == 0);
    const int length = lengths[date.Month - 1] + (leap && date.Month == 2 ? 1 : 0);
    return date.Day >= 1 && date.Day <= length;
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
    Raise(SelChange);
}

} // namespace voxmate
