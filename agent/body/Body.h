// The character as it stands on the desktop: its window, its place and size, the frame on show with its mouth, and the
// sounds of its frames. Knows nothing of requests.
#pragma once

#include "agent/Stage.h"
#include "agent/body/Animator.h"
#include "agent/body/Painter.h"

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
    Body(const Body&) = delete;
    Body& operator=(const Body&) = delete;

    /// The user's mouse over the character.
    std::function<void(const MouseEvent&)> Mouse;
    /// The body has moved or changed its size.
    std::function<void()> Moved;

    bool Visible() const { return visible_; }
    /// Puts the window on the screen, with the picture it has by then: at its place, wholly on the work area.
    void Appear();
    /// Takes it away; nothing plays any more.
    void Vanish();

    Size ScreenSize() const { return size_; }
    /// Scales the picture; below 1 means 1. The feet, the middle of the lower edge, stay where they are, if there is
    /// room.
    void SetScreenSize(Size size);
    /// Moves the window's upper left corner to a point; the character's middle stays on the work area of the screen
    /// that holds `pointer`, so that it can always be taken hold of again.
    void DragTo(Point topLeft, Point pointer);
    Point Place() const { return place_; }
    /// Where the user has put the feet; nothing while the body stands where it first appeared.
    std::optional<Point> Feet() const { return feet_; }
    /// Puts the feet at a point, as if by the user; the body stays wholly on the work area.
    void StandAt(Point feet);
    /// Comes back onto the work area if its middle lies on none.
    void ComeBack();
    /// Screens or work areas have changed. A body that the user has not placed keeps its distance from the corner; one
    /// whose place is on no screen any more goes to the nearest, and back when there is a screen again.
    void ScreensChanged();
    /// The drawn part of the character on the screen: of its neutral pose and of the one it stood in at TakeOutline.
    Rect Outline() const;
    void TakeOutline();

    /// Plays, leaves and forgets animations as Animator does.
    void Play(const Animation& animation, std::function<void()> done) { animator_.Play(animation, std::move(done)); }
    void PlayToEnd(const Animation& animation, std::function<void(bool givenUp)> done)
    {
        animator_.PlayToEnd(animation, std::move(done));
    }
    void Hurry() { animator_.Hurry(); }
    void Leave(const Animation* next, std::function<void()> done) { animator_.Leave(next, std::move(done)); }
    void Forget();
    /// Stands in the neutral pose; stays as it is when the character has no pose of that kind.
    void StandNeutral();
    bool Moving() const { return animator_.Moving(); }
    /// Whether the frame on show has mouths.
    bool HasMouths() const { return animator_.Shown() && animator_.Shown()->HasMouths(); }

    /// The images of these numbers cannot be decoded: what shows them is passed over, and when that is the neutral pose
    /// another takes its place.
    void LeaveOut(const std::vector<bool>& damaged);

    /// 0 to 6: the mouth of a character that speaks; negative: it does not speak.
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
    Rect Home() const;
    Rect OnScreen() const { return {place_.x, place_.y, size_.width, size_.height}; }

    Stage& stage_;
    const AcsFile& file_;
    std::unique_ptr<CharacterWindow> window_;
    Painter painter_;
    Animator animator_;
    const Frame* neutral_ = nullptr;
    int mouth_ = -1;
    bool soundsOn_ = true;
    bool soundStarted_ = false;
    bool visible_ = false;
    Size size_;
    Point place_;
    std::optional<Point> feet_; ///< as the user wants them; a work area may leave no room just there
    bool displaced_ = false;    ///< no work area reaches as far as that
    Rect outline_;              ///< in the file's pixels
};

} // namespace voxmate::agent
