#include "platform/LocalTime.h"

#include "platform/windows/system/WindowsApi.h"

namespace voxmate
{

namespace
{

// The moment as Windows counts: steps of 100 ns since 1601. False where it has no date.
bool Local(std::int64_t seconds, SYSTEMTIME& local)
{
    constexpr std::int64_t from1601To1970 = 11'644'473'600;
    constexpr std::int64_t stepsASecond = 10'000'000;
    constexpr std::int64_t last = 910'670'515'199; // the end of the year 30827
    if (seconds < -from1601To1970 || seconds > last)
        return false;
    const auto steps = static_cast<std::uint64_t>((seconds + from1601To1970) * stepsASecond);
    const FILETIME moment{static_cast<DWORD>(steps), static_cast<DWORD>(steps >> 32u)};
    SYSTEMTIME universal{};
    return ::FileTimeToSystemTime(&moment, &universal) &&
           ::SystemTimeToTzSpecificLocalTime(nullptr, &universal, &local);
}

} // namespace

DateTime LocalTime(std::int64_t seconds)
{
    SYSTEMTIME local{};
    if (!Local(seconds, local))
        Local(0, local);
    return {local.wYear, local.wMonth, local.wDay, local.wHour, local.wMinute, local.wSecond};
}

} // namespace voxmate
