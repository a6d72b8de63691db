#include "platform/windows/sound/WasapiDevice.h"

#include "platform/windows/system/WindowsApi.h"
#include "speech/player/HeardClock.h"

#include <algorithm>
#include <array>
#include <chrono>
#include <cstring>
#include <deque>
#include <span>
#include <utility>

#include <audioclient.h>
#include <audiopolicy.h>
#include <mmdeviceapi.h>

namespace voxmate::speech
{

namespace
{

using Clock = std::chrono::steady_clock;
using std::chrono::milliseconds;

// How much of a stream Windows may buffer: long enough to bridge the pauses of a busy machine. A stop is silent at once
// all the same, because the session is stopped and not drained.
constexpr milliseconds Buffer{80};
// The session is started when it has this much.
constexpr milliseconds First{20};
constexpr DWORD FeedInterval = 10; // milliseconds
// Until there is a first sample the source is asked more often.
constexpr DWORD FirstFeedInterval = 1;
// A stream fails when for this long no device can be had in place of one that went away, or nothing more is heard of
// what the device has.
constexpr std::chrono::seconds Patience{3};
constexpr milliseconds ReopenInterval{100};

struct Release {
    void operator()(IUnknown* object) const { object->Release(); }
};
template <class Interface>
using Com = std::unique_ptr<Interface, Release>;

/// Makes this thread one that may use these interfaces, for as long as it exists.
class ComThread
{
public:
    ComThread() : result_(CoInitializeEx(nullptr, COINIT_MULTITHREADED)) {}
    ~ComThread()
    {
        if (SUCCEEDED(result_))
            CoUninitialize();
    }
    ComThread(const ComThread&) = delete;
    ComThread& operator=(const ComThread&) = delete;

private:
    const HRESULT result_;
};

struct CloseHandleOf {
    void operator()(void* handle) const { CloseHandle(handle); }
};
using Handle = std::unique_ptr<void, CloseHandleOf>;

/// The default device for sound, or why there is none.
HRESULT DefaultDevice(Com<IMMDevice>& found)
{
    IMMDeviceEnumerator* made = nullptr;
    HRESULT result = CoCreateInstance(__uuidof(MMDeviceEnumerator), nullptr, CLSCTX_ALL, __uuidof(IMMDeviceEnumerator),
                                      reinterpret_cast<void**>(&made));
    if (FAILED(result))
        return result;
    const Com<IMMDeviceEnumerator> devices(made);
    IMMDevice* device = nullptr;
    result = devices->GetDefaultAudioEndpoint(eRender, eConsole, &device);
    if (SUCCEEDED(result))
        found.reset(device);
    return result;
}

template <class Interface>
Com<Interface> ServiceOf(IAudioClient& client)
{
    void* service = nullptr;
    return FAILED(client.GetService(__uuidof(Interface), &service)) ? nullptr
                                                                    : Com<Interface>(static_cast<Interface*>(service));
}

} // namespace

struct WasapiDevice::Playing {
    int rate = 0;
    std::shared_ptr<SampleSource> source;
    std::function<void()> drained;
    std::function<void()> failed;
    const Handle wake{CreateEventW(nullptr, FALSE, FALSE, nullptr)};
    std::thread thread;

    std::atomic<bool> abandoned = false; // the stream object is destroyed: no callback may be called

    std::mutex mutex;               // guards the following
    IAudioClient* client = nullptr; // of the present session
    HeardClock clock;
    std::int64_t fetched = 0;
};

/// A stream's time on one device.
class WasapiDevice::Session
{
public:
    enum class End { Drained, Lost, Failed, Abandoned };

    /// `unheard` are the samples that the last device had taken and nobody heard, which come first, and behind them all
    /// that come from the source, until they have been heard; `begin` is the number of the first.
    Session(Playing& playing, std::deque<std::int16_t>& unheard, std::int64_t& begin, bool& ended)
        : playing_(playing), unheard_(unheard), begin_(begin), sent_(begin), ended_(ended)
    {
    }

    ~Session()
    {
        const std::lock_guard lock(playing_.mutex);
        playing_.client = nullptr;
        if (client_)
            client_->Stop();
    }

    Session(const Session&) = delete;
    Session& operator=(const Session&) = delete;

    /// Whether the device takes the stream.
    bool Open()
    {
        Com<IMMDevice> device;
        void* made = nullptr;
        if (FAILED(DefaultDevice(device)) ||
            FAILED(device->Activate(__uuidof(IAudioClient), CLSCTX_ALL, nullptr, &made)))
            return false;
        client_.reset(static_cast<IAudioClient*>(made));
        WAVEFORMATEX format{};
        format.wFormatTag = WAVE_FORMAT_PCM;
        format.nChannels = 1;
        format.nSamplesPerSec = static_cast<DWORD>(playing_.rate);
        format.wBitsPerSample = 16;
        format.nBlockAlign = sizeof(std::int16_t);
        format.nAvgBytesPerSec = format.nSamplesPerSec * format.nBlockAlign;
        constexpr DWORD flags = AUDCLNT_STREAMFLAGS_EVENTCALLBACK | AUDCLNT_STREAMFLAGS_AUTOCONVERTPCM |
                                AUDCLNT_STREAMFLAGS_SRC_DEFAULT_QUALITY;
        using HundredNanoseconds = std::chrono::duration<REFERENCE_TIME, std::ratio<1, 10'000'000>>;
        if (FAILED(client_->Initialize(AUDCLNT_SHAREMODE_SHARED, flags, HundredNanoseconds(Buffer).count(), 0, &format,
                                       nullptr)) ||
            FAILED(client_->SetEventHandle(playing_.wake.get())) || FAILED(client_->GetBufferSize(&size_)))
            return false;
        render_ = ServiceOf<IAudioRenderClient>(*client_);
        position_ = ServiceOf<IAudioClock>(*client_);
        if (!render_ || !position_ || FAILED(position_->GetFrequency(&frequency_)) || frequency_ == 0)
            return false;
        // What mixers show for the program.
        if (const Com<IAudioSessionControl> session = ServiceOf<IAudioSessionControl>(*client_))
            session->SetDisplayName(L"Voxmate", nullptr);
        const std::lock_guard lock(playing_.mutex);
        playing_.client = client_.get();
        return true;
    }

    /// Plays until the stream ends one way or another.
    End Run()
    {
        for (lastNews_ = Clock::now();;) {
            if (playing_.abandoned)
                return End::Abandoned;
            if (!Feed() || !Start() || !Look())
                return End::Lost;
            if (ended_ && Fetched() == heard_)
                return End::Drained;
            if (Clock::now() - lastNews_ > Patience)
                return End::Failed;
            const bool first = !started_ && Clock::now() - opened_ < milliseconds(200);
            WaitForSingleObject(playing_.wake.get(), first ? FirstFeedInterval : FeedInterval);
        }
    }

private:
    std::int64_t Fetched() const { return begin_ + static_cast<std::int64_t>(unheard_.size()); }

    // Gives the device what it has room for: samples, and silence behind the last one, which keeps its clock running
    // until that has been heard.
    bool Feed()
    {
        UINT32 waiting = 0;
        if (FAILED(client_->GetCurrentPadding(&waiting)))
            return false;
        starved_ = false;
        for (UINT32 room = size_ - std::min(waiting, size_); room > 0;) {
            if (sent_ == Fetched() && !ended_) {
                const std::span<std::int16_t> block(block_.data(), std::min<std::size_t>(block_.size(), room));
                const std::size_t count = playing_.source->Pull(block, ended_);
                unheard_.insert(unheard_.end(), block.begin(), block.begin() + static_cast<std::ptrdiff_t>(count));
                starved_ = count == 0 && !ended_;
                if (starved_)
                    break;
                const std::lock_guard lock(playing_.mutex);
                playing_.fetched = Fetched();
            }
            const auto count = static_cast<UINT32>(std::min<std::int64_t>(room, Fetched() - sent_));
            const UINT32 given = count > 0 ? count : room;
            BYTE* data = nullptr;
            if (FAILED(render_->GetBuffer(given, &data)))
                return false;
            std::array<std::int16_t, 1> sample{};
            for (UINT32 i = 0; i < count; ++i) {
                sample[0] = unheard_[static_cast<std::size_t>(sent_ - begin_) + i];
                std::memcpy(data + i * sizeof(std::int16_t), sample.data(), sizeof(std::int16_t));
            }
            if (FAILED(render_->ReleaseBuffer(given, count > 0 ? 0 : AUDCLNT_BUFFERFLAGS_SILENT)))
                return false;
            sent_ += count;
            room -= given;
        }
        return true;
    }

    bool Start()
    {
        if (started_ || (sent_ - first_ < playing_.rate * First / std::chrono::seconds(1) && !ended_))
            return true;
        const std::lock_guard lock(playing_.mutex);
        started_ = !playing_.abandoned && SUCCEEDED(client_->Start());
        return started_ || playing_.abandoned;
    }

    // Asks the device how much has been heard.
    bool Look()
    {
        const Clock::time_point now = Clock::now();
        UINT64 position = 0;
        if (!started_ || FAILED(position_->GetPosition(&position, nullptr))) {
            lastNews_ = started_ ? lastNews_ : now;
            return !started_;
        }
        const auto frames =
            static_cast<std::int64_t>(static_cast<double>(position) / static_cast<double>(frequency_) * playing_.rate);
        const std::int64_t heard = std::min(first_ + frames, sent_);
        if (heard > heard_ || starved_)
            lastNews_ = now;
        heard_ = std::max(heard_, heard);
        const std::lock_guard lock(playing_.mutex);
        playing_.clock.Set(heard_ * 1'000'000 / playing_.rate, now, !starved_);
        const auto gone = std::min<std::int64_t>(heard_ - begin_, static_cast<std::int64_t>(unheard_.size()));
        unheard_.erase(unheard_.begin(), unheard_.begin() + static_cast<std::ptrdiff_t>(gone));
        begin_ += gone;
        return true;
    }

    Playing& playing_;
    std::deque<std::int16_t>& unheard_;
    std::int64_t& begin_;
    std::int64_t sent_;                // the number of the next sample for the device
    const std::int64_t first_ = sent_; // the number of its first one
    std::int64_t heard_ = first_;
    bool& ended_;
    bool started_ = false;
    bool starved_ = false; // the device wants more, and the source has none yet
    const Clock::time_point opened_ = Clock::now();
    Clock::time_point lastNews_;
    std::array<std::int16_t, 1024> block_{};
    Com<IAudioClient> client_;
    Com<IAudioRenderClient> render_;
    Com<IAudioClock> position_;
    UINT32 size_ = 0;
    UINT64 frequency_ = 0;
};

class WasapiDevice::Stream final : public AudioStream
{
public:
    Stream(WasapiDevice& device, std::shared_ptr<Playing> playing) : device_(device), playing_(std::move(playing)) {}

    ~Stream() override
    {
        playing_->abandoned = true;
        {
            const std::lock_guard lock(playing_->mutex);
            if (playing_->client)
                playing_->client->Stop();
        }
        SetEvent(playing_->wake.get());
        // Waiting for the thread here would hold the user up while it closes the session.
        const std::lock_guard lock(device_.mutex_);
        device_.ending_.push_back(std::move(playing_->thread));
    }

    std::int64_t SamplesHeard() override
    {
        const std::lock_guard lock(playing_->mutex);
        const std::int64_t samples = playing_->clock.At(Clock::now()) * playing_->rate / 1'000'000;
        heard_ = std::max(heard_, std::min(samples, playing_->fetched));
        return heard_;
    }

private:
    WasapiDevice& device_;
    const std::shared_ptr<Playing> playing_;
    std::int64_t heard_ = 0;
};

WasapiDevice::WasapiDevice(std::function<void(std::function<void()>)> post) : post_(std::move(post)) {}

WasapiDevice::~WasapiDevice()
{
    for (std::thread& thread : ending_)
        thread.join();
}

AudioStatus WasapiDevice::Check()
{
    const ComThread com;
    Com<IMMDevice> device;
    const HRESULT result = DefaultDevice(device);
    if (SUCCEEDED(result))
        return openFailed_ ? AudioStatus::CannotOpen : AudioStatus::Available;
    constexpr HRESULT notFound = HRESULT_FROM_WIN32(1168L); // the system's "element not found"
    return result == notFound ? AudioStatus::NoSupport : AudioStatus::Unknown;
}

std::unique_ptr<AudioStream> WasapiDevice::Open(int samplesPerSecond, std::shared_ptr<SampleSource> source,
                                                std::function<void()> drained, std::function<void()> failed)
{
    if (Check() == AudioStatus::NoSupport)
        return nullptr;
    std::vector<std::thread> over;
    {
        const std::lock_guard lock(mutex_);
        over = std::exchange(ending_, {});
    }
    for (std::thread& thread : over)
        thread.join();
    const auto playing = std::make_shared<Playing>();
    playing->rate = samplesPerSecond;
    playing->source = std::move(source);
    playing->drained = std::move(drained);
    playing->failed = std::move(failed);
    playing->thread = std::thread([this, playing] { Play(playing); });
    return std::make_unique<Stream>(*this, playing);
}

void WasapiDevice::Play(const std::shared_ptr<Playing>& playing)
{
    const ComThread com;
    std::deque<std::int16_t> unheard;
    std::int64_t begin = 0;
    bool ended = false;
    bool everOpened = false;
    Session::End end = Session::End::Lost;
    for (Clock::time_point lost = Clock::now(); end == Session::End::Lost && !playing->abandoned;) {
        const std::int64_t before = begin;
        Session session(*playing, unheard, begin, ended);
        const bool opened = session.Open();
        openFailed_ = !opened && !everOpened;
        everOpened = everOpened || opened;
        if (opened)
            end = session.Run();
        if (begin > before)
            lost = Clock::now();
        if (!everOpened || (end == Session::End::Lost && Clock::now() - lost > Patience))
            end = Session::End::Failed;
        if (end == Session::End::Lost)
            WaitForSingleObject(playing->wake.get(), static_cast<DWORD>(ReopenInterval.count()));
    }
    if (end == Session::End::Drained || end == Session::End::Failed)
        post_([playing, end] {
            if (!playing->abandoned)
                std::exchange(end == Session::End::Drained ? playing->drained : playing->failed, nullptr)();
        });
}

} // namespace voxmate::speech
