// A sound output for a machine without a sound device.
#pragma once

#include "speech/AudioOutput.h"

namespace voxmate::bench
{

class NoSound : public speech::AudioOutput
{
public:
    AudioStatus Check() override { return AudioStatus::NoSupport; }
    std::unique_ptr<speech::AudioStream> Open(int, std::shared_ptr<speech::SampleSource>, std::function<void()>,
                                              std::function<void()>) override
    {
        return nullptr;
    }
    void Post(std::function<void()>) override {}
    void PostAfter(int, std::function<void()>) override {}
};

} // namespace voxmate::bench
