// Measures what is heard in a piece of speech: its fundamental frequency, its voiced share, its length and its
// loudness. Used to calibrate speech engines and to test them, and where a voice is measured when it is loaded.
#pragma once

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

namespace voxmate::speech::measure
{

/// The voiced frames of a piece of speech, one every 10 ms of sound.
struct PitchTrack {
    std::vector<double> hertz;       ///< fundamental frequency of each voiced frame
    std::vector<std::size_t> frames; ///< and its number, from 0
    std::size_t soundFrames = 0;     ///< frames that are not silent, voiced or not

    /// Median fundamental; 0 when nothing is voiced.
    double Median() const { return Quantile(0.5); }

    /// The fundamental that `share` (0 to 1) of the voiced frames do not exceed; 0 when nothing is voiced.
    double Quantile(double share) const
    {
        if (hertz.empty())
            return 0;
        std::vector<double> sorted = hertz;
        const auto nth = sorted.begin() + static_cast<std::ptrdiff_t>(share * static_cast<double>(sorted.size() - 1));
        std::nth_element(sorted.begin(), nth, sorted.end());
        return *nth;
    }

    /// The voiced share of the frames that are not silent, 0 to 1.
    double VoicedShare() const
    {
        return soundFrames ? static_cast<double>(hertz.size()) / static_cast<double>(soundFrames) : 0;
    }
};

/// Root mean square of the samples that are not silence (25 ms blocks above -50 dB of full scale), 0 to 32768.
inline double SpeechLevel(std::span<const std::int16_t> samples, int samplesPerSecond)
{
    const std::size_t block = static_cast<std::size_t>(samplesPerSecond) / 40;
    double sum = 0;
    std::size_t count = 0;
    for (std::size_t at = 0; at + block <= samples.size(); at += block) {
        double energy = 0;
        for (std::size_t i = 0; i < block; ++i)
            energy += static_cast<double>(samples[at + i]) * samples[at + i];
        if (energy < static_cast<double>(block) * 104 * 104)
            continue;
        sum += energy;
        count += block;
    }
    return count ? std::sqrt(sum / static_cast<double>(count)) : 0;
}

/// Seconds from the first to the last sample that is not silence (above -50 dB of full scale).
inline double SpeakingSeconds(std::span<const std::int16_t> samples, int samplesPerSecond)
{
    const auto sounds = [](std::int16_t sample) { return sample > 104 || sample < -104; };
    const auto first = std::find_if(samples.begin(), samples.end(), sounds);
    const auto last = std::find_if(samples.rbegin(), samples.rend(), sounds);
    if (first == samples.end())
        return 0;
    return static_cast<double>(last.base() - first) / samplesPerSecond;
}

/// The samples at which sound begins after at least 100 ms of quiet (34 dB below the loudest 5 ms), to 5 ms.
inline std::vector<std::int64_t> Onsets(std::span<const std::int16_t> samples, int samplesPerSecond)
{
    const std::size_t block = static_cast<std::size_t>(samplesPerSecond) / 200;
    std::vector<double> energies;
    for (std::size_t at = 0; at + block <= samples.size(); at += block) {
        double energy = 0;
        for (const std::int16_t sample : samples.subspan(at, block))
            energy += static_cast<double>(sample) * sample;
        energies.push_back(energy);
    }
    std::vector<std::int64_t> onsets;
    if (energies.empty())
        return onsets;
    const double quiet = *std::max_element(energies.begin(), energies.end()) * 4e-4;
    std::size_t quietBlocks = 20;
    for (std::size_t i = 0; i < energies.size(); ++i) {
        if (energies[i] <= quiet) {
            ++quietBlocks;
            continue;
        }
        if (quietBlocks >= 20)
            onsets.push_back(static_cast<std::int64_t>(i * block));
        quietBlocks = 0;
    }
    return onsets;
}

/// The YIN pitch tracker (de Cheveigné and Kawahara, 2002) from 30 to 600 Hz, threshold 0.2. Silent frames (40 dB below
/// the loudest) are left out.
inline PitchTrack TrackPitch(std::span<const std::int16_t> samples, int samplesPerSecond)
{
    // The low-pass at 900 Hz (two second-order Butterworth sections) keeps the fundamental and the harmonics that carry
    // it, and removes the higher formants, which change from one period to the next. Then one sample in two or four is
    // enough.
    std::vector<float> filtered(samples.begin(), samples.end());
    const double bend1 = std::tan(3.14159265358979 * 900 / samplesPerSecond);
    const double norm = 1 / (1 + std::sqrt(2.0) * bend1 + bend1 * bend1);
    const double b0 = bend1 * bend1 * norm;
    const double a1 = 2 * (bend1 * bend1 - 1) * norm;
    const double a2 = (1 - std::sqrt(2.0) * bend1 + bend1 * bend1) * norm;
    for (int pass = 0; pass < 2; ++pass) {
        double z1 = 0;
        double z2 = 0;
        for (float& sample : filtered) {
            const double in = sample;
            const double out = b0 * in + z1;
            z1 = 2 * b0 * in - a1 * out + z2;
            z2 = b0 * in - a2 * out;
            sample = static_cast<float>(out);
        }
    }
    const std::size_t factor = std::max<std::size_t>(1, static_cast<std::size_t>(samplesPerSecond) / 5000);
    const double rate = static_cast<double>(samplesPerSecond) / static_cast<double>(factor);
    std::vector<float> sound(samples.size() / factor);
    for (std::size_t i = 0; i < sound.size(); ++i)
        sound[i] = filtered[i * factor];

    const std::size_t shortest = static_cast<std::size_t>(rate / 600);
    const std::size_t longest = static_cast<std::size_t>(rate / 30);
    const std::size_t window = static_cast<std::size_t>(rate * 0.030);
    const std::size_t hop = static_cast<std::size_t>(rate * 0.010);
    std::vector<float> energies;
    for (std::size_t at = 0; at + window + longest <= sound.size(); at += hop) {
        float energy = 0;
        for (std::size_t i = 0; i < window; ++i)
            energy += sound[at + i] * sound[at + i];
        energies.push_back(energy);
    }
    PitchTrack track;
    if (energies.empty())
        return track;
    const float silent = *std::max_element(energies.begin(), energies.end()) * 1e-4F;

    std::vector<double> difference(longest + 1);
    for (std::size_t frame = 0; frame < energies.size(); ++frame) {
        if (energies[frame] <= silent)
            continue;
        ++track.soundFrames;
        const float* x = sound.data() + frame * hop;
        double sum = 0;
        difference[0] = 1;
        for (std::size_t lag = 1; lag <= longest; ++lag) {
            float d = 0;
            for (std::size_t i = 0; i < window; ++i)
                d += (x[i] - x[i + lag]) * (x[i] - x[i + lag]);
            sum += d;
            difference[lag] = sum > 0 ? d * static_cast<double>(lag) / sum : 1;
        }
        std::size_t lag = shortest;
        while (lag < longest && difference[lag] >= 0.2)
            ++lag;
        if (lag >= longest)
            continue;
        while (lag + 1 < longest && difference[lag + 1] < difference[lag])
            ++lag;
        const double before = difference[lag - 1];
        const double here = difference[lag];
        const double after = difference[lag + 1];
        const double bend = before - 2 * here + after;
        const double exact = static_cast<double>(lag) + (bend > 0 ? (before - after) / (2 * bend) : 0);
        track.hertz.push_back(rate / exact);
        track.frames.push_back(frame);
    }
    return track;
}

} // namespace voxmate::speech::measure
