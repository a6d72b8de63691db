// The Qt front end's sound output: the sound server's device, whose callbacks come through Qt's event loop.
#pragma once

#include "platform/linux/sound/PulseDevice.h"

#include <QObject>

namespace voxmate::qt
{

/// Constructed and used on the user-interface thread. Uses no resources until it looks for the server.
class QtAudioOutput final : public speech::AudioOutput
{
public:
    QtAudioOutput();

    /// Starts looking for the sound server and returns at once, so that the answer of a slow server is there by the
    /// time something is to be spoken.
    void Look() { device_.Look(); }

    AudioStatus Check() override { return device_.Check(); }
    bool Ready() override { return device_.Ready(); }
    std::unique_ptr<speech::AudioStream> Open(int samplesPerSecond, std::shared_ptr<speech::SampleSource> source,
                                              std::function<void()> drained, std::function<void()> failed) override;
    void Post(std::function<void()> action) override;
    void PostAfter(int milliseconds, std::function<void()> action) override;

private:
    // Owner of the posted actions: they are cancelled with it. It outlives the device, which posts them.
    QObject context_;
    speech::PulseDevice device_;
};

} // namespace voxmate::qt
