// A wave file or another recording played in place of speech: its events and its samples.
#pragma once

#include "speech/Engine.h"
#include "speech/sound/Recording.h"

#include <cstdint>
#include <memory>
#include <vector>

namespace voxmate::speech
{

/// Reads the utterance's recording a stretch ahead, so that one of hours begins as soon as a short one. Its events are
/// a mouth for the loudness of each 1/25 s, and the shown words, with the bookmarks among them, spread evenly over its
/// length: of one longer than a stretch, over the length that its header tells.
class WaveSpeech
{
public:
    /// How much is read at a time, in seconds. The mouth's movements are in proportion to the loudness of what has been
    /// read so far.
    static constexpr int SecondsAhead = 20;

    /// Reads the first stretch. `wanted` is asked while the recording makes it wait.
    explicit WaveSpeech(
        const Utterance& utterance, Wanted wanted = [] { return true; });

    /// The samples' rate; 0 when the recording cannot be read or holds no samples.
    int SamplesPerSecond() const { return stretch_.empty() ? 0 : rate_; }

    /// Delivers everything, once, until the sink wants no more.
    void Deliver(SampleSink& sink);

private:
    void ReadStretch();
    void TellEvents(SampleSink& sink);

    std::unique_ptr<WaveReader> reader_;
    int rate_ = 0;
    std::int64_t step_ = 1;             ///< samples in 1/25 s
    std::vector<std::int16_t> stretch_; ///< a whole number of steps, unless it is the last one
    std::vector<std::int16_t> behind_;  ///< read already, but behind the stretch
    bool ended_ = false;                ///< the recording holds no more than these two
    std::int64_t at_ = 0;               ///< number of the stretch's first sample
    std::vector<double> levels_;        ///< loudness of each step, of the last minutes
    int mouth_ = -1;
    struct Mark {
        SpeechEvent event;
        std::int64_t word = 0;
    };
    std::vector<Mark> marks_; ///< what words and bookmarks are still to be told, in order
    std::size_t told_ = 0;
    std::int64_t words_ = 0;
};

} // namespace voxmate::speech
