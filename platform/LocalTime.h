// Moments as the clock on the wall shows them.
#pragma once

#include "platform/Clock.h"

#include <cstdint>

namespace voxmate
{

/// The local date and time of a moment in seconds since 1970 in UTC, by the zone that was the user's at the first call.
/// A moment that has no date becomes that of 0.
DateTime LocalTime(std::int64_t seconds);

} // namespace voxmate
