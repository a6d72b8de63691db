// The spoken phrases: greeting, introduction, date and time.
#include "modules/Format.h"
#include "modules/Program.h"

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

// In the hour from noon to one the salutation is that of the evening.
const char* Salutation(int hour)
{
    if (hour <= 11)
        return "Good Morning, ";
    if (hour >= 13 && hour <= 17)
        return "Good Afternoon, ";
    return "Good Evening, ";
}

// Says one thing after the other. A Stop in between also cancels what was still to be said.
class Saying
{
public:
    explicit Saying(Program& program) : program_(program) {}
    void operator()(const std::string& text, const std::string& animation) const
    {
        if (program_.StopCount == stops_)
            program_.Voice.SpeakText(text, animation);
    }

private:
    Program& program_;
    std::uint32_t stops_ = program_.StopCount;
};

void Introduce(const Saying& say, const SettingsRecord& settings)
{
    say("Hello " + settings.UserName + ". My name is " + settings.LastCharacter, "Greet");
    say("Hey, do you know, beside reading text in the text box, I can also read TEXT and WORD documents.", "RestPose");
}

void Greet(const Saying& say, const SettingsRecord& settings, Clock& clock)
{
    say("Hello " + settings.UserName + ". ", "Greet");
    const DateTime now = clock.Now();
    const std::string time = FormatSpokenTime(now, settings.TimeIn24Hour, true);
    const std::string today = "Today is " + FormatSpokenDate(settings.DateFormat, now);
    switch (settings.GreetingType) {
    case GreetTime:
        say(time, "Announce");
        break;
    case GreetDate:
        say(today, "Announce");
        break;
    case GreetOther:
        say(settings.OtherGreeting, "Greet");
        break;
    case GreetDateAndTime:
        say(today + " and " + time, "Announce");
        break;
    case GreetDateTimeAndOther:
        say(today + " and " + time, "Announce");
        say(settings.OtherGreeting, "");
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
    constexpr std::array<const char*, 4> suffixes{"th", "st", "nd", "rd"};
    const int last = day / 10 == 1 ? 0 : day % 10;
    return suffixes.at(last < 4 ? static_cast<std::size_t>(last) : 0);
}

std::string FormatSpokenDate(std::int16_t format, const DateTime& date)
{
    if (format < 1 || format > static_cast<int>(datePatterns.size()))
        return {};
    const DatePatterns& patterns = datePatterns.at(static_cast<std::size_t>(format - 1));
    return Format(date, patterns.leading) + OrdinalSuffix(date.day) + Format(date, patterns.trailing);
}

std::string FormatSpokenTime(const DateTime& now, std::int16_t in24Hour, bool omitSalutation)
{
    const std::string time = Format(now, in24Hour == 1 ? "HH:MM" : "h:nn AM/PM");
    return (omitSalutation ? "" : Salutation(now.hour)) + ("Time now is " + time);
}

void GreetAndIntroduce(Program& program, bool atStartUp)
{
    const Saying say(program);
    if (!atStartUp) {
        Introduce(say, program.Settings);
        return;
    }
    if (program.Settings.IntroAtStart == 1)
        Introduce(say, program.Settings);
    if (program.Settings.GreetingEnabled == 1)
        Greet(say, program.Settings, program.Host.Time);
}

} // namespace voxmate
