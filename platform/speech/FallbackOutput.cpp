#include "platform/speech/FallbackOutput.h"

#include <utility>

namespace voxmate::speech
{

AudioOutput::State FallbackOutput::Check()
{
    return FirstServes() ? State::Available : second_.Check();
}

std::unique_ptr<AudioStream> FallbackOutput::Open(int samplesPerSecond, std::shared_ptr<SampleSource> source,
                                                  std::function<void()> drained, std::function<void()> failed)
{
    if (FirstServes()) {
        auto stream = first_.Open(samplesPerSecond, source, drained, [this, failed] {
            gaveOut_ = true;
            failed();
        });
        if (stream)
            return stream;
    }
    return second_.Open(samplesPerSecond, std::move(source), std::move(drained), std::move(failed));
}

} // namespace voxmate::speech
