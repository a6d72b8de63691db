#include "speech/player/SpeechJob.h"

#include <algorithm>

namespace voxmate::speech
{

void SpeechJob::SetRate(int samplesPerSecond)
{
    const std::lock_guard lock(mutex_);
    ring_.resize(static_cast<std::size_t>(std::max(samplesPerSecond, 1)) * SecondsAhead);
}

bool SpeechJob::Samples(std::span<const std::int16_t> samples)
{
    std::unique_lock lock(mutex_);
    while (!samples.empty()) {
        room_.wait(lock, [this] { return cancelled_ || count_ < ring_.size(); });
        if (cancelled_)
            return false;
        const std::size_t end = (first_ + count_) % ring_.size();
        const std::size_t piece = std::min({samples.size(), ring_.size() - count_, ring_.size() - end});
        std::copy_n(samples.begin(), piece, ring_.begin() + static_cast<std::ptrdiff_t>(end));
        count_ += piece;
        samples = samples.subspan(piece);
    }
    return !cancelled_;
}

void SpeechJob::Event(const SpeechEvent& event)
{
    const std::lock_guard lock(mutex_);
    events_.push_back(event);
}

void SpeechJob::Finish(bool ok)
{
    const std::lock_guard lock(mutex_);
    finished_ = true;
    ok_ = ok;
}

std::size_t SpeechJob::Pull(std::span<std::int16_t> samples, bool& ended)
{
    const std::lock_guard lock(mutex_);
    std::size_t given = 0;
    while (!cancelled_ && given < samples.size() && count_ > 0) {
        const std::size_t piece = std::min({samples.size() - given, count_, ring_.size() - first_});
        std::copy_n(ring_.begin() + static_cast<std::ptrdiff_t>(first_), piece,
                    samples.begin() + static_cast<std::ptrdiff_t>(given));
        first_ = (first_ + piece) % ring_.size();
        count_ -= piece;
        given += piece;
    }
    ended = given == 0 && (finished_ || cancelled_);
    pulled_ = pulled_ || given > 0;
    if (given > 0)
        room_.notify_one();
    return given;
}

void SpeechJob::Cancel()
{
    const std::lock_guard lock(mutex_);
    cancelled_ = true;
    room_.notify_all();
}

bool SpeechJob::Cancelled() const
{
    const std::lock_guard lock(mutex_);
    return cancelled_;
}

bool SpeechJob::Failed() const
{
    const std::lock_guard lock(mutex_);
    return finished_ && !ok_;
}

bool SpeechJob::Pulled() const
{
    const std::lock_guard lock(mutex_);
    return pulled_;
}

std::optional<SpeechEvent> SpeechJob::TakeEvent(std::int64_t heard)
{
    const std::lock_guard lock(mutex_);
    if (events_.empty() || events_.front().sample >= heard)
        return std::nullopt;
    const SpeechEvent event = events_.front();
    events_.pop_front();
    return event;
}

std::optional<std::int64_t> SpeechJob::NextEventAt() const
{
    const std::lock_guard lock(mutex_);
    if (events_.empty())
        return std::nullopt;
    return events_.front().sample;
}

} // namespace voxmate::speech
