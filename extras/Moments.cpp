#include "extras/Moments.h"

#include "modules/Format.h"

#include <cstdint>
#include <ratio>

namespace voxmate
{

using std::chrono::days;

Moment ToMoment(const DateTime& at)
{
    return std::chrono::local_days(std::chrono::year(at.year) / at.month / at.day) + std::chrono::hours(at.hour) +
           std::chrono::minutes(at.minute);
}

DateTime ToDateTime(Moment moment)
{
    const std::chrono::local_days day = std::chrono::floor<days>(moment);
    const std::chrono::year_month_day date(day);
    const std::chrono::hh_mm_ss clock(moment - day);
    return {static_cast<int>(date.year()),
            static_cast<int>(static_cast<unsigned>(date.month())),
            static_cast<int>(static_cast<unsigned>(date.day())),
            static_cast<int>(clock.hours().count()),
            static_cast<int>(clock.minutes().count()),
            0};
}

Moment NextQuarter(Moment now)
{
    using Quarters = std::chrono::duration<std::int64_t, std::ratio<std::intmax_t{15} * 60>>;
    return std::chrono::floor<Quarters>(now) + Quarters(1);
}

std::string SpokenMoment(Moment at, Moment now)
{
    const std::chrono::local_days day = std::chrono::floor<days>(at);
    const days later = day - std::chrono::floor<days>(now);
    const DateTime when = ToDateTime(at);
    std::string said;
    if (later == days(0))
        said = "Today";
    else if (later == days(1))
        said = "Tomorrow";
    else
        said = Format(when, "dddd, d mmmm yyyy");
    return said + " at " + Format(when, "hh:nn");
}

} // namespace voxmate
