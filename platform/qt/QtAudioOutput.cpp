#include "platform/qt/QtAudioOutput.h"

#include <QAudioDevice>
#include <QAudioSink>
#include <QIODevice>
#include <QMediaDevices>
#include <QPointer>
#include <QThread>
#include <QTimer>
#include <algorithm>
#include <atomic>
#include <chrono>
#include <condition_variable>
#include <mutex>
#include <utility>
#include <vector>

namespace voxmate::qt
{

namespace
{

using Clock = std::chrono::steady_clock;

// What the sink may hold: short, so that a stop is silent at once and a start soon heard; long enough to bridge a busy
// machine's pauses.
constexpr int BufferMilliseconds = 80;
constexpr int FeedMilliseconds = 10;
// A sink that neither opens nor takes samples for so long has given out.
constexpr std::chrono::seconds Patience{3};
constexpr int WatchMilliseconds = 500;
constexpr std::chrono::milliseconds FirstAnswer{300};
constexpr unsigned long EndMilliseconds = 300;
// The clock between two looks at the sink's is our own, no further than this.
constexpr std::chrono::milliseconds LongestGuess{40};

class Silence final : public speech::SampleSource
{
public:
    std::size_t Pull(std::span<std::int16_t> /*samples*/, bool& ended) override
    {
        ended = true;
        return 0;
    }
};

std::int64_t Now()
{
    return Clock::now().time_since_epoch().count();
}

bool Passed(std::int64_t since, Clock::duration limit)
{
    return Now() - since > limit.count();
}

QAudioFormat Format(int samplesPerSecond)
{
    QAudioFormat format;
    format.setSampleRate(samplesPerSecond);
    format.setChannelCount(1);
    format.setSampleFormat(QAudioFormat::Int16);
    return format;
}

} // namespace

/// What the sound thread has found out. It belongs to both threads, as a sound thread that hangs is left behind.
struct QtAudioOutput::Known {
    std::mutex mutex;
    std::condition_variable news;
    QObject* context = nullptr; // null once the output is gone
    bool listed = false;
    bool anyDevice = false;
    bool openFailed = false;
    std::atomic<std::int64_t> busySince = 0; // since when the sound thread is inside Qt's sound code, 0 when not

    void Post(std::function<void()> action)
    {
        const std::lock_guard lock(mutex);
        if (context)
            QMetaObject::invokeMethod(context, std::move(action), Qt::QueuedConnection);
    }
    bool Stuck() const
    {
        const std::int64_t since = busySince;
        return since != 0 && Passed(since, FirstAnswer);
    }
};

/// The source as the sink reads it, with silence behind its last sample: that keeps the sink's clock going until that
/// sample has been heard.
class QtAudioOutput::Samples final : public QIODevice
{
public:
    explicit Samples(speech::SampleSource& source) : source_(source) { open(ReadOnly | Unbuffered); }

    bool isSequential() const override { return true; }
    // Asked from a thread of Qt's own. A source at its end would be drained behind our back, and a drained sink is
    // called even when it has gone meanwhile.
    bool atEnd() const override { return false; }

    std::int64_t Given() const { return given_; }
    /// The number of samples in all, -1 when not known yet.
    std::int64_t End() const { return end_; }
    /// Whether the source had none when it was last asked; the sink then waits for readyRead.
    bool Dry() const { return dry_; }
    std::int64_t LastRead() const { return lastRead_; }

protected:
    qint64 readData(char* data, qint64 bytes) override
    {
        lastRead_ = Now();
        const std::span<std::int16_t> room(reinterpret_cast<std::int16_t*>(data), static_cast<std::size_t>(bytes / 2));
        if (end_ < 0) {
            bool ended = false;
            const std::size_t count = source_.Pull(room, ended);
            given_ += static_cast<std::int64_t>(count);
            dry_ = count == 0 && !ended;
            if (count > 0 || !ended)
                return static_cast<qint64>(count * 2);
            end_ = given_;
        }
        std::fill(room.begin(), room.end(), std::int16_t{0});
        return bytes;
    }
    qint64 writeData(const char*, qint64) override { return -1; }

private:
    speech::SampleSource& source_;
    std::atomic<std::int64_t> given_ = 0;
    std::int64_t end_ = -1;
    bool dry_ = false;
    std::int64_t lastRead_ = Now();
};

struct QtAudioOutput::Playing {
    int rate = 0;
    std::shared_ptr<speech::SampleSource> source;
    std::function<void()> drained;
    std::function<void()> failed;

    std::atomic<bool> over = false; // told, or its stream object is gone: nobody is to be called
    std::atomic<bool> opened = false;
    std::atomic<std::int64_t> lastNews = Now();
    std::atomic<std::int64_t> written = 0;

    std::mutex clockMutex;
    std::int64_t heardMicroseconds = 0;
    Clock::time_point heardAt;

    // The sound thread's alone.
    std::unique_ptr<Samples> samples;
    std::unique_ptr<QAudioSink> sink;
};

class QtAudioOutput::Worker final : public QObject
{
public:
    explicit Worker(std::shared_ptr<Known> known) : known_(std::move(known)), timer_(this)
    {
        timer_.setTimerType(Qt::PreciseTimer);
        timer_.setInterval(FeedMilliseconds);
        connect(&timer_, &QTimer::timeout, this, [this] {
            for (const auto& playing : std::vector(playing_))
                Tick(playing);
        });
    }

    void Look()
    {
        const Busy busy(*known_);
        const QAudioDevice device = QMediaDevices::defaultAudioOutput();
        bool openFailed = false;
        {
            const std::lock_guard lock(known_->mutex);
            openFailed = known_->openFailed;
        }
        // Only opening one tells whether a sink that failed would work again.
        if (openFailed && !device.isNull()) {
            Silence silence;
            Samples samples(silence);
            QAudioSink sink(device, Format(22050));
            sink.start(&samples);
            openFailed = sink.error() != QAudio::NoError;
        }
        const std::lock_guard lock(known_->mutex);
        known_->listed = true;
        known_->anyDevice = !device.isNull();
        known_->openFailed = openFailed;
        known_->news.notify_all();
    }

    void Start(const std::shared_ptr<Playing>& playing)
    {
        if (playing->over)
            return;
        const Busy busy(*known_);
        const QAudioDevice device = QMediaDevices::defaultAudioOutput();
        if (!device.isNull()) {
            playing->sink = std::make_unique<QAudioSink>(device, Format(playing->rate));
            playing->sink->setBufferSize(playing->rate * BufferMilliseconds / 1000 * 2);
            playing->samples = std::make_unique<Samples>(*playing->source);
            playing->sink->start(playing->samples.get());
        }
        if (!playing->sink || playing->sink->error() != QAudio::NoError ||
            playing->sink->state() == QAudio::StoppedState) {
            Fail(playing, true);
            return;
        }
        {
            const std::lock_guard lock(known_->mutex);
            known_->openFailed = false;
        }
        playing->opened = true;
        playing->lastNews = Now();
        playing_.push_back(playing);
        timer_.start();
    }

    void Close(const std::shared_ptr<Playing>& playing)
    {
        const Busy busy(*known_);
        std::erase(playing_, playing);
        if (playing_.empty())
            timer_.stop();
        // The sink handles events while it goes: it is nobody's any more by then.
        if (const std::unique_ptr<QAudioSink> sink = std::move(playing->sink))
            sink->reset();
    }

private:
    class Busy
    {
    public:
        explicit Busy(Known& known) : known_(known), before_(known.busySince)
        {
            if (before_ == 0)
                known_.busySince = Now();
        }
        ~Busy() { known_.busySince = before_; }
        Busy(const Busy&) = delete;
        Busy& operator=(const Busy&) = delete;

    private:
        Known& known_;
        std::int64_t before_;
    };

    void Tick(const std::shared_ptr<Playing>& playing)
    {
        if (playing->over || !playing->sink)
            return;
        const Busy busy(*known_);
        const bool stopped = playing->sink->state() == QAudio::StoppedState;
        if (stopped || playing->sink->bytesFree() < 0) {
            Fail(playing, stopped);
            return;
        }
        Samples& samples = *playing->samples;
        if (samples.Dry()) {
            playing->lastNews = Now();
            emit samples.readyRead();
        } else {
            playing->lastNews = samples.LastRead();
        }
        playing->written = samples.Given();
        const std::int64_t heard = playing->sink->processedUSecs();
        {
            const std::lock_guard lock(playing->clockMutex);
            playing->heardMicroseconds = heard;
            playing->heardAt = Clock::now();
        }
        if (samples.End() >= 0 && heard * playing->rate >= samples.End() * 1'000'000) {
            Close(playing);
            known_->Post([playing] {
                if (!playing->over.exchange(true))
                    playing->drained();
            });
        }
    }

    void Fail(const std::shared_ptr<Playing>& playing, bool device)
    {
        if (device) {
            const std::lock_guard lock(known_->mutex);
            known_->openFailed = true;
        }
        Close(playing);
        known_->Post([playing] {
            if (!playing->over.exchange(true))
                playing->failed();
        });
    }

    const std::shared_ptr<Known> known_;
    QTimer timer_;
    std::vector<std::shared_ptr<Playing>> playing_;
};

class QtAudioOutput::Stream final : public speech::AudioStream
{
public:
    Stream(std::shared_ptr<Playing> playing, QPointer<Worker> worker)
        : playing_(std::move(playing)), worker_(std::move(worker))
    {
    }

    ~Stream() override
    {
        playing_->over = true;
        if (worker_)
            QMetaObject::invokeMethod(
                worker_, [worker = worker_.data(), playing = playing_] { worker->Close(playing); },
                Qt::QueuedConnection);
    }

    std::int64_t SamplesHeard() override
    {
        std::int64_t microseconds = 0;
        {
            const std::lock_guard lock(playing_->clockMutex);
            if (playing_->heardMicroseconds > 0)
                microseconds = playing_->heardMicroseconds +
                               std::chrono::duration_cast<std::chrono::microseconds>(
                                   std::clamp<Clock::duration>(Clock::now() - playing_->heardAt, {}, LongestGuess))
                                   .count();
        }
        heard_ = std::max(heard_, std::min(microseconds * playing_->rate / 1'000'000, playing_->written.load()));
        return heard_;
    }

private:
    std::shared_ptr<Playing> playing_;
    QPointer<Worker> worker_;
    std::int64_t heard_ = 0;
};

QtAudioOutput::QtAudioOutput() : known_(std::make_shared<Known>())
{
    known_->context = &context_;
}

QtAudioOutput::~QtAudioOutput()
{
    {
        const std::lock_guard lock(known_->mutex);
        known_->context = nullptr;
    }
    if (!thread_)
        return;
    thread_->quit();
    if (thread_->wait(EndMilliseconds))
        delete thread_;
}

void QtAudioOutput::Begin()
{
    if (thread_)
        return;
    thread_ = new QThread;
    thread_->setObjectName(QStringLiteral("sound"));
    worker_ = new Worker(known_);
    worker_->moveToThread(thread_);
    QObject::connect(thread_, &QThread::finished, worker_, &QObject::deleteLater);
    thread_->start(QThread::TimeCriticalPriority);
}

speech::AudioOutput::State QtAudioOutput::Check()
{
    Begin();
    const bool first = !std::exchange(asked_, true);
    QMetaObject::invokeMethod(
        worker_, [worker = worker_] { worker->Look(); }, Qt::QueuedConnection);
    std::unique_lock lock(known_->mutex);
    if (first)
        known_->news.wait_for(lock, FirstAnswer, [this] { return known_->listed; });
    if (!known_->listed)
        return State::Other;
    if (known_->openFailed || known_->Stuck())
        return State::CannotOpen;
    return known_->anyDevice ? State::Available : State::NoDevice;
}

std::unique_ptr<speech::AudioStream> QtAudioOutput::Open(int samplesPerSecond,
                                                         std::shared_ptr<speech::SampleSource> source,
                                                         std::function<void()> drained, std::function<void()> failed)
{
    if (Check() == State::NoDevice)
        return nullptr;
    const auto playing = std::make_shared<Playing>();
    playing->rate = samplesPerSecond;
    playing->source = std::move(source);
    playing->drained = std::move(drained);
    playing->failed = std::move(failed);
    QMetaObject::invokeMethod(
        worker_, [worker = worker_, playing] { worker->Start(playing); }, Qt::QueuedConnection);
    Watch(playing);
    return std::make_unique<Stream>(playing, worker_);
}

void QtAudioOutput::Watch(const std::shared_ptr<Playing>& playing)
{
    PostAfter(WatchMilliseconds, [this, playing] {
        if (playing->over)
            return;
        if (!Passed(playing->lastNews, Patience)) {
            Watch(playing);
            return;
        }
        {
            const std::lock_guard lock(known_->mutex);
            known_->openFailed = true;
        }
        QMetaObject::invokeMethod(
            worker_, [worker = worker_, playing] { worker->Close(playing); }, Qt::QueuedConnection);
        if (!playing->over.exchange(true))
            playing->failed();
    });
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
