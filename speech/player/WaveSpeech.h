// A wave file played in place of speech: its events and its samples.
#pragma once

#include "speech/Engine.h"

#include <functional>
#include <optional>
#include <string>
#include <vector>

namespace voxmate::speech
{

struct WaveScore {
    int samplesPerSecond = 0;
    /// In order of time: a mouth for the loudness of each 1/25 s, and the shown words, with the bookmarks among them,
    /// spread evenly over the file's length.
    std::vector<SpeechEvent> events;
};

/// Analyses the utterance's whole wave file, of any length. Nothing when it cannot be read or holds no samples, or when
/// `cancelled`, which is polled, returns true.
std::optional<WaveScore> ScoreWave(const Utterance& utterance, const std::function<bool()>& cancelled);

/// Delivers the samples of a wave file until the sink wants no more; false when it cannot be read.
bool StreamWave(const std::string& path, SampleSink& sink);

} // namespace voxmate::speech
