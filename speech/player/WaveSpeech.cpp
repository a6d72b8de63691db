#include "speech/player/WaveSpeech.h"

#include "speech/sound/Mouths.h"

#include <algorithm>
#include <cmath>
#include <utility>

namespace voxmate::speech
{

namespace
{

// Steps per second at which the mouth follows the loudness.
constexpr int kSteps = 25;
// Below this level (1/1000 of full scale) a recording is silent.
constexpr double kSilence = 33;

// How many levels are kept, and how many of them go when there are more: ten minutes and twenty.
constexpr std::ptrdiff_t kForgotten = std::ptrdiff_t{600} * kSteps;
constexpr std::size_t kMostLevels = 3 * std::size_t{600} * kSteps;

double RootMeanSquare(std::span<const std::int16_t> samples)
{
    double sum = 0;
    for (const std::int16_t sample : samples)
        sum += static_cast<double>(sample) * sample;
    return std::sqrt(sum / static_cast<double>(samples.size()));
}

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

WaveSpeech::WaveSpeech(const Utterance& utterance, Wanted wanted)
    : reader_(OpenRecording(utterance.waveFile, std::move(wanted))), words_(utterance.shownWords)
{
    if (!reader_)
        return;
    rate_ = reader_->SamplesPerSecond();
    step_ = std::max(rate_ / kSteps, 1);
    // A bookmark comes before its word.
    for (const Segment& segment : utterance.segments)
        if (segment.kind == Segment::Kind::Bookmark)
            marks_.push_back({{SpeechEvent::Kind::Bookmark, 0, segment.bookmark}, segment.firstWord});
    for (int word = 0; word < utterance.shownWords; ++word)
        marks_.push_back({{SpeechEvent::Kind::Word, 0, word}, word});
    std::ranges::stable_sort(marks_, {}, &Mark::word);
    ReadStretch();
}

void WaveSpeech::ReadStretch()
{
    const std::size_t length = static_cast<std::size_t>(step_) * kSteps * SecondsAhead;
    stretch_.swap(behind_);
    behind_.clear();
    while (!ended_ && stretch_.size() <= length) {
        const std::span<const std::int16_t> samples = reader_->Next();
        ended_ = samples.empty();
        stretch_.insert(stretch_.end(), samples.begin(), samples.end());
    }
    if (stretch_.size() > length) {
        const auto end = stretch_.begin() + static_cast<std::ptrdiff_t>(length);
        behind_.assign(end, stretch_.end());
        stretch_.erase(end, stretch_.end());
    }
}

void WaveSpeech::Deliver(SampleSink& sink)
{
    for (; !stretch_.empty(); ReadStretch()) {
        TellEvents(sink);
        if (!sink.Samples(stretch_))
            return;
        at_ += static_cast<std::int64_t>(stretch_.size());
    }
}

void WaveSpeech::TellEvents(SampleSink& sink)
{
    std::vector<SpeechEvent> events;
    const std::int64_t end = at_ + static_cast<std::int64_t>(stretch_.size());
    const bool isLast = ended_ && behind_.empty();
    const std::int64_t length = isLast ? end : std::max(end, reader_->Length());
    for (; told_ < marks_.size(); ++told_) {
        const Mark& mark = marks_[told_];
        const std::int64_t place = words_ > 0 ? length * std::min(mark.word, words_) / words_ : 0;
        if (place >= end && !isLast)
            break;
        events.push_back(mark.event);
        events.back().sample = std::max(place, at_);
    }
    const auto known = static_cast<std::ptrdiff_t>(levels_.size());
    const std::span<const std::int16_t> samples(stretch_);
    for (std::size_t i = 0; i < samples.size(); i += static_cast<std::size_t>(step_))
        levels_.push_back(RootMeanSquare(samples.subspan(i, std::min(samples.size() - i, std::size_t(step_)))));
    const double loudest = LoudestOf(levels_);
    std::int64_t at = at_;
    for (auto level = levels_.begin() + known; level != levels_.end(); ++level, at += step_)
        if (const int next = MouthOfLoudness(*level, loudest); next != mouth_) {
            events.push_back({SpeechEvent::Kind::Mouth, at, next});
            mouth_ = next;
        }
    if (levels_.size() > kMostLevels)
        levels_.erase(levels_.begin(), levels_.begin() + kForgotten);
    std::ranges::stable_sort(events, {}, &SpeechEvent::sample);
    for (const SpeechEvent& event : events)
        sink.Event(event);
}

} // namespace voxmate::speech
