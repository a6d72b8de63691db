// Reminders on a clock that does not simply go on: it is set, the machine sleeps, summer time begins and ends, the user
// travels. What counts is what the clock on the wall shows: each reminder is announced once, and none is passed over.
#include "ReminderTest.h"

#include <algorithm>

namespace voxmate
{

namespace
{

class ClockChangesTest : public ReminderTest
{
protected:
    ClockChangesTest() { WithCharacter(); }

    /// The headings that the scan announces when the clock shows that time of 17 March 1975.
    Lines AnnouncedAt(int hour, int minute, int day = 17)
    {
        fake.clock.now = {1975, 3, day, hour, minute, 0};
        fake.log.clear();
        RemTimer_Timer();
        Lines headings;
        for (const std::string& call : fake.log) {
            if (call.starts_with("Alert ")) {
                const std::size_t text = call.find(": ") + 2;
                headings.push_back(call.substr(text, call.find('\r') - text));
            }
        }
        return headings;
    }
    /// The user closes the announcement of a reminder, which is the answer to it.
    void Close(std::int16_t number)
    {
        window.alerts.at(static_cast<std::size_t>(number - 1))->visible = false;
        FinishReminder(number, false, 0);
    }
};

const Lines Nothing;
const Lines New{"New Reminder"};
const Lines Missed{"Missed Reminder"};

} // namespace

TEST_F(ClockChangesTest, WhatFellDueWhileTheMachineSleptIsMissed)
{
    Load({At("Tea", "10", "15"), At("Call", "23", "00")});
    EXPECT_EQ(AnnouncedAt(10, 14), Nothing);
    EXPECT_EQ(AnnouncedAt(18, 40), Missed);
    Close(1);
    EXPECT_EQ(AnnouncedAt(7, 0, 18), Missed);
}

TEST_F(ClockChangesTest, WhatFallsDueInTheHourThatSummerTimeLeavesOutIsMissedAtItsEnd)
{
    Load({At("Tea", "02", "30"), At("Call", "03", "00")});
    EXPECT_EQ(AnnouncedAt(1, 59), Nothing);
    EXPECT_EQ(AnnouncedAt(3, 0), (Lines{"Missed Reminder", "New Reminder"}));
}

TEST_F(ClockChangesTest, WhatFallsDueInTheHourThatComesTwiceIsAnnouncedOnce)
{
    Load({At("Tea", "02", "30")});
    EXPECT_EQ(AnnouncedAt(2, 30), New);
    Close(1);
    EXPECT_EQ(AnnouncedAt(2, 59), Nothing);
    EXPECT_EQ(AnnouncedAt(2, 0), Nothing);
    EXPECT_EQ(AnnouncedAt(2, 30), Nothing);
    EXPECT_EQ(AnnouncedAt(3, 0), Nothing);
}

TEST_F(ClockChangesTest, AnAnnouncementThatStandsThereWhenTheClockIsSetBackIsNotRepeated)
{
    Load({At("Tea", "10", "15")});
    EXPECT_EQ(AnnouncedAt(10, 15), New);
    EXPECT_EQ(AnnouncedAt(9, 0), Nothing);
    EXPECT_EQ(AnnouncedAt(10, 15), Nothing);
    EXPECT_EQ(AnnouncedAt(10, 16), Nothing);
}

TEST_F(ClockChangesTest, InAnotherTimeZoneTheHourOfThatPlaceCounts)
{
    Load({At("Tea", "10", "15")});
    EXPECT_EQ(AnnouncedAt(9, 15), Nothing);
    EXPECT_EQ(AnnouncedAt(10, 15), New); // an hour further east
    Close(1);
    Load({At("Tea", "10", "15")});
    EXPECT_EQ(AnnouncedAt(4, 15), Nothing); // far to the west
    EXPECT_EQ(AnnouncedAt(10, 15), New);
}

} // namespace voxmate
