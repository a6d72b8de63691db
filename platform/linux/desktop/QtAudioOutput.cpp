#include "platform/linux/desktop/QtAudioOutput.h"

#include <QTimer>

#include <utility>

namespace voxmate::qt
{

QtAudioOutput::QtAudioOutput() : device_([this](std::function<void()> action) { Post(std::move(action)); }) {}

std::unique_ptr<speech::AudioStream> QtAudioOutput::Open(int samplesPerSecond,
                                                         std::shared_ptr<speech::SampleSource> source,
                                                         std::function<void()> drained, std::function<void()> failed)
{
    return device_.Open(samplesPerSecond, std::move(source), std::move(drained), std::move(failed));
}

void QtAudioOutput::Post(std::function<void()> action)
{
    QMetaObject::invokeMethod(&context_, std::move(action), Qt::QueuedConnection);
}

void QtAudioOutput::PostAfter(int milliseconds, std::function<void()> action)
{
    QTimer::singleShot(milliseconds, Qt::PreciseTimer, &context_, std::move(action));
}

} // namespace voxmate::qt
