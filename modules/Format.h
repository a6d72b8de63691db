// The few patterns of the date-format language that the program uses.
#pragma once

#include "platform/Clock.h"

#include <string>
#include <string_view>

namespace voxmate
{

/// Formats a date: dddd weekday, mmmm month (English names), d day, yyyy and yy year, HH and h hour (with leading zero
/// and without), nn minutes, mm minutes after an hour, ss seconds, AM/PM makes the hour run from 1 to 12. Letters of
/// any case; every other character is copied.
std::string Format(const DateTime& date, std::string_view pattern);

} // namespace voxmate
