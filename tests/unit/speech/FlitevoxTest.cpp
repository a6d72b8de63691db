// Voices in files of the user's own. The files are made of the voices that are installed.
#include "Fakes.h"
#include "bench/speech_measure.h"
#include "bench/speech_prose.h"
#include "platform/speech/FliteLibrary.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdlib>
#include <dlfcn.h>
#include <filesystem>
#include <fstream>

namespace voxmate::speech
{
namespace
{

namespace fs = std::filesystem;
using measure::CheckProse;
using measure::SpeakingSeconds;
using measure::TrackPitch;

class Flitevox : public ::testing::Test
{
protected:
    void SetUp() override
    {
        std::string form = (fs::temp_directory_path() / "flitevoxXXXXXX").string();
        ASSERT_NE(mkdtemp(form.data()), nullptr);
        folder = form;
        // In a process of its own, where no voice has been used: what an engine sets in one would be written, too.
        const std::string command = "VOXMATE_TEST_FOLDER='" + form + "' '" + fs::canonical("/proc/self/exe").string() +
                                    "' --gtest_also_run_disabled_tests --gtest_filter=FlitevoxChild.* >/dev/null";
        ASSERT_EQ(std::system(command.c_str()), 0);
    }
    void TearDown() override { fs::remove_all(folder); }

    fs::path File(const std::string& name) const { return folder / ("my_" + name + ".flitevox"); }
    static RecordingSink Say(Engine& engine, const Voice& voice, std::string_view text, Prosody prosody)
    {
        RecordingSink sink;
        EXPECT_TRUE(engine.Synthesize(voice, std::vector<Segment>{Text(std::string(text), prosody)}, sink));
        return sink;
    }

    fs::path folder;
};

TEST(FlitevoxChild, DISABLED_WritesTheInstalledVoices)
{
    FliteLibrary flite;
    ASSERT_TRUE(flite.Load());
    void* const core = dlopen("libflite.so.1", RTLD_LAZY);
    const auto dump = reinterpret_cast<decltype(&::flite_voice_dump)>(dlsym(core, "flite_voice_dump"));
    const fs::path folder = std::getenv("VOXMATE_TEST_FOLDER");
    for (const std::string key : {"slt", "awb", "rms"}) {
        cst_voice* const voice = flite.LoadVoice(key);
        ASSERT_NE(voice, nullptr);
        ASSERT_TRUE(dump(voice, (folder / ("my_" + key + ".flitevox")).c_str()));
    }
}

TEST_F(Flitevox, FilesInTheFolderAreVoices)
{
    std::ofstream(folder / "readme.txt") << "CMU_FLITE_CG_VOXDATA-v2.0";
    const auto engine = CreateFlitevoxEngine(folder);
    std::vector<std::string> names;
    for (const Voice& voice : engine->Voices()) {
        names.push_back(voice.name);
        EXPECT_EQ(voice.language, "en-us");
        EXPECT_EQ(voice.origin, Voice::Origin::Added);
        EXPECT_EQ(engine->SampleRate(voice), 16000);
    }
    std::sort(names.begin(), names.end());
    EXPECT_EQ(names, (std::vector<std::string>{"Flite my_awb", "Flite my_rms", "Flite my_slt"}));
    EXPECT_TRUE(CreateFlitevoxEngine(folder / "nowhere")->Voices().empty());
}

TEST_F(Flitevox, WhatIsAskedInPitchAndSpeedIsHeard)
{
    const auto engine = CreateFlitevoxEngine(folder);
    for (const Voice& voice : engine->Voices()) {
        for (const int hertz : {80, 150, 250}) {
            Prosody prosody;
            prosody.pitchHz = hertz;
            const RecordingSink sink = Say(*engine, voice, CheckProse[2], prosody);
            const double heard = TrackPitch(sink.samples, 16000).Median();
            std::printf("%s: %d Hz asked, %.1f heard\n", voice.name.c_str(), hertz, heard);
            EXPECT_NEAR(heard, hertz, hertz * 0.1) << voice.name;
            EXPECT_GT(sink.Values(SpeechEvent::Kind::Mouth).size(), 10U);
        }
        for (const int wordsPerMinute : {120, 250}) {
            Prosody prosody;
            prosody.wordsPerMinute = wordsPerMinute;
            double seconds = 0;
            double words = 0;
            for (const std::string_view text : CheckProse) {
                seconds += SpeakingSeconds(Say(*engine, voice, text, prosody).samples, 16000);
                words += static_cast<double>(measure::CountWords(text));
            }
            std::printf("%s: %d words a minute asked, %.1f heard\n", voice.name.c_str(), wordsPerMinute,
                        words * 60 / seconds);
            EXPECT_NEAR(words * 60 / seconds, wordsPerMinute, wordsPerMinute * 0.1) << voice.name;
        }
    }
}

// Of a file that is cut off anywhere, or overwritten, nothing is heard, and the program lives.
TEST_F(Flitevox, ADamagedFileIsNoVoiceOrDoesNotSpeak)
{
    std::ifstream whole(File("slt"), std::ios::binary);
    const std::string bytes{std::istreambuf_iterator<char>(whole), {}};
    for (const char* key : {"slt", "awb", "rms"})
        fs::remove(File(key));
    const auto put = [&](const std::string& name, const std::string& text) {
        std::ofstream(File(name), std::ios::binary) << text;
    };
    for (const std::size_t length : {0, 10, 26, 30, 100, 400, 2000})
        put("head" + std::to_string(length), bytes.substr(0, length));
    EXPECT_LE(CreateFlitevoxEngine(folder)->Voices().size(), 1U); // the last one has a whole head
    for (const std::size_t percent : {1, 30, 60, 90})
        put("cut" + std::to_string(percent), bytes.substr(0, bytes.size() / 100 * percent));
    std::string overwritten = bytes;
    std::fill(overwritten.begin() + 20000, overwritten.begin() + 40000, '\xFF');
    put("overwritten", overwritten);
    put("good", bytes);
    const auto engine = CreateFlitevoxEngine(folder);
    int good = 0;
    for (const Voice& voice : engine->Voices()) {
        RecordingSink sink;
        const bool spoken = engine->Synthesize(voice, std::vector<Segment>{Text("Hello.")}, sink);
        good += spoken;
        EXPECT_EQ(spoken, !sink.samples.empty()) << voice.name;
        if (voice.name == "Flite my_good") {
            EXPECT_TRUE(spoken);
        }
    }
    std::printf("%d of %zu speak\n", good, engine->Voices().size());
    EXPECT_GE(engine->Voices().size(), 6U);
}

} // namespace
} // namespace voxmate::speech
