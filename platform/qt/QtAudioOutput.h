// The sound output of the Qt front end: the sound server's device, with Qt's event loop as the way back.
#pragma once

#include "platform/speech/AudioOutput.h"
#include "platform/speech/PulseDevice.h"

#include <QObject>

namespace voxmate::qt
{

/// Made and used on the user-interface thread. Costs nothing until the first Check or Open.
class QtAudioOutput final : public speech::AudioOutput
{
public:
    QtAudioOutput();

    State Check() override { return device_.Check(); }
    std::unique_ptr<speech::AudioStream> Open(int samplesPerSecond, std::shared_ptr<speech::SampleSource> source,
                                              std::function<void()> drained, std::function<void()> failed) override;
    void Post(std::function<void()> action) override;
    void PostAfter(int milliseconds, std::function<void()> action) override;

private:
    QObject context_; // actions are posted to it and go with it
    speech::PulseDevice device_;
};

} // namespace voxmate::qt
