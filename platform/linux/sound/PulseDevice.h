// Sound output through the desktop's sound server (PulseAudio, or PipeWire speaking its protocol).
//
// The server's client library is used directly: it reports how long a sample takes to be heard, which lip-sync needs,
// and a server that refuses, hangs or dies is noticed without waiting for it.
#pragma once

#include "speech/AudioOutput.h"

#include <chrono>
#include <condition_variable>
#include <functional>
#include <memory>
#include <mutex>
#include <optional>
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
    /// `post` runs an action on the user-interface thread; it is called from any thread and must outlive the device.
    explicit PulseDevice(std::function<void(std::function<void()>)> post);
    ~PulseDevice();

    /// Starts connecting to the server, if it is not connected; returns at once.
    void Look();
    /// The state of the server as it reports it. Connects if necessary and waits up to 300 ms for an answer; Unknown
    /// when none comes. Soon after the first look it waits longer: until ten seconds after it for a server that has not
    /// answered yet, and until five seconds after it for one that is missing or has no sink yet.
    AudioStatus Check();
    /// Whether the server is known to be there with a sink. Starts looking for it and never waits.
    bool Ready();
    std::unique_ptr<AudioStream> Open(int samplesPerSecond, std::shared_ptr<SampleSource> source,
                                      std::function<void()> drained, std::function<void()> failed);

private:
    class Lock;
    struct Playing;
    class Stream;
    using PlayingPtr = std::shared_ptr<Playing>;

    enum class Server { Unknown, Absent, WithoutSink, Ready };

    void Connect();
    void AwaitServer();
    void Disconnect();
    void SetServer(Server server);
    void AskForSink();
    void ContextChanged();
    void SinkKnown(const pa_sink_info* sink, int end);
    void Begin(const PlayingPtr& playing);
    void StreamChanged(const PlayingPtr& playing);
    void Feed(const PlayingPtr& playing);
    void Watch(const PlayingPtr& playing);
    void AskForClock(const PlayingPtr& playing);
    void ClockTold(const PlayingPtr& playing, bool success);
    void Drained(const PlayingPtr& playing);
    void Fail(const PlayingPtr& playing);
    void Close(const PlayingPtr& playing);

    const std::function<void(std::function<void()>)> post_;
    std::optional<std::chrono::steady_clock::time_point> firstLook_; // used only on the user-interface thread

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

} // namespace voxmate::speech
