#include "agent/body/Body.h"

#include "agent/balloon/BalloonPlace.h"

#include <algorithm>
#include <utility>

namespace voxmate::agent
{

namespace
{

// Distance in pixels from the lower right corner of the work area, at which a character stands until the user moves it.
constexpr int kRightMargin = 40;
constexpr int kLowerMargin = 16;

/// The neutral pose: the first frame of RestPose.
const Frame* NeutralFrame(const AcsFile& file)
{
    const Animation* const rest = file.FindAnimation("RestPose");
    return rest ? rest->FirstDrawn() : nullptr;
}

/// A frame that can be drawn, preferably one to speak in, because that shows the whole figure.
const Frame* AnySound(const AcsFile& file, const Painter& painter)
{
    const Frame* any = nullptr;
    for (const Animation& animation : file.animations)
        for (const Frame& frame : animation.frames) {
            if (frame.duration == 0 || !painter.IsSound(frame))
                continue;
            if (frame.HasMouths())
                return &frame;
            any = any ? any : &frame;
        }
    return any;
}

Rect United(const Rect& a, const Rect& b)
{
    if (a.width == 0)
        return b;
    if (b.width == 0)
        return a;
    const int x = std::min(a.x, b.x);
    const int y = std::min(a.y, b.y);
    return {x, y, std::max(a.Right(), b.Right()) - x, std::max(a.Bottom(), b.Bottom()) - y};
}

} // namespace

Body::Body(Stage& stage, const AcsFile& file)
    : stage_(stage), file_(file), window_(stage.CreateCharacterWindow()), painter_(file, *window_),
      animator_(
          stage, file, [this](const Frame& frame) { ShowFrame(frame); },
          [this](const Frame& frame) { PlaySound(frame); }),
      breathing_(stage, file,
                 [this](const Frame&) {
                     // A loop of some 60 pictures is longer than what is remembered: none would be found again.
                     painter_.Forget();
                     Redraw();
                 }),
      neutral_(NeutralFrame(file)), size_{std::max<int>(1, file.width), std::max<int>(1, file.height)},
      glide_(stage, [this](Point place) {
          place_ = place;
          window_->MoveTo(place_);
          TellMoved();
      })
{
    window_->Mouse = [this](const MouseEvent& event) {
        if (Mouse)
            Mouse(event);
    };
    window_->FilesDropped = [this](const std::vector<std::string>& files) {
        if (FilesDropped)
            FilesDropped(files);
    };
    window_->Moved = [this](Point place) {
        TakePlace(place);
        TellMoved();
    };
    Settle();
}

Body::~Body()
{
    StopSound();
}

void Body::Appear()
{
    if (!animator_.Shown()) {
        // The character appears without a showing animation.
        const Frame* frame = neutral_;
        for (auto animation = file_.animations.begin(); !frame && animation != file_.animations.end(); ++animation)
            frame = animation->FirstDrawn();
        if (frame)
            animator_.Stand(*frame);
    }
    ShowSomething();
    Settle();
    visible_ = true;
    window_->SetVisible(true);
}

void Body::Vanish()
{
    if (glide_.Going())
        Settle();
    breathing_.Stop();
    animator_.Clear();
    StopSound();
    visible_ = false;
    window_->SetVisible(false);
}

/// The window with the feet at a point; without one, where it is.
Rect Body::Wanted(const std::optional<Point>& feet) const
{
    if (!feet)
        return OnScreen();
    return {feet->x - size_.width / 2, feet->y - size_.height, size_.width, size_.height};
}

/// The place of a body that nobody has placed.
Rect Body::Corner() const
{
    const Rect area = stage_.PrimaryWorkArea();
    return MovedInside({area.Right() - size_.width - kRightMargin, area.Bottom() - size_.height - kLowerMargin,
                        size_.width, size_.height},
                       area);
}

/// Where a body that has been sent aside goes back to. The user may have dragged a part of it off the work area.
Rect Body::HomeRect() const
{
    if (!feet_)
        return Corner();
    const Rect wanted = Wanted(feet_);
    const Rect area = stage_.WorkArea(wanted.Middle());
    return area.Contains(wanted.Middle()) ? wanted : MovedInside(wanted, area);
}

Rect Body::Destination() const
{
    const Point place = glide_.Going() ? glide_.To() : place_;
    return {place.x, place.y, size_.width, size_.height};
}

/// Puts the window where it belongs when nobody is dragging it: wholly on a work area.
void Body::Settle()
{
    glide_.Stop();
    Rect there = Corner();
    if (const std::optional<Point>& feet = aside_ ? aside_ : feet_) {
        const Rect wanted = Wanted(feet);
        const Rect area = stage_.WorkArea(wanted.Middle());
        displaced_ = !aside_ && !area.Contains(wanted.Middle());
        there = MovedInside(wanted, area);
    }
    place_ = {there.x, there.y};
    window_->MoveTo(place_);
}

CharacterPlace Body::PlaceAt(const Rect& window)
{
    return {window, InWindow(neutral_ ? painter_.Outline(*neutral_) : Rect{}, window)};
}

void Body::StandAside(std::optional<Point> topLeft, bool glides, std::function<void()> done)
{
    const Rect home = HomeRect();
    aside_.reset();
    if (topLeft)
        aside_ = FeetAt(*topLeft);
    if (visible_ && glides) {
        glide_.Start(place_, topLeft.value_or(Point{home.x, home.y}), std::move(done));
        return;
    }
    Settle();
    TellMoved();
    if (done)
        done();
}

void Body::HoldStill(bool held)
{
    if (held)
        glide_.Pause();
    else
        glide_.GoOn(place_);
}

void Body::StandAsideAt(Point feet)
{
    aside_ = feet;
    Settle();
    TellMoved();
}

void Body::SetScreenSize(Size size)
{
    size = {std::max(1, size.width), std::max(1, size.height)};
    if (size == size_)
        return;
    size_ = size;
    Redraw();
    Settle();
    TellMoved();
}

void Body::DragTo(Point topLeft, Point pointer)
{
    const Rect area = stage_.WorkArea(pointer);
    const int halfWidth = size_.width / 2;
    const int halfHeight = size_.height / 2;
    const Point place{std::clamp(topLeft.x, area.x - halfWidth, std::max(area.x, area.Right() - 1) - halfWidth),
                      std::clamp(topLeft.y, area.y - halfHeight, std::max(area.y, area.Bottom() - 1) - halfHeight)};
    const bool moves = place != place_;
    TakePlace(place);
    if (!moves)
        return;
    window_->MoveTo(place_);
    TellMoved();
}

void Body::StandAt(Point feet)
{
    feet_ = feet;
    Settle();
    TellMoved();
}

void Body::ComeBack()
{
    if (glide_.Going())
        return;
    const Point middle = OnScreen().Middle();
    if (stage_.WorkArea(middle).Contains(middle))
        return;
    Settle();
    TellMoved();
}

void Body::ScreensChanged()
{
    if (!visible_)
        return;
    // The place aside was chosen for other screens.
    if (aside_) {
        aside_.reset();
        Settle();
    }
    const Rect home = Wanted(feet_);
    if (displaced_ && stage_.WorkArea(home.Middle()).Contains(home.Middle())) {
        displaced_ = false;
        place_ = {home.x, home.y};
        window_->MoveTo(place_);
    } else if (displaced_ || !feet_) {
        Settle();
    } else {
        ComeBack();
    }
    // Even if the body stays where it is, the room for its balloon has changed.
    TellMoved();
}

/// Notes that the user has put the window at `place`.
void Body::TakePlace(Point place)
{
    displaced_ = false;
    place_ = place;
    feet_ = FeetAt(place);
    aside_.reset();
    glide_.Stop();
}

/// A part of the file's picture on the screen; the whole window if there is none.
Rect Body::InWindow(const Rect& outline, const Rect& window) const
{
    if (outline.width == 0 || file_.width == 0 || file_.height == 0)
        return window;
    const auto scaledX = [this](int x) { return static_cast<int>(std::int64_t{x} * size_.width / file_.width); };
    const auto scaledY = [this](int y) { return static_cast<int>(std::int64_t{y} * size_.height / file_.height); };
    const int left = scaledX(outline.x);
    const int top = scaledY(outline.y);
    return {window.x + left, window.y + top, scaledX(outline.Right()) - left, scaledY(outline.Bottom()) - top};
}

void Body::TakeOutline()
{
    outline_ = neutral_ ? painter_.Outline(*neutral_) : Rect{};
    if (animator_.Shown() && !animator_.Moving())
        outline_ = United(outline_, painter_.Outline(*animator_.Shown()));
}

void Body::Forget()
{
    animator_.Forget();
    StopSound();
}

void Body::Breathe(bool slowly)
{
    breathing_.SetSlow(slowly);
    if (visible_ && !animator_.Moving() && neutral_ && animator_.Shown() &&
        animator_.Shown()->images == neutral_->images)
        breathing_.Begin();
}

void Body::HoldBreath()
{
    if (!breathing_.Shown())
        return;
    breathing_.Stop();
    Redraw();
}

void Body::StandNeutral()
{
    breathing_.Stop();
    if (neutral_)
        animator_.Stand(*neutral_);
    painter_.Forget();
}

void Body::LeaveOut(const std::vector<bool>& damaged)
{
    painter_.LeaveOut(damaged);
    if (neutral_ && !painter_.IsSound(*neutral_)) {
        const bool stands = !animator_.Moving() && animator_.Shown() == neutral_;
        if (const Frame* other = AnySound(file_, painter_))
            neutral_ = other;
        if (stands)
            StandNeutral();
    }
    if (visible_)
        ShowSomething();
}

/// Shows the neutral pose if nothing is on show because no picture that was due could be drawn.
void Body::ShowSomething()
{
    if (painter_.Empty() && neutral_)
        painter_.Show(*neutral_, mouth_, size_);
}

bool Body::GoesOnWith(const Animation& animation) const
{
    const Frame* const first = animation.FirstDrawn();
    return first && animator_.Shown() && first->images == animator_.Shown()->images;
}

void Body::SetMouth(int mouth)
{
    if (mouth == mouth_)
        return;
    mouth_ = mouth;
    Redraw();
}

void Body::SetSoundEffectsOn(bool on)
{
    soundsOn_ = on;
    if (!on)
        StopSound();
}

void Body::ShowFrame(const Frame& frame)
{
    Redraw();
    PlaySound(frame);
}

void Body::PlaySound(const Frame& frame)
{
    if (!soundsOn_ || frame.sound < 0 || static_cast<std::size_t>(frame.sound) >= file_.SoundCount())
        return;
    try {
        stage_.PlaySound(file_.Sound(static_cast<std::size_t>(frame.sound)));
        soundStarted_ = true;
    } catch (const AcsError&) {
        // The file has gone or was cut short. The character goes on without the sound.
    }
}

void Body::Redraw()
{
    if (const Frame* const frame = breathing_.Shown() ? breathing_.Shown() : animator_.Shown())
        painter_.Show(*frame, mouth_, size_);
}

void Body::StopSound()
{
    if (std::exchange(soundStarted_, false))
        stage_.StopSound();
}

} // namespace voxmate::agent
