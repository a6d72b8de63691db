// Two ways to the sound device, the second for when the first has none or has given out.
//
// A toolkit's sound code may not find its way back to a sound server that was restarted, or not notice one that came
// late. Another library's way then takes over, so that nobody has to start the program again to hear it.
#pragma once

#include "platform/speech/AudioOutput.h"

namespace voxmate::speech
{

class FallbackOutput final : public AudioOutput
{
public:
    /// Both must outlive it and its streams; actions are posted through the first.
    FallbackOutput(AudioOutput& first, AudioOutput& second) : first_(first), second_(second) {}

    /// Available when either is; else what the second says.
    State Check() override;
    /// Plays through the first while it is available and no stream of it has failed, through the second from then on.
    std::unique_ptr<AudioStream> Open(int samplesPerSecond, std::shared_ptr<SampleSource> source,
                                      std::function<void()> drained, std::function<void()> failed) override;
    void Post(std::function<void()> action) override { first_.Post(std::move(action)); }
    void PostAfter(int milliseconds, std::function<void()> action) override
    {
        first_.PostAfter(milliseconds, std::move(action));
    }

private:
    bool FirstServes() { return !gaveOut_ && first_.Check() == State::Available; }

    AudioOutput& first_;
    AudioOutput& second_;
    bool gaveOut_ = false;
};

} // namespace voxmate::speech
