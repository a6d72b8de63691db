// The program that decodes recordings, and what is no file for it: opening a pipe nobody writes to would block for
// ever.
#include "speech/player/VoicePlayer.h"
#include "speech/sound/Recording.h"
#include "tests/fakes/Eventually.h"
#include "tests/fakes/FakeAudioOutput.h"
#include "tests/fakes/FakeEngine.h"
#include "tests/unit/speech/Segments.h"

#include <gtest/gtest.h>

#include <csignal>
#include <filesystem>
#include <fstream>

#include <sys/stat.h>
#include <unistd.h>

namespace voxmate::speech
{
namespace
{

class PipeTest : public ::testing::Test
{
protected:
    void SetUp() override { ASSERT_EQ(::mkfifo(path.c_str(), 0600), 0); }
    ~PipeTest() override { std::filesystem::remove(path); }

    VoiceEvents Ends()
    {
        VoiceEvents events;
        events.Ended = [this](bool good) { ends.push_back(good); };
        return events;
    }

    const std::string path =
        (std::filesystem::temp_directory_path() / ("voxmate-pipe-" + std::to_string(::getpid()) + ".wav")).string();
    std::vector<bool> ends;
};

TEST_F(PipeTest, IsNoWaveFile)
{
    EXPECT_FALSE(OpenRecording(path));
}

TEST_F(PipeTest, IsNotPlayedAndHoldsNobodyUp)
{
    std::vector<std::unique_ptr<Engine>> engines;
    engines.push_back(std::make_unique<fakes::FakeEngine>(
        std::vector<Voice>{{"Anna", "11111111-0000-8000-8000-000000000000", "en-gb", "anna"}}));
    VoiceCatalog catalog(std::move(engines), "en-GB");
    fakes::FakeAudioOutput output;
    VoicePlayer player(catalog, output);
    Utterance utterance;
    utterance.waveFile = path;
    player.Start(utterance, Ends());
    EXPECT_TRUE(fakes::Eventually([&] {
        output.RunEvents();
        return !ends.empty();
    }));
    EXPECT_EQ(ends, std::vector<bool>{false});
    EXPECT_EQ(output.opens, 0);
    ends.clear();
    utterance = {};
    utterance.segments = {Text("hello")};
    player.Start(utterance, Ends());
    EXPECT_TRUE(output.PlayAll());
    EXPECT_EQ(ends, std::vector<bool>{true});
}

TEST(DecoderTest, WhatIsNoFileIsNoRecording)
{
    EXPECT_FALSE(OpenRecording("/"));
    EXPECT_FALSE(OpenRecording("/nowhere/at/all.wav"));
}

// A process that was ended by the system counts as the end of what it has read.
TEST(DecoderTest, IsAProcessOfItsOwnWithoutWhichTheRecordingEnds)
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
    std::size_t samples = 0;
    for (auto more = reader->Next(); !more.empty(); more = reader->Next())
        samples += more.size();
    EXPECT_LT(samples, std::size_t{bytes} / 2);
    std::filesystem::remove(path);
}

} // namespace
} // namespace voxmate::speech
