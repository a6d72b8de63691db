// A sound output that plays only when a test asks it to.
#pragma once

#include "speech/AudioOutput.h"
#include "tests/fakes/Eventually.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <deque>
#include <functional>
#include <memory>
#include <mutex>
#include <utility>
#include <vector>

namespace voxmate::fakes
{

class FakeAudioOutput final : public speech::AudioOutput
{
public:
    struct Stream final : speech::AudioStream {
        explicit Stream(FakeAudioOutput& output) : owner(output) { ++owner.openStreams; }
        ~Stream() override
        {
            --owner.openStreams;
            owner.source.reset();
        }
        std::int64_t SamplesHeard() override { return owner.heard; }
        FakeAudioOutput& owner;
    };

    AudioStatus Check() override { return state; }

    std::unique_ptr<speech::AudioStream> Open(int samplesPerSecond, std::shared_ptr<speech::SampleSource> newSource,
                                              std::function<void()> newDrained,
                                              std::function<void()> newFailed) override
    {
        ++opens;
        if (state != AudioStatus::Available)
            return nullptr;
        rate = samplesPerSecond;
        source = std::move(newSource);
        drained = std::move(newDrained);
        failed = std::move(newFailed);
        taken = 0;
        heard = 0;
        return std::make_unique<Stream>(*this);
    }

    void Post(std::function<void()> action) override
    {
        const std::lock_guard lock(mutex_);
        posted_.push_back(std::move(action));
    }

    void PostAfter(int, std::function<void()> action) override { later_.push_back(std::move(action)); }

    /// Takes up to `count` samples from the source and returns how many it got. They are heard at once, or when a queue
    /// is set, after it. At the end of the source the stream is drained.
    std::size_t Play(std::size_t count)
    {
        if (!source) {
            RunEvents();
            return 0;
        }
        std::vector<std::int16_t> block(count);
        bool ended = false;
        const std::size_t got = source->Pull(block, ended);
        taken += static_cast<std::int64_t>(got);
        heard = std::max<std::int64_t>(taken - queue, 0);
        played.insert(played.end(), block.begin(), block.begin() + static_cast<std::ptrdiff_t>(got));
        if (ended && drained)
            Post(std::exchange(drained, nullptr));
        RunEvents();
        return got;
    }

    /// Runs the actions posted so far, including delayed ones. An action may throw; the others stay posted.
    void RunEvents()
    {
        std::deque<std::function<void()>> actions;
        {
            const std::lock_guard lock(mutex_);
            actions.swap(posted_);
        }
        actions.insert(actions.end(), later_.begin(), later_.end());
        later_.clear();
        while (!actions.empty()) {
            const std::function<void()> action = std::move(actions.front());
            actions.pop_front();
            try {
                action();
            } catch (...) {
                const std::lock_guard lock(mutex_);
                posted_.insert(posted_.begin(), actions.begin(), actions.end());
                throw;
            }
        }
    }

    /// Plays until nothing is left to hear or report.
    bool PlayAll()
    {
        return Eventually([this] {
            Play(64);
            return openStreams == 0;
        });
    }

    bool Idle() const { return later_.empty(); }

    AudioStatus state = AudioStatus::Available;
    int opens = 0;
    int openStreams = 0;
    int rate = 0;
    std::int64_t taken = 0; ///< samples taken from the stream
    std::int64_t queue = 0; ///< how many of those have not yet reached the listener
    std::int64_t heard = 0;
    std::vector<std::int16_t> played;
    std::shared_ptr<speech::SampleSource> source;
    std::function<void()> drained;
    std::function<void()> failed;

private:
    std::mutex mutex_;
    std::deque<std::function<void()>> posted_;
    std::deque<std::function<void()>> later_;
};

} // namespace voxmate::fakes
