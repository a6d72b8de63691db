// Fuzzing of calendars: any lines between a calendar's first and last are read as entries or refused. libical is not
// instrumented; which of its kinds of lines and values an entry is made of is seen in what is read.
#include "fuzz.h"

#include "base/Text.h"
#include "readers/CalendarEntry.h"
#include "readers/Refusal.h"
#include "readers/calendar/Calendar.h"

#include <string>

using namespace voxmate;
using voxmate::fuzz::Require;

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    const std::string bytes(reinterpret_cast<const char*>(data), size);
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
    // Not in a time of its own: libical looks for a date that never comes for up to a second for each rule. The unit
    // tests and the fuzzer's own limit watch that it ends.
    try {
        readers::ReadCalendar(bytes, now, check);
    } catch (const readers::Refused& refused) {
        Require(!Sentence(refused.reason, "file", false).empty(), "a refusal has its sentence");
    }
    Require(entries <= size / 10, "no entries come from behind the file");
    return 0;
}
