// Recordings that are played. A program of its own decodes them.
#include "speech/player/WaveSpeech.h"
#include "tests/fakes/RecordingSink.h"
#include "tests/unit/speech/Segments.h"
#include "tests/unit/speech/VoicePlayerTest.h"

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
