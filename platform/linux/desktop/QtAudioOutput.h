// The sound output of the Qt front end: the sound server's device, with Qt's event loop as the way back.
#pragma once

#include "platform/linux/sound/PulseDevice.h"

#include <QObject>

namespace voxmate::qt
{

/// Made and used on the user-interface thread. Costs nothing until it looks for the server.
class QtAudioOutput final : public speech::AudioOutput
{
public:
    QtAudioOutput();

    /// Begins to look for the sound server and returns at once, so that a server which is slow to answer is known by
    /// the time somebody wants to speak.
    void Look() { device_.Look(); }

    State Check() override { return device_.Check(); }
    bool Ready() override { return device_.Ready(); }
    std::unique_ptr<speech::AudioStream> Open(int samplesPerSecond, std::shared_ptr<speech::SampleSource> source,
                                              std::function<void()> drained, std::function<void()> failed) override;
    void Post(std::function<void()> action) override;
    void PostAfter(int milliseconds, std::function<void()> action) override;

private:
    QObject context_; // actions that are still to run go with it; it outlives the device, which posts them
    speech::PulseDevice device_;
};

} // namespace voxmate::qt
