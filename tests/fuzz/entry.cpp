// Fuzzing of reminders that are written as one would say them. The first three bytes are the moment at which that is
// done, all others are what the user wrote.
#include "fuzz.h"

#include "extras/Moments.h"
#include "extras/QuickEntry.h"
#include "modules/ReminderRecord.h"

#include <chrono>
#include <string_view>
#include <variant>

using namespace voxmate;
using voxmate::fuzz::InTime;
using voxmate::fuzz::Require;

namespace
{

// Any minute of a year that holds the 29th of February, and of the last year there is.
DateTime NowOf(const std::uint8_t* bytes)
{
    const int minute = (bytes[0] | bytes[1] << 8 | bytes[2] << 16) % (366 * 24 * 60);
    const int year = bytes[2] >= 0x80 ? 9999 : 2028;
    return ToDateTime(ToMoment({year, 1, 1, 0, 0, 0}) + std::chrono::minutes(year == 9999 ? minute % 525600 : minute));
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    if (size < 3)
        return 0;
    const DateTime now = NowOf(data);
    const std::string_view text(reinterpret_cast<const char*>(data) + 3, size - 3);
    const InTime inTime("a reminder is understood");
    const auto read = ReadQuickReminder(text, now);
    if (const auto* reminder = std::get_if<QuickReminder>(&read)) {
        Require(ToMoment(reminder->At) > ToMoment(now), "a reminder is later than now");
        Require(IsRealDate(reminder->At.day, reminder->At.month, reminder->At.year),
                "a reminder is on a day of the calendar");
        Require(!reminder->Title.empty() && reminder->Title.size() <= text.size(),
                "a title is made of what was written");
        Require(reminder->At.second == 0, "a reminder begins with its minute");
    } else if (const auto* refusal = std::get_if<QuickRefusal>(&read))
        Require(!refusal->Reason.empty(), "a refusal has its sentence");
    return 0;
}
