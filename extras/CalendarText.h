// Reminders as a calendar file (iCalendar, RFC 5545).
#pragma once

#include "modules/ReminderRecord.h"

#include <string>
#include <vector>

namespace voxmate
{

/// The text of a calendar with an event for each reminder, in the local time of wherever it is read, as reminders are.
/// Those that are not done have an alarm. `stamp` is the present time in UTC, "20261123T080000Z".
std::string CalendarText(const std::vector<Reminder>& reminders, const std::string& stamp);

} // namespace voxmate
