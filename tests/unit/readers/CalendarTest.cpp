#include "readers/calendar/Calendar.h"

#include "base/Text.h"
#include "readers/CalendarEntry.h"
#include "readers/Kind.h"
#include "readers/Refusal.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdlib>
#include <ctime>
#include <string>
#include <vector>

namespace voxmate::readers
{
namespace
{

const DateTime kNow{2026, 11, 23, 8, 0, 0};

std::string Whole(const std::string& entries)
{
    return "BEGIN:VCALENDAR\r\nVERSION:2.0\r\n" + entries + "END:VCALENDAR\r\n";
}

std::string Event(const std::string& lines)
{
    return "BEGIN:VEVENT\r\nSUMMARY:Tea\r\n" + lines + "END:VEVENT\r\n";
}

std::vector<CalendarEntry> Entries(const std::string& text)
{
    std::vector<CalendarEntry> entries;
    ReadCalendar(text, kNow, [&entries](Block&& block) { entries.push_back(ToEntry(block)); });
    return entries;
}

// The only entry's moment and description.
std::string Told(const std::string& lines)
{
    const std::vector<CalendarEntry> entries = Entries(Whole(Event(lines)));
    if (entries.size() != 1)
        return std::to_string(entries.size()) + " entries";
    const Block block = ToBlock(entries.front());
    return block.label + " " + block.text;
}

TEST(CalendarTest, ReadsAnEventWithFoldedLinesAndEscapes)
{
    const std::string text = Whole("BEGIN:VEVENT\nDTSTART:20261201T090530\nSUMMARY:Tea\\, with A\n nn \xC3\n"
                                   " \xA9t\xC3\xA9\nDESCRIPTION:One\\nTwo\\; three\nEND:VEVENT\n");
    EXPECT_EQ(FindKind("\xEF\xBB\xBF" + text), Kind::Calendar);
    EXPECT_EQ(Entries("\xEF\xBB\xBF" + text),
              (std::vector<CalendarEntry>{{DateTime{2026, 12, 1, 9, 5, 0}, "Tea, with Ann été", "One\nTwo; three"}}));
}

TEST(CalendarTest, ADayWithoutATimeMeansNineOClock)
{
    EXPECT_EQ(Told("DTSTART;VALUE=DATE:20261201\r\n"), "2026-12-01 09:00 Tea");
}

TEST(CalendarTest, TellsItsZonesTimesInLocalTime)
{
    const std::string zone = "BEGIN:VTIMEZONE\r\nTZID:Far\r\nBEGIN:STANDARD\r\nDTSTART:19700101T000000\r\n"
                             "TZOFFSETFROM:+0500\r\nTZOFFSETTO:+0500\r\nEND:STANDARD\r\nEND:VTIMEZONE\r\n";
    const auto utc = Entries(Whole(Event("DTSTART:20261201T090000Z\r\n")));
    const auto far = Entries(Whole(zone + Event("DTSTART;TZID=Far:20261201T140000\r\n")));
    ASSERT_EQ(utc.size(), 1U);
    EXPECT_EQ(utc, far) << "14:00 there is 9:00 in UTC";
    EXPECT_FALSE(far.front().ForeignZone);
}

TEST(CalendarTest, MarksATimeOfAZoneThatNobodyKnows)
{
    const auto entries = Entries(Whole(Event("DTSTART;TZID=No/Where:20261201T140000\r\n")));
    EXPECT_EQ(entries, (std::vector<CalendarEntry>{{DateTime{2026, 12, 1, 14, 0, 0}, "Tea", "", false, false, true}}));
}

TEST(CalendarTest, TheLastAlarmThatIsStillToComeDecides)
{
    const std::string start = "DTSTART:20261201T090000\r\nDESCRIPTION:Green\r\n";
    const auto alarm = [](const std::string& trigger) {
        return "BEGIN:VALARM\r\nACTION:DISPLAY\r\n" + trigger + "\r\nEND:VALARM\r\n";
    };
    EXPECT_EQ(Told(start + alarm("TRIGGER:-P1D") + alarm("TRIGGER:-PT15M")), "2026-12-01 08:45 Tea\nAt 09:00. Green");
    EXPECT_EQ(Told(start + alarm("TRIGGER:-P1D")), "2026-11-30 09:00 Tea\nOn 2026-12-01 at 09:00. Green");
    EXPECT_EQ(Told(start + alarm("TRIGGER:-P30D")), "2026-12-01 09:00 Tea\nGreen") << "that has passed";
    EXPECT_EQ(Told(start + alarm("TRIGGER:PT0S")), "2026-12-01 09:00 Tea\nGreen");
    EXPECT_EQ(Told("DTSTART;VALUE=DATE:20261201\r\n" + alarm("TRIGGER:-PT6H")), "2026-11-30 18:00 Tea\nOn 2026-12-01.");
}

TEST(CalendarTest, OfWhatRepeatsItIsTheNextDate)
{
    const auto entries = Entries(Whole(Event("UID:1\r\nDTSTART:20200105T090000\r\nRRULE:FREQ=YEARLY\r\n")));
    EXPECT_EQ(entries, (std::vector<CalendarEntry>{{DateTime{2027, 1, 5, 9, 0, 0}, "Tea", "", true}}));
    EXPECT_EQ(Told("DTSTART:20261101T090000\r\nRRULE:FREQ=DAILY\r\nEXDATE:20261123T090000\r\n"),
              "2026-11-24 09:00 Tea");
    EXPECT_EQ(Told("DTSTART:20201101T090000\r\nRRULE:FREQ=DAILY;COUNT=3\r\n"), "2020-11-01 09:00 Tea")
        << "its last date has passed";
    EXPECT_EQ(Told("DTSTART:20201101T090000\r\nRDATE:20261210T090000\r\n"), "2026-12-10 09:00 Tea");
}

TEST(CalendarTest, ADateThatWasMovedIsAnEntryOfItsOwn)
{
    const auto entries = Entries(Whole(Event("UID:1\r\nDTSTART:20261123T090000\r\nRRULE:FREQ=DAILY\r\n") +
                                       Event("UID:1\r\nRECURRENCE-ID:20261123T090000\r\nDTSTART:20261123T110000\r\n")));
    EXPECT_EQ(entries, (std::vector<CalendarEntry>{{DateTime{2026, 11, 24, 9, 0, 0}, "Tea", "", true},
                                                   {DateTime{2026, 11, 23, 11, 0, 0}, "Tea", ""}}));
}

TEST(CalendarTest, ReadsToDosWithTheirMarkAndLeavesOutWhatIsCancelled)
{
    const std::string done = "BEGIN:VTODO\r\nSUMMARY:Tax\r\nDUE:20261201T120000\r\nSTATUS:COMPLETED\r\nEND:VTODO\r\n";
    const std::string dateless = "BEGIN:VTODO\r\nEND:VTODO\r\n";
    const auto entries = Entries(Whole(done + dateless + Event("DTSTART:20261201T090000\r\nSTATUS:CANCELLED\r\n")));
    EXPECT_EQ(entries, (std::vector<CalendarEntry>{{DateTime{2026, 12, 1, 12, 0, 0}, "Tax", "", false, true},
                                                   {std::nullopt, "Untitled", ""}}));
}

TEST(CalendarTest, ManyEntriesAndEndlessFoldingAreBounded)
{
    std::string many;
    for (std::size_t i = 0; i <= MostEntries; ++i)
        many += "BEGIN:VEVENT\nEND:VEVENT\n";
    try {
        Entries(Whole(many));
        ADD_FAILURE() << "it is taken";
    } catch (const Refused& refused) {
        EXPECT_EQ(refused.reason, Refusal::TooLarge);
    }
    std::string folded = "DESCRIPTION:";
    for (int i = 0; i < 1'000'000; ++i)
        folded += "\r\n x";
    const auto entries = Entries(Whole(Event("DTSTART:20261201T090000\r\n" + folded + "\r\n")));
    ASSERT_EQ(entries.size(), 1U);
    EXPECT_EQ(entries.front().Description.size(), 1'000'000U);
}

TEST(CalendarTest, WhatIsNoCalendarIsRefused)
{
    EXPECT_THROW(Entries("Dear Ann,\r\n\r\ntea at nine?\r\n"), Refused);
    EXPECT_THROW(Entries(std::string(LargestCalendar + 1, 'x')), Refused);
}

TEST(CalendarTest, ARuleByTheHourGoesOnInItsOwnSteps)
{
    const auto next = [](const std::string& rule) {
        const std::string told = Told("DTSTART:20200229T090700\r\nRRULE:" + rule + "\r\n");
        return told.substr(0, std::min<std::size_t>(told.size(), 16));
    };
    EXPECT_EQ(next("FREQ=HOURLY;INTERVAL=5"), "2026-11-23 08:07");
    EXPECT_EQ(next("FREQ=HOURLY;BYHOUR=9,17"), "2026-11-23 09:07");
    EXPECT_EQ(next("FREQ=MINUTELY;INTERVAL=7"), "2026-11-23 08:01");
    EXPECT_EQ(next("FREQ=SECONDLY;INTERVAL=90"), "2026-11-23 08:01");
    EXPECT_EQ(next("FREQ=HOURLY;INTERVAL=5;UNTIL=20200301T090700"), "2020-02-29 09:07");
    EXPECT_EQ(next("FREQ=YEARLY"), "2028-02-29 09:07");
}

TEST(CalendarTest, ABackslashBeforeALetterOfSeveralBytesLeavesText)
{
    for (const std::string field : {"SUMMARY", "DESCRIPTION"}) {
        const Block block =
            ToBlock(Entries(Whole("BEGIN:VEVENT\r\n" + field + ":Gr\\\xC3\xBCn\r\nEND:VEVENT\r\n")).at(0));
        EXPECT_TRUE(IsValidUtf8(block.text)) << block.text;
        EXPECT_NE(block.text.find("Gr"), std::string::npos);
    }
}

TEST(CalendarTest, WhatIsNoDateIsLeftOut)
{
    EXPECT_EQ(Told("DTSTART:10125114T090000Z\r\nRRULE:FREQ=DAILY;INTERVAL=2\r\n"), " Tea");
    EXPECT_EQ(Told("DTSTART:20261301T090000\r\n"), " Tea");
    EXPECT_EQ(Told("DTSTART:00000101T090000\r\n"), " Tea");
}

TEST(CalendarTest, ADateThatNeverComesIsNotLookedForForEver)
{
    for (const char* const rule :
         {"20200101T090000\r\nRRULE:FREQ=SECONDLY", "20200101T090000\r\nRRULE:FREQ=MINUTELY",
          "01000101T090000\r\nRRULE:FREQ=HOURLY", "01000101T090000\r\nRRULE:COUNT=3;FREQ=HOURLY",
          "20200101T090000\r\nRRULE:FREQ=DAILY"}) {
        const std::clock_t begin = std::clock();
        EXPECT_EQ(Told("DTSTART:" + std::string(rule) + ";BYMONTH=2;BYMONTHDAY=30\r\n").substr(17), "Tea");
        EXPECT_LT(std::clock() - begin, 2 * CLOCKS_PER_SEC) << rule;
    }
}

} // namespace
} // namespace voxmate::readers
