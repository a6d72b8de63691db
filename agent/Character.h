// One loaded character: its request queue, and all that the character does.
#pragma once

#include "agent/CommandList.h"
#include "agent/EventQueue.h"
#include "agent/Request.h"
#include "agent/VoiceTurn.h"
#include "agent/balloon/Balloon.h"
#include "agent/body/Body.h"
#include "agent/body/Gestures.h"
#include "agent/body/Idling.h"
#include "platform/Agent.h"
#include "speech/VoiceOutput.h"

#include <deque>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace voxmate::agent
{

/// What all characters share. Everything in it outlives the characters.
struct Shared {
    Stage& stage;
    speech::VoiceOutput& voice;
    VoiceTurn& turn;
    RequestOrder& order;
    EventQueue& events;
    AgentControl& control;

    /// Raises an event of the control from the event loop. The handler is looked up when the event is delivered.
    template <class Handler, class... Arguments>
    void Raise(Handler AgentControl::*event, Arguments... arguments)
    {
        events.Post([&control = control, event, arguments...] {
            if (const Handler handler = control.*event)
                handler(arguments...);
        });
    }
};

class Character : public AgentCharacter
{
public:
    Character(Shared shared, std::string name, std::shared_ptr<const AcsFile> file);
    /// Ends all that it does: stops the voice without an event from it, and interrupts its requests, each with its
    /// completion event.
    ~Character() override;

    AgentRequestPtr Show(bool fast) override;
    AgentRequestPtr Hide(bool fast) override;
    AgentRequestPtr Play(const std::string& animation) override;
    AgentRequestPtr Speak(std::string text, std::string url) override;
    void Stop(const AgentRequestPtr& request) override;
    void StopAll(const std::string& types) override;

    AgentBalloon& Balloon() override { return balloon_; }
    AgentCommands& Commands() override { return commands_; }

    int Width() const override { return body_.ScreenSize().width; }
    int Height() const override { return body_.ScreenSize().height; }
    void SetWidth(int width) override { body_.SetScreenSize({width, Height()}); }
    void SetHeight(int height) override { body_.SetScreenSize({Width(), height}); }
    int OriginalWidth() const override { return file_->width; }
    int OriginalHeight() const override { return file_->height; }
    std::string TTSModeID() const override { return modeId_; }
    void SetTTSModeID(const std::string& id) override { modeId_ = id; }
    std::vector<std::string> AnimationNames() const override;
    bool Visible() const override { return body_.Visible(); }
    CharacterPlace Place() override { return body_.Place(); }
    CharacterPlace Home() override { return body_.Home(); }
    bool StandAside(Point window, Going how) override;
    bool StandAtHome() override;
    std::optional<Rect> BalloonAt(Point window) override { return balloon_.Beside(body_.OutlineAt(window)); }

    /// Where the user has put the feet (the middle of the lower edge), by dragging or through the window manager;
    /// nothing while the character stands where it first appeared. StandAt puts the feet at a point as if the user had.
    std::optional<Point> Feet() const { return body_.Feet(); }
    void StandAt(Point feet) { body_.StandAt(feet); }
    /// Where the feet have been sent aside, if they have. StandAsideAt sends them there.
    std::optional<Point> FeetAside() const { return body_.FeetAside(); }
    void StandAsideAt(Point feet) { body_.StandAsideAt(feet); }
    /// To be called when screens or work areas have changed.
    void ScreensChanged() { body_.ScreensChanged(); }
    void SetSoundEffectsOn(bool on) { body_.SetSoundEffectsOn(on); }
    void SetIdleLife(IdleLife life);
    /// Schedules a look at the queue from the event loop.
    void Wake();

private:
    /// A Speak that is being heard. The voice's callbacks hold it weakly: those of a Speak that has ended do nothing.
    struct Speech {
        bool pausesFirst = false; ///< the text begins with a pause: no word is heard when the voice starts
    };

    RequestPtr Enqueue(RequestPtr request);
    void RunQueue();
    void Begin();
    void BeginShow();
    void BeginHide();
    void BeginPlay(const Animation& animation);
    void BeginSpeak();
    speech::VoiceEvents SpeechEvents();
    void StartSpeech(std::string shown, speech::Utterance utterance);
    void BeginWord(int word);
    void SpeechEnded(bool ok);
    void TakeSpeakingPose();
    void GoOnTalking();
    std::vector<const Animation*> SpeakingAnimations() const;
    void EndSpeech();

    void Hurry();
    void End(RequestStatus status);
    void Interrupt();
    void Conclude(const RequestPtr& request, RequestStatus status);
    void HideByUser();
    void Gone();
    void RaiseHidden(const Request& hide);

    void CheckPictures();

    void Rest();
    void GoHome();
    void Idle();
    void PlayIdle(const Animation& animation);
    void Breathe();
    void StopIdling();
    void ConnectGestures();
    bool MayGo() const;
    void Walk(std::optional<Point> window, Going how);
    void Arrived();

    Shared shared_;
    const std::string name_;
    const std::shared_ptr<const AcsFile> file_;
    Body body_;
    agent::Balloon balloon_;
    CommandList commands_;
    Gestures gestures_;
    Idling idling_;
    std::string modeId_; ///< in braces

    std::deque<RequestPtr> queue_; ///< requests whose turn is still to come
    RequestPtr current_;
    std::string lastText_; ///< the text that \Lst\ says again
    std::string lastUrl_;
    std::shared_ptr<Speech> speech_;
    const Animation* talk_ = nullptr; ///< the last animation in which it spoke, if its mouth moved throughout
    bool running_ = false;            ///< RunQueue is running
    bool playsIdle_ = false;          ///< plays an idle animation, or is on the way to one
    IdleLife life_ = IdleLife::Full;
    bool walks_ = false;     ///< the animation that it plays is one of walking
    bool unsettled_ = false; ///< stands in a pose that nobody asked it to hold
    std::int64_t aloneSince_ = 0;
    std::unique_ptr<StageWork> check_; ///< looks through the file's pictures
    std::unique_ptr<StageTimer> wakeTimer_;
    std::unique_ptr<StageTimer> idleTimer_;
    std::shared_ptr<int> alive_ = std::make_shared<int>(0); ///< held weakly by callbacks that may come too late
};

} // namespace voxmate::agent
