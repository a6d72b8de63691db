// Calendars (iCalendar, RFC 5545).
#pragma once

#include "platform/Clock.h"
#include "readers/Block.h"

#include <cstddef>
#include <string_view>

namespace voxmate::readers
{

/// The largest calendar, in bytes and in entries.
inline constexpr std::size_t LargestCalendar = std::size_t{32} << 20;
inline constexpr std::size_t MostEntries = 100'000;

/// Reads events and to-dos, each as a CalendarEntry's block, in the file's order; those that are cancelled are left
/// out. An entry's moment is that of its last alarm, if `now` has not passed that, else its beginning or, for a to-do,
/// the time it is due; a day without a time means 9:00. Where the alarm is at another moment than the entry, its
/// description begins with that. Of an entry that repeats it is the next date from `now` on. Raises Refused.
void ReadCalendar(std::string_view bytes, const DateTime& now, const BlockSink& sink);

} // namespace voxmate::readers
