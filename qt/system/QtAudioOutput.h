// The Qt front end's sound output: a system's own device, whose callbacks come through Qt's event loop.
#pragma once

#include "speech/AudioOutput.h"

#include <QMetaObject>
#include <QObject>
#include <QTimer>

#include <functional>
#include <memory>
#include <utility>

namespace voxmate::qt
{

/// Constructed and used on the user-interface thread. Uses no resources until it looks for the device. `Device` is made
/// with a function that posts actions, and has Look, Check, Ready and Open as below.
template <class Device>
class QtAudioOutput final : public speech::AudioOutput
{
public:
    QtAudioOutput() : device_([this](std::function<void()> action) { Post(std::move(action)); }) {}

    /// Starts looking for the sound server and returns at once, so that the answer of a slow server is there by the
    /// time something is to be spoken.
    void Look() { device_.Look(); }

    AudioStatus Check() override { return device_.Check(); }
    bool Ready() override { return device_.Ready(); }
    std::unique_ptr<speech::AudioStream> Open(int samplesPerSecond, std::shared_ptr<speech::SampleSource> source,
                                              std::function<void()> drained, std::function<void()> failed) override
    {
        return device_.Open(samplesPerSecond, std::move(source), std::move(drained), std::move(failed));
    }
    void Post(std::function<void()> action) override
    {
        QMetaObject::invokeMethod(&context_, std::move(action), Qt::QueuedConnection);
    }
    void PostAfter(int milliseconds, std::function<void()> action) override
    {
        QTimer::singleShot(milliseconds, Qt::PreciseTimer, &context_, std::move(action));
    }

private:
    // Owner of the posted actions: they are cancelled with it. It outlives the device, which posts them.
    QObject context_;
    Device device_;
};

} // namespace voxmate::qt
