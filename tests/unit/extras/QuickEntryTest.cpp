// Reminders written as one would say them.
#include "extras/QuickEntry.h"

#include <gtest/gtest.h>

#include <cstdio>
#include <string>
#include <variant>

namespace voxmate
{

namespace
{

// A Wednesday.
constexpr DateTime Now{2026, 11, 25, 14, 20, 40};

std::string Shown(const DateTime& at)
{
    char text[32];
    std::snprintf(text, sizeof text, "%04d-%02d-%02d %02d:%02d:%02d", at.year, at.month, at.day, at.hour, at.minute,
                  at.second);
    return text;
}

// "title | moment", "refused: reason" or "no time".
std::string Read(std::string_view text, const DateTime& now = Now)
{
    const auto result = ReadQuickReminder(text, now);
    if (const auto* reminder = std::get_if<QuickReminder>(&result))
        return reminder->Title + " | " + Shown(reminder->At);
    const auto* refusal = std::get_if<QuickRefusal>(&result);
    return refusal ? "refused: " + refusal->Reason : "no time";
}

} // namespace

TEST(QuickEntryTest, ATextWithoutATimeIsATitle)
{
    for (const char* text : {"", "   ", "Call the bank", "Meeting in room 5", "at home", "Buy 3 apples", "Every Breath",
                             "Henry 8", "7.30 a pound", "Buy sun cream", "They wed", "Daily Mail", "Buy the Daily Mail",
                             "on the way", "this and that", "in", "at", "next", "in 5 colours"})
        EXPECT_EQ(Read(text), "no time") << text;
}

TEST(QuickEntryTest, SoMuchLaterIsCountedFromNow)
{
    EXPECT_EQ(Read("tea in 15 minutes"), "tea | 2026-11-25 14:35:00");
    EXPECT_EQ(Read("in 15 min: tea"), "tea | 2026-11-25 14:35:00");
    EXPECT_EQ(Read("Tea in 90m"), "Tea | 2026-11-25 15:50:00");
    EXPECT_EQ(Read("eggs in an hour"), "eggs | 2026-11-25 15:20:00");
    EXPECT_EQ(Read("eggs in half an hour"), "eggs | 2026-11-25 14:50:00");
    EXPECT_EQ(Read("roast in 1 hour 30 minutes"), "roast | 2026-11-25 15:50:00");
    EXPECT_EQ(Read("roast in 1 hour and 30 minutes please"), "roast please | 2026-11-25 15:50:00");
    EXPECT_EQ(Read("roast in 1h 5min"), "roast | 2026-11-25 15:25:00");
    EXPECT_EQ(Read("late in 10 hours"), "late | 2026-11-26 00:20:00");
    EXPECT_EQ(Read("dentist in 2 weeks"), "dentist | 2026-12-09 14:20:00");
    EXPECT_EQ(Read("dentist in 2 days at 9"), "dentist | 2026-11-27 09:00:00");
    EXPECT_EQ(Read("salt and pepper in 5 minutes and sugar"), "salt and pepper and sugar | 2026-11-25 14:25:00");
}

TEST(QuickEntryTest, NumbersMayBeWords)
{
    EXPECT_EQ(Read("tea in two hours"), "tea | 2026-11-25 16:20:00");
    EXPECT_EQ(Read("tea in an hour and a half"), "tea | 2026-11-25 15:50:00");
    EXPECT_EQ(Read("tea in a half hour"), "no time");
    EXPECT_EQ(Read("tea in half hour"), "tea | 2026-11-25 14:50:00");
    EXPECT_EQ(Read("tea in 5 minutes!"), "tea | 2026-11-25 14:25:00");
}

TEST(QuickEntryTest, TonightIsInTheEvening)
{
    EXPECT_EQ(Read("tonight film"), "film | 2026-11-25 20:00:00");
    EXPECT_EQ(Read("tonight 9 film"), "film | 2026-11-25 21:00:00");
    EXPECT_EQ(Read("film tonight at 11:30"), "film | 2026-11-25 23:30:00");
    EXPECT_EQ(Read("film tonight 22:15"), "film | 2026-11-25 22:15:00");
}

TEST(QuickEntryTest, PartsOfTheDayHaveTheirHours)
{
    EXPECT_EQ(Read("film in the evening"), "film | 2026-11-25 20:00:00");
    EXPECT_EQ(Read("film tomorrow in the evening"), "film | 2026-11-26 20:00:00");
    EXPECT_EQ(Read("film on friday at 7 in the evening"), "film | 2026-11-27 19:00:00");
    EXPECT_EQ(Read("run in the morning"), "run | 2026-11-26 09:00:00");
    EXPECT_EQ(Read("run at 7 in the morning"), "run | 2026-11-26 07:00:00");
    EXPECT_EQ(Read("call in the afternoon"), "call | 2026-11-25 15:00:00");
    EXPECT_EQ(Read("call friday 2 in the afternoon"), "call | 2026-11-27 14:00:00");
    EXPECT_EQ(Read("sit in the dark"), "no time");
}

TEST(QuickEntryTest, ANumberBehindADayMayCountWhatFollows)
{
    EXPECT_EQ(Read("monday 2 eggs"), "2 eggs | 2026-11-30 09:00:00");
    EXPECT_EQ(Read("monday 12 eggs"), "12 eggs | 2026-11-30 09:00:00");
    EXPECT_EQ(Read("monday at 2 eggs"), "eggs | 2026-11-30 02:00:00");
    EXPECT_EQ(Read("monday 8 tennis"), "tennis | 2026-11-30 08:00:00");
    EXPECT_EQ(Read("tonight 5 film"), "film | 2026-11-25 17:00:00");
    EXPECT_EQ(Read("eggs monday 5"), "eggs | 2026-11-30 05:00:00");
}

TEST(QuickEntryTest, ATimeMayHaveAFraction)
{
    EXPECT_EQ(Read("tea in 1.5 hours"), "tea | 2026-11-25 15:50:00");
    EXPECT_EQ(Read("tea in 0.25h"), "tea | 2026-11-25 14:35:00");
    EXPECT_EQ(Read("tea in 1.5 colours"), "no time");
}

// The title is read after each letter.
TEST(QuickEntryTest, TheBeginningOfAnyTextIsRead)
{
    for (const std::string text :
         {"lunch on monday", "meeting on friday 10", "switch the heating on", "tea in 15 minutes on", "on friday bank",
          "the day after tomorrow at 9:30 p.m. dinner", "next friday march 7 2027 12.5. in half an hour and a half",
          "remind me of the 7th of may every other week", "2027-03-07 9 o'clock next", "at 9:", "in 1h5", "@ on this"})
        for (std::size_t length = 0; length <= text.size(); ++length)
            EXPECT_FALSE(Read(text.substr(0, length)).empty());
}

TEST(QuickEntryTest, ATimeWithoutADayIsTheNextSuchTime)
{
    EXPECT_EQ(Read("bank at 16"), "bank | 2026-11-25 16:00:00");
    EXPECT_EQ(Read("bank at 9"), "bank | 2026-11-26 09:00:00");
    EXPECT_EQ(Read("bank 9:30"), "bank | 2026-11-26 09:30:00");
    EXPECT_EQ(Read("bank at 9.30"), "bank | 2026-11-26 09:30:00");
    EXPECT_EQ(Read("bank 9pm"), "bank | 2026-11-25 21:00:00");
    EXPECT_EQ(Read("bank at 9:05 p.m."), "bank | 2026-11-25 21:05:00");
    EXPECT_EQ(Read("bank 12 am"), "bank | 2026-11-26 00:00:00");
    EXPECT_EQ(Read("bank 12 pm"), "bank | 2026-11-26 12:00:00");
    EXPECT_EQ(Read("lunch at noon"), "lunch | 2026-11-26 12:00:00");
    EXPECT_EQ(Read("call 5 o'clock"), "call | 2026-11-26 05:00:00");
    EXPECT_EQ(Read("bank at 14:20"), "bank | 2026-11-26 14:20:00");
    EXPECT_EQ(Read("bank at 14:21"), "bank | 2026-11-25 14:21:00");
}

TEST(QuickEntryTest, DaysAreNamedInManyWays)
{
    EXPECT_EQ(Read("tomorrow 9 bank"), "bank | 2026-11-26 09:00:00");
    EXPECT_EQ(Read("Bank Tomorrow"), "Bank | 2026-11-26 09:00:00");
    EXPECT_EQ(Read("film tonight"), "film | 2026-11-25 20:00:00");
    EXPECT_EQ(Read("film tonight at 22:15"), "film | 2026-11-25 22:15:00");
    EXPECT_EQ(Read("the day after tomorrow 8am run"), "run | 2026-11-27 08:00:00");
    EXPECT_EQ(Read("gym on friday"), "gym | 2026-11-27 09:00:00");
    EXPECT_EQ(Read("gym Fri 18:00"), "gym | 2026-11-27 18:00:00");
    EXPECT_EQ(Read("gym on Fri"), "gym | 2026-11-27 09:00:00");
    EXPECT_EQ(Read("sun at noon lunch"), "lunch | 2026-11-29 12:00:00");
    EXPECT_EQ(Read("gym wednesday 18:00"), "gym | 2026-11-25 18:00:00");
    EXPECT_EQ(Read("gym wednesday"), "gym | 2026-12-02 09:00:00");
    EXPECT_EQ(Read("gym next wednesday 18:00"), "gym | 2026-12-02 18:00:00");
    EXPECT_EQ(Read("tax 7 march"), "tax | 2027-03-07 09:00:00");
    EXPECT_EQ(Read("tax on March 7th, 2028 at 10"), "tax | 2028-03-07 10:00:00");
    EXPECT_EQ(Read("tax Dec 1"), "tax | 2026-12-01 09:00:00");
    EXPECT_EQ(Read("tax 24.12. 17:30"), "tax | 2026-12-24 17:30:00");
    EXPECT_EQ(Read("tax 1.2.2027"), "tax | 2027-02-01 09:00:00");
    EXPECT_EQ(Read("2027-03-07 tax"), "tax | 2027-03-07 09:00:00");
}

TEST(QuickEntryTest, ADayThatDoesNotExistIsPartOfTheTitle)
{
    EXPECT_EQ(Read("30 february"), "no time");
    EXPECT_EQ(Read("2026-13-01"), "no time");
    EXPECT_EQ(Read("bank at 25"), "no time");
    EXPECT_EQ(Read("bank at 9:75"), "no time");
    EXPECT_EQ(Read("bank 13 pm"), "no time");
}

TEST(QuickEntryTest, WordsThatOnlyLeadToTheTitleAreLeftOut)
{
    EXPECT_EQ(Read("Remind me to water the roses at 18"), "water the roses | 2026-11-25 18:00:00");
    EXPECT_EQ(Read("remind me in 10 minutes about the tea"), "the tea | 2026-11-25 14:30:00");
    EXPECT_EQ(Read("tomorrow: to the bank"), "the bank | 2026-11-26 09:00:00");
}

TEST(QuickEntryTest, WhatCannotBeEnteredIsRefusedWithAReason)
{
    const std::string once = "refused: A reminder comes once. Please give one day and one time.";
    EXPECT_EQ(Read("every day at 9 pills"), once);
    EXPECT_EQ(Read("gym each Monday"), once);
    EXPECT_EQ(Read("report weekly"), once);
    EXPECT_EQ(Read("send weekly report at 9"), once);
    EXPECT_EQ(Read("pills every 6 hours"), once);
    EXPECT_EQ(Read("in 15 minutes"), "refused: Please say what you want to be reminded of, too.");
    EXPECT_EQ(Read("bank today at 9"), "refused: That time has passed already.");
    EXPECT_EQ(Read("bank today"), "refused: Please say at what time today.");
    EXPECT_EQ(Read("bank 2026-11-24"), "refused: That time has passed already.");
}

TEST(QuickEntryTest, TheYearChangesAndLeapDaysAreKnown)
{
    EXPECT_EQ(Read("fireworks in 2 hours", {2026, 12, 31, 23, 0, 0}), "fireworks | 2027-01-01 01:00:00");
    EXPECT_EQ(Read("party 29 feb", {2027, 12, 1, 0, 0, 0}), "no time");
    EXPECT_EQ(Read("party 29 feb 2028", {2027, 12, 1, 0, 0, 0}), "party | 2028-02-29 09:00:00");
    EXPECT_EQ(Read("end in 9000 weeks", {9990, 12, 31, 23, 0, 0}), "refused: That is too far away.");
}

} // namespace voxmate
