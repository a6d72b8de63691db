// Converts samples from one rate to another.
#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

namespace voxmate::speech
{

/// Band-limited interpolation (a sinc with a Hann window). The output lags behind the input by half the window, about a
/// millisecond; Flush delivers the rest.
class Resampler
{
public:
    /// Both rates are in samples per second and above 0. With equal rates the samples are only copied.
    Resampler(int from, int to);
    /// Appends to `out` the samples that can be computed so far.
    void Push(std::span<const std::int16_t> samples, std::vector<std::int16_t>& out);
    void Flush(std::vector<std::int16_t>& out);
    /// The output sample that corresponds to input sample `sample`.
    std::int64_t Place(std::int64_t sample) const { return sample * up_ / down_; }

private:
    void Deliver(std::vector<std::int16_t>& out);

    std::int64_t up_ = 1;                    ///< output samples for every `down_` input samples
    std::int64_t down_ = 1;                  ///< the ratio is in lowest terms
    std::size_t half_ = 0;                   ///< half the window's length, in input samples
    std::vector<std::vector<float>> phases_; ///< the weights for each position between two input samples
    std::vector<float> held_;                ///< input samples still needed
    std::int64_t first_ = 0;                 ///< number of the first held sample; those before sample 0 are silence
    std::int64_t given_ = 0;
    std::int64_t made_ = 0;
};

} // namespace voxmate::speech
