#include "extras/QuickEntry.h"

#include "extras/Moments.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <chrono>
#include <cstddef>
#include <optional>
#include <utility>
#include <vector>

namespace voxmate
{

namespace
{

using std::chrono::days;
using std::chrono::hours;
using std::chrono::minutes;
using Day = std::chrono::local_days;

/// A part of the day: the hour that it means by itself, and the first hour that it may mean by the clock's twelve.
struct DayPart {
    hours alone;
    hours first;
};
constexpr hours Noon{12};
constexpr DayPart Morning{hours(9), hours(0)}; ///< also of a day without a time
constexpr DayPart Afternoon{hours(15), hours(1)};
constexpr DayPart Evening{hours(20), hours(4)};
/// A number alone that is smaller is no hour of the day where something follows it: "monday 2 eggs".
constexpr int FirstBareHour = 6;
constexpr int FirstYear = 1000; ///< the reminders' file keeps years of four digits
constexpr int LastYear = 9999;

/// A word as it was written, and as it is compared: in small letters, without the marks behind it.
struct Word {
    std::string written;
    std::string plain;
};

std::vector<Word> WordsOf(std::string_view text)
{
    constexpr std::string_view blanks = " \t\r\n";
    constexpr std::string_view marks = ",.:;!?";
    std::vector<Word> words;
    for (std::size_t at = text.find_first_not_of(blanks); at != std::string_view::npos;) {
        const std::size_t end = std::min(text.find_first_of(blanks, at), text.size());
        Word word{std::string(text.substr(at, end - at)), {}};
        for (const char letter : word.written)
            word.plain += letter >= 'A' && letter <= 'Z' ? static_cast<char>(letter - 'A' + 'a') : letter;
        while (word.plain.size() > 1 && marks.find(word.plain.back()) != std::string_view::npos)
            word.plain.pop_back();
        words.push_back(std::move(word));
        at = text.find_first_not_of(blanks, end);
    }
    return words;
}

template <std::size_t Count>
bool IsOneOf(std::string_view word, const std::array<std::string_view, Count>& words)
{
    return std::find(words.begin(), words.end(), word) != words.end();
}

/// The digits that a text begins with as a number; the text is left with the rest. None for more than four digits.
std::optional<int> TakeNumber(std::string_view& text)
{
    const std::size_t digits = std::min(text.find_first_not_of("0123456789"), text.size());
    int number = 0;
    if (digits == 0 || digits > 4)
        return std::nullopt;
    std::from_chars(text.data(), text.data() + digits, number);
    text.remove_prefix(digits);
    return number;
}

/// The digits behind a point that a text begins with, as a part of one; the text is left with the rest.
double TakeFraction(std::string_view& text)
{
    if (text.size() < 2 || text[0] != '.' || text[1] < '0' || text[1] > '9')
        return 0;
    text.remove_prefix(1);
    double fraction = 0;
    for (double place = 0.1; !text.empty() && text[0] >= '0' && text[0] <= '9'; place /= 10) {
        fraction += place * (text[0] - '0');
        text.remove_prefix(1);
    }
    return fraction;
}

std::optional<int> WholeNumberIn(std::string_view text)
{
    const std::optional<int> number = TakeNumber(text);
    return text.empty() ? number : std::nullopt;
}

constexpr std::array<std::string_view, 7> Weekdays{"sunday",   "monday", "tuesday", "wednesday",
                                                   "thursday", "friday", "saturday"};
constexpr std::array<std::string_view, 12> Months{"january",   "february", "march",    "april",
                                                  "may",       "june",     "july",     "august",
                                                  "september", "october",  "november", "december"};

/// Which of some names a word is, whole or by its first three letters; counted from 0.
template <std::size_t Count>
std::optional<unsigned> PlaceIn(const std::array<std::string_view, Count>& names, std::string_view word)
{
    for (unsigned i = 0; i < Count; ++i)
        if (word == names[i] || word == names[i].substr(0, 3))
            return i;
    return std::nullopt;
}

/// "a", "one" to "twelve".
std::optional<int> CountIn(std::string_view word)
{
    constexpr std::array<std::string_view, 12> counts{"one",   "two",   "three", "four", "five",   "six",
                                                      "seven", "eight", "nine",  "ten",  "eleven", "twelve"};
    if (word == "a" || word == "an")
        return 1;
    const auto* const found = std::find(counts.begin(), counts.end(), word);
    return found == counts.end() ? std::nullopt : std::optional(static_cast<int>(found - counts.begin()) + 1);
}

std::optional<minutes> UnitOf(std::string_view word)
{
    if (IsOneOf(word, std::array<std::string_view, 5>{"minute", "minutes", "min", "mins", "m"}))
        return minutes(1);
    if (IsOneOf(word, std::array<std::string_view, 5>{"hour", "hours", "hr", "hrs", "h"}))
        return hours(1);
    if (IsOneOf(word, std::array<std::string_view, 2>{"day", "days"}))
        return days(1);
    if (IsOneOf(word, std::array<std::string_view, 2>{"week", "weeks"}))
        return days(7);
    return std::nullopt;
}

/// What the words say of the moment, and the words that say nothing of it.
struct Said {
    std::optional<Day> day;
    std::optional<minutes> time;  ///< since midnight
    std::optional<minutes> later; ///< from now
    std::optional<unsigned> weekday;
    std::optional<DayPart> part; ///< "tonight", "in the evening"
    bool thisYear = false;       ///< the day was said without its year
    std::vector<std::string> rest;
};

/// Reads the words one after the other. Each Take... looks for one way to say when, beginning at a word, and returns
/// how many words that takes; 0 when there is none, or when the same was said before.
class Reader
{
public:
    Reader(const std::vector<Word>& words, Day today) : words_(words), today_(today) {}

    Said Read()
    {
        bool afterDay = false;
        for (std::size_t at = 0; at < words_.size();) {
            std::size_t taken = TakeDay(at);
            const bool day = taken > 0;
            if (taken == 0)
                taken = TakePart(at);
            if (taken == 0)
                taken = TakeTime(at, afterDay);
            if (taken == 0)
                taken = TakeLater(at);
            afterDay = day;
            if (taken == 0)
                said_.rest.push_back(words_[at].written);
            at += std::max<std::size_t>(taken, 1);
        }
        return said_;
    }

private:
    const std::vector<Word>& words_;
    Day today_;
    Said said_;

    std::string_view At(std::size_t at) const { return at < words_.size() ? words_[at].plain : std::string_view(); }

    /// "in the morning", "in the afternoon", "in the evening".
    std::size_t TakePart(std::size_t from)
    {
        if (said_.part || At(from) != "in" || At(from + 1) != "the")
            return 0;
        const std::string_view part = At(from + 2);
        if (part == "morning")
            said_.part = Morning;
        else if (part == "afternoon")
            said_.part = Afternoon;
        else if (part == "evening")
            said_.part = Evening;
        return said_.part ? 3 : 0;
    }

    /// "in 15 minutes", "in 1.5 hours", "in 1 hour 30 minutes", "in 2h", "in two hours", "in half an hour", "in an hour
    /// and a half".
    std::size_t TakeLater(std::size_t from)
    {
        if (said_.later || At(from) != "in")
            return 0;
        minutes sum{0};
        minutes last{0}; // the unit before
        std::size_t at = from + 1;
        for (std::size_t end = at;; at = end) {
            if (end > from + 1 && At(end) == "and")
                ++end;
            if (last > minutes(1) && At(end) == "a" && At(end + 1) == "half") {
                sum += last / 2;
                last = minutes(0);
                end += 2;
                continue;
            }
            const bool half = At(end) == "half";
            if (half)
                ++end;
            std::optional<int> count = CountIn(At(end));
            std::string_view unitName = At(end + 1);
            std::size_t words = 2;
            double fraction = 0;
            if (!count && half) { // "half hour"
                count = 1;
                unitName = At(end);
                words = 1;
            } else if (!count) {
                std::string_view word = At(end);
                count = TakeNumber(word);
                fraction = TakeFraction(word);
                if (!word.empty()) { // the unit is in the same word
                    unitName = word;
                    words = 1;
                }
            }
            const std::optional<minutes> unit = UnitOf(unitName);
            if (!count || !unit)
                break;
            last = *unit;
            sum += *count * *unit / (half ? 2 : 1) + std::chrono::round<minutes>(fraction * *unit);
            end += words;
        }
        if (sum == minutes(0))
            return 0;
        said_.later = sum;
        return at - from;
    }

    /// "at 9", "9:30", "9.30", "9pm", "9:30 pm", "at 9 o'clock", "noon", "midnight". A number alone is a time where
    /// `afterDay` says that a day stands before it.
    std::size_t TakeTime(std::size_t from, bool afterDay)
    {
        if (said_.time)
            return 0;
        const bool called = At(from) == "at" || At(from) == "@";
        std::size_t at = called ? from + 1 : from;
        std::string_view word = At(at);
        if (word == "noon" || word == "midnight") {
            said_.time = word == "noon" ? hours(12) : hours(0);
            return at + 1 - from;
        }
        std::optional<int> hour = TakeNumber(word);
        if (!hour)
            return 0;
        bool certain = called || afterDay;
        int minute = 0;
        if (word.size() >= 3 && (word.front() == ':' || (word.front() == '.' && certain))) {
            std::string_view behind = word.substr(1);
            const std::optional<int> number = TakeNumber(behind);
            if (!number || *number > 59 || word.size() - behind.size() != 3)
                return 0;
            minute = *number;
            certain = true;
            word = behind;
        }
        ++at;
        if (word.empty() && IsOneOf(At(at), std::array<std::string_view, 4>{"am", "pm", "a.m", "p.m"}))
            word = At(at++);
        if (!word.empty()) {
            const bool morning = word == "am" || word == "a.m";
            if ((!morning && word != "pm" && word != "p.m") || *hour < 1 || *hour > 12)
                return 0;
            hour = *hour % 12 + (morning ? 0 : 12);
            certain = true;
        } else if (At(at) == "o'clock") {
            ++at;
            certain = true;
        }
        if (!certain || *hour > 23 || (!called && minute == 0 && word.empty() && IsCount(from, *hour)))
            return 0;
        said_.time = hours(*hour) + minutes(minute);
        return at - from;
    }

    /// Whether a number alone behind a day is how many there are of what follows: "tomorrow 12 eggs".
    bool IsCount(std::size_t at, int number) const
    {
        if (At(at).find_first_not_of("0123456789") != std::string_view::npos || At(at + 1).empty())
            return false;
        const std::string_view next = At(at + 1);
        constexpr std::array<std::string_view, 4> noPlurals{"ss", "us", "is", "ics"};
        const bool plural =
            next.size() > 3 && next.ends_with('s') &&
            std::none_of(noPlurals.begin(), noPlurals.end(), [&](std::string_view end) { return next.ends_with(end); });
        const bool night = number < FirstBareHour && !said_.part;
        return next != "o'clock" && next != "in" && (night || plural);
    }

    /// Whether a name of a weekday is meant as such. The short ones are words of their own ("sun cream", "she sat"), so
    /// one of these needs a word that leads to it, or a time behind it.
    bool IsWeekday(std::size_t at, bool ledTo) const
    {
        constexpr std::size_t shortName = 3;
        const std::string_view next = At(at + 1);
        return ledTo || At(at).size() > shortName || next == "at" || next == "@" || next == "noon" ||
               (!next.empty() && next.front() >= '0' && next.front() <= '9');
    }

    std::size_t TakeDay(std::size_t from)
    {
        if (said_.day || said_.weekday)
            return 0;
        std::size_t at = from;
        if (At(at) == "the" && At(at + 1) == "day" && At(at + 2) == "after" && At(at + 3) == "tomorrow") {
            said_.day = today_ + days(2);
            return 4;
        }
        const bool next = At(at) == "next";
        if (next || At(at) == "on" || At(at) == "this")
            ++at;
        if (const std::optional<unsigned> weekday = PlaceIn(Weekdays, At(at)); weekday && IsWeekday(at, at > from)) {
            said_.weekday = weekday;
            if (next && std::chrono::weekday(today_).c_encoding() == *weekday)
                said_.day = today_ + days(7);
            return at + 1 - from;
        }
        if (at > from && At(from) != "on")
            return 0;
        const std::string_view word = At(at);
        if (word == "today" || word == "tomorrow" || word == "tonight") {
            said_.day = today_ + days(word == "tomorrow" ? 1 : 0);
            if (word == "tonight")
                said_.part = Evening;
            return at + 1 - from;
        }
        const std::size_t date = TakeDate(at);
        return date > 0 ? at - from + date : 0;
    }

    /// "2027-03-07", "7.3.", "7.3.2027", "7 march", "march 7", each of the latter with or without a year.
    std::size_t TakeDate(std::size_t at)
    {
        std::string_view word = at < words_.size() ? std::string_view(words_[at].written) : std::string_view();
        const std::optional<int> first = TakeNumber(word);
        if (first && !word.empty() && (word.front() == '-' || word.front() == '.')) {
            const char mark = word.front();
            word.remove_prefix(1);
            const std::optional<int> month = TakeNumber(word);
            if (!month || word.empty() || word.front() != mark)
                return 0;
            word.remove_prefix(1);
            const std::optional<int> last = TakeNumber(word);
            if (mark == '-')
                return last && Keep(*first, *month, *last) ? 1 : 0;
            return Keep(last, *month, *first) ? 1 : 0;
        }
        const auto monthAt = [this](std::size_t place) { return PlaceIn(Months, At(place)); };
        const auto dayAt = [this](std::size_t place) { // 7, 7th
            std::string_view text = At(place);
            const std::optional<int> day = TakeNumber(text);
            return text.empty() || IsOneOf(text, std::array<std::string_view, 4>{"st", "nd", "rd", "th"})
                       ? day
                       : std::nullopt;
        };
        const bool monthFirst = monthAt(at).has_value();
        const std::optional<unsigned> month = monthFirst ? monthAt(at) : monthAt(at + 1);
        const std::optional<int> day = dayAt(monthFirst ? at + 1 : at);
        if (!month || !day)
            return 0;
        const std::optional<int> year = WholeNumberIn(At(at + 2));
        const bool withYear = year && *year >= FirstYear;
        return Keep(withYear ? year : std::nullopt, static_cast<int>(*month) + 1, *day) ? (withYear ? 3 : 2) : 0;
    }

    /// Takes a day of the calendar; false when there is no such day. Without a year it is this year's.
    bool Keep(std::optional<int> year, int month, int day)
    {
        const std::chrono::year_month_day now(today_);
        const std::chrono::year_month_day date(year ? std::chrono::year(*year) : now.year(),
                                               std::chrono::month(static_cast<unsigned>(month)),
                                               std::chrono::day(static_cast<unsigned>(day)));
        if (!date.ok() || (year && (*year < FirstYear || *year > LastYear)))
            return false;
        said_.day = Day(date);
        said_.thisYear = !year;
        return true;
    }
};

/// Whether the words ask for more than one moment: "every day", "each monday"; "weekly" at their end, or where a moment
/// is said as well (else it may be a name, such as a newspaper's).
bool Repeats(const std::vector<Word>& words, bool timed)
{
    for (std::size_t i = 0; i < words.size(); ++i) {
        const std::string& word = words[i].plain;
        if ((timed || i + 1 == words.size()) && i > 0 &&
            IsOneOf(word, std::array<std::string_view, 5>{"hourly", "daily", "weekly", "monthly", "yearly"}))
            return true;
        if ((word != "every" && word != "each") || i + 1 == words.size())
            continue;
        const std::string& next = words[i + 1].plain;
        if (UnitOf(next) || PlaceIn(Weekdays, next) || WholeNumberIn(next) ||
            IsOneOf(next, std::array<std::string_view, 8>{"month", "year", "morning", "noon", "afternoon", "evening",
                                                          "night", "other"}))
            return true;
    }
    return false;
}

/// The words that are not about the time, without what only leads to them.
std::string TitleOf(std::vector<std::string> words, const std::vector<Word>& all)
{
    const bool asked = all.size() > 2 && all[0].plain == "remind" && all[1].plain == "me";
    if (asked && words.size() >= 2)
        words.erase(words.begin(), words.begin() + 2);
    if (!words.empty() && (words.front() == "to" || (asked && (words.front() == "of" || words.front() == "about"))))
        words.erase(words.begin());
    std::string title;
    for (const std::string& word : words)
        title += (title.empty() ? "" : " ") + word;
    constexpr std::string_view marks = " ,;:-";
    const std::size_t first = title.find_first_not_of(marks);
    return first == std::string::npos ? "" : title.substr(first, title.find_last_not_of(marks) + 1 - first);
}

/// The moment that was said; no value when it is over.
std::optional<Moment> MomentOf(const Said& said, Moment now)
{
    const Day today = std::chrono::floor<days>(now);
    const auto future = [now](Moment moment) { return moment > now ? std::optional(moment) : std::nullopt; };
    if (said.later) {
        // "in two days at nine" names the day and the time apart.
        const bool wholeDays = *said.later % days(1) == minutes(0);
        return wholeDays && said.time ? future(today + std::chrono::floor<days>(*said.later) + *said.time)
                                      : future(now + *said.later);
    }
    const DayPart part = said.part.value_or(Morning);
    minutes time = said.time.value_or(part.alone);
    // "tonight at 9" is no morning.
    if (part.alone > Noon && time >= part.first && time < Noon)
        time += Noon;
    if (said.day) {
        Moment moment = *said.day + time;
        if (moment <= now && said.thisYear) {
            const std::chrono::year_month_day date(*said.day);
            const std::chrono::year_month_day again(date.year() + std::chrono::years(1), date.month(), date.day());
            return again.ok() ? future(Day(again) + time) : std::nullopt;
        }
        return future(moment);
    }
    if (said.weekday) {
        const Day next = today + (std::chrono::weekday(*said.weekday) - std::chrono::weekday(today));
        return future(next + time > now ? next + time : next + days(7) + time);
    }
    return future(today + time > now ? today + time : today + days(1) + time);
}

} // namespace

std::variant<NoTimeSaid, QuickReminder, QuickRefusal> ReadQuickReminder(std::string_view text, const DateTime& now)
{
    const Moment moment = ToMoment(now);
    const Day today = std::chrono::floor<days>(moment);
    const std::vector<Word> words = WordsOf(text);
    const Said said = Reader(words, today).Read();
    const bool timed = said.day || said.time || said.later || said.weekday || said.part;
    if (Repeats(words, timed))
        return QuickRefusal{"A reminder comes once. Please give one day and one time."};
    if (!timed)
        return NoTimeSaid{};
    const std::string title = TitleOf(said.rest, words);
    if (title.empty())
        return QuickRefusal{"Please say what you want to be reminded of, too."};
    const std::optional<Moment> at = MomentOf(said, moment);
    if (!at)
        return QuickRefusal{said.day == today && !said.time && !said.part ? "Please say at what time today."
                                                                          : "That time has passed already."};
    const DateTime when = ToDateTime(*at);
    if (when.year > LastYear)
        return QuickRefusal{"That is too far away."};
    return QuickReminder{title, when};
}

} // namespace voxmate
