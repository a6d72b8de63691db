#include "ModuleTest.h"
#include "modules/Format.h"

namespace voxmate
{

namespace
{

class PhrasesTest : public ModuleTest
{
protected:
    const DateTime monday{1975, 3, 17, 14, 5, 9};
};

TEST_F(PhrasesTest, EveryDayOfTheMonthHasItsSuffix)
{
    const Lines suffixes{"st", "nd", "rd", "th", "th", "th", "th", "th", "th", "th", "th", "th", "th", "th", "th", "th",
                         "th", "th", "th", "th", "st", "nd", "rd", "th", "th", "th", "th", "th", "th", "th", "st"};
    for (int day = 1; day <= 31; ++day)
        EXPECT_EQ(OrdinalSuffix(day), suffixes[static_cast<std::size_t>(day - 1)]) << day;
}

TEST_F(PhrasesTest, TheSixDateFormats)
{
    EXPECT_EQ(FormatSpokenDate(1, monday), "Monday, 17th of March, 75");
    EXPECT_EQ(FormatSpokenDate(2, monday), "Monday, 17th of March, 1975");
    EXPECT_EQ(FormatSpokenDate(3, monday), "Monday, 17th of March");
    EXPECT_EQ(FormatSpokenDate(4, monday), "Monday, March 17th, 75");
    EXPECT_EQ(FormatSpokenDate(5, monday), "Monday, March 17th, 1975");
    EXPECT_EQ(FormatSpokenDate(6, monday), "Monday, March 17th");
    EXPECT_EQ(FormatSpokenDate(2, {2000, 2, 29, 0, 0, 0}), "Tuesday, 29th of February, 2000");
    EXPECT_EQ(FormatSpokenDate(1, {2001, 12, 1, 0, 0, 0}), "Saturday, 1st of December, 01");
}

// October 2001 began on a Monday.
TEST_F(PhrasesTest, TheSixDateFormatsOnEachDayOfAMonth)
{
    const Lines leading{"Monday, 1st",    "Tuesday, 2nd",    "Wednesday, 3rd", "Thursday, 4th",   "Friday, 5th",
                        "Saturday, 6th",  "Sunday, 7th",     "Monday, 8th",    "Tuesday, 9th",    "Wednesday, 10th",
                        "Thursday, 11th", "Friday, 12th",    "Saturday, 13th", "Sunday, 14th",    "Monday, 15th",
                        "Tuesday, 16th",  "Wednesday, 17th", "Thursday, 18th", "Friday, 19th",    "Saturday, 20th",
                        "Sunday, 21st",   "Monday, 22nd",    "Tuesday, 23rd",  "Wednesday, 24th", "Thursday, 25th",
                        "Friday, 26th",   "Saturday, 27th",  "Sunday, 28th",   "Monday, 29th",    "Tuesday, 30th",
                        "Wednesday, 31st"};
    const Lines monthFirst{
        "Monday, October 1st",     "Tuesday, October 2nd",    "Wednesday, October 3rd", "Thursday, October 4th",
        "Friday, October 5th",     "Saturday, October 6th",   "Sunday, October 7th",    "Monday, October 8th",
        "Tuesday, October 9th",    "Wednesday, October 10th", "Thursday, October 11th", "Friday, October 12th",
        "Saturday, October 13th",  "Sunday, October 14th",    "Monday, October 15th",   "Tuesday, October 16th",
        "Wednesday, October 17th", "Thursday, October 18th",  "Friday, October 19th",   "Saturday, October 20th",
        "Sunday, October 21st",    "Monday, October 22nd",    "Tuesday, October 23rd",  "Wednesday, October 24th",
        "Thursday, October 25th",  "Friday, October 26th",    "Saturday, October 27th", "Sunday, October 28th",
        "Monday, October 29th",    "Tuesday, October 30th",   "Wednesday, October 31st"};
    for (int day = 1; day <= 31; ++day) {
        const DateTime date{2001, 10, day, 0, 0, 0};
        const std::string& dayFirst = leading.at(static_cast<std::size_t>(day - 1));
        const std::string& month = monthFirst.at(static_cast<std::size_t>(day - 1));
        EXPECT_EQ(FormatSpokenDate(1, date), dayFirst + " of October, 01");
        EXPECT_EQ(FormatSpokenDate(2, date), dayFirst + " of October, 2001");
        EXPECT_EQ(FormatSpokenDate(3, date), dayFirst + " of October");
        EXPECT_EQ(FormatSpokenDate(4, date), month + ", 01");
        EXPECT_EQ(FormatSpokenDate(5, date), month + ", 2001");
        EXPECT_EQ(FormatSpokenDate(6, date), month);
    }
}

TEST_F(PhrasesTest, EachMonthHasItsNameWhereverItStands)
{
    const Lines dayFirst{
        "Thursday, 1st of January, 2026", "Sunday, 1st of February, 2026", "Sunday, 1st of March, 2026",
        "Wednesday, 1st of April, 2026",  "Friday, 1st of May, 2026",      "Monday, 1st of June, 2026",
        "Wednesday, 1st of July, 2026",   "Saturday, 1st of August, 2026", "Tuesday, 1st of September, 2026",
        "Thursday, 1st of October, 2026", "Sunday, 1st of November, 2026", "Tuesday, 1st of December, 2026"};
    const Lines monthFirst{"Thursday, January 1st", "Sunday, February 1st", "Sunday, March 1st",
                           "Wednesday, April 1st",  "Friday, May 1st",      "Monday, June 1st",
                           "Wednesday, July 1st",   "Saturday, August 1st", "Tuesday, September 1st",
                           "Thursday, October 1st", "Sunday, November 1st", "Tuesday, December 1st"};
    for (int month = 1; month <= 12; ++month) {
        EXPECT_EQ(FormatSpokenDate(2, {2026, month, 1, 0, 0, 0}), dayFirst.at(static_cast<std::size_t>(month - 1)));
        EXPECT_EQ(FormatSpokenDate(6, {2026, month, 1, 0, 0, 0}), monthFirst.at(static_cast<std::size_t>(month - 1)));
    }
}

TEST_F(PhrasesTest, ADateFormatOutOfRangeIsEmpty)
{
    for (const std::int16_t format : std::initializer_list<std::int16_t>{0, 7, -1})
        EXPECT_EQ(FormatSpokenDate(format, monday), "");
}

TEST_F(PhrasesTest, TheSalutationFollowsTheHourAndNoonIsEvening)
{
    const Lines said{"Good Morning, ",   "Good Morning, ",   "Good Morning, ",   "Good Morning, ",   "Good Morning, ",
                     "Good Morning, ",   "Good Morning, ",   "Good Morning, ",   "Good Morning, ",   "Good Morning, ",
                     "Good Morning, ",   "Good Morning, ",   "Good Evening, ",   "Good Afternoon, ", "Good Afternoon, ",
                     "Good Afternoon, ", "Good Afternoon, ", "Good Afternoon, ", "Good Evening, ",   "Good Evening, ",
                     "Good Evening, ",   "Good Evening, ",   "Good Evening, ",   "Good Evening, "};
    for (int hour = 0; hour < 24; ++hour) {
        fake.clock.now.hour = hour;
        const std::string& salutation = said.at(static_cast<std::size_t>(hour));
        EXPECT_EQ(FormatSpokenTime(0, false).substr(0, salutation.size() + 11), salutation + "Time now is") << hour;
    }
}

TEST_F(PhrasesTest, TimesInTwelveAndTwentyFourHours)
{
    fake.clock.now = {1975, 3, 17, 12, 30, 0};
    EXPECT_EQ(FormatSpokenTime(0, false), "Good Evening, Time now is 12:30 PM");
    fake.clock.now.hour = 9;
    fake.clock.now.minute = 5;
    EXPECT_EQ(FormatSpokenTime(1, true), "Time now is 09:05");
    EXPECT_EQ(FormatSpokenTime(0, true), "Time now is 9:05 AM");
    fake.clock.now.hour = 14;
    EXPECT_EQ(FormatSpokenTime(1, false), "Good Afternoon, Time now is 14:05");
    EXPECT_EQ(FormatSpokenTime(0, false), "Good Afternoon, Time now is 2:05 PM");
    EXPECT_EQ(FormatSpokenTime(2, true), "Time now is 2:05 PM");
    fake.clock.now.hour = 0;
    EXPECT_EQ(FormatSpokenTime(0, false), "Good Morning, Time now is 12:05 AM");
}

TEST_F(PhrasesTest, TheClockShowsTwelveHoursWithSeconds)
{
    EXPECT_EQ(Format({2026, 1, 2, 0, 7, 8}, "h:nn:ss AM/PM"), "12:07:08 AM");
    EXPECT_EQ(Format({2026, 1, 2, 13, 7, 8}, "h:nn:ss AM/PM"), "1:07:08 PM");
}

TEST_F(PhrasesTest, AskedWhoItIsTheCharacterIntroducesItselfAndNeverGreets)
{
    WithCharacter();
    Settings.GreetingEnabled = 1;
    GreetAndIntroduce(false);
    EXPECT_EQ(Spoken(), (Lines{"[Greet]", "Hello Buddy. My name is Alfa",
                               "Hey, do you know, beside reading text in the text box, I can also read TEXT and WORD "
                               "documents."}));
    EXPECT_EQ(std::count(fake.log.begin(), fake.log.end(), "Play RestPose"), 3);
}

TEST_F(PhrasesTest, EachGreetingType)
{
    WithCharacter();
    Settings.OtherGreeting = "Welcome to Voxmate";
    const std::string today = "Today is Monday, 17th of March, 1975";
    const std::string time = "Time now is 2:05 PM";
    const std::vector<Lines> said{
        {"[Greet]", "Hello Buddy.", "[Announce]", time},
        {"[Greet]", "Hello Buddy.", "[Announce]", today},
        {"[Greet]", "Hello Buddy.", "[Greet]", "Welcome to Voxmate"},
        {"[Greet]", "Hello Buddy.", "[Announce]", today + " and " + time},
        {"[Greet]", "Hello Buddy.", "[Announce]", today + " and " + time, "Welcome to Voxmate"},
    };
    for (std::int16_t type = 0; type < 5; ++type) {
        fake.log.clear();
        Settings.GreetingType = type;
        GreetAndIntroduce(true);
        EXPECT_EQ(Spoken(), said[static_cast<std::size_t>(type)]) << type;
    }
    fake.log.clear();
    Settings.GreetingType = 7;
    GreetAndIntroduce(true);
    EXPECT_EQ(Spoken(), (Lines{"[Greet]", "Hello Buddy."}));
}

TEST_F(PhrasesTest, AtStartUpTheIntroductionComesBeforeTheGreeting)
{
    WithCharacter();
    Settings.IntroAtStart = 1;
    Settings.GreetingEnabled = 1;
    Settings.GreetingType = 2;
    GreetAndIntroduce(true);
    const Lines spoken = Spoken();
    ASSERT_EQ(spoken.size(), 7u);
    EXPECT_EQ(spoken[1], "Hello Buddy. My name is Alfa");
    EXPECT_EQ(spoken[4], "Hello Buddy.");
}

TEST_F(PhrasesTest, TheGreetingTellsTheTimeAndTheDateAsTheSettingsSay)
{
    WithCharacter();
    Settings.TimeIn24Hour = 1;
    Settings.GreetingType = 0;
    GreetAndIntroduce(true);
    EXPECT_EQ(Spoken().back(), "Time now is 14:05");
    const std::pair<std::int16_t, std::string> dates[] = {
        {0, "Today is"}, {7, "Today is"}, {4, "Today is Monday, March 17th, 75"}};
    for (const auto& [format, today] : dates) {
        Settings.DateFormat = format;
        Settings.GreetingType = 1;
        GreetAndIntroduce(true);
        EXPECT_EQ(Spoken().back(), today);
        Settings.GreetingType = 3;
        GreetAndIntroduce(true);
        EXPECT_EQ(Spoken().back(), (format == 4 ? today : today + " ") + " and Time now is 14:05");
    }
}

// A channel that cannot be used is told of once for each thing to say, be it empty.
TEST_F(PhrasesTest, AGreetingEndsWithAnEmptyAnnouncement)
{
    WithCharacter();
    fake.agent.status = AudioStatus::NoSupport;
    const std::vector<std::size_t> boxes{3, 3, 3, 3, 4, 2, 2};
    for (std::int16_t type = 0; type < 7; ++type) {
        fake.windows.boxes.clear();
        Settings.GreetingType = type;
        GreetAndIntroduce(true);
        EXPECT_EQ(fake.windows.boxes.size(), boxes.at(static_cast<std::size_t>(type))) << type;
    }
}

TEST_F(PhrasesTest, TheNameIsSaidEvenWhenMessagesLeaveItOutAndMayBeEmpty)
{
    WithCharacter();
    Settings.ReadNameWithMessages = 0;
    Settings.IntroAtStart = 1;
    Settings.GreetingType = 5;
    GreetAndIntroduce(true);
    Lines spoken = Spoken();
    EXPECT_EQ(spoken.at(1), "Hello Buddy. My name is Alfa");
    EXPECT_EQ(spoken.back(), "Hello Buddy.");
    fake.log.clear();
    Settings.UserName = "";
    Settings.LastCharacter = "";
    GreetAndIntroduce(true);
    spoken = Spoken();
    EXPECT_EQ(spoken.at(1), "Hello . My name is");
    EXPECT_EQ(spoken.back(), "Hello .");
}

TEST_F(PhrasesTest, AStopBetweenTwoThingsToSayMeansBoth)
{
    WithCharacter();
    Settings.IntroAtStart = 1;
    Settings.GreetingType = 4;
    for (const bool atStartUp : {false, true}) {
        fake.log.clear();
        int pending = 0;
        fake.windows.whilePending = [&] {
            if (++pending == 1)
                ++StopCount;
        };
        GreetAndIntroduce(atStartUp);
        EXPECT_EQ(fake.log, (Lines{"Show", "DoEvents"}));
    }
}

TEST_F(PhrasesTest, OnlyOneTurnsTheIntroductionAndTheGreetingOn)
{
    WithCharacter();
    Settings.IntroAtStart = 2;
    Settings.GreetingEnabled = 2;
    GreetAndIntroduce(true);
    EXPECT_TRUE(fake.log.empty());
}

} // namespace

} // namespace voxmate
