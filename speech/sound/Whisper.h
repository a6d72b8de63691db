// Turns voiced speech into whispered speech as it streams: the shape of the mouth stays, the voice goes.
#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

namespace voxmate::speech
{

/// Linear prediction finds the resonances of every 25 ms of speech; noise is sent through them at the original
/// loudness. The output is as long as the input and in step with it.
class Whisperer
{
public:
    explicit Whisperer(int samplesPerSecond);

    /// Takes samples and appends the finished ones to `out`, which lags up to 25 ms behind the input.
    void Push(std::span<const std::int16_t> in, std::vector<std::int16_t>& out);
    /// Appends the rest and resets the whisperer for a new input.
    void Flush(std::vector<std::int16_t>& out);

private:
    void Frame();
    double Noise();

    const std::size_t hop_;
    const std::size_t order_;
    std::vector<double> window_;
    std::vector<double> in_; // two hops: the frame being analysed
    std::size_t filled_ = 0;
    std::vector<double> noise_; // as long as the frame and its run-up, and shifted along with it
    std::vector<double> sum_;   // two hops of overlapping output
    std::size_t skip_ = 0;      // output samples to drop because they lie before the first input sample
    std::size_t owed_ = 0;      // input samples not yet returned as output
    std::vector<std::int16_t> ready_;
    std::uint64_t random_ = 0x9E3779B97F4A7C15U;
};

} // namespace voxmate::speech
