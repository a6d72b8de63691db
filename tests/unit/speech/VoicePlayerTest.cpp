#include "speech/player/VoicePlayer.h"
#include "speech/player/WaveSpeech.h"
#include "tests/fakes/Eventually.h"
#include "tests/fakes/FakeAudioOutput.h"
#include "tests/fakes/FakeEngine.h"
#include "tests/fakes/RecordingSink.h"
#include "tests/unit/speech/Segments.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <filesystem>
#include <fstream>
#include <numeric>

#include <sndfile.h>
#include <unistd.h>

namespace voxmate::speech
{
namespace
{

class VoicePlayerTest : public ::testing::Test
{
protected:
    VoicePlayerTest()
    {
        auto owned = std::make_unique<fakes::FakeEngine>(
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

    fakes::FakeAudioOutput output;
    fakes::FakeEngine* engine = nullptr;
    std::unique_ptr<VoiceCatalog> catalog;
    std::unique_ptr<VoicePlayer> player;
    Lines log;
};

TEST_F(VoicePlayerTest, ReportsEachEventSoSoonBeforeItIsHeardThatItIsSeenWithItsSound)
{
    constexpr int early = fakes::FakeEngine::Rate * 15 / 1000; // samples in the 15 ms until the screen shows an event
    engine->synthesize = [](SampleSink& sink) {
        sink.Event({SpeechEvent::Kind::Word, 0, 0});
        sink.Event({SpeechEvent::Kind::Mouth, 0, 1});
        sink.Event({SpeechEvent::Kind::Bookmark, 100 + early, 7});
        sink.Event({SpeechEvent::Kind::Word, 150 + early, 1});
        return sink.Samples(std::vector<std::int16_t>(300 + early, 5));
    };
    player->Start(Say("hello there"), Log());
    output.RunEvents();
    EXPECT_EQ(log, Lines{});

    ASSERT_TRUE(fakes::Eventually([this] { return engine->returns == 1; }));
    ASSERT_EQ(output.Play(100), 100U);
    EXPECT_EQ(log, (Lines{"started", "word 0", "mouth 1"}));
    ASSERT_EQ(output.Play(50), 50U);
    EXPECT_EQ(log, (Lines{"started", "word 0", "mouth 1", "bookmark 7"}));
    ASSERT_EQ(output.Play(1), 1U);
    EXPECT_EQ(log.back(), "word 1");
    ASSERT_TRUE(output.PlayAll());
    EXPECT_EQ(log, (Lines{"started", "word 0", "mouth 1", "bookmark 7", "word 1", "mouth 0", "ended well"}));
    EXPECT_EQ(output.played.size(), 300U + early);
    EXPECT_EQ(output.rate, fakes::FakeEngine::Rate);
}

TEST_F(VoicePlayerTest, BeginsWithTheFirstSampleThatIsHeardHoweverLongTheDevicesQueueIs)
{
    engine->synthesize = [](SampleSink& sink) {
        sink.Event({SpeechEvent::Kind::Word, 0, 0});
        sink.Event({SpeechEvent::Kind::Mouth, 0, 1});
        return sink.Samples(std::vector<std::int16_t>(700, 5));
    };
    output.queue = 500;
    player->Start(Say("hello there"), Log());
    ASSERT_TRUE(fakes::Eventually([this] { return engine->returns == 1; }));
    ASSERT_EQ(output.Play(500), 500U);
    output.RunEvents();
    EXPECT_EQ(log, Lines{});
    ASSERT_EQ(output.Play(1), 1U);
    EXPECT_EQ(log, (Lines{"started", "word 0", "mouth 1"}));
}

TEST_F(VoicePlayerTest, WhatIsOverBeforeTheDeviceSaidThatItIsHeardHasBegunAllTheSame)
{
    engine->synthesize = [](SampleSink& sink) {
        sink.Event({SpeechEvent::Kind::Word, 0, 0});
        return sink.Samples(std::vector<std::int16_t>(20, 5));
    };
    output.queue = 500;
    player->Start(Say("hi"), Log());
    ASSERT_TRUE(output.PlayAll());
    EXPECT_EQ(log, (Lines{"started", "word 0", "ended well"}));
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
    EXPECT_TRUE(fakes::Eventually([this] { return output.Play(10) == 10; }));
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
    ASSERT_TRUE(fakes::Eventually([&delivered] { return delivered == 20; }));
    std::this_thread::sleep_for(std::chrono::milliseconds(20));
    EXPECT_EQ(delivered, 20);
    ASSERT_TRUE(fakes::Eventually([this] { return output.Play(100) == 100; }));
    EXPECT_TRUE(fakes::Eventually([&delivered] { return delivered == 21; }));
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
    ASSERT_TRUE(fakes::Eventually([this] { return output.Play(10) == 10; }));
    EXPECT_EQ(player->Status(), AudioStatus::CharacterSpeaking);
    player->Stop();
    EXPECT_EQ(output.openStreams, 0);
    EXPECT_EQ(player->Status(), AudioStatus::Available);
    EXPECT_EQ(log, (Lines{"started", "mouth 1"}));
    output.RunEvents();
    output.RunEvents();
    EXPECT_EQ(log, (Lines{"started", "mouth 1", "ended badly"}));
    EXPECT_TRUE(fakes::Eventually([this] { return engine->returns == 1; }));
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
    ASSERT_TRUE(fakes::Eventually([this] { return engine->calls == 1; }));
    const auto before = std::chrono::steady_clock::now();
    player->Stop();
    player->Start(Say("second"), {});
    EXPECT_LT(std::chrono::steady_clock::now() - before, std::chrono::milliseconds(5));
    output.RunEvents();
    EXPECT_EQ(log, Lines{"ended badly"});
    goOn = true;
    EXPECT_TRUE(fakes::Eventually([this] { return engine->calls == 2; }));
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
    ASSERT_TRUE(fakes::Eventually([this] { return output.Play(10) == 10; }));
    const auto failed = output.failed;
    failed();
    EXPECT_EQ(log, (Lines{"started", "ended badly"}));
    EXPECT_EQ(output.openStreams, 0);
    EXPECT_EQ(player->Status(), AudioStatus::Available);
    EXPECT_TRUE(fakes::Eventually([this] { return engine->returns == 1; }));
}

TEST_F(VoicePlayerTest, WithoutADeviceItEndsBadlyFromTheEventLoop)
{
    output.state = AudioStatus::NoSupport;
    EXPECT_EQ(player->Status(), AudioStatus::NoSupport);
    player->Start(Say("hello"), Log());
    EXPECT_EQ(log, Lines{});
    output.RunEvents();
    EXPECT_EQ(log, Lines{"ended badly"});
    EXPECT_EQ(player->Status(), AudioStatus::NoSupport);
}

TEST_F(VoicePlayerTest, TellsEveryStateOfTheDevice)
{
    output.state = AudioStatus::Available;
    EXPECT_EQ(player->Status(), AudioStatus::Available);
    output.state = AudioStatus::CannotOpen;
    EXPECT_EQ(player->Status(), AudioStatus::CannotOpen);
    output.state = AudioStatus::Unknown;
    EXPECT_EQ(player->Status(), AudioStatus::Unknown);
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
    ASSERT_TRUE(fakes::Eventually([this] { return output.Play(10) == 10; }));
    player->Stop();
    player.reset();
    log.clear();
    output.RunEvents();
    EXPECT_EQ(log, Lines{});
}

/// A wave file that is removed after the test.
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

    /// Waits until the file has been analysed and its stream is open.
    bool Opens()
    {
        return fakes::Eventually([this] {
            output.RunEvents();
            return output.openStreams == 1;
        });
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
    ASSERT_TRUE(Opens());
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

TEST_F(WavePlayerTest, TellsWordsAndTheBookmarksAmongThemEvenlyOverTheFilesLength)
{
    Write(std::vector<std::int16_t>(1000, 0), 1000);
    Utterance utterance;
    utterance.waveFile = path;
    utterance.shownWords = 4;
    utterance.segments = {Bookmark(1), Bookmark(2), Bookmark(3), Text("not spoken")};
    utterance.segments[1].firstWord = 2;
    utterance.segments[2].firstWord = 4;
    player->Start(utterance, Log());
    ASSERT_TRUE(Opens());
    const auto heardIn = [this](std::size_t samples) {
        log.clear();
        // The file is read by another thread, which may not be done yet.
        std::size_t played = 0;
        EXPECT_TRUE(fakes::Eventually([&] { return (played += output.Play(samples - played)) == samples; }));
        return log;
    };
    // Each word lasts a quarter of a second, give or take the player's lead over the screen.
    EXPECT_EQ(heardIn(1), (Lines{"started", "bookmark 1", "word 0"}));
    EXPECT_EQ(heardIn(219), Lines{});
    EXPECT_EQ(heardIn(60), Lines{"word 1"});
    EXPECT_EQ(heardIn(190), Lines{});
    EXPECT_EQ(heardIn(60), (Lines{"bookmark 2", "word 2"}));
    EXPECT_EQ(heardIn(190), Lines{});
    EXPECT_EQ(heardIn(60), Lines{"word 3"});
    log.clear();
    ASSERT_TRUE(output.PlayAll());
    EXPECT_EQ(log, (Lines{"bookmark 3", "ended well"}));
    EXPECT_EQ(engine->calls, 0);
}

TEST_F(WavePlayerTest, TheMouthFollowsTheLoudnessToTheEndThoughAClickIsMuchLouder)
{
    // Twenty times half a second of sound and half a second of silence, plus a click.
    std::vector<std::int16_t> samples(20000);
    for (std::size_t i = 0; i < samples.size(); ++i)
        samples[i] = i % 1000 < 500 ? i % 2 == 0 ? 800 : -800 : 0;
    std::fill_n(samples.begin() + 600, 20, std::int16_t{32767});
    Write(samples, 1000);
    Utterance utterance;
    utterance.waveFile = path;
    fakes::RecordingSink sink;
    WaveSpeech(utterance).Deliver(sink);
    const auto count = [&sink](int mouth, std::int64_t from, std::int64_t to) {
        return std::count_if(sink.events.begin(), sink.events.end(), [&](const SpeechEvent& event) {
            return event.value == mouth && event.sample >= from && event.sample < to;
        });
    };
    // A step of 1/25 s is 40 samples.
    for (int second = 0; second < 20; ++second) {
        EXPECT_EQ(count(1, second * 1000 - 40, second * 1000 + 40), 1) << second;
        EXPECT_EQ(count(0, second * 1000 + 460, second * 1000 + 540), 1) << second;
    }
    EXPECT_EQ(count(1, 560, 640), 1);
    EXPECT_EQ(sink.events.size(), 20u * 2 + 2);
}

TEST_F(WavePlayerTest, ALongRecordingIsReadAStretchAheadAndItsEventsComeInOrder)
{
    // Ninety seconds, each with half a second of sound; it becomes four times as loud after forty.
    constexpr std::int64_t rate = 1000;
    constexpr std::int64_t length = 90 * rate;
    std::vector<std::int16_t> samples(length);
    for (std::int64_t i = 0; i < length; ++i) {
        const int level = i < 40 * rate ? 800 : 3200;
        samples[static_cast<std::size_t>(i)] =
            static_cast<std::int16_t>(i % rate < rate / 2 ? i % 2 == 0 ? level : -level : 0);
    }
    Write(samples, rate);
    Utterance utterance;
    utterance.waveFile = path;
    utterance.shownWords = 3;
    utterance.segments = {Bookmark(7), Bookmark(8)};
    utterance.segments[0].firstWord = 2;
    utterance.segments[1].firstWord = 3;
    fakes::RecordingSink sink;
    WaveSpeech(utterance).Deliver(sink);
    EXPECT_EQ(sink.samples, samples);
    EXPECT_EQ(sink.latestEventBehind, 0) << "events come before their samples";
    EXPECT_TRUE(std::ranges::is_sorted(sink.events, {}, &SpeechEvent::sample));
    std::vector<std::pair<std::int64_t, int>> marks;
    int open = 0;
    for (const SpeechEvent& event : sink.events)
        if (event.kind != SpeechEvent::Kind::Mouth)
            marks.emplace_back(event.sample, event.value);
        else if (event.value > 0)
            ++open;
    EXPECT_EQ(marks, (std::vector<std::pair<std::int64_t, int>>{
                         {0, 0}, {30 * rate, 1}, {60 * rate, 7}, {60 * rate, 2}, {length, 8}}));
    EXPECT_EQ(open, 90) << "the mouth opens for each sound";
    fakes::RecordingSink few;
    few.stopAfter = 1;
    WaveSpeech(utterance).Deliver(few);
    EXPECT_EQ(few.samples.size(), 20u * rate) << "nothing is read on for a sink that wants no more";
}

TEST_F(WavePlayerTest, AHeaderThatLiesAboutTheLengthLosesNoWord)
{
    Write(std::vector<std::int16_t>(50000, 0), 1000);
    // Half of the file is missing: its header tells of samples that do not come.
    std::filesystem::resize_file(path, 60000);
    Utterance utterance;
    utterance.waveFile = path;
    utterance.shownWords = 5;
    fakes::RecordingSink sink;
    WaveSpeech(utterance).Deliver(sink);
    std::vector<int> words;
    for (const SpeechEvent& event : sink.events)
        if (event.kind == SpeechEvent::Kind::Word)
            words.push_back(event.value);
    EXPECT_EQ(words, (std::vector<int>{0, 1, 2, 3, 4}));
    EXPECT_TRUE(std::ranges::is_sorted(sink.events, {}, &SpeechEvent::sample));
}

TEST_F(WavePlayerTest, ASilentRecordingKeepsTheMouthClosed)
{
    std::vector<std::int16_t> samples(2000);
    for (std::size_t i = 0; i < samples.size(); ++i)
        samples[i] = static_cast<std::int16_t>(i % 7);
    Write(samples, 1000);
    Utterance utterance;
    utterance.waveFile = path;
    player->Start(utterance, Log());
    ASSERT_TRUE(Opens());
    ASSERT_TRUE(output.PlayAll());
    EXPECT_EQ(log, (Lines{"started", "ended well"}));
}

TEST_F(WavePlayerTest, AFileOfMoreThanTenMinutesIsPlayedWhole)
{
    std::vector<std::int16_t> samples(700000);
    for (std::size_t i = 0; i < samples.size(); ++i)
        samples[i] = static_cast<std::int16_t>(i * 7);
    Write(samples, 1000);
    Utterance utterance;
    utterance.waveFile = path;
    player->Start(utterance, {});
    ASSERT_TRUE(Opens());
    ASSERT_TRUE(fakes::Eventually([this] {
        output.Play(20000);
        return output.openStreams == 0;
    }));
    EXPECT_EQ(output.played, samples);
}

TEST_F(WavePlayerTest, NeitherWidthNorChannelsNorRateChangeLengthAndLevel)
{
    for (const int rate : {4000, 8000, 11025, 22050, 44100, 48000, 96000, 192000})
        for (const int coding : {SF_FORMAT_PCM_U8, SF_FORMAT_PCM_16, SF_FORMAT_PCM_24, SF_FORMAT_PCM_32,
                                 SF_FORMAT_FLOAT, SF_FORMAT_DOUBLE})
            for (const int channels : {1, 2, 6}) {
                // A quarter of a second of 500 Hz at half of full scale.
                const std::size_t frames = static_cast<std::size_t>(rate) / 4;
                std::vector<double> values;
                for (std::size_t i = 0; i < frames; ++i)
                    values.insert(values.end(), static_cast<std::size_t>(channels),
                                  0.5 * std::sin(2 * 3.14159265358979 * 500 * static_cast<double>(i) / rate));
                SF_INFO info{};
                info.samplerate = rate;
                info.channels = channels;
                info.format = (channels > 2 ? SF_FORMAT_WAVEX : SF_FORMAT_WAV) | coding;
                SNDFILE* file = sf_open(path.c_str(), SFM_WRITE, &info);
                ASSERT_NE(file, nullptr);
                sf_write_double(file, values.data(), static_cast<sf_count_t>(values.size()));
                sf_close(file);

                fakes::RecordingSink sink;
                Utterance utterance;
                utterance.waveFile = path;
                WaveSpeech wave(utterance);
                EXPECT_EQ(wave.SamplesPerSecond(), rate) << rate << " " << coding;
                wave.Deliver(sink);
                EXPECT_EQ(sink.samples.size(), frames) << rate << " " << coding << " " << channels;
                double power = 0;
                for (const std::int16_t sample : sink.samples)
                    power += static_cast<double>(sample) * sample;
                // Eight-bit samples are rounded down when written.
                EXPECT_NEAR(std::sqrt(power / static_cast<double>(frames)), 16384 * std::sqrt(0.5),
                            coding == SF_FORMAT_PCM_U8 ? 150 : 5)
                    << rate << " " << coding << " " << channels;
            }
}

TEST_F(VoicePlayerTest, WhatAnEngineThrowsIsThrownInTheEventLoopAndEndsTheUtterance)
{
    engine->synthesize = [](SampleSink&) -> bool { throw std::bad_alloc(); };
    player->Start(Say("hello"), Log());
    int thrown = 0;
    EXPECT_TRUE(fakes::Eventually([&] {
        try {
            output.Play(10);
        } catch (const std::bad_alloc&) {
            ++thrown;
        }
        return thrown > 0 && !log.empty();
    }));
    EXPECT_EQ(thrown, 1);
    EXPECT_EQ(log, Lines{"ended badly"});
}

TEST_F(WavePlayerTest, AWaveFileThatCannotBeReadIsABadEnd)
{
    std::ofstream(path) << "this is no sound at all";
    Utterance utterance;
    utterance.waveFile = path;
    player->Start(utterance, Log());
    EXPECT_TRUE(fakes::Eventually([this] {
        output.Play(10);
        return !log.empty();
    }));
    EXPECT_EQ(log, Lines{"ended badly"});

    utterance.waveFile = "/nowhere/at/all.wav";
    log.clear();
    player->Start(utterance, Log());
    EXPECT_TRUE(fakes::Eventually([this] {
        output.Play(10);
        return !log.empty();
    }));
    EXPECT_EQ(log, Lines{"ended badly"});
}

} // namespace
} // namespace voxmate::speech
