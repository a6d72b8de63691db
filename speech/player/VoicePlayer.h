// The voice channel built on a catalogue's engines and a sound output.
#pragma once

#include "speech/AudioOutput.h"
#include "speech/VoiceCatalog.h"
#include "speech/VoiceOutput.h"
#include "speech/player/SpeechJob.h"

#include <chrono>
#include <condition_variable>
#include <functional>
#include <memory>
#include <mutex>
#include <thread>

namespace voxmate::speech
{

class VoicePlayer final : public VoiceOutput
{
public:
    /// Both must outlive the player. Everything except synthesis runs on the thread that constructs the player.
    /// When nothing was spoken for `restAfter`, the engines give back what memory they can.
    VoicePlayer(VoiceCatalog& catalog, AudioOutput& output,
                std::chrono::milliseconds restAfter = std::chrono::minutes(10));
    /// Stops at once and waits for the engine to return; no callback is made any more.
    ~VoicePlayer() override;

    AudioStatus Status() override;
    void Start(Utterance utterance, VoiceEvents events) override;
    void Stop() override;

private:
    /// Produces one utterance into the job; returns whether that succeeded.
    using Work = std::function<bool(SpeechJob& job)>;

    struct Speaking {
        std::shared_ptr<SpeechJob> job = std::make_shared<SpeechJob>();
        std::unique_ptr<AudioStream> stream;
        VoiceEvents events;
        int rate = 0;
        bool started = false;
        int mouth = 0;
    };
    using SpeakingPtr = std::shared_ptr<Speaking>;

    void Enqueue(const std::shared_ptr<SpeechJob>& job, Work work);
    void RunWorker();
    /// Runs an utterance's work. An exception is rethrown in the event loop and ends the utterance as failed.
    bool Run(const Work& work, SpeechJob& job);
    void OpenStream(const SpeakingPtr& speaking, int samplesPerSecond);
    void Poll(const SpeakingPtr& speaking);
    /// Reports the events before sample `heard`; false when a callback has ended this utterance.
    bool Report(const SpeakingPtr& speaking, std::int64_t heard);
    void End(const SpeakingPtr& speaking, bool ok);
    void PostToSelf(std::function<void()> action);
    /// Ends an utterance as failed, from the event loop.
    void FailLater(const SpeakingPtr& speaking);

    VoiceCatalog& catalog_;
    AudioOutput& output_;
    const std::chrono::milliseconds restAfter_;
    SpeakingPtr current_;
    std::shared_ptr<int> alive_ = std::make_shared<int>(0); // posted actions check that it still exists
    const std::weak_ptr<int> self_ = alive_; // the worker copies this; it never changes, so it needs no lock

    std::mutex mutex_;
    std::condition_variable wake_;
    std::shared_ptr<SpeechJob> nextJob_;
    Work nextWork_;
    bool quit_ = false;
    std::thread worker_;
};

} // namespace voxmate::speech
