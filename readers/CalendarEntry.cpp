#include "readers/CalendarEntry.h"

#include "base/Text.h"

#include <algorithm>
#include <chrono>
#include <string_view>

namespace voxmate::readers
{

namespace
{

constexpr unsigned Repeating = 1;
constexpr unsigned DoneAlready = 2;
constexpr unsigned InForeignZone = 4;

constexpr std::string_view Form = "0000-00-00 00:00";

int NumberAt(std::string_view text, std::size_t at, std::size_t digits)
{
    int number = 0;
    for (const char digit : text.substr(at, digits))
        number = number * 10 + (digit - '0');
    return number;
}

std::optional<DateTime> MomentOf(std::string_view label)
{
    const bool right =
        std::ranges::equal(label, Form, [](char c, char like) { return like == '0' ? IsDigit(c) : c == like; });
    if (!right)
        return std::nullopt;
    const DateTime at{NumberAt(label, 0, 4),  NumberAt(label, 5, 2),  NumberAt(label, 8, 2),
                      NumberAt(label, 11, 2), NumberAt(label, 14, 2), 0};
    const std::chrono::year_month_day day{std::chrono::year(at.year),
                                          std::chrono::month(static_cast<unsigned>(at.month)),
                                          std::chrono::day(static_cast<unsigned>(at.day))};
    // The years of the date type begin with 100.
    const bool real = day.ok() && at.year >= 100 && at.hour <= 23 && at.minute <= 59;
    return real ? std::optional(at) : std::nullopt;
}

} // namespace

Block ToBlock(const CalendarEntry& entry)
{
    Block block{BlockKind::ListItem, 1, "", entry.Title, ""};
    if (const auto& at = entry.At)
        block.label = Padded(at->year, 4) + "-" + Padded(at->month, 2) + "-" + Padded(at->day, 2) + " " +
                      Padded(at->hour, 2) + ":" + Padded(at->minute, 2);
    if (!entry.Description.empty())
        block.text += "\n" + entry.Description;
    block.level += static_cast<int>((entry.Repeats ? Repeating : 0U) + (entry.Done ? DoneAlready : 0U) +
                                    (entry.ForeignZone ? InForeignZone : 0U));
    return block;
}

CalendarEntry ToEntry(const Block& block)
{
    const std::size_t end = std::min(block.text.find('\n'), block.text.size());
    const unsigned marks = block.level > 1 ? static_cast<unsigned>(block.level - 1) : 0U;
    return {
        MomentOf(block.label),    block.text.substr(0, end),  end < block.text.size() ? block.text.substr(end + 1) : "",
        (marks & Repeating) != 0, (marks & DoneAlready) != 0, (marks & InForeignZone) != 0};
}

} // namespace voxmate::readers
