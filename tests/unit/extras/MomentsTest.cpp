// Quarters of an hour, and moments as a person says them.
#include "extras/Moments.h"

#include <gtest/gtest.h>

namespace voxmate
{

namespace
{

DateTime QuarterAfter(const DateTime& now)
{
    return ToDateTime(NextQuarter(ToMoment(now)));
}

TEST(MomentsTest, TheNextQuarterOfAnHourIsAlwaysLater)
{
    EXPECT_EQ(QuarterAfter({2026, 11, 25, 14, 20, 40}), (DateTime{2026, 11, 25, 14, 30, 0}));
    EXPECT_EQ(QuarterAfter({2026, 11, 25, 14, 30, 0}), (DateTime{2026, 11, 25, 14, 45, 0}));
    EXPECT_EQ(QuarterAfter({2026, 12, 31, 23, 59, 0}), (DateTime{2027, 1, 1, 0, 0, 0}));
}

TEST(MomentsTest, ADayIsSaidByItsNameOrByItsDate)
{
    const Moment now = ToMoment({2026, 2, 27, 23, 59, 0});
    EXPECT_EQ(SpokenMoment(now, now), "Today at 23:59");
    EXPECT_EQ(SpokenMoment(ToMoment({2026, 2, 28, 0, 0, 0}), now), "Tomorrow at 00:00");
    EXPECT_EQ(SpokenMoment(ToMoment({2026, 3, 1, 9, 5, 0}), now), "Sunday, 1 March 2026 at 09:05");
}

} // namespace

} // namespace voxmate
