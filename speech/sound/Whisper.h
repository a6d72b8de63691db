// Turns voiced speech into whispered speech as it comes: the shape of the mouth stays, the voice goes.
#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

namespace voxmate::speech
{

/// Linear prediction finds the resonances of every 25 ms; noise is sent through them at the loudness they had. What
/// comes out is as long as what went in, and in step with it.
class Whisperer
{
public:
    explicit Whisperer(int samplesPerSecond);

    /// Takes samples and appends to `out` what is finished: up to 25 ms less than was taken so far.
    void Push(std::span<const std::int16_t> in, std::vector<std::int16_t>& out);
    /// Appends the rest; the whisperer is then as new.
    void Flush(std::vector<std::int16_t>& out);

private:
    void Frame();
    double Noise();

    const std::size_t hop_;
    const std::size_t order_;
    std::vector<double> window_;
    std::vector<double> in_; // two hops: the frame being looked at
    std::size_t filled_ = 0;
    std::vector<double> noise_; // as long as the frame and its run-up, in step with it
    std::vector<double> sum_;   // two hops of overlapping output
    std::size_t skip_ = 0;      // output that stands for nothing that went in
    std::size_t owed_ = 0;      // samples taken and not yet given back
    std::vector<std::int16_t> ready_;
    std::uint64_t random_ = 0x9E3779B97F4A7C15U;
};

} // namespace voxmate::speech
