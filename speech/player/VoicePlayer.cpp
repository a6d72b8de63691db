#include "speech/player/VoicePlayer.h"

#include "speech/player/WaveSpeech.h"
#include "speech/text/Relay.h"

#include <algorithm>
#include <exception>
#include <limits>
#include <utility>

namespace voxmate::speech
{

namespace
{

// Limits in milliseconds between two looks at the audio clock while speaking. A mouth is late by at most the longer
// one.
constexpr std::int64_t LongestWait = 15;
constexpr std::int64_t ShortestWait = 2;
// An event reported now is seen this many milliseconds later: it has to be drawn, and the screen shows it at its next
// refresh, on average half of 1/60 s away.
constexpr std::int64_t ScreenDelay = 15;

} // namespace

VoicePlayer::VoicePlayer(VoiceCatalog& catalog, AudioOutput& output, std::chrono::milliseconds restAfter)
    : catalog_(catalog), output_(output), restAfter_(restAfter)
{
}

VoicePlayer::~VoicePlayer()
{
    alive_.reset();
    if (current_)
        current_->job->Cancel();
    current_.reset();
    {
        const std::lock_guard lock(mutex_);
        quit_ = true;
        nextJob_.reset();
    }
    wake_.notify_all();
    if (worker_.joinable())
        worker_.join();
}

AudioStatus VoicePlayer::Status()
{
    return current_ ? AudioStatus::CharacterSpeaking : output_.Check();
}

void VoicePlayer::PostToSelf(std::function<void()> action)
{
    output_.Post([alive = self_, action = std::move(action)] {
        if (!alive.expired())
            action();
    });
}

void VoicePlayer::FailLater(const SpeakingPtr& speaking)
{
    PostToSelf([this, weak = std::weak_ptr(speaking)] {
        if (const SpeakingPtr known = weak.lock())
            End(known, false);
    });
}

void VoicePlayer::Start(Utterance utterance, VoiceEvents events)
{
    Stop();
    const auto speaking = std::make_shared<Speaking>();
    speaking->events = std::move(events);
    current_ = speaking;

    if (!utterance.waveFile.empty()) {
        const auto begin = [this, weak = std::weak_ptr(speaking)](int rate) {
            const SpeakingPtr known = weak.lock();
            if (!known || known != current_)
                return;
            if (rate > 0)
                OpenStream(known, rate);
            else
                End(known, false);
        };
        Enqueue(speaking->job, [this, utterance = std::move(utterance), begin](SpeechJob& job) {
            WaveSpeech wave(utterance, [&job] { return !job.Cancelled(); });
            const int rate = wave.SamplesPerSecond();
            if (rate > 0)
                job.SetRate(rate);
            PostToSelf([begin, rate] { begin(rate); });
            wave.Deliver(job);
            return rate > 0;
        });
        return;
    }

    const VoiceCatalog::Entry* const entry = catalog_.Find(utterance.modeId);
    if (!entry) {
        FailLater(speaking);
        return;
    }
    const int rate = entry->engine->SampleRate(entry->voice);
    speaking->job->SetRate(rate);
    Enqueue(speaking->job, [this, entry, segments = std::move(utterance.segments), byLanguage = utterance.byLanguage](
                               SpeechJob& job) { return SpeakInTurns(catalog_, *entry, segments, job, byLanguage); });
    OpenStream(speaking, rate);
}

void VoicePlayer::Stop()
{
    const SpeakingPtr speaking = std::exchange(current_, nullptr);
    if (!speaking)
        return;
    speaking->job->Cancel();
    speaking->stream.reset();
    if (speaking->events.Ended)
        PostToSelf([ended = speaking->events.Ended] { ended(false); });
}

void VoicePlayer::Enqueue(const std::shared_ptr<SpeechJob>& job, Work work)
{
    {
        const std::lock_guard lock(mutex_);
        nextJob_ = job;
        nextWork_ = std::move(work);
    }
    if (!worker_.joinable())
        worker_ = std::thread([this] { RunWorker(); });
    wake_.notify_one();
}

bool VoicePlayer::Run(const Work& work, SpeechJob& job)
{
    try {
        return work(job);
    } catch (...) {
        // Only the event loop can tell the user.
        PostToSelf([error = std::current_exception()] { std::rethrow_exception(error); });
        return false;
    }
}

void VoicePlayer::RunWorker()
{
    while (true) {
        std::unique_lock lock(mutex_);
        const auto called = [this] { return quit_ || nextJob_; };
        if (!wake_.wait_for(lock, restAfter_, called)) {
            lock.unlock();
            catalog_.Rest();
            lock.lock();
            wake_.wait(lock, called);
        }
        if (quit_)
            return;
        const std::shared_ptr<SpeechJob> job = std::exchange(nextJob_, nullptr);
        const Work work = std::exchange(nextWork_, nullptr);
        lock.unlock();
        if (!job->Cancelled())
            job->Finish(Run(work, *job));
    }
}

void VoicePlayer::OpenStream(const SpeakingPtr& speaking, int samplesPerSecond)
{
    speaking->rate = samplesPerSecond;
    const std::weak_ptr<Speaking> weak = speaking;
    const std::weak_ptr<int> alive = alive_;
    speaking->stream = output_.Open(
        samplesPerSecond, speaking->job,
        [this, weak, alive] {
            const SpeakingPtr known = weak.lock();
            if (known && !alive.expired() && Report(known, std::numeric_limits<std::int64_t>::max()))
                End(known, !known->job->Failed());
        },
        [this, weak, alive] {
            const SpeakingPtr known = weak.lock();
            if (known && !alive.expired())
                End(known, false);
        });
    if (speaking->stream)
        Poll(speaking);
    else
        FailLater(speaking);
}

void VoicePlayer::Poll(const SpeakingPtr& speaking)
{
    std::int64_t wait = LongestWait;
    std::int64_t heard = speaking->stream->SamplesHeard();
    if (heard > 0)
        heard += ScreenDelay * speaking->rate / 1000;
    if (!Report(speaking, heard))
        return;
    if (const auto next = speaking->job->NextEventAt())
        wait = std::clamp((*next - heard) * 1000 / speaking->rate + 1, ShortestWait, LongestWait);
    output_.PostAfter(static_cast<int>(wait), [this, weak = std::weak_ptr(speaking), alive = std::weak_ptr(alive_)] {
        const SpeakingPtr known = weak.lock();
        if (known && !alive.expired() && known == current_ && known->stream)
            Poll(known);
    });
}

bool VoicePlayer::Report(const SpeakingPtr& speaking, std::int64_t heard)
{
    if (speaking != current_)
        return false;
    // A callback may destroy the player along with other parts of its owner.
    const std::weak_ptr<int> alive = alive_;
    const auto goesOn = [&] { return !alive.expired() && speaking == current_; };
    if (!speaking->started && heard > 0 && speaking->job->Pulled()) {
        speaking->started = true;
        if (speaking->events.Started)
            speaking->events.Started();
    }
    while (goesOn()) {
        const std::optional<SpeechEvent> event = speaking->job->TakeEvent(heard);
        if (!event)
            break;
        switch (event->kind) {
        case SpeechEvent::Kind::Word:
            if (speaking->events.Word)
                speaking->events.Word(event->value);
            break;
        case SpeechEvent::Kind::Mouth:
            if (event->value != speaking->mouth && speaking->events.Mouth)
                speaking->events.Mouth(event->value);
            speaking->mouth = event->value;
            break;
        case SpeechEvent::Kind::Bookmark:
            if (speaking->events.Bookmark)
                speaking->events.Bookmark(event->value);
            break;
        }
    }
    return goesOn();
}

void VoicePlayer::End(const SpeakingPtr& speaking, bool ok)
{
    if (speaking != current_)
        return;
    const std::weak_ptr<int> alive = alive_;
    if (speaking->mouth != 0 && speaking->events.Mouth) {
        speaking->mouth = 0;
        speaking->events.Mouth(0);
        if (alive.expired() || speaking != current_)
            return;
    }
    current_.reset();
    speaking->job->Cancel();
    speaking->stream.reset();
    if (speaking->events.Ended)
        speaking->events.Ended(ok);
}

} // namespace voxmate::speech
