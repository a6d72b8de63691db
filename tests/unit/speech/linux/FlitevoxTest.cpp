// Voices in the user's own files. The test files are made from the installed voices.
#include "bench/speech_prose.h"
#include "speech/engines/FliteLibrary.h"
#include "speech/player/SpeechJob.h"
#include "speech/sound/SpeechMeasure.h"
#include "tests/fakes/Eventually.h"
#include "tests/fakes/RecordingSink.h"
#include "tests/unit/speech/Segments.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <csignal>
#include <cstdlib>
#include <dlfcn.h>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <thread>

#include <sys/prctl.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

namespace voxmate::speech
{
namespace
{

namespace fs = std::filesystem;
using measure::CheckProse;
using measure::SpeakingSeconds;
using measure::TrackPitch;

class FlitevoxTest : public ::testing::Test
{
protected:
    void SetUp() override
    {
        std::string form = (fs::temp_directory_path() / "flitevoxXXXXXX").string();
        ASSERT_NE(mkdtemp(form.data()), nullptr);
        folder = form;
        // In a separate process in which no voice has been used: what an engine sets in a voice would be written to the
        // file, too.
        const std::string command = "VOXMATE_TEST_FOLDER='" + form + "' '" + fs::canonical("/proc/self/exe").string() +
                                    "' --gtest_also_run_disabled_tests --gtest_filter=FlitevoxChildTest.* >/dev/null";
        ASSERT_EQ(std::system(command.c_str()), 0);
    }
    void TearDown() override { fs::remove_all(folder); }

    fs::path File(const std::string& name) const { return folder / ("my_" + name + ".flitevox"); }
    static fakes::RecordingSink Say(Engine& engine, const Voice& voice, std::string_view text, Prosody prosody)
    {
        fakes::RecordingSink sink;
        EXPECT_TRUE(engine.Synthesize(voice, std::vector<Segment>{Text(std::string(text), prosody)}, sink));
        return sink;
    }

    fs::path folder;
};

TEST(FlitevoxChildTest, DISABLED_WritesTheInstalledVoices)
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

TEST_F(FlitevoxTest, FilesInTheFolderAreVoices)
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

TEST_F(FlitevoxTest, WhatIsAskedInPitchAndSpeedIsHeard)
{
    const auto engine = CreateFlitevoxEngine(folder);
    for (const Voice& voice : engine->Voices()) {
        for (const int hertz : {80, 150, 250}) {
            Prosody prosody;
            prosody.pitchHz = hertz;
            const fakes::RecordingSink sink = Say(*engine, voice, CheckProse[2], prosody);
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

// A file that is cut off anywhere, or overwritten, makes no sound, and the program survives.
TEST_F(FlitevoxTest, ADamagedFileIsNoVoiceOrDoesNotSpeak)
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
    EXPECT_LE(CreateFlitevoxEngine(folder)->Voices().size(), 1U); // the last one has a complete header
    for (const std::size_t percent : {1, 30, 60, 90})
        put("cut" + std::to_string(percent), bytes.substr(0, bytes.size() / 100 * percent));
    std::string overwritten = bytes;
    std::fill(overwritten.begin() + 20000, overwritten.begin() + 40000, '\xFF');
    put("overwritten", overwritten);
    put("good", bytes);
    const auto engine = CreateFlitevoxEngine(folder);
    int good = 0;
    for (const Voice& voice : engine->Voices()) {
        fakes::RecordingSink sink;
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

/// The processes that a process has started.
std::vector<pid_t> ChildrenOf(pid_t parent)
{
    std::vector<pid_t> children;
    for (const auto& task : fs::directory_iterator("/proc/" + std::to_string(parent) + "/task")) {
        std::ifstream list(task.path() / "children");
        children.insert(children.end(), std::istream_iterator<pid_t>(list), {});
    }
    return children;
}

/// Whether a process has a descriptor open beyond the three standard ones.
bool HoldsMoreThanTheStandardOnes(pid_t process)
{
    std::error_code error;
    fs::directory_iterator file("/proc/" + std::to_string(process) + "/fd", error);
    return std::any_of(fs::begin(file), fs::end(file),
                       [](const fs::directory_entry& entry) { return std::stoi(entry.path().filename()) > 2; });
}

/// A voice file that never ends: an empty pipe, which blocks its reader.
class EndlessFileTest : public ::testing::Test
{
protected:
    void SetUp() override
    {
        std::string form = (fs::temp_directory_path() / "flitevoxXXXXXX").string();
        ASSERT_NE(mkdtemp(form.data()), nullptr);
        folder = form;
        file = folder / "endless.flitevox";
        ASSERT_EQ(mkfifo(file.c_str(), 0600), 0);
        ASSERT_TRUE(flite.Load());
    }
    void TearDown() override { fs::remove_all(folder); }

    fs::path folder;
    fs::path file;
    FliteLibrary flite;
};

// Otherwise every turn of a text would wait for the check again.
TEST_F(FlitevoxTest, AFileThatWasFoundDamagedIsNotTriedAgain)
{
    const auto engine = CreateFlitevoxEngine(folder);
    ASSERT_FALSE(engine->Voices().empty());
    const Voice voice = engine->Voices().front();
    const fs::path kept = folder / "kept";
    fs::rename(voice.key, kept);
    std::ofstream(voice.key) << "damaged";
    fakes::RecordingSink sink;
    EXPECT_FALSE(engine->Synthesize(voice, std::vector<Segment>{Text("Hello.")}, sink));
    fs::rename(kept, voice.key); // a second try would succeed
    EXPECT_FALSE(engine->Synthesize(voice, std::vector<Segment>{Text("Hello.")}, sink));
    EXPECT_TRUE(sink.samples.empty());
}

TEST_F(FlitevoxTest, AStopEndsTheCheckAtOnceAndTheFileIsTriedTheNextTime)
{
    const auto engine = CreateFlitevoxEngine(folder);
    ASSERT_FALSE(engine->Voices().empty());
    const Voice voice = engine->Voices().front();
    const fs::path kept = folder / "kept";
    fs::rename(voice.key, kept);
    ASSERT_EQ(mkfifo(voice.key.c_str(), 0600), 0); // the check blocks on it
    SpeechJob job;
    job.SetRate(engine->SampleRate(voice));
    bool spoken = false;
    std::thread worker([&] { spoken = engine->Synthesize(voice, std::vector<Segment>{Text("Hello.")}, job); });
    EXPECT_TRUE(fakes::Eventually([] { return !ChildrenOf(getpid()).empty(); }));
    job.Cancel();
    worker.join();
    EXPECT_TRUE(spoken); // a stop is not a failure; a check that ends by itself would be
    EXPECT_TRUE(ChildrenOf(getpid()).empty());
    fs::rename(kept, voice.key);
    EXPECT_FALSE(Say(*engine, voice, "Hello.", {}).samples.empty());
}

TEST_F(EndlessFileTest, TheCheckHoldsNothingOfTheProgramsAndEndsWithIt)
{
    ASSERT_EQ(prctl(PR_SET_CHILD_SUBREAPER, 1), 0); // orphaned processes of the program are handed to this process
    std::array<int, 2> held{};
    ASSERT_EQ(pipe(held.data()), 0);
    const pid_t program = fork();
    ASSERT_GE(program, 0);
    if (program == 0) {
        flite.LoadFile(file, [] { return true; });
        _exit(0);
    }
    pid_t check = 0;
    EXPECT_TRUE(fakes::Eventually([&] {
        const std::vector<pid_t> children = ChildrenOf(program);
        check = children.empty() ? 0 : children.front();
        return check != 0;
    }));
    EXPECT_TRUE(check != 0 && fakes::Eventually([&] { return !HoldsMoreThanTheStandardOnes(check); }));
    kill(program, SIGKILL);
    EXPECT_EQ(waitpid(program, nullptr, 0), program);
    if (check != 0) {
        int status = 0;
        EXPECT_EQ(waitpid(check, &status, 0), check);
        EXPECT_TRUE(WIFSIGNALED(status));
        EXPECT_EQ(WTERMSIG(status), SIGKILL); // running out of time would send another signal
    }
    close(held[0]);
    close(held[1]);
    prctl(PR_SET_CHILD_SUBREAPER, 0);
}

} // namespace
} // namespace voxmate::speech
