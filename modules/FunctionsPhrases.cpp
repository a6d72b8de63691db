// The spoken phrases: greeting, introduction, date and time.
#include "modules/Declarations.h"
#include "modules/Format.h"
#include "modules/Functions.h"

#include <array>
#include <cstdint>
#include <string>

namespace voxmate
{

namespace
{

struct DatePatterns {
    const char* leading;
    const char* trailing;
};

constexpr std::array<DatePatterns, 6> datePatterns{{
    {"dddd, d", " of mmmm, yy"},
    {"dddd, d", " of mmmm, yyyy"},
    {"dddd, d", " of mmmm"},
    {"dddd, mmmm d", ", yy"},
    {"dddd, mmmm d", ", yyyy"},
    {"dddd, mmmm d", ""},
}};

// The noon hour is greeted as evening.
const char* Salutation(int hour)
{
    if (hour <= 11)
        return "Good Morning, ";
    if (hour >= 13 && hour <= 17)
        return "Good Afternoon, ";
    return "Good Evening, ";
}

// Says one thing after the other. A Stop in between means what was still to be said, too.
class Saying
{
public:
    void operator()(const std::string& text, const std::string& animation) const
    {
        if (StopCount == stops_)
            SpeakText(text, animation);
    }

private:
    std::uint32_t stops_ = StopCount;
};

void Introduce(const Saying& say)
{
    say("Hello " + Settings.UserName + ". My name is " + Settings.LastCharacter, "Greet");
    say("Hey, do you know, beside reading text in the text box, I can also read TEXT and WORD documents.", "RestPose");
}

void Greet(const Saying& say)
{
    say("Hello " + Settings.UserName + ". ", "Greet");
    const std::string time = FormatSpokenTime(Settings.TimeIn24Hour, true);
    const std::string today = "Today is " + FormatSpokenDate(Settings.DateFormat, Host().Time.Now());
    switch (Settings.GreetingType) {
    case 0:
        say(time, "Announce");
        break;
    case 1:
        say(today, "Announce");
        break;
    case 2:
        say(Settings.OtherGreeting, "Greet");
        break;
    case 3:
        say(today + " and " + time, "Announce");
        break;
    case 4:
        say(today + " and " + time, "Announce");
        say(Settings.OtherGreeting, "");
        break;
    default:
        break;
    }
    // A greeting always ends with an empty announcement.
    say("", "Announce");
}

} // namespace

std::string OrdinalSuffix(int day)
{
    switch (day) {
    case 1:
    case 21:
    case 31:
        return "st";
    case 2:
    case 22:
        return "nd";
    case 3:
    case 23:
        return "rd";
    default:
        return "th";
    }
}

std::string FormatSpokenDate(std::int16_t format, const DateTime& date)
{
    if (format < 1 || format > static_cast<int>(datePatterns.size()))
        return {};
    const DatePatterns& patterns = datePatterns.at(static_cast<std::size_t>(format - 1));
    return Format(date, patterns.leading) + OrdinalSuffix(date.day) + Format(date, patterns.trailing);
}

std::string FormatSpokenTime(std::int16_t in24Hour, bool omitSalutation)
{
    const DateTime now = Host().Time.Now();
    const std::string time = Format(now, in24Hour == 1 ? "HH:MM" : "h:nn AM/PM");
    return (omitSalutation ? "" : Salutation(now.hour)) + ("Time now is " + time);
}

void GreetAndIntroduce(bool atStartUp)
{
    const Saying say;
    if (!atStartUp) {
        Introduce(say);
        return;
    }
    if (Settings.IntroAtStart == 1)
        Introduce(say);
    if (Settings.GreetingEnabled == 1)
        Greet(say);
}

} // namespace voxmate
