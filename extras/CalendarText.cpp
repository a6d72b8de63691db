#include "extras/CalendarText.h"

#include "base/Text.h"

#include <cstdint>
#include <map>
#include <string_view>

namespace voxmate
{

namespace
{

// The longest line in bytes without its end.
constexpr std::size_t LineLength = 75;

// Folds a line where it is too long, but not within a letter.
void AddLine(std::string& text, std::string_view line)
{
    std::size_t room = LineLength;
    while (line.size() > room) {
        const std::size_t whole = WholeUtf8(line.substr(0, room));
        text += std::string(line.substr(0, whole)) + CrLf + " ";
        line.remove_prefix(whole);
        room = LineLength - 1;
    }
    text += std::string(line) + CrLf;
}

std::string Escaped(std::string_view value)
{
    std::string text;
    for (const char c : value) {
        if (c == '\\' || c == ';' || c == ',')
            text += '\\';
        if (c == '\n')
            text += "\\n";
        else if (c != '\r')
            text += c;
    }
    return text;
}

std::string Moment(const Reminder& reminder)
{
    return Padded(reminder.Year, 4) + Padded(reminder.Month, 2) + Padded(reminder.Day, 2) + "T" +
           Padded(reminder.Hour, 2) + Padded(reminder.Minute, 2) + "00";
}

// The same for the same reminder in each file, so that other programs do not take it twice (FNV-1a, 64 bits).
std::string Digest(const Reminder& reminder)
{
    std::uint64_t hash = 0xCBF29CE484222325;
    for (const char c : reminder.Title + '\0' + Moment(reminder) + '\0' + reminder.Description)
        hash = (hash ^ static_cast<unsigned char>(c)) * 0x100000001B3;
    std::string digits;
    for (int shift = 60; shift >= 0; shift -= 4)
        digits += "0123456789abcdef"[hash >> shift & 0xF];
    return digits;
}

} // namespace

std::string CalendarText(const std::vector<Reminder>& reminders, const std::string& stamp)
{
    std::string text;
    std::map<std::string, int> seen;
    const auto add = [&text](std::string_view line) { AddLine(text, line); };
    add("BEGIN:VCALENDAR");
    add("VERSION:2.0");
    add("PRODID:-//Voxmate//Reminders//EN");
    for (const Reminder& reminder : reminders) {
        const std::string digest = Digest(reminder);
        const int before = seen[digest]++;
        const std::string title = Escaped(reminder.Title);
        add("BEGIN:VEVENT");
        add("UID:" + digest + (before > 0 ? "-" + std::to_string(before) : "") + "@voxmate");
        add("DTSTAMP:" + stamp);
        add("DTSTART:" + Moment(reminder));
        add("SUMMARY:" + title);
        if (!reminder.Description.empty())
            add("DESCRIPTION:" + Escaped(reminder.Description));
        if (reminder.Done) {
            add("X-VOXMATE-DONE:TRUE");
        } else {
            add("BEGIN:VALARM");
            add("ACTION:DISPLAY");
            add("TRIGGER:PT0S");
            add("DESCRIPTION:" + title);
            add("END:VALARM");
        }
        add("END:VEVENT");
    }
    add("END:VCALENDAR");
    return text;
}

} // namespace voxmate
