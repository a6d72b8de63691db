// Moments of the local calendar, to the minute.
#pragma once

#include "platform/Clock.h"

#include <chrono>
#include <string>

namespace voxmate
{

using Moment = std::chrono::local_time<std::chrono::minutes>;

/// The minute of a valid date and time.
Moment ToMoment(const DateTime& at);
/// The same with 0 seconds; the year must be one of four digits.
DateTime ToDateTime(Moment moment);

/// The next full quarter of an hour, 1 to 15 minutes later.
Moment NextQuarter(Moment now);

/// A moment as a person says it: "Today at 16:15", "Tomorrow at 09:00", "Friday, 27 November 2026 at 09:00".
std::string SpokenMoment(Moment at, Moment now);

} // namespace voxmate
