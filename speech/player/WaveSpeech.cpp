#include "speech/player/WaveSpeech.h"

#include "speech/sound/Mouths.h"
#include "speech/sound/WaveFile.h"

#include <algorithm>
#include <cmath>

namespace voxmate::speech
{

namespace
{

// Steps per second at which the mouth follows the loudness.
constexpr int kSteps = 25;
// Below this level (1/1000 of full scale) a recording is silent.
constexpr double kSilence = 33;

/// The root mean square of each stretch of `step` samples.
class Loudness
{
public:
    explicit Loudness(std::int64_t step) : step_(step) {}

    void Add(std::span<const std::int16_t> samples)
    {
        for (const std::int16_t sample : samples) {
            sum_ += static_cast<double>(sample) * sample;
            if (++count_ == step_)
                End();
        }
    }
    void End()
    {
        if (count_ > 0)
            levels.push_back(std::sqrt(sum_ / static_cast<double>(count_)));
        sum_ = 0;
        count_ = 0;
    }

    std::vector<double> levels;

private:
    std::int64_t step_;
    std::int64_t count_ = 0;
    double sum_ = 0;
};

/// The loudness of the recording's loud passages. A single click or cough must not make all the rest seem a whisper, so
/// one in twenty of the steps that are not silent may be louder. 0 for silence.
double LoudestOf(std::vector<double> levels)
{
    std::erase_if(levels, [](double level) { return level < kSilence; });
    if (levels.empty())
        return 0;
    const auto at = levels.begin() + static_cast<std::ptrdiff_t>((levels.size() - 1) * 19 / 20);
    std::nth_element(levels.begin(), at, levels.end());
    return *at;
}

} // namespace

std::optional<WaveScore> ScoreWave(const Utterance& utterance, const std::function<bool()>& cancelled)
{
    const auto reader = WaveReader::Open(utterance.waveFile);
    if (!reader)
        return std::nullopt;
    WaveScore score;
    score.samplesPerSecond = reader->SamplesPerSecond();
    const std::int64_t step = std::max(score.samplesPerSecond / kSteps, 1);
    Loudness loudness(step);
    std::int64_t length = 0;
    for (auto samples = reader->Next(); !samples.empty(); samples = reader->Next()) {
        if (cancelled())
            return std::nullopt;
        length += static_cast<std::int64_t>(samples.size());
        loudness.Add(samples);
    }
    loudness.End();
    if (length == 0)
        return std::nullopt;

    const std::int64_t words = utterance.shownWords;
    const auto place = [&](std::int64_t word) { return words > 0 ? length * std::min(word, words) / words : 0; };
    // Of events at the same place the bookmark comes first, since it stands before its word.
    for (const Segment& segment : utterance.segments)
        if (segment.kind == Segment::Kind::Bookmark)
            score.events.push_back({SpeechEvent::Kind::Bookmark, place(segment.firstWord), segment.bookmark});
    for (int word = 0; word < utterance.shownWords; ++word)
        score.events.push_back({SpeechEvent::Kind::Word, place(word), word});
    const double loudest = LoudestOf(loudness.levels);
    int mouth = -1;
    std::int64_t at = 0;
    for (const double level : loudness.levels) {
        if (const int next = MouthOfLoudness(level, loudest); next != mouth) {
            score.events.push_back({SpeechEvent::Kind::Mouth, at, next});
            mouth = next;
        }
        at += step;
    }
    std::stable_sort(score.events.begin(), score.events.end(),
                     [](const SpeechEvent& a, const SpeechEvent& b) { return a.sample < b.sample; });
    return score;
}

bool StreamWave(const std::string& path, SampleSink& sink)
{
    const auto reader = WaveReader::Open(path);
    if (!reader)
        return false;
    for (auto samples = reader->Next(); !samples.empty(); samples = reader->Next())
        if (!sink.Samples(samples))
            break;
    return true;
}

} // namespace voxmate::speech
