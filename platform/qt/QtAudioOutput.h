// The sound output of the Qt front end: Qt Multimedia's sink, with Qt's event loop as the way back.
//
// Qt's sound code waits for the sound server in places; it is therefore used in a thread of its own only, which nobody
// ever waits for without a limit.
#pragma once

#include "platform/speech/AudioOutput.h"

#include <QObject>

class QThread;

namespace voxmate::qt
{

/// Made and used on the user-interface thread. Costs nothing until the first Check or Open.
class QtAudioOutput final : public speech::AudioOutput
{
public:
    QtAudioOutput();
    ~QtAudioOutput() override;

    /// As AudioOutput says. The first call waits up to 300 ms for the devices' list; Other when it does not come in
    /// that time. Later calls answer at once from what the sound thread found last.
    State Check() override;
    std::unique_ptr<speech::AudioStream> Open(int samplesPerSecond, std::shared_ptr<speech::SampleSource> source,
                                              std::function<void()> drained, std::function<void()> failed) override;
    void Post(std::function<void()> action) override;
    void PostAfter(int milliseconds, std::function<void()> action) override;

private:
    struct Known;
    class Samples;
    struct Playing;
    class Worker;
    class Stream;

    void Begin();
    void Watch(const std::shared_ptr<Playing>& playing);

    QObject context_; // actions are posted to it and go with it
    std::shared_ptr<Known> known_;
    QThread* thread_ = nullptr; // left to itself when it does not end in time
    Worker* worker_ = nullptr;
    bool asked_ = false;
};

} // namespace voxmate::qt
