// What the user is told of a voice that cannot speak.
#include "ExtrasTest.h"

namespace voxmate
{

namespace
{

class FailedVoiceTest : public ExtrasTest
{
protected:
    static std::string Box(const std::string& why)
    {
        return "Voxmate - Voice Error: The voice that is chosen cannot speak, and another speaks in its place.\r\n" +
               why;
    }
};

TEST_F(FailedVoiceTest, TheUserIsToldOnceOfEachVoice)
{
    Begin();
    extras.VoiceFailed("C:\\a.onnx: it cannot be read.");
    TimerOf("tmrWaiting").Fire();
    EXPECT_EQ(Boxes(), Lines{Box("C:\\a.onnx: it cannot be read.")});
    EXPECT_FALSE(TimerOf("tmrWaiting").Enabled);
    extras.VoiceFailed("C:\\a.onnx: it cannot be read.");
    EXPECT_FALSE(TimerOf("tmrWaiting").Enabled);
    extras.VoiceFailed("C:\\b.onnx: it cannot be read.");
    TimerOf("tmrWaiting").Fire();
    EXPECT_EQ(Boxes(), (Lines{Box("C:\\a.onnx: it cannot be read."), Box("C:\\b.onnx: it cannot be read.")}));
}

TEST_F(FailedVoiceTest, WhatFailsDuringTheStartIsToldOfAfterIt)
{
    extras.Begin({}, [] {});
    extras.VoiceFailed("C:\\a.onnx: it cannot be read.");
    TimerOf("tmrWaiting").Fire();
    EXPECT_EQ(Boxes(), Lines{});
    StartMain();
    TimerOf("tmrWaiting").Fire();
    EXPECT_EQ(Boxes(), Lines{Box("C:\\a.onnx: it cannot be read.")});
}

} // namespace

} // namespace voxmate
