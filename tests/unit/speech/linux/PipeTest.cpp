// A pipe nobody writes to in the place of a wave file: opening it would block for ever.
#include "speech/player/VoicePlayer.h"
#include "speech/sound/WaveFile.h"
#include "tests/fakes/Eventually.h"
#include "tests/fakes/FakeAudioOutput.h"
#include "tests/fakes/FakeEngine.h"
#include "tests/unit/speech/Segments.h"

#include <gtest/gtest.h>

#include <filesystem>

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
    EXPECT_FALSE(WaveReader::Open(path));
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

} // namespace
} // namespace voxmate::speech
