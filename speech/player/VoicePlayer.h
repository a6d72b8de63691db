// The voice channel over the engines of a catalogue and a sound output.
#pragma once

#include "speech/AudioOutput.h"
#include "speech/VoiceCatalog.h"
#include "speech/VoiceOutput.h"
#include "speech/player/SpeechJob.h"

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
    /// Both must outlive the player. Everything but the synthesis happens on the thread that makes it.
    VoicePlayer(VoiceCatalog& catalog, AudioOutput& output);
    /// Stops at once and waits for the engine to give way; no callback comes any more.
    ~VoicePlayer() override;

    int Status() override;
    void Start(Utterance utterance, VoiceEvents events) override;
    void Stop() override;

private:
    /// The engine's work on one utterance: fills the job, true when that went well.
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
    /// Does an utterance's work; what it throws is thrown again in the event loop, and the utterance ends badly.
    bool Run(const Work& work, SpeechJob& job);
    void OpenStream(const SpeakingPtr& speaking, int samplesPerSecond);
    void Poll(const SpeakingPtr& speaking);
    /// Reports what lies before sample `heard`; false when a callback has put an end to this utterance.
    bool Report(const SpeakingPtr& speaking, std::int64_t heard);
    void End(const SpeakingPtr& speaking, bool ok);
    void PostToSelf(std::function<void()> action);

    VoiceCatalog& catalog_;
    AudioOutput& output_;
    SpeakingPtr current_;
    std::shared_ptr<int> alive_ = std::make_shared<int>(0); // posted actions look whether it is still there
    const std::weak_ptr<int> self_ = alive_;                // and the worker copies this, which nobody changes

    std::mutex mutex_;
    std::condition_variable wake_;
    std::shared_ptr<SpeechJob> nextJob_;
    Work nextWork_;
    bool quit_ = false;
    std::thread worker_;
};

} // namespace voxmate::speech
