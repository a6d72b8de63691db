// The character's requests, from their turn to their end.
#include "agent/Character.h"
#include "agent/text/Markup.h"

#include <algorithm>
#include <utility>

namespace voxmate::agent
{

namespace
{

/// Whether an animation moves, with a mouth in every picture.
bool SpeaksThroughout(const Animation& animation)
{
    int seen = 0;
    for (const Frame& frame : animation.frames) {
        if (frame.duration == 0)
            continue;
        if (!frame.HasMouths())
            return false;
        ++seen;
    }
    return seen > 1;
}

} // namespace

RequestPtr Character::Enqueue(RequestPtr request)
{
    request->number = shared_.order.Next();
    queue_.push_back(request);
    Wake();
    return request;
}

void Character::Wake()
{
    if (!wakeTimer_ && !running_)
        wakeTimer_ = shared_.stage.After(0, [this] { RunQueue(); });
}

void Character::RunQueue()
{
    wakeTimer_.reset();
    running_ = true;
    if (!current_ && !queue_.empty())
        StopIdling();
    while (!current_ && !queue_.empty()) {
        const RequestPtr& next = queue_.front();
        if (next->kind == RequestKind::Speak && body_.Visible() && !shared_.turn.Take(this))
            break; // another character is speaking; VoiceTurn::Freed wakes this one
        current_ = next;
        queue_.pop_front();
        Begin();
    }
    running_ = false;
    if (!current_)
        Rest();
}

void Character::Begin()
{
    const RequestPtr request = current_;
    const Animation* animation =
        request->kind == RequestKind::Play ? file_->FindAnimation(request->animation) : nullptr;
    const bool visible = body_.Visible();
    if ((request->kind == RequestKind::Play && (!visible || !animation)) ||
        (request->kind == RequestKind::Speak && !visible)) {
        End(RequestStatus::Failed);
        return;
    }
    request->status = RequestStatus::InProgress;
    if (!request->byUser)
        shared_.Raise(&AgentControl::RequestStart, AgentRequestPtr(request));
    switch (request->kind) {
    case RequestKind::Show:
        if (visible) {
            body_.ComeBack();
            End(RequestStatus::Complete);
        } else {
            BeginShow();
        }
        break;
    case RequestKind::Hide:
        if (visible)
            BeginHide();
        else
            End(RequestStatus::Complete);
        break;
    case RequestKind::Play:
        BeginPlay(*animation);
        break;
    case RequestKind::Speak:
        BeginSpeak();
        break;
    }
}

void Character::BeginShow()
{
    const auto shown = [this] {
        shared_.Raise(&AgentControl::Shown, name_, VisibilityCause::ProgramShowed);
        End(RequestStatus::Complete);
    };
    const Animation* showing =
        current_->fast ? nullptr : PickAnimation(shared_.stage, StateAnimations(*file_, "Showing"));
    unsettled_ = false;
    if (!showing) {
        body_.Appear();
        shown();
        return;
    }
    // The first frame is drawn before the window appears, so that no older picture flashes up.
    body_.PlayToEnd(*showing, [this, shown](bool givenUp) {
        if (givenUp)
            body_.StandNeutral();
        shown();
    });
    body_.Appear();
}

void Character::BeginHide()
{
    idleTimer_.reset();
    balloon_.Hide();
    const Animation* hiding =
        current_->fast ? nullptr : PickAnimation(shared_.stage, StateAnimations(*file_, "Hiding"));
    if (!hiding) {
        Gone();
        return;
    }
    unsettled_ = false;
    body_.Leave(hiding, [this, hiding] { body_.PlayToEnd(*hiding, [this](bool) { Gone(); }); });
}

/// The hiding is complete.
void Character::Gone()
{
    idleTimer_.reset();
    balloon_.Hide();
    gestures_.Reset();
    unsettled_ = false;
    body_.Vanish();
    RaiseHidden(*current_);
    End(RequestStatus::Complete);
}

/// Raises Hidden. A handler of it that stops everything means what was going on when the hiding began. More may have
/// been asked for by the time the handler runs; that must not be lost, so StopAll does not reach it.
void Character::RaiseHidden(const Request& hide)
{
    const VisibilityCause cause = hide.byUser ? VisibilityCause::UserHid : VisibilityCause::ProgramHid;
    shared_.events.Post(
        [&control = shared_.control, &order = shared_.order, name = name_, cause, number = hide.number] {
            if (const auto hidden = control.Hidden)
                order.RunBefore(number, [&] { hidden(name, cause); });
        });
}

void Character::BeginPlay(const Animation& animation)
{
    idleTimer_.reset();
    unsettled_ = false;
    body_.Leave(&animation, [this, &animation] { body_.Play(animation, [this] { End(RequestStatus::Complete); }); });
}

void Character::BeginSpeak()
{
    ParsedText marked = ParseMarkup(current_->text);
    if (marked.sayLastAgain && current_->url.empty()) {
        marked = ParseMarkup(lastText_);
    } else {
        // Swapped, not assigned: an assigned short text would keep the memory of a long one.
        lastText_.swap(current_->text);
        std::string().swap(current_->text);
        lastUrl_ = std::move(current_->url);
    }
    const std::string& url = lastUrl_;
    if (marked.segments.empty() && marked.shown.empty() && url.empty()) {
        balloon_.Hide();
        End(RequestStatus::Complete);
        return;
    }
    speech::Utterance utterance;
    utterance.modeId = modeId_;
    if (utterance.modeId.size() >= 2 && utterance.modeId.front() == '{' && utterance.modeId.back() == '}')
        utterance.modeId = utterance.modeId.substr(1, utterance.modeId.size() - 2);
    utterance.waveFile = url;
    utterance.shownWords = marked.words;
    utterance.segments = std::move(marked.segments);
    if (!url.empty())
        std::erase_if(utterance.segments,
                      [](const auto& segment) { return segment.kind != speech::Segment::Kind::Bookmark; });
    StartSpeech(std::move(marked.shown), std::move(utterance));
}

/// The voice is started first: what the body has to do before it can be seen speaking must not be heard as a delay.
void Character::StartSpeech(std::string shown, speech::Utterance utterance)
{
    idleTimer_.reset();
    const auto speech = std::make_shared<Speech>();
    const auto first = std::find_if(utterance.segments.begin(), utterance.segments.end(), [](const auto& segment) {
        return segment.kind != speech::Segment::Kind::Bookmark;
    });
    speech->pausesFirst = first != utterance.segments.end() && first->kind == speech::Segment::Kind::Pause;
    speech_ = speech;
    body_.TakeOutline();
    shared_.voice.Start(std::move(utterance), SpeechEvents());
    if (speech_ != speech)
        return;
    balloon_.Begin(std::move(shown));
    TakeSpeakingPose();
}

speech::VoiceEvents Character::SpeechEvents()
{
    const auto guarded = [this](auto action) {
        return [action, speech = std::weak_ptr<Speech>(speech_)](auto... arguments) {
            if (!speech.expired())
                action(arguments...);
        };
    };
    speech::VoiceEvents events;
    events.Started = guarded([this] {
        body_.SetMouth(MouthClosed);
        if (!speech_->pausesFirst)
            BeginWord(0);
    });
    events.Word = guarded([this](int word) { BeginWord(word); });
    events.Mouth = guarded([this](int mouth) { body_.SetMouth(std::clamp<int>(mouth, 0, MouthCount - 1)); });
    events.Bookmark = guarded([this](int number) { shared_.Raise(&AgentControl::Bookmark, number); });
    events.Ended = guarded([this](bool ok) { SpeechEnded(ok); });
    return events;
}

void Character::BeginWord(int word)
{
    balloon_.Word(word);
    shared_.Raise(&AgentControl::Word, AgentRequestPtr(current_), word);
}

void Character::SpeechEnded(bool ok)
{
    EndSpeech();
    if (ok)
        balloon_.Ended();
    else
        balloon_.Hide();
    End(ok ? RequestStatus::Complete : RequestStatus::Failed);
}

void Character::EndSpeech()
{
    speech_.reset();
    body_.SetMouth(-1);
    shared_.turn.GiveBack(this);
}

/// Takes a pose to speak in. A frame on show that has mouths will do. A body that talks already,
/// because another text has just been spoken, goes on. Otherwise the character goes, by way of its neutral pose, to an
/// animation of the state Speaking; without one it stays in the neutral pose. The voice may already be heard meanwhile.
void Character::TakeSpeakingPose()
{
    if (talk_ && body_.Plays(*talk_))
        return;
    if (!body_.Moving() && body_.HasMouths()) {
        GoOnTalking();
        return;
    }
    unsettled_ = false;
    body_.Leave(nullptr, [this] {
        body_.StandNeutral();
        if (!speech_) {
            Rest(); // the speech ended before it got there
            return;
        }
        const Animation* speaking = PickAnimation(shared_.stage, SpeakingAnimations());
        if (!speaking)
            return;
        unsettled_ = true;
        talk_ = SpeaksThroughout(*speaking) ? speaking : nullptr;
        body_.Play(*speaking, [this, begun = shared_.stage.Now()] {
            // Plays one more, unless this one ended in a frame with mouths. An animation that took no time has nothing
            // to show; repeating it would never end.
            if (shared_.stage.Now() > begun)
                TakeSpeakingPose();
        });
    });
}

/// Moves the body in the pose in which it stands and speaks, if the character has an animation for that: one of the
/// state Speaking, or SpeakingInPose, that begins with the picture on show and moves the mouth throughout. Without one
/// the pose is held. No animation follows itself if there is another.
void Character::GoOnTalking()
{
    std::vector<const Animation*> ways = StateAnimations(*file_, "Speaking");
    const std::vector<const Animation*> inPose = StateAnimations(*file_, "SpeakingInPose");
    ways.insert(ways.end(), inPose.begin(), inPose.end());
    std::erase_if(ways, [this](const Animation* way) { return !SpeaksThroughout(*way) || !body_.GoesOnWith(*way); });
    if (!speech_ || ways.empty())
        return;
    if (ways.size() > 1)
        std::erase(ways, talk_);
    talk_ = PickAnimation(shared_.stage, ways);
    unsettled_ = true;
    body_.Play(*talk_, [this] { TakeSpeakingPose(); });
}

/// The animations in which a character standing in its neutral pose may speak. If that pose has mouths, animations
/// without any are left out: a mouth that can be seen matters more than a movement.
std::vector<const Animation*> Character::SpeakingAnimations() const
{
    std::vector<const Animation*> animations = StateAnimations(*file_, "Speaking");
    if (body_.HasMouths())
        std::erase_if(animations, [](const Animation* animation) {
            return std::none_of(animation->frames.begin(), animation->frames.end(),
                                [](const Frame& frame) { return frame.duration > 0 && frame.HasMouths(); });
        });
    return animations;
}

/// Keeps an endless showing or hiding animation from delaying what the program is asking for.
void Character::Hurry()
{
    if (current_ && (current_->kind == RequestKind::Show || current_->kind == RequestKind::Hide))
        body_.Hurry();
}

/// Ends the running request.
void Character::End(RequestStatus status)
{
    const RequestPtr request = std::move(current_);
    current_.reset();
    // A Speak that ends without having spoken gives the voice back to others, too.
    if (request->kind == RequestKind::Speak)
        shared_.turn.GiveBack(this);
    aloneSince_ = shared_.stage.Now();
    Conclude(request, status);
    Wake();
}

/// Completes a request that is no longer in the queue.
void Character::Conclude(const RequestPtr& request, RequestStatus status)
{
    request->status = status;
    // The request may be kept for long, but its text, which may be as long as a library, is not read any more.
    std::string().swap(request->text);
    if (!request->byUser)
        shared_.Raise(&AgentControl::RequestComplete, AgentRequestPtr(request));
}

void Character::Interrupt()
{
    if (current_->kind == RequestKind::Speak) {
        EndSpeech();
        shared_.voice.Stop();
        balloon_.Hide();
    } else {
        body_.Forget();
        unsettled_ = true;
        if (current_->kind == RequestKind::Show)
            shared_.Raise(&AgentControl::Shown, name_, VisibilityCause::ProgramShowed);
    }
    End(RequestStatus::Interrupted);
}

} // namespace voxmate::agent
