#include "readers/calendar/Calendar.h"

#include "base/Text.h"
#include "platform/LocalTime.h"
#include "readers/CalendarEntry.h"
#include "readers/Refusal.h"
#include "readers/text/PlainText.h"

#include <libical/ical.h>

#include <algorithm>
#include <array>
#include <chrono>
#include <cstdint>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <tuple>
#include <vector>

namespace voxmate::readers
{

namespace
{

constexpr int HourOfADay = 9;
// The dates, or steps to the next, that are looked at: of a rule by the day 270 years, of one by the second a day.
constexpr int MostRepeats = 100'000;

using Calendar = std::unique_ptr<icalcomponent, decltype(&icalcomponent_free)>;
using Iterator = std::unique_ptr<icalrecur_iterator, decltype(&icalrecur_iterator_free)>;

auto Fields(const DateTime& at)
{
    return std::tuple(at.year, at.month, at.day, at.hour, at.minute);
}

// Long lines are folded, and may be so within a letter: they are joined before anything else is done.
std::string Unfolded(std::string_view bytes)
{
    std::string text;
    text.reserve(bytes.size());
    for (std::size_t at = 0; at < bytes.size(); ++at) {
        const std::size_t end = at + (bytes[at] == '\r' ? 1 : 0);
        const bool folds =
            end + 1 < bytes.size() && bytes[end] == '\n' && (bytes[end + 1] == ' ' || bytes[end + 1] == '\t');
        if (folds)
            at = end + 1;
        else if (bytes[at] != '\0')
            text += bytes[at];
    }
    return text;
}

bool IsWide(std::string_view bytes)
{
    return bytes.starts_with("\xFF\xFE") || bytes.starts_with("\xFE\xFF");
}

// libical takes a byte from behind a backslash, which may be the first of a letter's.
std::string Whole(const char* text)
{
    std::string whole = text ? text : "";
    return IsValidUtf8(whole) ? whole : EncodeUtf8(DecodeUtf8(whole));
}

// What a text says without what no line has.
std::string OneLine(const char* text)
{
    std::string line = Whole(text);
    std::ranges::replace_if(
        line, [](char c) { return static_cast<unsigned char>(c) < ' ' || c == '\x7F'; }, ' ');
    return line;
}

std::string Lines(const char* text)
{
    std::string lines = Whole(text);
    std::erase_if(lines, [](char c) { return static_cast<unsigned char>(c) < ' ' && c != '\n' && c != '\t'; });
    return lines;
}

bool IsFloating(const icaltimetype& time)
{
    return time.is_date != 0 || (!time.zone && icaltime_is_utc(time) == 0);
}

DateTime Local(const icaltimetype& time)
{
    if (!IsFloating(time))
        return LocalTime(icaltime_as_timet_with_zone(time, time.zone));
    return {time.year, time.month, time.day, time.hour, time.minute, 0};
}

// Whether there is such a day, in a year of four digits. Not all that libical takes for a date is one.
bool IsReal(int year, int month, int day)
{
    constexpr int firstYear = 100; // of the date type
    constexpr int lastYear = 9999;
    return year >= firstYear && year <= lastYear && month >= 1 && month <= 12 && day >= 1 &&
           std::chrono::year_month_day(std::chrono::year(year), std::chrono::month(static_cast<unsigned>(month)),
                                       std::chrono::day(static_cast<unsigned>(day)))
               .ok();
}

bool IsReal(const DateTime& at)
{
    return IsReal(at.year, at.month, at.day);
}

bool IsGiven(const icaltimetype& time)
{
    return icaltime_is_null_time(time) == 0 && icaltime_is_valid_time(time) != 0 &&
           IsReal(time.year, time.month, time.day);
}

bool SameMoment(const icaltimetype& one, const icaltimetype& other)
{
    return IsFloating(one) == IsFloating(other) ? Fields(Local(one)) == Fields(Local(other))
                                                : icaltime_compare(one, other) == 0;
}

// The most seconds that a rule's dates may be looked for in. libical itself would look for a date that never comes
// until the year 2582, which takes hours where a rule goes by the second.
std::int64_t LongestSearch(const icalrecurrencetype& rule)
{
    constexpr std::int64_t day = 86'400;
    constexpr std::array<std::int64_t, 7> steps{1, 60, 3600, day, 7 * day, 28 * day, 365 * day};
    return rule.freq < ICAL_NO_RECURRENCE ? steps.at(rule.freq) * std::max<std::int64_t>(rule.interval, 1) * MostRepeats
                                          : 0;
}

icaltimetype Later(icaltimetype time, std::int64_t seconds)
{
    constexpr std::int64_t day = 86'400;
    icaltime_adjust(&time, static_cast<int>(seconds / day), 0, 0, static_cast<int>(seconds % day));
    return time;
}

// Where the dates of a rule from `now` on are looked for: at its start, unless that would be many steps before.
icaltimetype SearchFrom(const icalrecurrencetype& rule, const icaltimetype& start, const DateTime& now)
{
    if (rule.freq >= ICAL_DAILY_RECURRENCE || rule.count > 0 || start.is_date != 0)
        return start;
    // No zone is farther from another.
    constexpr std::int64_t aDayAndMore = 26 * std::int64_t{3600};
    const auto seconds = [](int year, int month, int date, int hour, int minute) {
        const std::chrono::year_month_day day{std::chrono::year(year), std::chrono::month(static_cast<unsigned>(month)),
                                              std::chrono::day(static_cast<unsigned>(date))};
        return std::int64_t{std::chrono::seconds(std::chrono::sys_days(day).time_since_epoch() +
                                                 std::chrono::hours(hour) + std::chrono::minutes(minute))
                                .count()};
    };
    const std::int64_t passed = seconds(now.year, now.month, now.day, now.hour, now.minute) - aDayAndMore -
                                seconds(start.year, start.month, start.day, start.hour, start.minute);
    // Only whole steps: the rule goes on from the same minute or second.
    const std::int64_t step = LongestSearch(rule) / MostRepeats;
    return passed > step ? Later(start, passed / step * step) : start;
}

// The dates of a rule; null when it is none.
Iterator DatesOf(icalrecurrencetype rule, const icaltimetype& start, const DateTime& now)
{
    const icaltimetype from = SearchFrom(rule, start, now);
    constexpr std::int64_t longest = std::int64_t{400} * 365 * 86'400;
    if (const std::int64_t search = LongestSearch(rule); search < longest) {
        icaltimetype end = Later(from, search);
        end.is_date = 0;
        if (icaltime_is_null_time(rule.until) != 0 || icaltime_compare(end, rule.until) < 0)
            rule.until = end;
    }
    return {icalrecur_iterator_new(rule, from), icalrecur_iterator_free};
}

// A component's beginning and end, and when it is due.
struct Times {
    icaltimetype start;
    icaltimetype end;
    bool repeats = false;

    void MoveTo(const icaltimetype& next)
    {
        end = icaltime_is_null_time(end) != 0 ? end : icaltime_add(next, icaltime_subtract(end, start));
        start = next;
    }
};

class Reader
{
public:
    Reader(const DateTime& now, const BlockSink& sink) : now_(now), sink_(sink) {}

    void Read(icalcomponent* root)
    {
        const icalcomponent_kind kind = icalcomponent_isa(root);
        if (kind == ICAL_VCALENDAR_COMPONENT)
            return ReadEntries(root);
        if (kind != ICAL_XROOT_COMPONENT)
            throw Refused(Refusal::Damaged);
        // Several calendars in one file.
        for (icalcomponent* one = icalcomponent_get_first_component(root, ICAL_VCALENDAR_COMPONENT); one;
             one = icalcomponent_get_next_component(root, ICAL_VCALENDAR_COMPONENT))
            ReadEntries(one);
    }

private:
    const DateTime& now_;
    const BlockSink& sink_;
    std::size_t entries_ = 0;
    std::map<std::string, std::vector<icaltimetype>> moved_; ///< by identifier: dates that have an entry of their own

    void ReadEntries(icalcomponent* calendar)
    {
        std::vector<icalcomponent*> found;
        for (icalcomponent* one = icalcomponent_get_first_component(calendar, ICAL_ANY_COMPONENT); one;
             one = icalcomponent_get_next_component(calendar, ICAL_ANY_COMPONENT)) {
            const icalcomponent_kind kind = icalcomponent_isa(one);
            if (kind != ICAL_VEVENT_COMPONENT && kind != ICAL_VTODO_COMPONENT)
                continue;
            found.push_back(one);
            if (const icaltimetype date = icalcomponent_get_recurrenceid(one); IsGiven(date))
                moved_[Identifier(one)].push_back(date);
        }
        for (icalcomponent* one : found)
            ReadEntry(one);
    }

    static std::string Identifier(icalcomponent* entry)
    {
        const char* const uid = icalcomponent_get_uid(entry);
        return uid ? uid : "";
    }

    void ReadEntry(icalcomponent* component)
    {
        const icalproperty_status status = icalcomponent_get_status(component);
        if (status == ICAL_STATUS_CANCELLED)
            return;
        if (++entries_ > MostEntries)
            throw Refused(Refusal::TooLarge);
        CalendarEntry entry;
        entry.Title = OneLine(icalcomponent_get_summary(component));
        if (Trimmed(entry.Title).empty())
            entry.Title = "Untitled";
        entry.Description = Lines(icalcomponent_get_description(component));
        entry.Done = status == ICAL_STATUS_COMPLETED || HasMark(component, "X-VOXMATE-DONE");

        const bool isTask = icalcomponent_isa(component) == ICAL_VTODO_COMPONENT;
        const icaltimetype start = icalcomponent_get_dtstart(component);
        const icaltimetype end = isTask ? icalcomponent_get_due(component) : icalcomponent_get_dtend(component);
        Times times{IsGiven(start) ? start : end, IsGiven(end) ? end : icaltime_null_time()};
        if (IsGiven(times.start)) {
            Repeat(component, times);
            entry.Repeats = times.repeats;
            entry.ForeignZone = NamesForeignZone(component, times.start);
            SetMoment(component, times, isTask, entry);
        }
        sink_(ToBlock(entry));
    }

    static bool HasMark(icalcomponent* component, std::string_view name)
    {
        for (icalproperty* one = icalcomponent_get_first_property(component, ICAL_X_PROPERTY); one;
             one = icalcomponent_get_next_property(component, ICAL_X_PROPERTY))
            if (const char* own = icalproperty_get_x_name(one); own && EqualNoCase(own, name))
                return true;
        return false;
    }

    // Whether its time is in a zone that neither the calendar nor the system describes.
    static bool NamesForeignZone(icalcomponent* component, const icaltimetype& start)
    {
        if (!IsFloating(start) || start.is_date != 0)
            return false;
        for (const icalproperty_kind kind : {ICAL_DTSTART_PROPERTY, ICAL_DUE_PROPERTY})
            if (icalproperty* one = icalcomponent_get_first_property(component, kind))
                return icalproperty_get_first_parameter(one, ICAL_TZID_PARAMETER) != nullptr;
        return false;
    }

    // A component has only one place to go on from, which others move.
    static std::vector<icalproperty*> Properties(icalcomponent* component, icalproperty_kind kind)
    {
        std::vector<icalproperty*> all;
        for (icalproperty* one = icalcomponent_get_first_property(component, kind); one;
             one = icalcomponent_get_next_property(component, kind))
            all.push_back(one);
        return all;
    }

    bool IsTaken(icalcomponent* component, const icaltimetype& start, const icaltimetype& date) const
    {
        icaltimetype first = start;
        icaltimetype next = date;
        if (icalproperty_recurrence_is_excluded(component, &first, &next) != 0)
            return false;
        const auto moved = moved_.find(Identifier(component));
        return moved == moved_.end() ||
               std::ranges::none_of(moved->second, [&](const icaltimetype& one) { return SameMoment(one, date); });
    }

    // Goes to the next date of a component that repeats. One whose last date has passed stays at its first.
    void Repeat(icalcomponent* component, Times& times) const
    {
        if (IsGiven(icalcomponent_get_recurrenceid(component)))
            return;
        std::optional<icaltimetype> next;
        const auto consider = [&](const icaltimetype& date) {
            const DateTime at = Local(date);
            // A day's reminder comes in the morning.
            const bool passed =
                date.is_date != 0 ? std::tuple(at.year, at.month, at.day) < std::tuple(now_.year, now_.month, now_.day)
                                  : Fields(at) < Fields(now_);
            if (passed || !IsReal(at) || !IsTaken(component, times.start, date))
                return false;
            if (!next || Fields(at) < Fields(Local(*next)))
                next = date;
            return true;
        };
        for (icalproperty* const one : Properties(component, ICAL_RRULE_PROPERTY)) {
            times.repeats = true;
            const Iterator dates = DatesOf(icalproperty_get_rrule(one), times.start, now_);
            for (int i = 0; dates && i < MostRepeats; ++i) {
                const icaltimetype date = icalrecur_iterator_next(dates.get());
                if (icaltime_is_null_time(date) != 0 || consider(date))
                    break;
            }
        }
        for (icalproperty* const one : Properties(component, ICAL_RDATE_PROPERTY)) {
            times.repeats = true;
            icaltimetype date = icalproperty_get_rdate(one).time;
            date.zone = date.zone ? date.zone : times.start.zone;
            if (IsGiven(date))
                consider(date);
        }
        if (times.repeats && !next)
            times.repeats = false;
        else if (next)
            times.MoveTo(*next);
    }

    void SetMoment(icalcomponent* component, const Times& times, bool isTask, CalendarEntry& entry) const
    {
        const icaltimetype& own = isTask && IsGiven(times.end) ? times.end : times.start;
        DateTime at = Local(own);
        at.second = 0;
        if (!IsReal(at))
            return;
        std::optional<DateTime> alarm;
        for (icalcomponent* one = icalcomponent_get_first_component(component, ICAL_VALARM_COMPONENT); one;
             one = icalcomponent_get_next_component(component, ICAL_VALARM_COMPONENT))
            if (const std::optional<DateTime> when = AlarmOf(one, times, own);
                when && IsReal(*when) && (!alarm || Fields(*alarm) < Fields(*when)))
                alarm = when;
        const bool wholeDay = own.is_date != 0;
        if (wholeDay)
            at.hour = HourOfADay;
        entry.At = at;
        if (!alarm || Fields(*alarm) < Fields(now_) || Fields(*alarm) == Fields(at))
            return;
        entry.At = alarm;
        const bool sameDay =
            !wholeDay && std::tuple(at.year, at.month, at.day) == std::tuple(alarm->year, alarm->month, alarm->day);
        const std::string day = Padded(at.year, 4) + "-" + Padded(at.month, 2) + "-" + Padded(at.day, 2);
        const std::string time = Padded(at.hour, 2) + ":" + Padded(at.minute, 2);
        const std::string when = sameDay ? "At " + time : "On " + day + (wholeDay ? "" : " at " + time);
        entry.Description = when + "." + (entry.Description.empty() ? "" : " ") + entry.Description;
    }

    static std::optional<DateTime> AlarmOf(icalcomponent* alarm, const Times& times, const icaltimetype& own)
    {
        icalproperty* const property = icalcomponent_get_first_property(alarm, ICAL_TRIGGER_PROPERTY);
        if (!property)
            return std::nullopt;
        const icaltriggertype trigger = icalproperty_get_trigger(property);
        if (icaltriggertype_is_bad_trigger(trigger) != 0)
            return std::nullopt;
        DateTime at;
        if (IsGiven(trigger.time)) {
            at = Local(trigger.time);
        } else {
            const icalparameter* const related = icalproperty_get_first_parameter(property, ICAL_RELATED_PARAMETER);
            const bool fromEnd = related && icalparameter_get_related(related) == ICAL_RELATED_END;
            icaltimetype from = fromEnd && IsGiven(times.end) ? times.end : IsGiven(times.start) ? times.start : own;
            from.is_date = 0;
            at = Local(icaltime_add(from, trigger.duration));
        }
        at.second = 0;
        return at;
    }
};

} // namespace

void ReadCalendar(std::string_view bytes, const DateTime& now, const BlockSink& sink)
{
    if (bytes.size() > LargestCalendar)
        throw Refused(Refusal::TooLarge);
    icalerror_set_errors_are_fatal(0);
    const std::string whole = IsWide(bytes) ? std::string(bytes) : Unfolded(bytes);
    std::string own;
    const std::string_view text = TextOf(whole, own);
    const Calendar calendar(icalparser_parse_string(std::string(text).c_str()), icalcomponent_free);
    if (!calendar)
        throw Refused(Refusal::Damaged);
    Reader(now, sink).Read(calendar.get());
}

} // namespace voxmate::readers
