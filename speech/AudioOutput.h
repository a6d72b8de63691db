// The sound output device: mono 16-bit samples in, heard as they come.
#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <memory>
#include <span>

namespace voxmate::speech
{

/// Where the stream's samples come from. Called from the sound output's own thread; must not block.
class SampleSource
{
public:
    virtual ~SampleSource() = default;
    /// Fills up to `samples.size()` samples and returns how many; 0 with `ended` true when there will be no more, 0
    /// with `ended` false when there are none yet.
    virtual std::size_t Pull(std::span<std::int16_t> samples, bool& ended) = 0;
};

/// A stream being played; destroying it silences it within one buffer.
class AudioStream
{
public:
    virtual ~AudioStream() = default;
    /// Samples of this stream that have been heard so far, as near as the device tells (its latency taken off); 0 until
    /// the first is heard, never less than before.
    virtual std::int64_t SamplesHeard() = 0;
};

class AudioOutput
{
public:
    virtual ~AudioOutput() = default;
    enum class State { Available, NoDevice, CannotOpen, Other };
    virtual State Check() = 0;
    /// Whether a stream can be opened now; never waits for a device that may still come, where Check and Open may.
    virtual bool Ready() { return Check() == State::Available; }
    /// Opens a stream and starts pulling; returns at once, while the device may still be opening. `drained` is called
    /// once on the user-interface thread when the source has ended and its last sample has been heard, `failed` instead
    /// when the device cannot be opened after all or gives out. Either may destroy the stream. Null when there is no
    /// device.
    virtual std::unique_ptr<AudioStream> Open(int samplesPerSecond, std::shared_ptr<SampleSource> source,
                                              std::function<void()> drained, std::function<void()> failed) = 0;
    /// Runs `action` on the user-interface thread from any thread, and once after a delay on that thread.
    virtual void Post(std::function<void()> action) = 0;
    virtual void PostAfter(int milliseconds, std::function<void()> action) = 0;
};

} // namespace voxmate::speech
