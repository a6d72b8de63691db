#include "agent/Character.h"

#include "agent/file/PictureCheck.h"

#include <algorithm>
#include <cstdlib>
#include <utility>

namespace voxmate::agent
{

Character::Character(Shared shared, std::string name, std::shared_ptr<const AcsFile> file)
    : shared_(shared), name_(std::move(name)), file_(std::move(file)), body_(shared.stage, *file_),
      balloon_(shared.stage, *file_, [this] { return body_.Outline(); }), idling_(shared.stage, *file_)
{
    if (file_->voice)
        modeId_ = GuidText(file_->voice->mode);
    body_.Moved = [this] { balloon_.Follow(); };
    body_.Mouse = [this](const MouseEvent& event) {
        if (event.action == MouseAction::Press)
            aloneSince_ = shared_.stage.Now();
        gestures_.Handle(event);
        body_.HoldStill(gestures_.Holds());
    };
    body_.FilesDropped = balloon_.FilesDropped = [this](const std::vector<std::string>& files) {
        shared_.Raise(&AgentControl::FilesDropped, files);
    };
    ConnectGestures();
    CheckPictures();
}

Character::~Character()
{
    // Not StopAll: inside a handler of Hidden that does not reach all requests.
    if (current_)
        Interrupt();
    for (const RequestPtr& request : std::exchange(queue_, {}))
        Conclude(request, RequestStatus::Interrupted);
}

/// Looks through the file's pictures while the character begins, because decoding them all takes too long to wait for.
void Character::CheckPictures()
{
    const auto faults = std::make_shared<PictureFaults>();
    check_ = shared_.stage.InBackground(
        [faults, file = file_](const std::stop_token& stop) { *faults = agent::CheckPictures(*file, stop); },
        [this, faults] {
            if (faults->first.empty())
                return;
            body_.LeaveOut(faults->damaged);
            shared_.Raise(&AgentControl::Damaged, name_, faults->first);
        });
}

AgentRequestPtr Character::Show(bool fast)
{
    Hurry();
    return Enqueue(std::make_shared<Request>(RequestKind::Show, fast));
}

AgentRequestPtr Character::Hide(bool fast)
{
    Hurry();
    return Enqueue(std::make_shared<Request>(RequestKind::Hide, fast));
}

AgentRequestPtr Character::Play(const std::string& animation)
{
    auto request = std::make_shared<Request>(RequestKind::Play);
    request->animation = animation;
    return Enqueue(std::move(request));
}

AgentRequestPtr Character::Speak(std::string text, std::string url)
{
    auto request = std::make_shared<Request>(RequestKind::Speak);
    request->text = std::move(text);
    request->url = std::move(url);
    return Enqueue(std::move(request));
}

std::vector<std::string> Character::AnimationNames() const
{
    std::vector<std::string> names;
    names.reserve(file_->animations.size());
    for (const Animation& animation : file_->animations)
        names.push_back(animation.name);
    return names;
}

void Character::Stop(const AgentRequestPtr& request)
{
    if (!request)
        return;
    if (request == current_) {
        Interrupt();
    } else if (const auto queued = std::ranges::find(queue_, request); queued != queue_.end()) {
        const RequestPtr dropped = *queued;
        queue_.erase(queued);
        Conclude(dropped, RequestStatus::Interrupted);
    }
}

void Character::StopAll(const std::string& types)
{
    const auto stops = [this, wanted = ParseStopTypes(types)](const Request& request) {
        return wanted.Includes(request.kind) && shared_.order.Reaches(request.number);
    };
    if (current_ && stops(*current_))
        Interrupt();
    else if (current_ && shared_.order.Reaches(current_->number))
        Hurry();
    std::deque<RequestPtr> kept;
    for (const RequestPtr& request : queue_) {
        if (stops(*request))
            Conclude(request, RequestStatus::Interrupted);
        else
            kept.push_back(request);
    }
    queue_ = std::move(kept);
}

void Character::HideByUser()
{
    StopAll("");
    auto request = std::make_shared<Request>(RequestKind::Hide);
    request->byUser = true;
    Enqueue(std::move(request));
}

void Character::ConnectGestures()
{
    const auto raise = [this](auto event) {
        return
            [this, event](int button, int shift, Point at) { shared_.Raise(event, name_, button, shift, at.x, at.y); };
    };
    gestures_.Click = raise(&AgentControl::Click);
    gestures_.DblClick = raise(&AgentControl::DblClick);
    gestures_.DragStart = raise(&AgentControl::DragStart);
    gestures_.DragComplete = raise(&AgentControl::DragComplete);
    gestures_.Drag = [this](Point topLeft, Point pointer) { body_.DragTo(topLeft, pointer); };
    gestures_.Menu = [this](Point screen) {
        shared_.stage.PopupMenu(commands_.Menu(), screen,
                                [this, alive = std::weak_ptr<int>(alive_)](const std::string& name) {
                                    if (alive.expired())
                                        return;
                                    if (name == CommandList::HideName)
                                        HideByUser();
                                    else
                                        shared_.Raise(&AgentControl::Command, name);
                                });
    };
}

/// Called when there is nothing to do: goes home from a pose that nobody asked for, then idles now and then.
void Character::Rest()
{
    if (!body_.Visible() || current_)
        return;
    if (unsettled_) {
        GoHome();
        return;
    }
    // The queue may hold a request that waits for another character's voice.
    if (body_.Moving() || !queue_.empty())
        return;
    idleTimer_.reset();
    Breathe();
    if (life_ == IdleLife::None)
        return;
    const int delay = idling_.Delay(aloneSince_);
    if (delay >= 0)
        idleTimer_ = shared_.stage.After(delay, [this] { Idle(); });
}

void Character::GoHome()
{
    unsettled_ = false;
    playsIdle_ = false;
    body_.Leave(nullptr, [this] {
        body_.StandNeutral();
        Rest();
    });
}

void Character::Idle()
{
    idleTimer_.reset();
    const Animation* animation = idling_.Choose(aloneSince_, body_.Blinks());
    if (!animation) {
        Rest();
        return;
    }
    PlayIdle(*animation);
}

void Character::PlayIdle(const Animation& animation)
{
    playsIdle_ = true;
    body_.Leave(&animation, [this, &animation] { body_.Play(animation, [this] { GoHome(); }); });
}

void Character::SetIdleLife(IdleLife life)
{
    const IdleLife before = std::exchange(life_, life);
    if (before == life || !body_.Visible() || current_ || !queue_.empty() || walks_)
        return;
    if (life == IdleLife::None && playsIdle_)
        StopIdling();
    if (playsIdle_)
        return;
    const Animation* waking =
        before == IdleLife::None ? PickAnimation(shared_.stage, StateAnimations(*file_, "Waking")) : nullptr;
    if (waking && !body_.Moving() && !unsettled_) {
        idleTimer_.reset();
        PlayIdle(*waking);
    } else if (before == IdleLife::None || life == IdleLife::None) {
        Rest();
    } else {
        Breathe();
    }
}

void Character::Breathe()
{
    if (life_ == IdleLife::Full || life_ == IdleLife::Slow)
        body_.Breathe(life_ == IdleLife::Slow);
    else
        body_.HoldBreath();
}

bool Character::MayGo() const
{
    return !gestures_.Holds() && !(current_ && current_->kind == RequestKind::Hide);
}

bool Character::StandAside(Point window, Going how)
{
    if (!MayGo())
        return false;
    Walk(window, how);
    return true;
}

bool Character::StandAtHome()
{
    if (body_.Visible() && (!MayGo() || body_.Gliding()))
        return false;
    Walk({}, Going::Walk);
    return true;
}

/// Goes to a place for its window, or home. If it walks, and has nothing else to do, it plays an animation of that.
void Character::Walk(std::optional<Point> window, Going how)
{
    const bool appears = current_ && current_->kind == RequestKind::Show;
    const Rect from = body_.Place().Window;
    body_.StandAside(window, how == Going::Walk && !appears, [this] { Arrived(); });
    if (!body_.Gliding() || current_ || !queue_.empty())
        return;
    const Rect to = body_.Place().Window;
    const bool aslant = std::abs(to.x - from.x) < std::abs(to.y - from.y);
    const char* state = aslant          ? (to.y < from.y ? "MovingUp" : "MovingDown")
                        : to.x < from.x ? "MovingLeft"
                                        : "MovingRight";
    const Animation* moving = PickAnimation(shared_.stage, StateAnimations(*file_, state));
    if (!moving)
        return;
    StopIdling();
    unsettled_ = false;
    walks_ = playsIdle_ = true; // like an idle animation it gives way to any request
    body_.Leave(moving, [this, moving] { body_.Play(*moving, nullptr); });
}

void Character::Arrived()
{
    if (std::exchange(walks_, false) && !current_)
        GoHome();
}

/// There is something to do: leaves an idle animation at once, and begins none.
void Character::StopIdling()
{
    idleTimer_.reset();
    body_.HoldBreath();
    walks_ = false;
    if (!std::exchange(playsIdle_, false))
        return;
    body_.Forget();
    unsettled_ = true;
}

} // namespace voxmate::agent
