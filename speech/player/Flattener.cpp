#include "speech/player/Flattener.h"

#include "speech/sound/SpeechMeasure.h"

#include <algorithm>

namespace voxmate::speech
{

namespace
{

// A moment is heard with the factor that was set when sonic had gathered enough after it: two periods of 65 Hz.
constexpr std::size_t Delay = 2;
// What is farther from the wanted pitch than an octave has been measured wrong.
constexpr double MostBend = 2;

} // namespace

bool Flattener::Samples(std::span<const std::int16_t> samples, Shaper& shaper)
{
    const measure::PitchTrack track = measure::TrackPitch(samples, rate_);
    const auto frame = static_cast<std::size_t>(rate_ / 100);
    std::size_t voiced = 0;
    for (std::size_t at = 0; at < samples.size(); at += frame) {
        // Where there is no pitch it stays as it was.
        double factor = factors_.empty() ? 1 : factors_.back();
        while (voiced < track.frames.size() && track.frames[voiced] * frame <= at) {
            const double wanted = hertz_ / track.hertz[voiced++];
            if (wanted < MostBend && wanted > 1 / MostBend)
                factor = wanted;
        }
        factors_.push_back(factor);
        if (factors_.size() > Delay + 1)
            factors_.pop_front();
        shaper.Bend(factors_.front());
        if (!shaper.Samples(samples.subspan(at, std::min(frame, samples.size() - at))))
            return false;
    }
    return true;
}

} // namespace voxmate::speech
