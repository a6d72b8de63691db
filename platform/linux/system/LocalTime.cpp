#include "platform/LocalTime.h"

#include <ctime>

namespace voxmate
{

DateTime LocalTime(std::int64_t seconds)
{
    static const bool zoned = (::tzset(), true);
    std::tm local{};
    const std::time_t moment = seconds;
    const std::time_t beginning = 0;
    // Unlike localtime, this does not look for the zone's file again.
    if (!zoned || !::localtime_r(&moment, &local))
        ::localtime_r(&beginning, &local);
    return {local.tm_year + 1900, local.tm_mon + 1, local.tm_mday, local.tm_hour, local.tm_min, local.tm_sec};
}

} // namespace voxmate
