// The character on the desktop: its window, place and size, the frame on show with its mouth, and the sounds of its
// frames. Knows nothing of requests.
#pragma once

#include "agent/Stage.h"
#include "agent/body/Animator.h"
#include "agent/body/Breathing.h"
#include "agent/body/Glide.h"
#include "agent/body/Painter.h"
#include "platform/Agent.h"

#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace voxmate::agent
{

class Body
{
public:
    /// Both references outlive the body.
    Body(Stage& stage, const AcsFile& file);
    ~Body();

    /// A mouse event on the character.
    std::function<void(const MouseEvent&)> Mouse;
    std::function<void(const std::vector<std::string>& files)> FilesDropped;
    /// The body has moved or changed its size.
    std::function<void()> Moved;

    bool Visible() const { return visible_; }
    /// Puts the window on the screen, with the picture it has by then, at its place and wholly on the work area.
    void Appear();
    /// Takes the window off the screen and ends all animation.
    void Vanish();

    Size ScreenSize() const { return size_; }
    /// Scales the picture; a width or height below 1 means 1. The feet (the middle of the lower edge) stay where they
    /// are if there is room.
    void SetScreenSize(Size size);
    /// Moves the window's upper left corner to `topLeft`. The character's middle stays on the work area of the screen
    /// that holds `pointer`, so that the user can always take hold of it again.
    void DragTo(Point topLeft, Point pointer);
    /// Where the body stands or is gliding to, and where it stands when it has not been sent aside.
    CharacterPlace Place() { return PlaceAt(Destination()); }
    CharacterPlace Home() { return PlaceAt(aside_ ? HomeRect() : Destination()); }
    /// Sends the window's upper left corner to `topLeft`, or home, and calls `done` on arrival, or when the body is put
    /// elsewhere on its way. What the user has chosen as its place remains its home. A hidden body is there at once;
    /// with `glides` a visible one takes the time of a Glide.
    void StandAside(std::optional<Point> topLeft, bool glides, std::function<void()> done);
    bool Gliding() const { return glide_.Going(); }
    /// Stays on its way aside or home where it is while the user holds it, then goes on.
    void HoldStill(bool held);
    /// Where the user has put the feet; nothing while the body stands where it first appeared.
    std::optional<Point> Feet() const { return feet_; }
    /// Puts the feet at a point as if the user had; the body stays wholly on the work area.
    void StandAt(Point feet);
    /// Where the feet have been sent aside; nothing while the body is at home. StandAsideAt sends them at once.
    std::optional<Point> FeetAside() const { return aside_; }
    void StandAsideAt(Point feet);
    /// Moves back onto the work area if the body's middle lies on none.
    void ComeBack();
    /// Screens or work areas have changed. A body that the user has not placed keeps its distance from the corner. A
    /// body whose place is no longer on any screen goes to the nearest one, and back when a screen covers its place
    /// again.
    void ScreensChanged();
    /// The drawn part of the character on the screen, as measured by TakeOutline: its neutral pose and the pose it
    /// stood in then, together. Without a measure it is the whole window.
    Rect Outline() const { return OutlineAt(place_); }
    /// The same for a window whose upper left corner is at a point.
    Rect OutlineAt(Point window) const { return InWindow(outline_, {window.x, window.y, size_.width, size_.height}); }
    void TakeOutline();

    /// Plays, leaves and forgets animations as Animator does.
    void Play(const Animation& animation, std::function<void()> done)
    {
        breathing_.Stop();
        animator_.Play(animation, std::move(done));
    }
    void PlayToEnd(const Animation& animation, std::function<void(bool givenUp)> done)
    {
        breathing_.Stop();
        animator_.PlayToEnd(animation, std::move(done));
    }
    void Hurry() { animator_.Hurry(); }
    void Leave(const Animation* next, std::function<void()> done)
    {
        breathing_.Stop();
        animator_.Leave(next, std::move(done));
    }
    /// Breathes, at full or half speed, while it stands in the picture of its neutral pose, until it is to do something
    /// else. For animations it counts as standing still.
    void Breathe(bool slowly);
    /// Whether it breathes and blinks meanwhile.
    bool Blinks() const { return breathing_.Blinks(); }
    /// Stands still in its pose at once.
    void HoldBreath();
    void Forget();
    /// Stands in the neutral pose, and forgets the pictures of what was played before. Without such a pose the
    /// character stays as it is.
    void StandNeutral();
    bool Moving() const { return animator_.Moving(); }
    bool Plays(const Animation& animation) const { return animator_.Plays(animation); }
    /// Whether the animation begins with the very picture on show, so that it can follow without a jump.
    bool GoesOnWith(const Animation& animation) const;
    /// Whether the frame on show has mouths.
    bool HasMouths() const { return animator_.Shown() && animator_.Shown()->HasMouths(); }

    /// The images that cannot be decoded, by number. Frames that show one of them are passed over; if the neutral pose
    /// does, another frame takes its place.
    void LeaveOut(const std::vector<bool>& damaged);

    /// The mouth of a speaking character, 0 to 6; negative while it does not speak.
    void SetMouth(int mouth);
    void SetSoundEffectsOn(bool on);

private:
    void ShowFrame(const Frame& frame);
    void PlaySound(const Frame& frame);
    void Redraw();
    void ShowSomething();
    void StopSound();
    void Settle();
    void TakePlace(Point place);
    void TellMoved() const
    {
        if (Moved)
            Moved();
    }
    Rect Wanted(const std::optional<Point>& feet) const;
    Rect Corner() const;
    Rect HomeRect() const;
    Rect Destination() const;
    CharacterPlace PlaceAt(const Rect& window);
    Rect InWindow(const Rect& outline, const Rect& window) const;
    Point FeetAt(Point topLeft) const { return {topLeft.x + size_.width / 2, topLeft.y + size_.height}; }
    Rect OnScreen() const { return {place_.x, place_.y, size_.width, size_.height}; }

    Stage& stage_;
    const AcsFile& file_;
    std::unique_ptr<CharacterWindow> window_;
    Painter painter_;
    Animator animator_;
    Breathing breathing_;
    const Frame* neutral_ = nullptr;
    int mouth_ = -1;
    bool soundsOn_ = true;
    bool soundStarted_ = false;
    bool visible_ = false;
    Size size_;
    Point place_;
    std::optional<Point> feet_;  ///< where the user wants them; the work area may have no room there
    bool displaced_ = false;     ///< no work area holds that place
    std::optional<Point> aside_; ///< where they have been sent for a while
    Rect outline_;               ///< in the file's pixels
    Glide glide_;
};

} // namespace voxmate::agent
