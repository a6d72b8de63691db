// The sound output device: takes mono 16-bit samples and plays them as they come.
#pragma once

#include "platform/Agent.h"

#include <cstddef>
#include <cstdint>
#include <functional>
#include <memory>
#include <span>

namespace voxmate::speech
{

/// Supplies a stream's samples. Called from the sound output's own thread; must not block.
class SampleSource
{
public:
    virtual ~SampleSource() = default;
    /// Fills up to `samples.size()` samples and returns how many. Returns 0 with `ended` true when no more will come,
    /// and 0 with `ended` false when there are none yet.
    virtual std::size_t Pull(std::span<std::int16_t> samples, bool& ended) = 0;
};

/// A stream being played; destroying it silences it within one buffer.
class AudioStream
{
public:
    virtual ~AudioStream() = default;
    /// The number of this stream's samples heard so far, as exactly as the device reports it (its latency is
    /// subtracted). 0 until the first sample is heard; never decreases.
    virtual std::int64_t SamplesHeard() = 0;
};

class AudioOutput
{
public:
    virtual ~AudioOutput() = default;
    /// Available, NoSupport (no device), CannotOpen, or Unknown for any other state.
    virtual AudioStatus Check() = 0;
    /// Whether a stream can be opened now. Unlike Check and Open it never waits for a device that may still appear.
    virtual bool Ready() { return Check() == AudioStatus::Available; }
    /// Opens a stream and starts pulling samples. Returns at once, possibly while the device is still opening.
    /// `drained` is called once on the user-interface thread when the source has ended and its last sample has been
    /// heard; `failed` is called instead when the device cannot be opened after all or stops working. Either may
    /// destroy the stream. Null when there is no device.
    virtual std::unique_ptr<AudioStream> Open(int samplesPerSecond, std::shared_ptr<SampleSource> source,
                                              std::function<void()> drained, std::function<void()> failed) = 0;
    /// Both run `action` once on the user-interface thread, PostAfter after a delay. Post may be called from any
    /// thread.
    virtual void Post(std::function<void()> action) = 0;
    virtual void PostAfter(int milliseconds, std::function<void()> action) = 0;
};

} // namespace voxmate::speech
