// A wave file in place of speech: what is to be seen while it is heard, and its samples.
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
    /// In order of time: mouths by the loudness of each 1/25 s, the shown words and the bookmarks among them evenly
    /// over the file's length.
    std::vector<SpeechEvent> events;
};

/// Listens through the utterance's wave file, of any length. Nothing when it cannot be read or holds no samples, or
/// when `cancelled`, asked now and then, says so.
std::optional<WaveScore> ScoreWave(const Utterance& utterance, const std::function<bool()>& cancelled);

/// Delivers the samples of a wave file until the sink wants no more; false when it cannot be read.
bool StreamWave(const std::string& path, SampleSink& sink);

} // namespace voxmate::speech
