// Reads a reminder that is written as one would say it: "tea in 15 minutes", "tomorrow 9 bank".
#pragma once

#include "platform/Clock.h"

#include <string>
#include <string_view>
#include <variant>

namespace voxmate
{

/// What was understood: a title, and the moment, whose seconds are 0 and which is later than now.
struct QuickReminder {
    std::string Title;
    DateTime At;
    bool operator==(const QuickReminder&) const = default;
};

/// Why a text that says when is not taken: one sentence for the user.
struct QuickRefusal {
    std::string Reason;
    bool operator==(const QuickRefusal&) const = default;
};

/// A text that says nothing of a time is a title like any other.
struct NoTimeSaid {
    bool operator==(const NoTimeSaid&) const = default;
};

/// Reads an English text with a moment in it: "in 15 minutes", "in 1.5 hours", "at 9", "9:30 pm", "noon",
/// "in the evening", "today", "tonight", "tomorrow", "friday", "next friday", "7 march", "march 7 2027", "2027-03-07",
/// in any order and mixed with the title's words. A day without a time means 9:00, an hour without a day the next such
/// hour, and a weekday the next such day. Capitals do not matter.
std::variant<NoTimeSaid, QuickReminder, QuickRefusal> ReadQuickReminder(std::string_view text, const DateTime& now);

} // namespace voxmate
