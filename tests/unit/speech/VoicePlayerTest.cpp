#include "platform/speech/VoicePlayer.h"
#include "Fakes.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <numeric>

#include <sndfile.h>

namespace voxmate::speech
{
namespace
{

class VoicePlayerTest : public ::testing::Test
{
protected:
    VoicePlayerTest()
    {
        auto owned = std::make_unique<FakeEngine>(
            std::vector<Voice>{{"Anna", "11111111-0000-8000-8000-000000000000", "en-gb", "anna"},
                               {"Bert", "22222222-0000-8000-8000-000000000000", "en-gb", "bert"}});
        engine = owned.get();
        std::vector<std::unique_ptr<Engine>> engines;
        engines.push_back(std::move(owned));
        catalog = std::make_unique<VoiceCatalog>(std::move(engines), "en-GB");
        player = std::make_unique<VoicePlayer>(*catalog, output);
    }

    VoiceEvents Log()
    {
        VoiceEvents events;
        events.Started = [this] { log.push_back("started"); };
        events.Word = [this](int word) { log.push_back("word " + std::to_string(word)); };
        events.Mouth = [this](int mouth) { log.push_back("mouth " + std::to_string(mouth)); };
        events.Bookmark = [this](int number) { log.push_back("bookmark " + std::to_string(number)); };
        events.Ended = [this](bool ok) { log.push_back(ok ? "ended well" : "ended badly"); };
        return events;
    }

    Utterance Say(std::string text, std::string modeId = {})
    {
        Utterance utterance;
        utterance.modeId = std::move(modeId);
        utterance.segments.push_back(Text(std::move(text)));
        return utterance;
    }

    using Lines = std::vector<std::string>;

    FakeAudioOutput output;
    FakeEngine* engine = nullptr;
    std::unique_ptr<VoiceCatalog> catalog;
    std::unique_ptr<VoicePlayer> player;
    Lines log;
};

TEST_F(VoicePlayerTest, ReportsEachEventWhenItsSampleIsHeardAndNotBefore)
{
    engine->synthesize = [](SampleSink& sink) {
        sink.Event({SpeechEvent::Kind::Word, 0, 0});
        sink.Event({SpeechEvent::Kind::Mouth, 0, 1});
        sink.Event({SpeechEvent::Kind::Bookmark, 100, 7});
        sink.Event({SpeechEvent::Kind::Word, 150, 1});
        return sink.Samples(std::vector<std::int16_t>(300, 5));
    };
    player->Start(Say("hello there"), Log());
    output.RunEvents();
    EXPECT_EQ(log, Lines{});

    ASSERT_TRUE(Eventually([this] { return engine->returns == 1; }));
    ASSERT_EQ(output.Play(100), 100U);
    EXPECT_EQ(log, (Lines{"started", "word 0", "mouth 1"}));
    ASSERT_EQ(output.Play(50), 50U);
    EXPECT_EQ(log, (Lines{"started", "word 0", "mouth 1", "bookmark 7"}));
    ASSERT_EQ(output.Play(1), 1U);
    EXPECT_EQ(log.back(), "word 1");
    ASSERT_TRUE(output.PlayAll());
    EXPECT_EQ(log, (Lines{"started", "word 0", "mouth 1", "bookmark 7", "word 1", "mouth 0", "ended well"}));
    EXPECT_EQ(output.played.size(), 300U);
    EXPECT_EQ(output.rate, FakeEngine::Rate);
}

TEST_F(VoicePlayerTest, IsHeardBeforeAllOfItIsSynthesised)
{
    std::atomic<bool> goOn = false;
    engine->synthesize = [&goOn](SampleSink& sink) {
        sink.Samples(std::vector<std::int16_t>(100, 1));
        while (!goOn)
            std::this_thread::yield();
        return sink.Samples(std::vector<std::int16_t>(100, 2));
    };
    player->Start(Say("hello"), Log());
    EXPECT_TRUE(Eventually([this] { return output.Play(10) == 10; }));
    EXPECT_EQ(log, Lines{"started"});
    EXPECT_EQ(engine->returns, 0);
    goOn = true;
    ASSERT_TRUE(output.PlayAll());
    EXPECT_EQ(output.played.size(), 200U);
    EXPECT_EQ(log, (Lines{"started", "ended well"}));
}

TEST_F(VoicePlayerTest, LetsTheEngineBeNoMoreThanTwoSecondsAhead)
{
    std::atomic<int> delivered = 0;
    engine->synthesize = [&delivered](SampleSink& sink) {
        for (int i = 0; i < 100; ++i, ++delivered)
            if (!sink.Samples(std::vector<std::int16_t>(100, 1)))
                return true;
        return true;
    };
    player->Start(Say("a long story"), Log());
    ASSERT_TRUE(Eventually([&delivered] { return delivered == 20; }));
    std::this_thread::sleep_for(std::chrono::milliseconds(20));
    EXPECT_EQ(delivered, 20);
    output.Play(100);
    EXPECT_TRUE(Eventually([&delivered] { return delivered == 21; }));
    ASSERT_TRUE(output.PlayAll());
    EXPECT_EQ(output.played.size(), 10000U);
}

TEST_F(VoicePlayerTest, AStoppedUtteranceGivesUpItsStreamAtOnceAndOnlyEnds)
{
    engine->synthesize = [](SampleSink& sink) {
        sink.Event({SpeechEvent::Kind::Mouth, 0, 1});
        sink.Event({SpeechEvent::Kind::Word, 500, 3});
        while (sink.Samples(std::vector<std::int16_t>(100, 1))) {
        }
        return true;
    };
    player->Start(Say("hello"), Log());
    ASSERT_TRUE(Eventually([this] { return output.Play(10) == 10; }));
    EXPECT_EQ(player->Status(), 4);
    player->Stop();
    EXPECT_EQ(output.openStreams, 0);
    EXPECT_EQ(player->Status(), 0);
    EXPECT_EQ(log, (Lines{"started", "mouth 1"}));
    output.RunEvents();
    output.RunEvents();
    EXPECT_EQ(log, (Lines{"started", "mouth 1", "ended badly"}));
    EXPECT_TRUE(Eventually([this] { return engine->returns == 1; }));
    EXPECT_TRUE(output.Idle());
}

TEST_F(VoicePlayerTest, AStopDoesNotWaitForAnEngineThatIsDeepInItsWork)
{
    std::atomic<bool> goOn = false;
    engine->synthesize = [&goOn](SampleSink&) {
        while (!goOn)
            std::this_thread::yield();
        return true;
    };
    player->Start(Say("first"), Log());
    ASSERT_TRUE(Eventually([this] { return engine->calls == 1; }));
    const auto before = std::chrono::steady_clock::now();
    player->Stop();
    player->Start(Say("second"), {});
    EXPECT_LT(std::chrono::steady_clock::now() - before, std::chrono::milliseconds(5));
    output.RunEvents();
    EXPECT_EQ(log, Lines{"ended badly"});
    goOn = true;
    EXPECT_TRUE(Eventually([this] { return engine->calls == 2; }));
    EXPECT_TRUE(output.PlayAll());
    EXPECT_EQ(engine->lastText, "second");
}

TEST_F(VoicePlayerTest, ANewUtteranceEndsTheRunningOne)
{
    engine->synthesize = [](SampleSink& sink) { return sink.Samples(std::vector<std::int16_t>(10, 1)); };
    Lines other;
    VoiceEvents events;
    events.Ended = [&other](bool ok) { other.push_back(ok ? "ended well" : "ended badly"); };
    player->Start(Say("first"), events);
    player->Start(Say("second"), Log());
    ASSERT_TRUE(output.PlayAll());
    EXPECT_EQ(other, Lines{"ended badly"});
    EXPECT_EQ(log.back(), "ended well");
}

TEST_F(VoicePlayerTest, ACallbackMayStopOrStartAnew)
{
    engine->synthesize = [](SampleSink& sink) {
        sink.Event({SpeechEvent::Kind::Bookmark, 0, 1});
        sink.Event({SpeechEvent::Kind::Bookmark, 1, 2});
        return sink.Samples(std::vector<std::int16_t>(100, 1));
    };
    int restarts = 0;
    VoiceEvents events = Log();
    events.Bookmark = [&](int number) {
        log.push_back("bookmark " + std::to_string(number));
        if (restarts++ == 0)
            player->Start(Say("again"), Log());
    };
    player->Start(Say("first"), events);
    ASSERT_TRUE(output.PlayAll());
    output.RunEvents();
    EXPECT_EQ(log,
              (Lines{"started", "bookmark 1", "ended badly", "started", "bookmark 1", "bookmark 2", "ended well"}));
}

TEST_F(VoicePlayerTest, AnEngineThatFailsIsABadEndAfterWhatCouldBeSaid)
{
    engine->synthesize = [](SampleSink& sink) {
        sink.Samples(std::vector<std::int16_t>(50, 1));
        return false;
    };
    player->Start(Say("hello"), Log());
    ASSERT_TRUE(output.PlayAll());
    EXPECT_EQ(output.played.size(), 50U);
    EXPECT_EQ(log, (Lines{"started", "ended badly"}));
}

TEST_F(VoicePlayerTest, ADeviceThatGivesOutIsABadEnd)
{
    engine->synthesize = [](SampleSink& sink) {
        while (sink.Samples(std::vector<std::int16_t>(100, 1))) {
        }
        return true;
    };
    player->Start(Say("hello"), Log());
    ASSERT_TRUE(Eventually([this] { return output.Play(10) == 10; }));
    const auto failed = output.failed;
    failed();
    EXPECT_EQ(log, (Lines{"started", "ended badly"}));
    EXPECT_EQ(output.openStreams, 0);
    EXPECT_EQ(player->Status(), 0);
    EXPECT_TRUE(Eventually([this] { return engine->returns == 1; }));
}

TEST_F(VoicePlayerTest, WithoutADeviceItEndsBadlyFromTheEventLoop)
{
    output.state = AudioOutput::State::NoDevice;
    EXPECT_EQ(player->Status(), 1);
    player->Start(Say("hello"), Log());
    EXPECT_EQ(log, Lines{});
    output.RunEvents();
    EXPECT_EQ(log, Lines{"ended badly"});
    EXPECT_EQ(player->Status(), 1);
}

TEST_F(VoicePlayerTest, TellsEveryStateOfTheDeviceByItsNumber)
{
    output.state = AudioOutput::State::Available;
    EXPECT_EQ(player->Status(), 0);
    output.state = AudioOutput::State::CannotOpen;
    EXPECT_EQ(player->Status(), 2);
    output.state = AudioOutput::State::Other;
    EXPECT_EQ(player->Status(), 6);
}

TEST_F(VoicePlayerTest, ChoosesTheVoiceByItsIdentifierAndTheFirstForAnUnknownOne)
{
    player->Start(Say("hello", "{22222222-0000-8000-8000-000000000000}"), Log());
    ASSERT_TRUE(output.PlayAll());
    EXPECT_EQ(engine->lastKey, "bert");
    player->Start(Say("hello", "33333333-0000-8000-8000-000000000000"), Log());
    ASSERT_TRUE(output.PlayAll());
    EXPECT_EQ(engine->lastKey, "anna");
}

TEST_F(VoicePlayerTest, AnUtteranceOfNothingEndsWell)
{
    player->Start({}, Log());
    ASSERT_TRUE(output.PlayAll());
    EXPECT_EQ(log, Lines{"ended well"});
}

TEST_F(VoicePlayerTest, NothingIsReportedAfterThePlayerIsGone)
{
    engine->synthesize = [](SampleSink& sink) {
        while (sink.Samples(std::vector<std::int16_t>(100, 1))) {
        }
        return true;
    };
    player->Start(Say("hello"), Log());
    ASSERT_TRUE(Eventually([this] { return output.Play(10) == 10; }));
    player->Stop();
    player.reset();
    log.clear();
    output.RunEvents();
    EXPECT_EQ(log, Lines{});
}

/// A file that goes with the test.
class WavePlayerTest : public VoicePlayerTest
{
protected:
    ~WavePlayerTest() override { std::filesystem::remove(path); }

    void Write(const std::vector<std::int16_t>& samples, int rate)
    {
        SF_INFO info{};
        info.samplerate = rate;
        info.channels = 1;
        info.format = SF_FORMAT_WAV | SF_FORMAT_PCM_16;
        SNDFILE* file = sf_open(path.c_str(), SFM_WRITE, &info);
        ASSERT_NE(file, nullptr);
        sf_write_short(file, samples.data(), static_cast<sf_count_t>(samples.size()));
        sf_close(file);
    }

    const std::string path =
        (std::filesystem::temp_directory_path() / ("voxmate-wave-" + std::to_string(::getpid()) + ".wav")).string();
};

TEST_F(WavePlayerTest, PlaysAWaveFileWithTheMouthOpenWhereItIsLoud)
{
    std::vector<std::int16_t> samples(8000);
    for (std::size_t i = 2000; i < 4000; ++i)
        samples[i] = i % 20 < 10 ? 20000 : -20000;
    Write(samples, 8000);
    Utterance utterance;
    utterance.waveFile = path;
    player->Start(utterance, Log());
    ASSERT_TRUE(Eventually([this] {
        output.RunEvents();
        return output.openStreams == 1;
    }));
    EXPECT_EQ(output.rate, 8000);
    ASSERT_TRUE(output.PlayAll());
    EXPECT_EQ(output.played, samples);
    ASSERT_GE(log.size(), 4U);
    EXPECT_EQ(log.front(), "started");
    EXPECT_EQ(log[1], "mouth 1");
    EXPECT_EQ(log[log.size() - 2], "mouth 0");
    EXPECT_EQ(log.back(), "ended well");
    EXPECT_EQ(engine->calls, 0);
}

TEST_F(WavePlayerTest, AWaveFileThatCannotBeReadIsABadEnd)
{
    std::ofstream(path) << "this is no sound at all";
    Utterance utterance;
    utterance.waveFile = path;
    player->Start(utterance, Log());
    EXPECT_TRUE(Eventually([this] {
        output.Play(10);
        return !log.empty();
    }));
    EXPECT_EQ(log, Lines{"ended badly"});

    utterance.waveFile = "/nowhere/at/all.wav";
    log.clear();
    player->Start(utterance, Log());
    EXPECT_TRUE(Eventually([this] {
        output.Play(10);
        return !log.empty();
    }));
    EXPECT_EQ(log, Lines{"ended badly"});
}

} // namespace
} // namespace voxmate::speech
