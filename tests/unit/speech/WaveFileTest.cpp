#include "speech/sound/WaveFile.h"

#include <gtest/gtest.h>

#include <cmath>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <iterator>

#include <sndfile.h>
#include <unistd.h>

// libsndfile forgets to free libvorbis' memory of a damaged file, some six kilobytes each.
extern "C" const char* __lsan_default_suppressions(); // NOLINT(bugprone-reserved-identifier): the sanitizer's name
extern "C" const char* __lsan_default_suppressions()  // NOLINT(bugprone-reserved-identifier)
{
    return "leak:vorbis_info_init\n";
}

namespace voxmate::speech
{
namespace
{

void Put(std::vector<std::uint8_t>& out, std::uint64_t value, int bytes)
{
    for (int i = 0; i < bytes; ++i)
        out.push_back(static_cast<std::uint8_t>(value >> (8 * i)));
}

/// A wave file with the given format (1 PCM, 3 floating point) and raw sample bytes.
std::vector<std::uint8_t> Wave(int format, int channels, int rate, int bits, const std::vector<std::uint8_t>& data)
{
    std::vector<std::uint8_t> out{'R', 'I', 'F', 'F'};
    Put(out, 36 + data.size(), 4);
    for (const char c : std::string("WAVEfmt "))
        out.push_back(static_cast<std::uint8_t>(c));
    Put(out, 16, 4);
    Put(out, static_cast<std::uint64_t>(format), 2);
    Put(out, static_cast<std::uint64_t>(channels), 2);
    Put(out, static_cast<std::uint64_t>(rate), 4);
    Put(out, static_cast<std::uint64_t>(rate * channels * bits / 8), 4);
    Put(out, static_cast<std::uint64_t>(channels * bits / 8), 2);
    Put(out, static_cast<std::uint64_t>(bits), 2);
    for (const char c : std::string("data"))
        out.push_back(static_cast<std::uint8_t>(c));
    Put(out, data.size(), 4);
    out.insert(out.end(), data.begin(), data.end());
    return out;
}

using Samples = std::vector<std::int16_t>;

/// All samples of a recording; nothing when it is none or has none.
std::optional<Samples> ReadBytes(std::span<const std::uint8_t> bytes)
{
    const auto reader = WaveReader::Of(bytes);
    if (!reader)
        return std::nullopt;
    Samples all;
    for (auto samples = reader->Next(); !samples.empty(); samples = reader->Next())
        all.insert(all.end(), samples.begin(), samples.end());
    return all.empty() ? std::nullopt : std::optional(all);
}

std::filesystem::path TemporaryPath()
{
    return std::filesystem::temp_directory_path() / ("voxmate-sound-" + std::to_string(getpid()) + ".wav");
}

TEST(WaveFileTest, DecodesEightBitSamples)
{
    const auto wave = DecodeWave(Wave(1, 1, 11025, 8, {0x80, 0xFF, 0x00, 0x40}));
    ASSERT_TRUE(wave);
    EXPECT_EQ(wave->samplesPerSecond, 11025);
    EXPECT_EQ(wave->samples, (Samples{0, 32512, -32768, -16384}));
}

TEST(WaveFileTest, DecodesSixteenBitSamplesExactly)
{
    const auto wave = DecodeWave(Wave(1, 1, 22050, 16, {0x01, 0x00, 0xFF, 0x7F, 0x00, 0x80, 0x39, 0x30}));
    ASSERT_TRUE(wave);
    EXPECT_EQ(wave->samples, (Samples{1, 32767, -32768, 12345}));
}

TEST(WaveFileTest, DecodesTwentyFourAndThirtyTwoBitSamples)
{
    const auto wave24 = DecodeWave(Wave(1, 1, 48000, 24, {0x00, 0x00, 0x40, 0x00, 0x00, 0xC0}));
    ASSERT_TRUE(wave24);
    EXPECT_EQ(wave24->samples, (Samples{16384, -16384}));
    const auto wave32 = DecodeWave(Wave(1, 1, 48000, 32, {0x00, 0x00, 0x00, 0x40, 0x00, 0x00, 0x00, 0xC0}));
    ASSERT_TRUE(wave32);
    EXPECT_EQ(wave32->samples, (Samples{16384, -16384}));
}

TEST(WaveFileTest, DecodesFloatingPointAndHoldsItWithinBounds)
{
    std::vector<std::uint8_t> data;
    for (const float value : {0.5F, -2.0F, 3.0F}) {
        std::uint32_t bits = 0;
        std::memcpy(&bits, &value, sizeof bits);
        Put(data, bits, 4);
    }
    const auto wave = DecodeWave(Wave(3, 1, 44100, 32, data));
    ASSERT_TRUE(wave);
    EXPECT_EQ(wave->samples, (Samples{16384, -32768, 32767}));
}

TEST(WaveFileTest, AveragesTwoChannels)
{
    const auto wave = DecodeWave(Wave(1, 2, 8000, 16, {0xE8, 0x03, 0xD0, 0x07, 0x00, 0x00, 0x0C, 0xFE}));
    ASSERT_TRUE(wave);
    EXPECT_EQ(wave->samples, (Samples{1500, -250}));
}

std::vector<std::uint8_t> Sixteen(const Samples& samples)
{
    std::vector<std::uint8_t> bytes;
    for (const std::int16_t sample : samples)
        Put(bytes, static_cast<std::uint16_t>(sample), 2);
    return bytes;
}

/// Frames of a tone, with an amplitude for each channel; 0 is silence.
Samples Tone(std::size_t frames, const std::vector<double>& amplitudes)
{
    Samples samples;
    for (std::size_t i = 0; i < frames; ++i)
        for (const double amplitude : amplitudes)
            samples.push_back(
                static_cast<std::int16_t>(std::lround(amplitude * std::sin(0.05 * static_cast<double>(i)))));
    return samples;
}

TEST(WaveFileTest, AChannelThatIsTheOtherUpsideDownDoesNotCancelIt)
{
    const auto wave = DecodeWave(Wave(1, 2, 22050, 16, Sixteen(Tone(20000, {8000, -8000}))));
    ASSERT_TRUE(wave);
    EXPECT_EQ(wave->samples, Tone(20000, {8000}));
    const auto louder = DecodeWave(Wave(1, 2, 22050, 16, Sixteen(Tone(20000, {-4000, 8000}))));
    ASSERT_TRUE(louder);
    const Samples expected = Tone(20000, {6000});
    ASSERT_EQ(louder->samples.size(), expected.size());
    for (std::size_t i = 0; i < expected.size(); ++i)
        ASSERT_NEAR(louder->samples[i], expected[i], 1) << i;
}

TEST(WaveFileTest, ChannelsThatHaveLittleInCommonAreAveragedAsTheyAre)
{
    Samples frames;
    Samples average;
    for (int i = 0; i < 20000; ++i) {
        const auto left = static_cast<std::int16_t>(8000 * (i / 50 % 2) - 4000);
        const auto right = static_cast<std::int16_t>(6000 * (i / 77 % 2) - 3000);
        frames.insert(frames.end(), {left, right});
        average.push_back(static_cast<std::int16_t>((left + right) / 2));
    }
    const auto wave = DecodeWave(Wave(1, 2, 22050, 16, Sixteen(frames)));
    ASSERT_TRUE(wave);
    EXPECT_EQ(wave->samples, average);
}

TEST(WaveFileTest, WhatIsInTheCentreAloneOfSixChannelsKeepsItsLoudness)
{
    Samples frames = Tone(20000, {0, 0, 8000, 0, 0, 0});
    const auto wave = DecodeWave(Wave(1, 6, 48000, 16, Sixteen(frames)));
    ASSERT_TRUE(wave);
    EXPECT_EQ(wave->samples, Tone(20000, {8000}));
    // The same after silence that is longer than one block read.
    frames.insert(frames.begin(), 60000, 0);
    const auto later = DecodeWave(Wave(1, 6, 48000, 16, Sixteen(frames)));
    ASSERT_TRUE(later);
    EXPECT_EQ(Samples(later->samples.begin() + 10000, later->samples.end()), Tone(20000, {8000}));
}

TEST(WaveFileTest, ChannelsThatComeInLaterAreAveragedFromThenOnWithoutAJump)
{
    Samples frames = Tone(20480, {0, 0, 8000, 0, 0, 0});
    const Samples full = Tone(20480, {8000, 8000, 8000, 8000, 8000, 8000});
    frames.insert(frames.end(), full.begin(), full.end());
    const auto wave = DecodeWave(Wave(1, 6, 48000, 16, Sixteen(frames)));
    ASSERT_TRUE(wave);
    ASSERT_EQ(wave->samples.size(), 40960U);
    const Samples end(wave->samples.end() - 10000, wave->samples.end());
    const Samples expected = Tone(20480, {8000});
    for (std::size_t i = 0; i < end.size(); ++i)
        ASSERT_NEAR(end[i], expected[expected.size() - 10000 + i], 1) << i;
}

TEST(WaveFileTest, TakesTheSamplesBehindALengthThatWasNeverFilledIn)
{
    const Samples samples = Tone(5000, {8000});
    for (const std::uint32_t riff : {0U, 36U, 0xFFFFFFFFU})
        for (const std::uint32_t length : {0U, 0xFFFFFFFFU}) {
            std::vector<std::uint8_t> file = Wave(1, 1, 22050, 16, Sixteen(samples));
            for (std::size_t i = 0; i < 4; ++i) {
                file[4 + i] = static_cast<std::uint8_t>(riff >> (8 * i));
                file[40 + i] = static_cast<std::uint8_t>(length >> (8 * i));
            }
            const auto wave = DecodeWave(file);
            ASSERT_TRUE(wave) << riff << " " << length;
            EXPECT_EQ(wave->samples, samples) << riff << " " << length;
            const auto read = ReadBytes(file);
            ASSERT_TRUE(read) << riff << " " << length;
            EXPECT_EQ(*read, samples) << riff << " " << length;
        }
}

TEST(WaveFileTest, ChunksBehindNoSamplesAreNoSamples)
{
    std::vector<std::uint8_t> file = Wave(1, 1, 22050, 16, {});
    for (const char c : std::string("LIST"))
        file.push_back(static_cast<std::uint8_t>(c));
    Put(file, 4, 4);
    for (const char c : std::string("INFO"))
        file.push_back(static_cast<std::uint8_t>(c));
    EXPECT_FALSE(DecodeWave(file));
    // A chunk that reaches beyond the file does not count.
    file[48] = 200;
    const auto wave = DecodeWave(file);
    ASSERT_TRUE(wave);
    EXPECT_EQ(wave->samples.size(), 6U);
}

TEST(WaveFileTest, RefusesWhatIsNotAWaveFile)
{
    EXPECT_FALSE(DecodeWave({}));
    const std::vector<std::uint8_t> text{'n', 'o', 't', ' ', 'a', ' ', 'w', 'a', 'v', 'e'};
    EXPECT_FALSE(DecodeWave(text));
    EXPECT_FALSE(DecodeWave(Wave(1, 1, 22050, 16, {})));
    EXPECT_FALSE(DecodeWave(Wave(1, 0, 22050, 16, {1, 2, 3, 4})));
    EXPECT_FALSE(DecodeWave(Wave(1, 1, 0, 16, {1, 2, 3, 4})));
}

TEST(WaveFileTest, RefusesOtherKindsOfSoundFiles)
{
    // Sun's format: a header of 24 bytes, 16-bit PCM, 8000 samples per second, one channel; big-endian numbers.
    const std::vector<std::uint8_t> au{'.', 's', 'n', 'd', 0, 0,    0,    24, 0, 0, 0, 4, 0, 0, 0,
                                       3,   0,   0,   0,   0, 0x1F, 0x40, 0,  0, 0, 1, 1, 2, 3, 4};
    EXPECT_FALSE(DecodeWave(au));
    EXPECT_FALSE(DescribeWave(au));
    EXPECT_FALSE(ReadBytes(au));
}

TEST(WaveFileTest, AWaveFileMayHaveNoMoreSamplesThanItsBytesCanHoldButARecordingMayPackSilence)
{
    // In a lossless music coding: some hundred samples per byte.
    const std::filesystem::path path = TemporaryPath();
    SF_INFO info{};
    info.format = SF_FORMAT_FLAC | SF_FORMAT_PCM_16;
    info.channels = 1;
    info.samplerate = 8000;
    SNDFILE* file = sf_open(path.string().c_str(), SFM_WRITE, &info);
    ASSERT_NE(file, nullptr);
    const Samples silence(1000000);
    EXPECT_EQ(sf_write_short(file, silence.data(), std::ssize(silence)), std::ssize(silence));
    sf_close(file);
    ASSERT_LT(std::filesystem::file_size(path) * MostSamplesPerByte, silence.size());
    std::ifstream in(path, std::ios::binary);
    const std::vector<std::uint8_t> bytes{std::istreambuf_iterator<char>(in), {}};
    EXPECT_EQ(ReadBytes(bytes), silence);
    EXPECT_FALSE(DecodeWave(bytes));
    in.close();
    std::filesystem::remove(path);
}

TEST(WaveFileTest, TakesWhatIsThereOfACutOffFile)
{
    std::vector<std::uint8_t> file = Wave(1, 1, 22050, 16, std::vector<std::uint8_t>(2000, 0x11));
    file.resize(44 + 1000);
    const auto wave = DecodeWave(file);
    ASSERT_TRUE(wave);
    EXPECT_EQ(wave->samples.size(), 500U);
}

TEST(WaveFileTest, SurvivesEveryCutAndEveryFlippedByteOfTheHeader)
{
    const std::vector<std::uint8_t> good = Wave(1, 1, 22050, 16, std::vector<std::uint8_t>(64, 0x11));
    for (std::size_t size = 0; size < good.size(); ++size) {
        const auto wave = DecodeWave(std::span(good).first(size));
        EXPECT_LE(wave ? wave->samples.size() : 0, 32U) << size;
    }
    for (std::size_t at = 0; at < 44; ++at)
        for (const int flip : {0x01, 0x80, 0xFF}) {
            std::vector<std::uint8_t> bad = good;
            bad[at] = static_cast<std::uint8_t>(bad[at] ^ flip);
            const auto wave = DecodeWave(bad);
            EXPECT_LE(wave ? wave->samples.size() : 0, 128U) << at << " " << flip;
        }
}

struct Recording {
    const char* name;
    int format;
    double difference; ///< the most that a sample of the tone may be off, of 32768
};
constexpr Recording Recordings[] = {
    {"flac", SF_FORMAT_FLAC | SF_FORMAT_PCM_16, 0}, {"aiff", SF_FORMAT_AIFF | SF_FORMAT_PCM_16, 0},
    {"au", SF_FORMAT_AU | SF_FORMAT_PCM_16, 0},     {"ogg", SF_FORMAT_OGG | SF_FORMAT_VORBIS, 800},
    {"opus", SF_FORMAT_OGG | SF_FORMAT_OPUS, 1600}, {"mp3", SF_FORMAT_MPEG | SF_FORMAT_MPEG_LAYER_III, 800}};

/// The bytes of a recording of a tone of a second, written by the library itself; empty where it cannot.
std::vector<std::uint8_t> Recorded(const Recording& kind, const Samples& samples)
{
    const std::filesystem::path path = TemporaryPath();
    SF_INFO info{0, 48000, 1, kind.format, 0, 0};
    SNDFILE* const file = sf_open(path.string().c_str(), SFM_WRITE, &info);
    if (!file)
        return {};
    sf_writef_short(file, samples.data(), std::ssize(samples));
    sf_close(file);
    std::ifstream in(path, std::ios::binary);
    std::vector<std::uint8_t> bytes{std::istreambuf_iterator<char>(in), {}};
    in.close();
    std::filesystem::remove(path);
    return bytes;
}

TEST(WaveFileTest, RecordingsOfOtherKindsAreReadByTheirContent)
{
    const Samples tone = Tone(48000, {8000});
    for (const Recording& kind : Recordings) {
        const std::vector<std::uint8_t> bytes = Recorded(kind, tone);
        if (bytes.empty())
            continue; // this library cannot write it
        const auto read = ReadBytes(bytes);
        ASSERT_TRUE(read) << kind.name;
        EXPECT_NEAR(static_cast<double>(read->size()), 48000, kind.difference > 0 ? 960 : 0) << kind.name;
        double worst = 0;
        for (std::size_t i = 4800; i < 43200; ++i)
            worst = std::max(worst, std::abs(static_cast<double>(read->at(i)) - tone[i]));
        EXPECT_LE(worst, kind.difference) << kind.name;
    }
}

TEST(WaveFileTest, ACharactersSoundsAreWaveFilesAndNothingElse)
{
    for (const Recording& kind : Recordings) {
        EXPECT_FALSE(DecodeWave(Recorded(kind, Tone(4800, {8000})))) << kind.name;
        EXPECT_FALSE(DescribeWave(Recorded(kind, Tone(4800, {8000})))) << kind.name;
    }
}

TEST(WaveFileTest, RecordingsOfRareKindsAreNotLookedAt)
{
    for (const int format : {SF_FORMAT_CAF, SF_FORMAT_VOC, SF_FORMAT_W64})
        EXPECT_FALSE(ReadBytes(Recorded({"", format | SF_FORMAT_PCM_16, 0}, Tone(4800, {8000})))) << format;
}

TEST(WaveFileTest, DamagedRecordingsNeitherCrashNorNeverEnd)
{
    for (const Recording& kind : Recordings) {
        const std::vector<std::uint8_t> good = Recorded(kind, Tone(9600, {8000}));
        for (std::size_t part = 0; part < 32 && !good.empty(); ++part) {
            const auto cut = ReadBytes(std::span(good).first(good.size() * part / 32));
            EXPECT_LE(cut ? cut->size() : 0, 20000U) << kind.name << part;
        }
        // Every byte of the head, and then some of each part.
        const std::size_t step = std::max<std::size_t>(good.size() / 200, 1);
        for (std::size_t at = 0; at < good.size(); at += at < 160 ? 1 : step) {
            std::vector<std::uint8_t> bad = good;
            bad[at] ^= 0xFF;
            const auto read = ReadBytes(bad);
            EXPECT_LE(read ? read->size() : 0, std::size_t{48000} * 172'800) << kind.name << at;
        }
    }
}

} // namespace
} // namespace voxmate::speech
