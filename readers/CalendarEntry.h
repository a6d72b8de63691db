// One entry of a calendar, as its reader tells it.
#pragma once

#include "platform/Clock.h"
#include "readers/Block.h"

#include <optional>
#include <string>

namespace voxmate::readers
{

struct CalendarEntry {
    std::optional<DateTime> At; ///< when to remind of it, local time without seconds; nothing where it has no date
    std::string Title;          ///< one line
    std::string Description;    ///< its lines are parted by "\n"
    bool Repeats = false;       ///< `At` is only the next of its dates
    bool Done = false;
    bool ForeignZone = false; ///< its time is that of a zone that is not known, taken as it is written
    bool operator==(const CalendarEntry&) const = default;
};

/// The entry as a list item that can be read aloud, too: in front its moment ("2026-11-23 09:00"), then its title, and
/// its description in the lines behind that. The marks are kept in the level: 1, and 1, 2 and 4 for those that are set.
Block ToBlock(const CalendarEntry& entry);
/// The same in the other direction. What is no such block gives an entry without a date.
CalendarEntry ToEntry(const Block& block);

} // namespace voxmate::readers
