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

    // What was spoken and played, without the calls that every speech makes.
    Lines Spoken() const
    {
        Lines spoken;
        for (const std::string& call : fake.log) {
            constexpr std::string_view prefix = "Speak \\Pit=50\\ \\Spd=156\\";
            if (call.starts_with(prefix))
                spoken.push_back(call.substr(prefix.size()));
            else if (call.starts_with("Play ") && call != "Play RestPose")
                spoken.push_back("[" + call.substr(5) + "]");
        }
        return spoken;
    }
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

TEST_F(PhrasesTest, ADateFormatOutOfRangeIsEmpty)
{
    for (const std::int16_t format : std::initializer_list<std::int16_t>{0, 7, -1})
        EXPECT_EQ(FormatSpokenDate(format, monday), "");
}

TEST_F(PhrasesTest, TheSalutationFollowsTheHourAndNoonIsEvening)
{
    for (int hour = 0; hour < 24; ++hour) {
        fake.clock.now.hour = hour;
        const std::string salutation = hour <= 11                 ? "Good Morning, "
                                       : hour >= 13 && hour <= 17 ? "Good Afternoon, "
                                                                  : "Good Evening, ";
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

TEST_F(PhrasesTest, WithBothOffNothingIsSaidAtStartUp)
{
    WithCharacter();
    Settings.IntroAtStart = 0;
    Settings.GreetingEnabled = 2;
    GreetAndIntroduce(true);
    EXPECT_TRUE(fake.log.empty());
}

} // namespace

} // namespace voxmate
