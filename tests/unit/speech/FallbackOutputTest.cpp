#include "platform/speech/FallbackOutput.h"
#include "Fakes.h"

#include <gtest/gtest.h>

namespace voxmate::speech
{
namespace
{

using State = AudioOutput::State;

class NoSamples final : public SampleSource
{
public:
    std::size_t Pull(std::span<std::int16_t>, bool& ended) override
    {
        ended = true;
        return 0;
    }
};

class FallbackOutputTest : public ::testing::Test
{
protected:
    FakeAudioOutput first;
    FakeAudioOutput second;
    FallbackOutput output{first, second};
    int drained = 0;
    int failed = 0;

    std::unique_ptr<AudioStream> Open()
    {
        return output.Open(
            22050, std::make_shared<NoSamples>(), [this] { ++drained; }, [this] { ++failed; });
    }
};

TEST_F(FallbackOutputTest, PlaysThroughTheFirstWhileItServes)
{
    const auto stream = Open();
    ASSERT_NE(stream, nullptr);
    EXPECT_EQ(first.opens, 1);
    EXPECT_EQ(second.opens, 0);
    first.drained();
    EXPECT_EQ(drained, 1);
}

TEST_F(FallbackOutputTest, AsksTheSecondWhenTheFirstHasNoDevice)
{
    first.state = State::NoDevice;
    EXPECT_EQ(output.Check(), State::Available);
    const auto stream = Open();
    ASSERT_NE(stream, nullptr);
    EXPECT_EQ(second.opens, 1);
}

TEST_F(FallbackOutputTest, SaysWhatTheSecondSaysWhenNeitherServes)
{
    first.state = State::CannotOpen;
    second.state = State::NoDevice;
    EXPECT_EQ(output.Check(), State::NoDevice);
    EXPECT_EQ(Open(), nullptr);
}

TEST_F(FallbackOutputTest, StaysWithTheSecondOnceAStreamOfTheFirstHasFailed)
{
    auto stream = Open();
    first.failed();
    EXPECT_EQ(failed, 1);
    stream.reset();
    second.state = State::NoDevice;
    EXPECT_EQ(output.Check(), State::NoDevice);
    second.state = State::Available;
    stream = Open();
    ASSERT_NE(stream, nullptr);
    EXPECT_EQ(first.opens, 1);
    EXPECT_EQ(second.opens, 1);
}

TEST_F(FallbackOutputTest, AFailureOfTheSecondIsToldAndTriedAgain)
{
    first.state = State::NoDevice;
    auto stream = Open();
    second.failed();
    EXPECT_EQ(failed, 1);
    stream.reset();
    EXPECT_NE(Open(), nullptr);
    EXPECT_EQ(second.opens, 2);
}

} // namespace
} // namespace voxmate::speech
