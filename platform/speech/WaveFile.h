// Recorded sounds: character sound effects from memory, and wave files that are played instead of speech.
#pragma once

#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <vector>

namespace voxmate::speech
{

struct WaveData {
    int samplesPerSecond = 0;
    std::vector<std::int16_t> samples; ///< mono: several channels are averaged
};

/// What a wave file's header says of it.
struct WaveFormat {
    int channels = 0;
    int samplesPerSecond = 0;
    int bits = 0; ///< of one sample; 0 where the coding has no such number
    std::int64_t frames = 0;
};

/// The format of a wave file held in memory; nothing when it is not one that could be decoded.
std::optional<WaveFormat> DescribeWave(std::span<const std::uint8_t> file);

/// Decodes a wave file held in memory: PCM of any width, floating point or another coding libsndfile knows, any number
/// of channels, 1000 to 384000 samples per second, ten minutes at most. Nothing when it is not one or holds no samples.
std::optional<WaveData> DecodeWave(std::span<const std::uint8_t> file);

/// The same from a file; nothing when it cannot be read.
std::optional<WaveData> ReadWaveFile(const std::string& path);

} // namespace voxmate::speech
