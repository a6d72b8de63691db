// Formats dates and times with the few patterns that the program uses.
#pragma once

#include "platform/Clock.h"

#include <string>
#include <string_view>

namespace voxmate
{

/// Formats a date and time. The patterns are dddd weekday, mmmm month (English names), mm month, or minutes after an
/// hour, d day, yyyy and yy year, HH and h hour (with and without a leading zero), nn minutes and ss seconds. AM/PM
/// makes the hour run from 1 to 12. Case does not matter; all other characters are copied.
std::string Format(const DateTime& date, std::string_view pattern);

} // namespace voxmate
