#include "platform/speech/WaveFile.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <string_view>
#include <utility>

#include <sndfile.h>

namespace voxmate::speech
{

namespace
{

constexpr int LongestSeconds = 600;
constexpr int MostChannels = 32;
constexpr int BlockFrames = 4096;

/// A file in memory as libsndfile reads it.
struct Memory {
    std::span<const std::uint8_t> bytes;
    sf_count_t at = 0;

    static sf_count_t Length(void* self) { return static_cast<sf_count_t>(static_cast<Memory*>(self)->bytes.size()); }

    static sf_count_t Seek(sf_count_t offset, int whence, void* self)
    {
        Memory& memory = *static_cast<Memory*>(self);
        const sf_count_t size = Length(self);
        const sf_count_t base = whence == SEEK_SET ? 0 : whence == SEEK_CUR ? memory.at : size;
        memory.at = std::clamp<sf_count_t>(base + offset, 0, size);
        return memory.at;
    }

    static sf_count_t Read(void* target, sf_count_t count, void* self)
    {
        Memory& memory = *static_cast<Memory*>(self);
        const sf_count_t given = std::clamp<sf_count_t>(Length(self) - memory.at, 0, count);
        if (given > 0)
            std::memcpy(target, memory.bytes.data() + memory.at, static_cast<std::size_t>(given));
        memory.at += given;
        return given;
    }

    static sf_count_t Write(const void*, sf_count_t, void*) { return 0; }
    static sf_count_t Tell(void* self) { return static_cast<Memory*>(self)->at; }
};

constexpr std::size_t HeadSize = 12;

/// Whether a file begins as wave files do, the lowest or the highest byte of each number first. Asked before libsndfile
/// sees the file, whose readers of two dozen other forms have no business with what a stranger sends.
bool IsWave(std::span<const std::uint8_t> head)
{
    const auto says = [&](std::size_t at, std::string_view mark) {
        return std::equal(mark.begin(), mark.end(), head.begin() + static_cast<std::ptrdiff_t>(at),
                          [](char a, std::uint8_t b) { return static_cast<std::uint8_t>(a) == b; });
    };
    return head.size() >= HeadSize && (says(0, "RIFF") || says(0, "RIFX")) && says(8, "WAVE");
}

// `memory` lives as long as what is opened.
SNDFILE* Open(Memory& memory, SF_INFO& info)
{
    if (!IsWave(memory.bytes))
        return nullptr;
    SF_VIRTUAL_IO access{Memory::Length, Memory::Seek, Memory::Read, Memory::Write, Memory::Tell};
    return sf_open_virtual(&access, SFM_READ, &info, &memory);
}

int Bits(int format)
{
    switch (format & SF_FORMAT_SUBMASK) {
    case SF_FORMAT_PCM_S8:
    case SF_FORMAT_PCM_U8:
    case SF_FORMAT_ULAW:
    case SF_FORMAT_ALAW:
        return 8;
    case SF_FORMAT_PCM_16:
        return 16;
    case SF_FORMAT_PCM_24:
        return 24;
    case SF_FORMAT_PCM_32:
    case SF_FORMAT_FLOAT:
        return 32;
    case SF_FORMAT_DOUBLE:
        return 64;
    default:
        return 0;
    }
}

struct Close {
    void operator()(SNDFILE* file) const { sf_close(file); }
};
using SoundFile = std::unique_ptr<SNDFILE, Close>;

/// Reads any opened file of `bytes` bytes.
class Reader final : public WaveReader
{
public:
    Reader(SoundFile file, const SF_INFO& info, std::uintmax_t bytes)
        : file_(std::move(file)), info_(info), left_(bytes * MostSamplesPerByte),
          block_(static_cast<std::size_t>(info.channels) * BlockFrames)
    {
    }

    /// Null when the file could not be opened or is no wave file of the kind we take.
    static std::unique_ptr<Reader> Over(SoundFile file, const SF_INFO& info, std::uintmax_t bytes)
    {
        if (!file || info.channels < 1 || info.channels > MostChannels || info.samplerate < 1000 ||
            info.samplerate > 384000)
            return nullptr;
        return std::make_unique<Reader>(std::move(file), info, bytes);
    }

    int SamplesPerSecond() const override { return info_.samplerate; }

    std::span<const std::int16_t> Next() override
    {
        samples_.clear();
        // What a damaged header claims is not believed: the samples are taken as they come, but not without end.
        if (left_ == 0)
            return samples_;
        const auto channels = static_cast<std::size_t>(info_.channels);
        const sf_count_t frames = sf_readf_float(file_.get(), block_.data(), BlockFrames);
        for (sf_count_t frame = 0; frame < frames; ++frame) {
            float sum = 0;
            for (std::size_t channel = 0; channel < channels; ++channel)
                sum += block_[static_cast<std::size_t>(frame) * channels + channel];
            const float value = sum / static_cast<float>(info_.channels) * 32768;
            samples_.push_back(static_cast<std::int16_t>(
                std::lround(std::clamp(std::isfinite(value) ? value : 0.0F, -32768.0F, 32767.0F))));
        }
        if (samples_.size() > left_)
            samples_.resize(static_cast<std::size_t>(left_));
        left_ -= samples_.size();
        return samples_;
    }

private:
    SoundFile file_;
    SF_INFO info_;
    std::uintmax_t left_;
    std::vector<float> block_;
    std::vector<std::int16_t> samples_;
};

std::optional<WaveData> ReadAll(WaveReader* reader)
{
    if (!reader)
        return std::nullopt;
    WaveData data{reader->SamplesPerSecond(), {}};
    const std::size_t most = static_cast<std::size_t>(data.samplesPerSecond) * LongestSeconds;
    for (auto samples = reader->Next(); !samples.empty() && data.samples.size() < most; samples = reader->Next()) {
        const std::size_t count = std::min(samples.size(), most - data.samples.size());
        data.samples.insert(data.samples.end(), samples.begin(), samples.begin() + static_cast<std::ptrdiff_t>(count));
    }
    if (data.samples.empty())
        return std::nullopt;
    return data;
}

} // namespace

std::optional<WaveFormat> DescribeWave(std::span<const std::uint8_t> file)
{
    Memory memory{file};
    SF_INFO info{};
    SoundFile opened(Open(memory, info));
    if (!Reader::Over(std::move(opened), info, file.size()))
        return std::nullopt;
    return WaveFormat{info.channels, info.samplerate, Bits(info.format), info.frames};
}

std::optional<WaveData> DecodeWave(std::span<const std::uint8_t> file)
{
    Memory memory{file};
    SF_INFO info{};
    SoundFile opened(Open(memory, info));
    return ReadAll(Reader::Over(std::move(opened), info, file.size()).get());
}

std::optional<WaveData> ReadWaveFile(const std::string& path)
{
    return ReadAll(WaveReader::Open(path).get());
}

std::unique_ptr<WaveReader> WaveReader::Open(const std::string& path)
{
    std::error_code error;
    if (!std::filesystem::is_regular_file(path, error))
        return nullptr;
    std::array<char, HeadSize> head{};
    std::ifstream(path, std::ios::binary).read(head.data(), HeadSize);
    if (!IsWave({reinterpret_cast<const std::uint8_t*>(head.data()), HeadSize}))
        return nullptr;
    SF_INFO info{};
    SoundFile file(sf_open(path.c_str(), SFM_READ, &info));
    return Reader::Over(std::move(file), info, std::filesystem::file_size(path, error));
}

} // namespace voxmate::speech
