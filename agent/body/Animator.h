// Plays animations frame by frame: durations, branches by chance, and the ways out of an animation. Wakes up only when
// a frame is due.
#pragma once

#include "agent/Stage.h"

#include <cstdint>
#include <functional>
#include <limits>
#include <memory>

namespace voxmate::agent
{

class Animator
{
public:
    /// `show` is called with every frame that is to be drawn, in the moment it is due; `pass` with one whose time was
    /// over before its turn came, so that it is not drawn. An animation ends in its last frame all the same. The
    /// references outlive the animator.
    Animator(Stage& stage, const AcsFile& file, std::function<void(const Frame&)> show,
             std::function<void(const Frame&)> pass = nullptr);

    /// Plays an animation from its first frame, at once, whatever was playing. `done` is called when its last frame has
    /// been on show for its time: at once when it has no frame to draw, never when it loops or something else follows.
    void Play(const Animation& animation, std::function<void()> done);

    /// The same for an animation that something waits for, such as one that shows or hides the character: it is given
    /// up after LongestWayOut milliseconds, and `done` is told whether it was.
    void PlayToEnd(const Animation& animation, std::function<void(bool givenUp)> done);

    /// Whoever waits for PlayToEnd, or for a way out, waits only for what ends by itself in time: that is seen to its
    /// end. What goes round from the frame on show, be it by chance, is given up at once, as is what would need more
    /// than LongestWayOut. Told from a timer, never inside this call.
    void Hurry();

    /// Returns to the neutral pose the way the animation says: by its return animation (unless that is `next`, or
    /// `next` begins with the picture on show and has the same return animation), by exit branches from the frame it
    /// stands in, or straight on. `done` is called when the way is gone, at once when there is none. A way already
    /// begun is gone on with, and gone only once.
    ///
    /// Exit branches: the frame on show is left at once for its exit frame. The way ends at a frame without an exit
    /// branch, unless it has led on in the file and what follows there has none either: then it goes on to the end. A
    /// frame that has no exit branch while frames behind it have is followed by the next; without any the animation is
    /// just broken off.
    void Leave(const Animation* next, std::function<void()> done);

    /// The animation goes on but nobody waits for its end any more.
    void Forget() { done_ = nullptr; }

    /// Stands in one frame, which is taken as neutral: nothing to leave.
    void Stand(const Frame& frame);

    /// Ends all motion; nothing is on show.
    void Clear();

    /// Whether frames are to come (or the animation stands in a frame that branches to itself forever).
    bool Moving() const { return moving_; }
    /// The frame on show; null when there is none.
    const Frame* Shown() const { return shown_; }

    /// No way out, and nothing played by PlayToEnd, takes more milliseconds than this; then what follows begins.
    static constexpr int LongestWayOut = 10000;
    /// Frames of no duration that are gone through before an animation counts as ended: no file draws on more.
    static constexpr int MaxUndrawn = 1000;
    /// The moment of what does not come.
    static constexpr std::int64_t Never = std::numeric_limits<std::int64_t>::max();

private:
    enum class Way { Along, Exit, Return };

    void Begin(const Animation& animation, Way way, std::int64_t longest);
    void Enter(int index);
    int After(int index);
    int AfterOnExit(int index, bool& onWayOut) const;
    std::int64_t EndOfExits() const;
    bool StandsStill(const Frame& frame, int index) const;
    void Wait();
    void Pass(const Frame* frame);
    void Tick();
    void End();

    Stage& stage_;
    const AcsFile& file_;
    std::function<void(const Frame&)> show_;
    std::function<void(const Frame&)> pass_;
    std::function<void()> done_;
    const Animation* animation_ = nullptr;
    const Frame* shown_ = nullptr;
    Way way_ = Way::Along;
    bool moving_ = false;
    bool left_ = true;      ///< stands in the neutral pose: nothing to leave
    bool onWayOut_ = false; ///< an exit branch has been taken
    int at_ = 0;            ///< frame on show, by its number
    int leftFrom_ = 0;      ///< frame from which the exit branches began
    std::int64_t end_ = 0;  ///< when it is given up, a way out or what is waited for; else Never
    bool givenUp_ = false;  ///< it came to `end_`, not to its own end
    std::size_t drawn_ = 0; ///< frames drawn on the way out
    std::int64_t due_ = 0;  ///< when the frame on show has had its time, by the stage's clock
    std::unique_ptr<StageTimer> timer_;
};

} // namespace voxmate::agent
