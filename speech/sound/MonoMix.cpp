#include "speech/sound/MonoMix.h"

#include <algorithm>
#include <cmath>

namespace voxmate::speech
{

namespace
{

/// A channel counts as silent below this share of the loudest one's energy: crosstalk is 40 dB quieter.
constexpr double Silence = 1e-4;
/// Two channels whose correlation falls below the first value are inverted copies of each other; they stay so until it
/// rises above the second. Sound that is meant to be wide has a correlation near 0.
constexpr double Opposite = -0.9;
constexpr double NotOpposite = -0.5;

} // namespace

MonoMix::MonoMix(std::size_t channels)
    : channels_(channels), heard_(channels), gains_(channels, 0), wanted_(channels, 1 / static_cast<float>(channels))
{
}

void MonoMix::Decide(std::span<const float> frames)
{
    std::vector<double> energies(channels_, 0);
    for (std::size_t at = 0; at < frames.size(); ++at)
        energies[at % channels_] += static_cast<double>(frames[at]) * static_cast<double>(frames[at]);
    const auto loudest =
        static_cast<std::size_t>(std::max_element(energies.begin(), energies.end()) - energies.begin());
    if (!(energies[loudest] > 0) || !std::isfinite(energies[loudest]))
        return;
    for (std::size_t channel = 0; channel < channels_; ++channel)
        heard_[channel] = heard_[channel] || energies[channel] > Silence * energies[loudest];
    const auto count =
        channels_ <= 2 ? channels_ : static_cast<std::size_t>(std::count(heard_.begin(), heard_.end(), true));
    for (std::size_t channel = 0; channel < channels_; ++channel) {
        double product = 0;
        for (std::size_t at = 0; at < frames.size(); at += channels_)
            product += static_cast<double>(frames[at + channel]) * static_cast<double>(frames[at + loudest]);
        const double correlation = product / std::sqrt(energies[channel] * energies[loudest]);
        const bool turned = wanted_[channel] * wanted_[loudest] < 0;
        // The correlation of a silent channel is not a number, and the channel stays as it is.
        const bool turn = turned ? !(correlation > NotOpposite) : correlation < Opposite;
        const float sign = std::copysign(1.0F, wanted_[loudest]) * (turn ? -1.0F : 1.0F);
        wanted_[channel] = sign / static_cast<float>(std::max<std::size_t>(count, 1));
    }
}

std::span<const float> MonoMix::Mix(std::span<const float> frames)
{
    const std::size_t count = frames.size() / channels_;
    if (channels_ > 1)
        Decide(frames.first(count * channels_));
    // After silence there is no need to fade in.
    if (silent_)
        gains_ = wanted_;
    silent_ = silent_ && std::find(heard_.begin(), heard_.end(), true) == heard_.end();
    mixed_.assign(count, 0);
    for (std::size_t channel = 0; channel < channels_; ++channel) {
        const float step = (wanted_[channel] - gains_[channel]) / static_cast<float>(std::max<std::size_t>(count, 1));
        for (std::size_t frame = 0; frame < count; ++frame)
            mixed_[frame] += frames[frame * channels_ + channel] * (gains_[channel] + step * static_cast<float>(frame));
    }
    gains_ = wanted_;
    return mixed_;
}

} // namespace voxmate::speech
