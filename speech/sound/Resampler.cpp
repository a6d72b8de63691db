#include "speech/sound/Resampler.h"

#include <algorithm>
#include <cmath>
#include <numbers>
#include <numeric>

namespace voxmate::speech
{

namespace
{

// Zero crossings of the sinc on each side: enough to keep aliases 50 dB below the signal.
constexpr double Crossings = 16;

double Sinc(double x)
{
    return x == 0 ? 1 : std::sin(std::numbers::pi * x) / (std::numbers::pi * x);
}

} // namespace

Resampler::Resampler(int from, int to)
{
    const std::int64_t common = std::gcd(std::int64_t{from}, std::int64_t{to});
    up_ = to / common;
    down_ = from / common;
    if (up_ == down_)
        return;
    // When the rate falls, everything above half the lower rate must be removed.
    const double band = std::min(1.0, static_cast<double>(up_) / static_cast<double>(down_));
    const double reach = Crossings / band;
    half_ = static_cast<std::size_t>(std::ceil(reach));
    phases_.resize(static_cast<std::size_t>(up_));
    for (std::size_t phase = 0; phase < phases_.size(); ++phase) {
        const double offset = static_cast<double>(phase) / static_cast<double>(up_);
        for (std::size_t i = 0; i < 2 * half_; ++i) {
            const double x = static_cast<double>(i) - static_cast<double>(half_ - 1) - offset;
            const double window = std::abs(x) < reach ? 0.5 + 0.5 * std::cos(std::numbers::pi * x / reach) : 0;
            phases_[phase].push_back(static_cast<float>(band * Sinc(band * x) * window));
        }
    }
    held_.assign(half_ - 1, 0);
    first_ = 1 - static_cast<std::int64_t>(half_);
}

void Resampler::Push(std::span<const std::int16_t> samples, std::vector<std::int16_t>& out)
{
    if (phases_.empty()) {
        out.insert(out.end(), samples.begin(), samples.end());
        return;
    }
    held_.insert(held_.end(), samples.begin(), samples.end());
    given_ += static_cast<std::int64_t>(samples.size());
    Deliver(out);
}

void Resampler::Flush(std::vector<std::int16_t>& out)
{
    if (phases_.empty())
        return;
    const std::int64_t all = (given_ * up_ + down_ - 1) / down_;
    held_.insert(held_.end(), 2 * half_, 0);
    std::vector<std::int16_t> rest;
    Deliver(rest);
    const std::size_t wanted =
        static_cast<std::size_t>(std::max<std::int64_t>(0, all - (made_ - static_cast<std::int64_t>(rest.size()))));
    rest.resize(std::min(rest.size(), wanted));
    out.insert(out.end(), rest.begin(), rest.end());
}

void Resampler::Deliver(std::vector<std::int16_t>& out)
{
    const std::int64_t end = first_ + static_cast<std::int64_t>(held_.size());
    const auto half = static_cast<std::int64_t>(half_);
    while (true) {
        const std::int64_t left = made_ * down_ / up_;
        if (left + half >= end)
            break;
        const std::vector<float>& weights = phases_[static_cast<std::size_t>(made_ * down_ % up_)];
        const float* sample = held_.data() + (left - half + 1 - first_);
        const float sum = std::inner_product(weights.begin(), weights.end(), sample, 0.0F);
        out.push_back(static_cast<std::int16_t>(std::clamp(std::lround(sum), -32767L, 32767L)));
        ++made_;
    }
    const std::int64_t needed = made_ * down_ / up_ - half + 1;
    if (needed > first_) {
        held_.erase(held_.begin(), held_.begin() + (needed - first_));
        first_ = needed;
    }
}

} // namespace voxmate::speech
