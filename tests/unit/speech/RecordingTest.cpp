#include "speech/sound/Recording.h"

#include "tests/fakes/FakeHelper.h"

#include <gtest/gtest.h>

#include <cstring>

namespace voxmate::speech
{
namespace
{

using Samples = std::vector<std::int16_t>;

std::string Head(std::int64_t rate, std::int64_t length)
{
    const RecordingHead head{rate, length};
    std::string bytes(sizeof head, '\0');
    std::memcpy(bytes.data(), &head, sizeof head);
    return bytes;
}

std::string Bytes(const Samples& samples)
{
    return {reinterpret_cast<const char*>(samples.data()), samples.size() * sizeof(std::int16_t)};
}

Samples Rest(WaveReader& reader)
{
    Samples all;
    for (auto samples = reader.Next(); !samples.empty(); samples = reader.Next())
        all.insert(all.end(), samples.begin(), samples.end());
    return all;
}

std::unique_ptr<WaveReader> Decoded(
    std::deque<std::string> pieces, Wanted wanted = [] { return true; })
{
    auto helper = std::make_unique<fakes::FakeHelper>();
    helper->pieces = std::move(pieces);
    return OpenRecording(std::move(helper), std::move(wanted));
}

TEST(RecordingTest, ReadsHeadAndSamplesInWhateverPiecesTheyCome)
{
    const Samples samples{1, -2, 32767, -32768, 5};
    const std::string all = Head(22050, 5) + Bytes(samples);
    for (std::size_t size = 1; size <= all.size(); ++size) {
        std::deque<std::string> pieces;
        for (std::size_t at = 0; at < all.size(); at += size) {
            pieces.push_back(all.substr(at, size));
            pieces.emplace_back(); // nothing for a while
        }
        pieces.pop_back();
        const auto reader = Decoded(pieces);
        ASSERT_TRUE(reader) << size;
        EXPECT_EQ(reader->SamplesPerSecond(), 22050);
        EXPECT_EQ(reader->Length(), 5);
        EXPECT_EQ(Rest(*reader), samples) << size;
    }
}

TEST(RecordingTest, WhatIsNoHeadIsNoRecording)
{
    EXPECT_FALSE(Decoded({}));
    EXPECT_FALSE(Decoded({Head(0, 0)}));
    EXPECT_FALSE(Decoded({Head(22050, 5).substr(1)}));
    for (const std::int64_t rate : {std::int64_t{999}, std::int64_t{384001}, std::int64_t{-1}, INT64_MAX})
        EXPECT_FALSE(Decoded({Head(rate, 5) + Bytes({1, 2})})) << rate;
}

TEST(RecordingTest, AHeadIsBelievedWithinBoundsOnly)
{
    EXPECT_EQ(Decoded({Head(8000, -1)})->Length(), 0);
    EXPECT_EQ(Decoded({Head(8000, INT64_MAX)})->Length(), 8000 * LongestRecording);
}

TEST(RecordingTest, HalfASampleAtTheEndIsLeftOut)
{
    const auto reader = Decoded({Head(8000, 2), Bytes({7, 8}).substr(0, 3)});
    ASSERT_TRUE(reader);
    EXPECT_EQ(Rest(*reader), Samples{7});
}

TEST(RecordingTest, OneThatIsNotWantedAnyMoreIsNotWaitedFor)
{
    int asked = 0;
    const std::deque<std::string> never(1000);
    EXPECT_FALSE(Decoded(never, [&asked] { return ++asked < 3; }));
    EXPECT_EQ(asked, 3);
}

} // namespace
} // namespace voxmate::speech
