// A sound output through cubeb, for comparing it with the program's own. It does what the program needs as far as that
// library allows, and nothing more.
#pragma once

#include "speech/AudioOutput.h"

#include <QCoreApplication>
#include <QTimer>
#include <algorithm>
#include <atomic>
#include <cstring>
#include <cubeb/cubeb.h>
#include <memory>
#include <utility>

namespace voxmate::bench
{

class CubebOutput final : public speech::AudioOutput
{
public:
    CubebOutput() = default;
    ~CubebOutput() override { End(); }
    CubebOutput(const CubebOutput&) = delete;
    CubebOutput& operator=(const CubebOutput&) = delete;

    AudioStatus Check() override { return Begin() ? AudioStatus::Available : AudioStatus::NoSupport; }

    std::unique_ptr<speech::AudioStream> Open(int samplesPerSecond, std::shared_ptr<speech::SampleSource> source,
                                              std::function<void()> drained, std::function<void()> failed) override
    {
        // A context whose server has gone does not come to life again, and its streams cannot be opened.
        for (int attempt = 0; attempt < 2; ++attempt) {
            if (!Begin())
                return nullptr;
            auto stream = std::make_unique<Stream>(*this, samplesPerSecond, source, drained, failed);
            if (stream->Open(context_))
                return stream;
            stream.reset();
            End();
        }
        return nullptr;
    }
    void Post(std::function<void()> action) override
    {
        QMetaObject::invokeMethod(QCoreApplication::instance(), std::move(action), Qt::QueuedConnection);
    }
    void PostAfter(int milliseconds, std::function<void()> action) override
    {
        QTimer::singleShot(milliseconds, QCoreApplication::instance(), std::move(action));
    }

private:
    class Stream final : public speech::AudioStream
    {
    public:
        Stream(CubebOutput& output, int rate, std::shared_ptr<speech::SampleSource> source,
               std::function<void()> drained, std::function<void()> failed)
            : output_(output), rate_(rate), source_(std::move(source)),
              calls_(std::make_shared<Calls>(Calls{std::move(drained), std::move(failed)}))
        {
        }
        ~Stream() override
        {
            calls_->abandoned = true;
            if (stream_) {
                cubeb_stream_stop(stream_);
                cubeb_stream_destroy(stream_);
            }
        }
        Stream(const Stream&) = delete;
        Stream& operator=(const Stream&) = delete;

        bool Open(cubeb* context)
        {
            cubeb_stream_params params{};
            params.format = CUBEB_SAMPLE_S16NE;
            params.rate = static_cast<std::uint32_t>(rate_);
            params.channels = 1;
            params.layout = CUBEB_LAYOUT_MONO;
            params.prefs = CUBEB_STREAM_PREF_NONE;
            std::uint32_t latency = 0;
            if (cubeb_get_min_latency(context, &params, &latency) != CUBEB_OK)
                latency = params.rate / 50;
            return cubeb_stream_init(context, &stream_, "Voice", nullptr, nullptr, nullptr, &params, latency, &Pull,
                                     &Changed, this) == CUBEB_OK &&
                   cubeb_stream_start(stream_) == CUBEB_OK;
        }
        std::int64_t SamplesHeard() override
        {
            std::uint64_t position = 0;
            if (cubeb_stream_get_position(stream_, &position) == CUBEB_OK)
                heard_ = std::max(heard_, std::min<std::int64_t>(static_cast<std::int64_t>(position), given_.load()));
            return heard_;
        }

    private:
        struct Calls {
            std::function<void()> drained;
            std::function<void()> failed;
            std::atomic<bool> abandoned = false;
            Calls(std::function<void()> whenDrained, std::function<void()> whenFailed)
                : drained(std::move(whenDrained)), failed(std::move(whenFailed))
            {
            }
            Calls(Calls&& other) noexcept : drained(std::move(other.drained)), failed(std::move(other.failed)) {}
        };

        static long Pull(cubeb_stream* /*stream*/, void* self, const void* /*input*/, void* output, long frames)
        {
            auto& stream = *static_cast<Stream*>(self);
            const std::span room(static_cast<std::int16_t*>(output), static_cast<std::size_t>(frames));
            std::size_t filled = 0;
            bool ended = false;
            while (filled < room.size() && !ended) {
                const std::size_t count = stream.source_->Pull(room.subspan(filled), ended);
                if (count == 0)
                    break;
                filled += count;
            }
            stream.given_ += static_cast<std::int64_t>(filled);
            if (ended)
                return static_cast<long>(filled); // fewer than asked for end the stream
            std::fill(room.begin() + static_cast<std::ptrdiff_t>(filled), room.end(), std::int16_t{0});
            return frames;
        }
        static void Changed(cubeb_stream* /*stream*/, void* self, cubeb_state state)
        {
            auto& stream = *static_cast<Stream*>(self);
            if (state != CUBEB_STATE_DRAINED && state != CUBEB_STATE_ERROR)
                return;
            stream.output_.Post([calls = stream.calls_, state] {
                if (!calls->abandoned)
                    (state == CUBEB_STATE_DRAINED ? calls->drained : calls->failed)();
            });
        }

        CubebOutput& output_;
        const int rate_;
        std::shared_ptr<speech::SampleSource> source_;
        std::shared_ptr<Calls> calls_;
        cubeb_stream* stream_ = nullptr;
        std::atomic<std::int64_t> given_ = 0;
        std::int64_t heard_ = 0;
    };

    bool Begin() { return context_ || cubeb_init(&context_, "Voxmate", nullptr) == CUBEB_OK; }
    void End()
    {
        if (context_)
            cubeb_destroy(std::exchange(context_, nullptr));
    }

    cubeb* context_ = nullptr;
};

} // namespace voxmate::bench
