#include "controls/MonthView.h"
#include "controls/Form.h"

#include <gtest/gtest.h>

namespace voxmate
{

namespace
{

class MonthViewTest : public ::testing::Test
{
protected:
    MonthView month{nullptr, "mvDate"};
    int changes = 0;

    MonthViewTest()
    {
        month.SetValue({2004, 3, 7});
        month.SelChange = [this] { ++changes; };
    }
};

TEST_F(MonthViewTest, ANewDateFromCodeIsToldOnce)
{
    EXPECT_TRUE(month.SetValue({2005, 12, 31}));
    EXPECT_TRUE(month.SetValue({2005, 12, 31}));
    EXPECT_EQ(changes, 1);
    EXPECT_EQ(month.Year(), 2005);
    EXPECT_EQ(month.Month(), 12);
    EXPECT_EQ(month.Day(), 31);
}

TEST_F(MonthViewTest, ANewDateByTheUserIsToldOnce)
{
    month.UserSelect({2004, 3, 8});
    month.UserSelect({2004, 3, 8});
    EXPECT_EQ(changes, 1);
    EXPECT_EQ(month.Day(), 8);
}

TEST_F(MonthViewTest, AnImpossibleDateIsRefusedAndTheOldOneStays)
{
    for (const CalendarDate& date :
         {CalendarDate{2004, 2, 30}, CalendarDate{2003, 2, 29}, CalendarDate{1900, 2, 29}, CalendarDate{2004, 4, 31},
          CalendarDate{2004, 0, 1}, CalendarDate{2004, 13, 1}, CalendarDate{2004, -8, 11}, CalendarDate{2004, 1, 0},
          CalendarDate{2004, 1, 32}, CalendarDate{99, 12, 31}, CalendarDate{10000, 1, 1}}) {
        EXPECT_FALSE(month.SetValue(date)) << date.Year << "/" << date.Month << "/" << date.Day;
        month.UserSelect(date);
        EXPECT_EQ(month.Value(), (CalendarDate{2004, 3, 7}));
    }
    EXPECT_EQ(changes, 0);
}

TEST_F(MonthViewTest, TheLastDaysOfFebruaryAndOfTheCalendarAreTaken)
{
    for (const CalendarDate& date : {CalendarDate{2004, 2, 29}, CalendarDate{2000, 2, 29}, CalendarDate{2003, 2, 28},
                                     CalendarDate{100, 1, 1}, CalendarDate{9999, 12, 31}})
        EXPECT_TRUE(month.SetValue(date)) << date.Year << "/" << date.Month << "/" << date.Day;
}

} // namespace

} // namespace voxmate
