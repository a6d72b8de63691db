// Fuzzing of calendars: any lines between a calendar's first and last are read as entries or refused. libical is not
// instrumented; which of its kinds of lines and values an entry is made of is seen in what is read.
#include "fuzz.h"

#include "base/Text.h"
#include "readers/CalendarEntry.h"
#include "readers/Refusal.h"
#include "readers/calendar/Calendar.h"

#include <string>
#include <string_view>

using namespace voxmate;
using voxmate::fuzz::Require;

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    const std::string bytes(reinterpret_cast<const char*>(data), size);
    // Dates that never come are looked for 100,000 steps long, which takes a quarter of a second for each rule.
    std::size_t rules = 0;
    for (std::size_t at = bytes.find(':'); at != std::string::npos; at = bytes.find(':', at + 1))
        rules += EqualNoCase(std::string_view(bytes).substr(at + 1, 5), "FREQ=") ? 1 : 0;
    if (rules > 2)
        return 0;
    const DateTime now{2026, 11, 23, 8, 0, 0};
    std::size_t entries = 0;
    const auto check = [&](readers::Block&& block) {
        ++entries;
        Require(block.kind == readers::BlockKind::ListItem && block.level >= 1 && block.level <= 8,
                "an entry is a list item");
        Require(IsValidUtf8(block.text), "a text is UTF-8");
        Require(block.text.size() <= 2 * bytes.size() + 64, "an entry tells no more than the file");
        const readers::CalendarEntry entry = ToEntry(block);
        Require(!entry.Title.empty(), "an entry has a title");
        Require(block.label.empty() == !entry.At, "an entry's moment is a real one");
        Require(ToBlock(entry) == block, "an entry is what its block tells");
    };
    const fuzz::InTime inTime("a calendar is read");
    try {
        readers::ReadCalendar(bytes, now, check);
    } catch (const readers::Refused& refused) {
        Require(!Sentence(refused.reason, "file", false).empty(), "a refusal has its sentence");
    }
    Require(entries <= size / 10, "no entries come from behind the file");
    return 0;
}
