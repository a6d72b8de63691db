#include "speech/player/HeardClock.h"

#include <gtest/gtest.h>

namespace voxmate::speech
{
namespace
{

using std::chrono::milliseconds;

const HeardClock::Clock::time_point now = HeardClock::Clock::now();

TEST(HeardClockTest, HasHeardNothingBeforeTheServerSaysSo)
{
    EXPECT_EQ(HeardClock().At(now), 0);
}

TEST(HeardClockTest, GoesOnByItselfBetweenTwoAnswersOfTheServer)
{
    HeardClock clock;
    clock.Set(1'000'000, now, true);
    EXPECT_EQ(clock.At(now), 1'000'000);
    EXPECT_EQ(clock.At(now + milliseconds(25)), 1'025'000);
    clock.Set(1'030'000, now + milliseconds(30), true);
    EXPECT_EQ(clock.At(now + milliseconds(31)), 1'031'000);
    EXPECT_EQ(clock.At(now + milliseconds(20)), 1'030'000);
}

TEST(HeardClockTest, CarriesOnForFortyMillisecondsAtTheMost)
{
    HeardClock clock;
    clock.Set(1'000'000, now, true);
    EXPECT_EQ(clock.At(now + milliseconds(40)), 1'040'000);
    EXPECT_EQ(clock.At(now + milliseconds(4000)), 1'040'000);
}

TEST(HeardClockTest, StandsStillWhileTheStreamIsHeldUp)
{
    HeardClock clock;
    clock.Set(1'000'000, now, false);
    EXPECT_EQ(clock.At(now + milliseconds(25)), 1'000'000);
}

TEST(HeardClockTest, IsBeforeTheBeginningWhileTheFirstSampleIsUnderWay)
{
    HeardClock clock;
    clock.Set(-500'000, now, true);
    EXPECT_EQ(clock.At(now), -500'000);
    EXPECT_EQ(clock.At(now + milliseconds(30)), -470'000);
}

} // namespace
} // namespace voxmate::speech
