#include "speech/sound/Recording.h"

#include "tests/fakes/FakeHelper.h"

#include <gtest/gtest.h>

#include <csignal>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <unistd.h>

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

// A process that was ended by the system counts as the end of what it has read.
TEST(RecordingTest, IsDecodedInAProcessOfItsOwnWithoutWhichItEnds)
{
    const std::filesystem::path path =
        std::filesystem::temp_directory_path() / ("voxmate-recording-" + std::to_string(getpid()) + ".wav");
    const std::uint32_t bytes = 4U << 20;
    std::string file = "RIFF....WAVEfmt ";
    const auto put = [&file](std::uint32_t value, int count) {
        for (int i = 0; i < count; ++i)
            file += static_cast<char>(value >> (8 * i));
    };
    for (const auto& [value, count] : std::initializer_list<std::pair<std::uint32_t, int>>{
             {16, 4}, {1, 2}, {1, 2}, {22050, 4}, {44100, 4}, {2, 2}, {16, 2}})
        put(value, count);
    file += "data";
    put(bytes, 4);
    file.append(bytes, '\1');
    std::ofstream(path, std::ios::binary) << file;

    const auto reader = OpenRecording(path.string());
    ASSERT_TRUE(reader);
    EXPECT_EQ(reader->Length(), bytes / 2);
    std::size_t processes = 0;
    const std::string own = std::to_string(getpid());
    for (const auto& entry : std::filesystem::directory_iterator("/proc")) {
        std::ifstream status(entry.path() / "stat");
        std::string line;
        std::getline(status, line);
        const std::size_t name = line.find("(" + std::string(DecoderProgram) + ") ");
        // Behind the name stand the process's state and the number of the one that started it.
        if (name == std::string::npos || line.substr(line.find(") ", name) + 4).find(own + " ") != 0)
            continue;
        ++processes;
        kill(std::stoi(entry.path().filename().string()), SIGKILL);
    }
    EXPECT_EQ(processes, 1U);
    EXPECT_LT(Rest(*reader).size(), std::size_t{bytes} / 2);
    std::filesystem::remove(path);
}

} // namespace
} // namespace voxmate::speech
