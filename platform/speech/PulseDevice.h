// Sound output through the desktop's sound server (PulseAudio, or PipeWire speaking its protocol).
//
// The server's client library is used directly: it says how long a sample takes to be heard, which lip-sync needs, and
// a server that refuses, hangs or dies is seen and never waited for.
#pragma once

#include "platform/speech/AudioOutput.h"

#include <chrono>
#include <condition_variable>
#include <functional>
#include <memory>
#include <mutex>
#include <utility>
#include <vector>

struct pa_context;
struct pa_operation;
struct pa_sink_info;
struct pa_threaded_mainloop;

namespace voxmate::speech
{

class PulseDevice
{
public:
    /// `post` runs an action on the user-interface thread from any thread; it must outlive the device.
    explicit PulseDevice(std::function<void(std::function<void()>)> post);
    ~PulseDevice();
    PulseDevice(const PulseDevice&) = delete;
    PulseDevice& operator=(const PulseDevice&) = delete;

    /// As AudioOutput says. The first call connects to the server and waits up to 300 ms for it; Other when it does not
    /// answer in that time. Later calls answer at once from what the server reports.
    AudioOutput::State Check();
    std::unique_ptr<AudioStream> Open(int samplesPerSecond, std::shared_ptr<SampleSource> source,
                                      std::function<void()> drained, std::function<void()> failed);

private:
    class Lock;
    struct Playing;
    class Stream;
    using PlayingPtr = std::shared_ptr<Playing>;

    enum class Server { Unknown, Absent, WithoutSink, Ready };

    void Connect();
    void Disconnect();
    void SetServer(Server server);
    void AskForSink();
    void ContextChanged();
    void SinkKnown(const pa_sink_info* sink, int end);
    void Begin(const PlayingPtr& playing);
    void StreamChanged(const PlayingPtr& playing);
    void Feed(const PlayingPtr& playing);
    void Watch(const PlayingPtr& playing);
    void Drained(const PlayingPtr& playing);
    void Fail(const PlayingPtr& playing);
    void Close(const PlayingPtr& playing);

    const std::function<void(std::function<void()>)> post_;

    // Guarded by the library's own lock.
    pa_threaded_mainloop* loop_ = nullptr;
    pa_context* context_ = nullptr;
    bool sinkFound_ = false;
    std::vector<PlayingPtr> playing_;

    std::mutex mutex_;
    std::condition_variable known_;
    Server server_ = Server::Unknown;
    bool openFailed_ = false;
};

/// The device as an AudioOutput; actions are posted through another one's event loop, which must outlive it.
class PulseOutput final : public AudioOutput
{
public:
    explicit PulseOutput(AudioOutput& loop)
        : loop_(loop), device_([&loop](std::function<void()> action) { loop.Post(std::move(action)); })
    {
    }
    State Check() override { return device_.Check(); }
    std::unique_ptr<AudioStream> Open(int samplesPerSecond, std::shared_ptr<SampleSource> source,
                                      std::function<void()> drained, std::function<void()> failed) override
    {
        return device_.Open(samplesPerSecond, std::move(source), std::move(drained), std::move(failed));
    }
    void Post(std::function<void()> action) override { loop_.Post(std::move(action)); }
    void PostAfter(int milliseconds, std::function<void()> action) override
    {
        loop_.PostAfter(milliseconds, std::move(action));
    }

private:
    AudioOutput& loop_;
    PulseDevice device_;
};

} // namespace voxmate::speech
