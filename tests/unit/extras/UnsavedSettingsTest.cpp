// What the user is told where settings cannot be saved.
#include "ExtrasTest.h"

namespace voxmate
{

namespace
{

class UnsavedSettingsTest : public ExtrasTest
{
protected:
    const Lines once{
        "Voxmate - File Error: Settings cannot be saved in the following file:\r\nC:\\registry.reg\r\nWhat you "
        "change holds until Voxmate ends."};
};

TEST_F(UnsavedSettingsTest, TheUserIsToldOnce)
{
    Begin();
    extras.SettingsNotSaved("C:\\registry.reg");
    TimerOf("tmrWaiting").Fire();
    EXPECT_EQ(Boxes(), once);
    EXPECT_FALSE(TimerOf("tmrWaiting").Enabled);
    extras.SettingsNotSaved("C:\\registry.reg");
    EXPECT_FALSE(TimerOf("tmrWaiting").Enabled);
    EXPECT_EQ(Boxes(), once);
}

TEST_F(UnsavedSettingsTest, WhatFailsDuringTheStartIsToldOfAfterIt)
{
    extras.Begin({}, [] {});
    extras.SettingsNotSaved("C:\\registry.reg");
    TimerOf("tmrWaiting").Fire();
    EXPECT_EQ(Boxes(), Lines{});
    StartMain();
    TimerOf("tmrWaiting").Fire();
    EXPECT_EQ(Boxes(), once);
}

} // namespace

} // namespace voxmate
