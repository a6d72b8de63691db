// One utterance: carries its samples from the engine (worker thread) through a bounded buffer to the sound output (its
// own thread), and its events to the user-interface thread.
#pragma once

#include "speech/AudioOutput.h"
#include "speech/Engine.h"

#include <condition_variable>
#include <cstddef>
#include <cstdint>
#include <deque>
#include <mutex>
#include <optional>
#include <vector>

namespace voxmate::speech
{

class SpeechJob final : public SampleSink, public SampleSource
{
public:
    /// How many seconds the engine may be ahead of the listener.
    static constexpr int SecondsAhead = 2;

    // Worker thread.

    /// Must be called once before the first sample.
    void SetRate(int samplesPerSecond);
    /// Blocks while the buffer is full; false when the job has been cancelled.
    bool Samples(std::span<const std::int16_t> samples) override;
    void Event(const SpeechEvent& event) override;
    bool Wanted() const override { return !Cancelled(); }
    /// Marks the end of the samples; `ok` is false when the engine failed.
    void Finish(bool ok);

    // Sound output's thread.

    std::size_t Pull(std::span<std::int16_t> samples, bool& ended) override;

    // User-interface thread.

    void Cancel();
    bool Cancelled() const;
    bool Failed() const;
    /// True once the sound output has taken a sample.
    bool Pulled() const;
    /// Removes and returns the next event if it lies before sample `heard`.
    std::optional<SpeechEvent> TakeEvent(std::int64_t heard);
    /// The sample of the next event, if there is one yet.
    std::optional<std::int64_t> NextEventAt() const;

private:
    mutable std::mutex mutex_;
    std::condition_variable room_;
    std::vector<std::int16_t> ring_;
    std::size_t first_ = 0;
    std::size_t count_ = 0;
    std::deque<SpeechEvent> events_;
    bool finished_ = false;
    bool ok_ = true;
    bool cancelled_ = false;
    bool pulled_ = false;
};

} // namespace voxmate::speech
