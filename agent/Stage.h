// What the character server needs of the front end: frameless windows, timers, text measures, a menu. Everything
// happens on the user-interface thread. Lengths are device-independent pixels; the screen's origin is at its top left.
#pragma once

#include "agent/file/AcsFile.h"
#include "base/Geometry.h"

#include <cstdint>
#include <functional>
#include <memory>
#include <span>
#include <stop_token>
#include <string>
#include <vector>

namespace voxmate::agent
{

enum class MouseAction { Press, Move, Release, DoubleClick };

struct MouseEvent {
    MouseAction action = MouseAction::Move;
    int button = 0; ///< 1 left, 2 right; 0 for Move
    int shift = 0;  ///< 1 shift, 2 control, 4 alt
    Point at;       ///< within the window
    Point screen;   ///< on the screen
};

/// One picture of a character. Pictures with equal keys are equal, so a window need not prepare them twice.
struct Picture {
    std::vector<std::int32_t> key;
    std::shared_ptr<const Bitmap> bitmap;
};

/// The character's window. It shows a bitmap with its transparency, never takes the keyboard and stays on top. Clicks
/// on transparent pixels go to what lies beneath.
class CharacterWindow
{
public:
    virtual ~CharacterWindow() = default;
    /// Shows `picture`, scaled smoothly to `size` (the character's size on the screen). A large picture may appear
    /// later.
    virtual void SetFrame(const Picture& picture, Size size) = 0;
    /// Whether the picture set last has not appeared yet. Another picture set now would appear even later.
    virtual bool Busy() const { return false; }
    /// The picture set last has appeared. Called from the event loop.
    std::function<void()> Ready;
    virtual void MoveTo(Point topLeft) = 0;
    virtual void SetVisible(bool visible) = 0;
    std::function<void(const MouseEvent&)> Mouse;
    /// Files were dropped on the window; as for Form::FilesDropped. Called from the event loop.
    std::function<void(const std::vector<std::string>& files)> FilesDropped;
    /// The window manager has put the visible window elsewhere than MoveTo asked for; `topLeft` is where its upper left
    /// corner really is. Called from the event loop, never inside MoveTo.
    std::function<void(Point topLeft)> Moved;
};

struct BalloonFont {
    std::string name;
    int points = 10;
    bool bold = false;
    bool italic = false;
    bool operator==(const BalloonFont&) const = default;
};

/// What a balloon looks like at one moment.
struct BalloonView {
    std::vector<std::string> lines; ///< the lines on show, from the top; words not yet spoken are left out
    std::vector<bool> rightToLeft;  ///< for each line: whether its paragraph runs from right to left
    int lineHeight = 0;
    Rect bubble;   ///< on the screen, without the tail
    Point tailTip; ///< on the screen; the tail starts at the bubble's edge nearest to it
    BalloonFont font;
    Colour text;
    Colour background;
    Colour border;
    bool operator==(const BalloonView&) const = default;
};

class BalloonWindow
{
public:
    virtual ~BalloonWindow() = default;
    virtual void Show(const BalloonView& view) = 0;
    virtual void Hide() = 0;
    std::function<void(const MouseEvent&)> Mouse;
    /// As for the character's window.
    std::function<void(const std::vector<std::string>& files)> FilesDropped;
};

/// Room between the bubble's edge and its text, and the length of the tail.
inline constexpr int BalloonPadding = 10;
inline constexpr int BalloonTailLength = 16;

struct MenuEntry {
    std::string name;
    std::string caption; ///< "-" is a rule
    bool enabled = true;
};

/// A running timer. Destroying it stops it; its own action may destroy it.
class StageTimer
{
public:
    virtual ~StageTimer() = default;
};

/// Work on a thread of its own. Destroying it asks the work to stop, waits until it has stopped, and drops a call of
/// `done` that is still to come.
class StageWork
{
public:
    virtual ~StageWork() = default;
};

class Stage
{
public:
    virtual ~Stage() = default;
    virtual std::unique_ptr<CharacterWindow> CreateCharacterWindow() = 0;
    virtual std::unique_ptr<BalloonWindow> CreateBalloonWindow() = 0;
    /// The work area (without panels) of the screen that holds `point`, or of the nearest screen.
    virtual Rect WorkArea(Point point) = 0;
    /// The work area of the primary screen.
    virtual Rect PrimaryWorkArea() = 0;
    /// Screens or their work areas have changed: WorkArea and PrimaryWorkArea give new answers from now on. Called from
    /// the event loop.
    std::function<void()> ScreensChanged;
    /// Runs `action` once after `milliseconds`, unless the timer is destroyed first. Precise to a few milliseconds.
    virtual std::unique_ptr<StageTimer> After(int milliseconds, std::function<void()> action) = 0;
    /// Runs `work` on a thread of its own, then `done` from the event loop, unless the returned object is destroyed
    /// first; `done` may destroy it. An exception from `work` comes out of the event loop in place of `done`.
    virtual std::unique_ptr<StageWork> InBackground(std::function<void(std::stop_token)> work,
                                                    std::function<void()> done) = 0;
    /// Milliseconds of a steady clock.
    virtual std::int64_t Now() = 0;
    /// A whole number from 0 to `bound` - 1, at random.
    virtual int Random(int bound) = 0;
    virtual int TextWidth(const BalloonFont& font, const std::string& text) = 0;
    virtual int LineHeight(const BalloonFont& font) = 0;
    virtual int AverageCharWidth(const BalloonFont& font) = 0;
    /// Shows a menu at a point of the screen and returns at once; `chosen` gets the name of the chosen entry.
    virtual void PopupMenu(const std::vector<MenuEntry>& entries, Point at,
                           std::function<void(const std::string& name)> chosen) = 0;
    /// Plays a short RIFF wave file alongside any speech, until it ends or StopSound is called.
    virtual void PlaySound(std::span<const std::uint8_t> wave) = 0;
    virtual void StopSound() = 0;
};

} // namespace voxmate::agent
