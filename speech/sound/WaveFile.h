// Recorded sounds: character sound effects from memory, and wave files that are played instead of speech.
#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <span>
#include <vector>

namespace voxmate::speech
{

struct WaveData {
    int samplesPerSecond = 0;
    std::vector<std::int16_t> samples; ///< mono: several channels are mixed into one (see MonoMix)
};

/// The format given in a wave file's header.
struct WaveFormat {
    int channels = 0;
    int samplesPerSecond = 0;
    int bits = 0; ///< per sample; 0 where the coding has no fixed number
    std::int64_t frames = 0;
};

/// The format of a wave file held in memory; nothing when it is not a wave file that can be decoded.
std::optional<WaveFormat> DescribeWave(std::span<const std::uint8_t> file);

/// The most samples that one byte of a file may stand for. The densest speech coding in wave files takes two bits a
/// sample, the densest music coding about half a bit.
inline constexpr std::size_t MostSamplesPerByte = 16;

/// The rates of recordings that are decoded, in samples per second.
inline constexpr int LowestRate = 1000;
inline constexpr int HighestRate = 384000;
/// Two days: the most seconds of a recording that are decoded or believed.
inline constexpr std::int64_t LongestRecording = 172'800;

/// Decodes a wave file held in memory: PCM of any width, floating point or another coding libsndfile knows, with up to
/// 32 channels, 1000 to 384000 samples per second, at most ten minutes. Nothing when it is no such file or holds no
/// samples.
std::optional<WaveData> DecodeWave(std::span<const std::uint8_t> file);

/// Decodes a wave file as DecodeWave does, or a recording of another kind (see WaveInput::OfRecording), block by block.
/// A wave file may be of any length; of the others, which can pack much silence into few bytes, two days are read at
/// most.
class WaveReader
{
public:
    virtual ~WaveReader() = default;
    /// Null when the bytes, which must outlive the reader, are not such a recording.
    static std::unique_ptr<WaveReader> Of(std::span<const std::uint8_t> bytes);
    virtual int SamplesPerSecond() const = 0;
    /// How many samples there are by the header, which may be wrong; two days' at most.
    virtual std::int64_t Length() const = 0;
    /// The next mono samples; empty at the end. Valid until the next call.
    virtual std::span<const std::int16_t> Next() = 0;
};

} // namespace voxmate::speech
