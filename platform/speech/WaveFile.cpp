#include "platform/speech/WaveFile.h"

#include <algorithm>
#include <cmath>
#include <cstring>

#include <sndfile.h>

namespace voxmate::speech
{

namespace
{

constexpr int LongestSeconds = 600;
constexpr int MostChannels = 32;

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

// `memory` lives as long as what is opened.
SNDFILE* Open(Memory& memory, SF_INFO& info)
{
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

std::optional<WaveData> Decode(SNDFILE* file, const SF_INFO& info)
{
    if (!file)
        return std::nullopt;
    std::optional<WaveData> data;
    if (info.channels >= 1 && info.channels <= MostChannels && info.samplerate >= 1000 && info.samplerate <= 384000) {
        data.emplace().samplesPerSecond = info.samplerate;
        // What a damaged header claims is not believed: the samples are taken as they come.
        const std::size_t most = static_cast<std::size_t>(info.samplerate) * LongestSeconds;
        std::vector<float> block(static_cast<std::size_t>(info.channels) * 4096);
        sf_count_t frames = 0;
        while (data->samples.size() < most && (frames = sf_readf_float(file, block.data(), 4096)) > 0) {
            for (sf_count_t frame = 0; frame < frames; ++frame) {
                float sum = 0;
                for (int channel = 0; channel < info.channels; ++channel)
                    sum += block[static_cast<std::size_t>(frame * info.channels + channel)];
                const float value = sum / static_cast<float>(info.channels) * 32768;
                data->samples.push_back(static_cast<std::int16_t>(
                    std::lround(std::clamp(std::isfinite(value) ? value : 0.0F, -32768.0F, 32767.0F))));
            }
        }
        if (data->samples.empty())
            data.reset();
    }
    sf_close(file);
    return data;
}

} // namespace

std::optional<WaveFormat> DescribeWave(std::span<const std::uint8_t> file)
{
    Memory memory{file};
    SF_INFO info{};
    SNDFILE* opened = Open(memory, info);
    if (!opened)
        return std::nullopt;
    sf_close(opened);
    return WaveFormat{info.channels, info.samplerate, Bits(info.format), info.frames};
}

std::optional<WaveData> DecodeWave(std::span<const std::uint8_t> file)
{
    Memory memory{file};
    SF_INFO info{};
    return Decode(Open(memory, info), info);
}

std::optional<WaveData> ReadWaveFile(const std::string& path)
{
    SF_INFO info{};
    return Decode(sf_open(path.c_str(), SFM_READ, &info), info);
}

} // namespace voxmate::speech
