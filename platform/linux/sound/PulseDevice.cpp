#include "platform/linux/sound/PulseDevice.h"

#include "platform/linux/sound/PulseLibrary.h"
#include "speech/player/HeardClock.h"

#include <algorithm>
#include <array>
#include <atomic>
#include <limits>
#include <utility>

namespace voxmate::speech
{

namespace
{

using Clock = std::chrono::steady_clock;

// How much of a stream the server may buffer, including its sink: short, so that a stop is silent at once and a start
// is heard soon; long enough to bridge the pauses of a busy machine.
constexpr int BufferMilliseconds = 80;
// The server starts playing, and resumes after an underrun, when it has this much.
constexpr int FirstMilliseconds = 20;
constexpr std::int64_t SampleBytes = sizeof(std::int16_t);
constexpr std::int64_t FeedMicroseconds = 10'000;
// Until there is a first sample the source is asked more often, as long as it is likely to have one at any moment: so
// speech begins up to ten milliseconds sooner.
constexpr std::int64_t FirstFeedMicroseconds = 1'000;
constexpr std::chrono::milliseconds FirstSoon{200};
constexpr std::chrono::milliseconds ClockInterval{20};
// A stream fails when for this long it is not opened, or the server takes nothing of what is written, or nothing more
// is heard of what it took: the server hangs, or its sink was suspended. A voice that has nothing to say yet may take
// longer.
constexpr std::chrono::seconds Patience{3};
// A timer that comes this much too late tells that the program was stopped, not the sound.
constexpr std::chrono::milliseconds StandStill{500};
constexpr std::chrono::milliseconds ConnectPatience{300};
// Just after login the sound server may still be starting. Counted from the first look, this is how long a server that
// is there may take for its first answer, and how long a missing one may take to appear.
constexpr std::chrono::seconds FirstAnswer{10};
constexpr std::chrono::seconds FirstArrival{5};
constexpr std::chrono::milliseconds LookInterval{100};

struct FreeProperties {
    void operator()(pa_proplist* properties) const { Pulse().proplist_free(properties); }
};
using Properties = std::unique_ptr<pa_proplist, FreeProperties>;

/// What mixers show for the program, and what their rules match.
Properties ProgramProperties()
{
    Properties properties(Pulse().proplist_new());
    Pulse().proplist_sets(properties.get(), PA_PROP_APPLICATION_NAME, "Voxmate");
    Pulse().proplist_sets(properties.get(), PA_PROP_APPLICATION_ID, "voxmate");
    Pulse().proplist_sets(properties.get(), PA_PROP_APPLICATION_ICON_NAME, "voxmate");
    return properties;
}

Properties StreamProperties()
{
    Properties properties = ProgramProperties();
    Pulse().proplist_sets(properties.get(), PA_PROP_MEDIA_NAME, "Voice");
    Pulse().proplist_sets(properties.get(), PA_PROP_MEDIA_ICON_NAME, "voxmate");
    // The role of programs that read aloud. The role of an event would put the voice under the desktop's "System
    // Sounds", which many people mute.
    Pulse().proplist_sets(properties.get(), PA_PROP_MEDIA_ROLE, "a11y");
    return properties;
}

} // namespace

const PulseLibrary& Pulse()
{
    static const PulseLibrary library;
    return library;
}

/// Holds the library's lock, which the library's own thread holds during callbacks.
class PulseDevice::Lock
{
public:
    explicit Lock(pa_threaded_mainloop* loop) : loop_(loop) { Pulse().threaded_mainloop_lock(loop_); }
    ~Lock() { Pulse().threaded_mainloop_unlock(loop_); }
    Lock(const Lock&) = delete;
    Lock& operator=(const Lock&) = delete;

private:
    pa_threaded_mainloop* loop_;
};

struct PulseDevice::Playing : std::enable_shared_from_this<Playing> {
    PulseDevice* device = nullptr;
    int rate = 0;
    std::shared_ptr<SampleSource> source;
    std::function<void()> drained;
    std::function<void()> failed;

    // Guarded by the library's lock.
    pa_stream* stream = nullptr;
    pa_time_event* timer = nullptr;
    pa_operation* question = nullptr; // the pending request for the stream's time, if any
    Clock::time_point asked;
    bool ready = false;
    bool over = false;
    bool starved = false;  // the server wants more, and the source has none yet
    std::int64_t end = -1; // total number of samples; -1 until known
    // The most that the server reported: bytes taken, and, once all are taken, microseconds heard.
    std::int64_t taken = -1;
    std::int64_t heard = std::numeric_limits<std::int64_t>::min();
    Clock::time_point lastNews = Clock::now();
    Clock::time_point watched = Clock::now();
    const Clock::time_point opened = Clock::now();

    std::atomic<bool> abandoned = false; // the stream object is destroyed: no callback may be called
    std::atomic<std::int64_t> written = 0;

    std::mutex clockMutex;
    HeardClock clock;
};

class PulseDevice::Stream final : public AudioStream
{
public:
    explicit Stream(PlayingPtr playing) : playing_(std::move(playing)) {}

    ~Stream() override
    {
        playing_->abandoned = true;
        const Lock lock(playing_->device->loop_);
        playing_->device->Close(playing_);
    }

    std::int64_t SamplesHeard() override
    {
        const std::lock_guard lock(playing_->clockMutex);
        const std::int64_t samples = playing_->clock.At(Clock::now()) * playing_->rate / 1'000'000;
        heard_ = std::max(heard_, std::min(samples, playing_->written.load()));
        return heard_;
    }

private:
    PlayingPtr playing_;
    std::int64_t heard_ = 0;
};

PulseDevice::PulseDevice(std::function<void(std::function<void()>)> post) : post_(std::move(post)) {}

PulseDevice::~PulseDevice()
{
    if (!loop_)
        return;
    {
        const Lock lock(loop_);
        while (!playing_.empty())
            Close(playing_.back());
        Disconnect();
    }
    Pulse().threaded_mainloop_stop(loop_);
    Pulse().threaded_mainloop_free(loop_);
}

void PulseDevice::SetServer(Server server)
{
    const std::lock_guard lock(mutex_);
    server_ = server;
    known_.notify_all();
}

void PulseDevice::Look()
{
    if (!firstLook_)
        firstLook_ = Clock::now();
    Connect();
}

void PulseDevice::Connect()
{
    if (!loop_) {
        if (!Pulse()) {
            SetServer(Server::Absent);
            return;
        }
        loop_ = Pulse().threaded_mainloop_new();
        if (!loop_ || Pulse().threaded_mainloop_start(loop_) < 0) {
            if (loop_)
                Pulse().threaded_mainloop_free(loop_);
            loop_ = nullptr;
            SetServer(Server::Absent);
            return;
        }
    }
    const Lock lock(loop_);
    if (context_ && PA_CONTEXT_IS_GOOD(Pulse().context_get_state(context_)))
        return;
    Disconnect();
    SetServer(Server::Unknown);
    context_ =
        Pulse().context_new_with_proplist(Pulse().threaded_mainloop_get_api(loop_), nullptr, ProgramProperties().get());
    Pulse().context_set_state_callback(
        context_, [](pa_context*, void* self) { static_cast<PulseDevice*>(self)->ContextChanged(); }, this);
    // The desktop's session runs the server; starting one from here could block this thread.
    if (Pulse().context_connect(context_, nullptr, PA_CONTEXT_NOAUTOSPAWN, nullptr) < 0)
        SetServer(Server::Absent);
}

void PulseDevice::Disconnect()
{
    if (!context_)
        return;
    Pulse().context_set_state_callback(context_, nullptr, nullptr);
    Pulse().context_set_subscribe_callback(context_, nullptr, nullptr);
    Pulse().context_disconnect(context_);
    Pulse().context_unref(std::exchange(context_, nullptr));
}

void PulseDevice::ContextChanged()
{
    switch (Pulse().context_get_state(context_)) {
    case PA_CONTEXT_READY:
        Pulse().context_set_subscribe_callback(
            context_,
            [](pa_context*, pa_subscription_event_type_t, std::uint32_t, void* self) {
                static_cast<PulseDevice*>(self)->AskForSink();
            },
            this);
        if (pa_operation* operation = Pulse().context_subscribe(
                context_, static_cast<pa_subscription_mask_t>(PA_SUBSCRIPTION_MASK_SINK | PA_SUBSCRIPTION_MASK_SERVER),
                nullptr, nullptr))
            Pulse().operation_unref(operation);
        AskForSink();
        for (const PlayingPtr& playing : std::vector(playing_))
            if (!playing->stream)
                Begin(playing);
        break;
    case PA_CONTEXT_FAILED:
    case PA_CONTEXT_TERMINATED:
        SetServer(Server::Absent);
        for (const PlayingPtr& playing : std::vector(playing_))
            Fail(playing);
        break;
    default:
        break;
    }
}

void PulseDevice::AskForSink()
{
    sinkFound_ = false;
    if (pa_operation* operation = Pulse().context_get_sink_info_by_name(
            context_, "@DEFAULT_SINK@",
            [](pa_context*, const pa_sink_info* sink, int end, void* self) {
                static_cast<PulseDevice*>(self)->SinkKnown(sink, end);
            },
            this))
        Pulse().operation_unref(operation);
}

void PulseDevice::SinkKnown(const pa_sink_info* sink, int end)
{
    if (sink && end == 0) {
        sinkFound_ = true;
        return;
    }
    // Called once more after the last sink, or when there is none.
    const std::lock_guard lock(mutex_);
    const Server now = sinkFound_ ? Server::Ready : Server::WithoutSink;
    if (now != server_)
        openFailed_ = false;
    server_ = now;
    known_.notify_all();
}

void PulseDevice::AwaitServer()
{
    std::unique_lock lock(mutex_);
    known_.wait_for(lock, ConnectPatience, [this] { return server_ != Server::Unknown; });
    const auto patience = [this]() -> Clock::duration {
        return server_ == Server::Unknown ? FirstAnswer : FirstArrival;
    };
    while (server_ != Server::Ready && Clock::now() < *firstLook_ + patience()) {
        known_.wait_for(lock, LookInterval, [this] { return server_ == Server::Ready; });
        if (server_ == Server::Absent) {
            lock.unlock();
            Connect();
            lock.lock();
        }
    }
}

AudioStatus PulseDevice::Check()
{
    Look();
    AwaitServer();
    const std::lock_guard lock(mutex_);
    switch (server_) {
    case Server::Ready:
        return openFailed_ ? AudioStatus::CannotOpen : AudioStatus::Available;
    case Server::Absent:
    case Server::WithoutSink:
        return AudioStatus::NoSupport;
    case Server::Unknown:
        break;
    }
    return AudioStatus::Unknown;
}

bool PulseDevice::Ready()
{
    Look();
    const std::lock_guard lock(mutex_);
    return server_ == Server::Ready;
}

std::unique_ptr<AudioStream> PulseDevice::Open(int samplesPerSecond, std::shared_ptr<SampleSource> source,
                                               std::function<void()> drained, std::function<void()> failed)
{
    if (Check() == AudioStatus::NoSupport)
        return nullptr;
    const auto playing = std::make_shared<Playing>();
    playing->device = this;
    playing->rate = samplesPerSecond;
    playing->source = std::move(source);
    playing->drained = std::move(drained);
    playing->failed = std::move(failed);

    const Lock lock(loop_);
    playing_.push_back(playing);
    playing->timer = Pulse().context_rttime_new(
        context_, Pulse().rtclock_now() + static_cast<pa_usec_t>(FirstFeedMicroseconds),
        [](pa_mainloop_api*, pa_time_event*, const timeval*, void* data) {
            if (const PlayingPtr known = static_cast<Playing*>(data)->weak_from_this().lock())
                known->device->Watch(known);
        },
        playing.get());
    if (Pulse().context_get_state(context_) == PA_CONTEXT_READY)
        Begin(playing);
    return std::make_unique<Stream>(playing);
}

void PulseDevice::Begin(const PlayingPtr& playing)
{
    pa_sample_spec format{};
    format.format = PA_SAMPLE_S16NE;
    format.rate = static_cast<std::uint32_t>(playing->rate);
    format.channels = 1;
    const Properties properties = StreamProperties();
    playing->stream = Pulse().sample_spec_valid(&format)
                          ? Pulse().stream_new_with_proplist(context_, nullptr, &format, nullptr, properties.get())
                          : nullptr;
    if (!playing->stream) {
        Fail(playing);
        return;
    }
    Pulse().stream_set_state_callback(
        playing->stream,
        [](pa_stream*, void* data) {
            if (const PlayingPtr known = static_cast<Playing*>(data)->weak_from_this().lock())
                known->device->StreamChanged(known);
        },
        playing.get());
    Pulse().stream_set_write_callback(
        playing->stream,
        [](pa_stream*, std::size_t, void* data) {
            if (const PlayingPtr known = static_cast<Playing*>(data)->weak_from_this().lock())
                known->device->Feed(known);
        },
        playing.get());
    pa_buffer_attr buffer{};
    const auto bytes = [&format](int milliseconds) {
        return static_cast<std::uint32_t>(Pulse().usec_to_bytes(static_cast<pa_usec_t>(milliseconds) * 1000, &format));
    };
    buffer.maxlength = static_cast<std::uint32_t>(-1);
    buffer.tlength = bytes(BufferMilliseconds);
    buffer.prebuf = bytes(FirstMilliseconds);
    buffer.minreq = static_cast<std::uint32_t>(-1);
    buffer.fragsize = static_cast<std::uint32_t>(-1);
    if (Pulse().stream_connect_playback(playing->stream, nullptr, &buffer, PA_STREAM_ADJUST_LATENCY, nullptr, nullptr) <
        0)
        Fail(playing);
}

void PulseDevice::StreamChanged(const PlayingPtr& playing)
{
    switch (Pulse().stream_get_state(playing->stream)) {
    case PA_STREAM_READY:
        playing->ready = true;
        playing->lastNews = Clock::now();
        {
            const std::lock_guard lock(mutex_);
            openFailed_ = false;
        }
        Feed(playing);
        break;
    case PA_STREAM_FAILED:
    case PA_STREAM_TERMINATED:
        Fail(playing);
        break;
    default:
        break;
    }
}

void PulseDevice::Feed(const PlayingPtr& playing)
{
    if (!playing->ready || playing->over)
        return;
    std::size_t writable = Pulse().stream_writable_size(playing->stream);
    if (writable == static_cast<std::size_t>(-1)) {
        Fail(playing);
        return;
    }
    std::array<std::int16_t, 1024> block;
    while (writable >= sizeof(std::int16_t)) {
        const std::span<std::int16_t> room(block.data(), std::min(block.size(), writable / sizeof(std::int16_t)));
        std::size_t count = 0;
        if (playing->end < 0) {
            bool ended = false;
            count = playing->source->Pull(room, ended);
            playing->starved = count == 0 && !ended;
            if (playing->starved)
                return;
            if (count == 0)
                playing->end = playing->written;
            else
                playing->written += static_cast<std::int64_t>(count);
        }
        // Silence after the last sample keeps the server's clock running until that sample has been heard.
        if (count == 0) {
            std::fill(room.begin(), room.end(), std::int16_t{0});
            count = room.size();
        }
        if (Pulse().stream_write(playing->stream, block.data(), count * sizeof(std::int16_t), nullptr, 0,
                                 PA_SEEK_RELATIVE) < 0) {
            Fail(playing);
            return;
        }
        writable -= count * sizeof(std::int16_t);
    }
}

void PulseDevice::Watch(const PlayingPtr& playing)
{
    const Clock::time_point now = Clock::now();
    Feed(playing);
    if (playing->over)
        return;
    if (playing->ready && !playing->question && now - playing->asked >= ClockInterval)
        AskForClock(playing);
    // The whole program stood still, and so did not look for the server's answers.
    if (now - std::exchange(playing->watched, now) > StandStill)
        playing->lastNews = now;
    if (now - playing->lastNews > Patience) {
        Fail(playing);
        return;
    }
    const bool soon = playing->written == 0 && now - playing->opened < FirstSoon;
    Pulse().context_rttime_restart(context_, playing->timer,
                                   Pulse().rtclock_now() +
                                       static_cast<pa_usec_t>(soon ? FirstFeedMicroseconds : FeedMicroseconds));
}

void PulseDevice::AskForClock(const PlayingPtr& playing)
{
    playing->asked = Clock::now();
    playing->question = Pulse().stream_update_timing_info(
        playing->stream,
        [](pa_stream*, int success, void* data) {
            if (const PlayingPtr known = static_cast<Playing*>(data)->weak_from_this().lock())
                known->device->ClockTold(known, success != 0);
        },
        playing.get());
}

/// The server reports how much of the stream it has taken and how long its sink still needs for what it got before. The
/// library's own interpolation of the two is not used: it smooths over seconds, and so is far off while a sink with a
/// long queue plays its first sound.
void PulseDevice::ClockTold(const PlayingPtr& playing, bool success)
{
    if (playing->question)
        Pulse().operation_unref(std::exchange(playing->question, nullptr));
    const pa_timing_info* const timing = success ? Pulse().stream_get_timing_info(playing->stream) : nullptr;
    if (!timing)
        return;
    const Clock::time_point now = Clock::now();
    const std::int64_t taken = std::max<std::int64_t>(timing->read_index, 0);
    const std::int64_t heard =
        static_cast<std::int64_t>(
            Pulse().bytes_to_usec(static_cast<std::uint64_t>(taken), Pulse().stream_get_sample_spec(playing->stream))) -
        static_cast<std::int64_t>(timing->sink_usec);
    // What follows the last sample is silence without end: that the server takes it says nothing.
    const bool allTaken = playing->end >= 0 && taken >= playing->end * SampleBytes;
    if (allTaken ? heard > playing->heard : taken > playing->taken || playing->starved)
        playing->lastNews = now;
    playing->taken = std::max(playing->taken, taken);
    if (allTaken)
        playing->heard = std::max(playing->heard, heard);
    // The age is measured with the wall clock, which may have been set meanwhile; the answer cannot be older than the
    // request.
    const Clock::duration age = std::clamp<Clock::duration>(
        std::chrono::microseconds(Pulse().timeval_age(&timing->timestamp)), {}, now - playing->asked);
    {
        const std::lock_guard lock(playing->clockMutex);
        playing->clock.Set(heard, now - age, timing->playing != 0);
    }
    if (playing->end >= 0 && heard * playing->rate >= playing->end * 1'000'000)
        Drained(playing);
}

void PulseDevice::Drained(const PlayingPtr& playing)
{
    Close(playing);
    post_([playing] {
        if (!playing->abandoned)
            std::exchange(playing->drained, nullptr)();
    });
}

void PulseDevice::Fail(const PlayingPtr& playing)
{
    if (playing->over)
        return;
    if (!playing->ready) {
        const std::lock_guard lock(mutex_);
        openFailed_ = true;
    }
    Close(playing);
    post_([playing] {
        if (!playing->abandoned)
            std::exchange(playing->failed, nullptr)();
    });
}

void PulseDevice::Close(const PlayingPtr& playing)
{
    if (playing->over)
        return;
    playing->over = true;
    if (playing->timer)
        Pulse().threaded_mainloop_get_api(loop_)->time_free(std::exchange(playing->timer, nullptr));
    if (playing->question) {
        Pulse().operation_cancel(playing->question);
        Pulse().operation_unref(std::exchange(playing->question, nullptr));
    }
    if (playing->stream) {
        Pulse().stream_set_state_callback(playing->stream, nullptr, nullptr);
        Pulse().stream_set_write_callback(playing->stream, nullptr, nullptr);
        if (PA_STREAM_IS_GOOD(Pulse().stream_get_state(playing->stream))) {
            if (pa_operation* operation = Pulse().stream_flush(playing->stream, nullptr, nullptr))
                Pulse().operation_unref(operation);
            Pulse().stream_disconnect(playing->stream);
        }
        Pulse().stream_unref(std::exchange(playing->stream, nullptr));
    }
    std::erase(playing_, playing);
}

} // namespace voxmate::speech
