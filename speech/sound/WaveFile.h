// Recorded sounds: character sound effects from memory, and wave files that are played instead of speech.
#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <vector>

namespace voxmate::speech
{

struct WaveData {
    int samplesPerSecond = 0;
    std::vector<std::int16_t> samples; ///< mono: several channels are averaged (see MonoMix)
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

/// The most samples that a byte of any file may stand for: the densest coding of speech that wave files know takes two
/// bits a sample, the densest of music some half a bit.
inline constexpr std::size_t MostSamplesPerByte = 16;

/// Decodes a wave file held in memory: PCM of any width, floating point or another coding libsndfile knows, any number
/// of channels, 1000 to 384000 samples per second, ten minutes at most. Nothing when it is not one or holds no samples.
std::optional<WaveData> DecodeWave(std::span<const std::uint8_t> file);

/// The same from a file; nothing when it cannot be read.
std::optional<WaveData> ReadWaveFile(const std::string& path);

/// A wave file as DecodeWave decodes it, but of any length and read block by block.
class WaveReader
{
public:
    virtual ~WaveReader() = default;
    /// Null when the file is none (but a pipe, say, for which one might wait forever) or not such a wave file.
    static std::unique_ptr<WaveReader> Open(const std::string& path);
    virtual int SamplesPerSecond() const = 0;
    /// The next samples, mono; none at the end. They hold until the next call.
    virtual std::span<const std::int16_t> Next() = 0;
};

} // namespace voxmate::speech
