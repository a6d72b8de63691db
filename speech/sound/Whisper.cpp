#include "speech/sound/Whisper.h"

#include <algorithm>
#include <cmath>
#include <numbers>

namespace voxmate::speech
{

namespace
{

// A whisper has weaker low tones than the voice. The spectrum is lifted by a first difference before it is modelled,
// and the lift is kept.
constexpr double Lift = 0.95;
// The run-up that lets the filter settle before a frame, in samples.
constexpr std::size_t RunUp = 128;
// A whisper at the same root mean square sounds as loud as the voice it replaces; a little less keeps peaks from
// clipping.
constexpr double Level = 0.9;

} // namespace

Whisperer::Whisperer(int samplesPerSecond)
    : hop_(static_cast<std::size_t>(samplesPerSecond) / 80),
      order_(std::min<std::size_t>(24, 2 + static_cast<std::size_t>(samplesPerSecond) / 1000)), window_(2 * hop_),
      in_(2 * hop_), noise_(2 * hop_ + RunUp), sum_(2 * hop_)
{
    for (std::size_t i = 0; i < window_.size(); ++i)
        window_[i] =
            0.5 - 0.5 * std::cos(2 * std::numbers::pi * static_cast<double>(i) / static_cast<double>(window_.size()));
    for (double& sample : noise_)
        sample = Noise();
    // The first half of the first frame lies before the first sample.
    filled_ = hop_;
    skip_ = hop_;
}

double Whisperer::Noise()
{
    // xorshift64*: evenly spread over -1 to 1, the same in every run.
    random_ ^= random_ >> 12;
    random_ ^= random_ << 25;
    random_ ^= random_ >> 27;
    const std::uint64_t bits = random_ * 0x2545F4914F6CDD1DU;
    return static_cast<double>(bits >> 11) * (2.0 / 9007199254740992.0) - 1.0;
}

void Whisperer::Push(std::span<const std::int16_t> in, std::vector<std::int16_t>& out)
{
    owed_ += in.size();
    for (const std::int16_t sample : in) {
        in_[filled_++] = sample;
        if (filled_ == in_.size())
            Frame();
    }
    out.insert(out.end(), ready_.begin(), ready_.end());
    owed_ -= ready_.size();
    ready_.clear();
}

void Whisperer::Flush(std::vector<std::int16_t>& out)
{
    const std::vector<std::int16_t> silence(hop_);
    const std::size_t rest = owed_;
    const std::size_t before = out.size();
    while (out.size() - before < rest)
        Push(silence, out);
    out.resize(before + rest);
    owed_ = 0;
    filled_ = hop_;
    skip_ = hop_;
    std::fill(in_.begin(), in_.end(), 0.0);
    std::fill(sum_.begin(), sum_.end(), 0.0);
}

void Whisperer::Frame()
{
    const std::size_t size = in_.size();
    std::vector<double> lifted(size);
    double loudness = 0;
    double weight = 0;
    for (std::size_t i = 0; i < size; ++i) {
        lifted[i] = (in_[i] - (i ? Lift * in_[i - 1] : 0)) * window_[i];
        loudness += in_[i] * in_[i] * window_[i];
        weight += window_[i];
    }
    loudness = std::sqrt(loudness / weight);

    std::vector<double> filter(order_ + 1);
    std::vector<double> correlation(order_ + 1);
    for (std::size_t lag = 0; lag <= order_; ++lag)
        for (std::size_t i = lag; i < size; ++i)
            correlation[lag] += lifted[i] * lifted[i - lag];
    // Widens the resonances by some 60 Hz and keeps the solution stable: narrow ones would ring like a voice.
    const double rate = static_cast<double>(hop_) * 80;
    for (std::size_t lag = 1; lag <= order_; ++lag) {
        const double turn = 2 * std::numbers::pi * 60 * static_cast<double>(lag) / rate;
        correlation[lag] *= std::exp(-0.5 * turn * turn);
    }
    correlation[0] = correlation[0] * 1.0001 + 1;

    // Levinson and Durbin's recursion.
    filter[0] = 1;
    double error = correlation[0];
    std::vector<double> previous(order_ + 1);
    for (std::size_t m = 1; m <= order_; ++m) {
        double reflection = correlation[m];
        for (std::size_t i = 1; i < m; ++i)
            reflection += filter[i] * correlation[m - i];
        reflection = -reflection / error;
        previous = filter;
        for (std::size_t i = 1; i < m; ++i)
            filter[i] = previous[i] + reflection * previous[m - i];
        filter[m] = reflection;
        error *= 1 - reflection * reflection;
    }

    std::vector<double> shaped(size + RunUp);
    double energy = 0;
    for (std::size_t i = 0; i < shaped.size(); ++i) {
        double value = noise_[i];
        for (std::size_t k = 1; k <= std::min(order_, i); ++k)
            value -= filter[k] * shaped[i - k];
        shaped[i] = value;
        if (i >= RunUp)
            energy += value * value;
    }
    const double gain = energy > 0 ? Level * loudness / std::sqrt(energy / static_cast<double>(size)) : 0;
    for (std::size_t i = 0; i < size; ++i)
        sum_[i] += gain * shaped[RunUp + i] * window_[i];

    for (std::size_t i = 0; i < hop_; ++i) {
        if (skip_ > 0) {
            --skip_;
            continue;
        }
        ready_.push_back(static_cast<std::int16_t>(std::clamp(sum_[i], -32767.0, 32767.0)));
    }
    std::copy(sum_.begin() + static_cast<std::ptrdiff_t>(hop_), sum_.end(), sum_.begin());
    std::fill(sum_.end() - static_cast<std::ptrdiff_t>(hop_), sum_.end(), 0.0);
    std::copy(in_.begin() + static_cast<std::ptrdiff_t>(hop_), in_.end(), in_.begin());
    filled_ = hop_;
    std::copy(noise_.begin() + static_cast<std::ptrdiff_t>(hop_), noise_.end(), noise_.begin());
    for (std::size_t i = noise_.size() - hop_; i < noise_.size(); ++i)
        noise_[i] = Noise();
}

} // namespace voxmate::speech
