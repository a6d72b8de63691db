// Samples of one rate made into samples of another.
#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

namespace voxmate::speech
{

/// Band-limited interpolation (a sinc within a Hann window). What is delivered lags behind what is given by half the
/// window, a millisecond or so; Flush delivers that rest.
class Resampler
{
public:
    /// Samples per second, both above 0. The same rate on both sides costs a copy.
    Resampler(int from, int to);
    /// Appends to `out` what can be made of the samples so far.
    void Push(std::span<const std::int16_t> samples, std::vector<std::int16_t>& out);
    void Flush(std::vector<std::int16_t>& out);
    /// Where a sample of the one rate stands in the other.
    std::int64_t Place(std::int64_t sample) const { return sample * up_ / down_; }

private:
    void Deliver(std::vector<std::int16_t>& out);

    std::int64_t up_ = 1;                    ///< that many samples come out
    std::int64_t down_ = 1;                  ///< for so many that go in
    std::size_t half_ = 0;                   ///< of the window, in samples that go in
    std::vector<std::vector<float>> phases_; ///< the window's weights at each place between two samples
    std::vector<float> held_;                ///< samples that are still needed
    std::int64_t first_ = 0;                 ///< number of the first held one; those before sample 0 are silence
    std::int64_t given_ = 0;
    std::int64_t made_ = 0;
};

} // namespace voxmate::speech
