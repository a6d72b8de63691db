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
    /// `show` is called with every frame that is to be drawn, when it is due. `pass` is called with a frame whose time
    /// was already over when its turn came, so that it is not drawn; the last frame of an animation is shown even then.
    /// The references outlive the animator.
    Animator(Stage& stage, const AcsFile& file, std::function<void(const Frame&)> show,
             std::function<void(const Frame&)> pass = nullptr);

    /// Plays an animation from its first frame, at once, whatever was playing. `done` is called when the last frame has
    /// been on show for its time: at once when the animation has no frame to draw, never when it loops or something
    /// else follows.
    void Play(const Animation& animation, std::function<void()> done);

    /// The same for an animation that something waits for, such as one that shows or hides the character. It is given
    /// up after LongestWayOut milliseconds; `done` is told whether it was.
    void PlayToEnd(const Animation& animation, std::function<void(bool givenUp)> done);

    /// Cuts short a PlayToEnd, or a way out, that does not end by itself in time. One that does is played to its end.
    /// One that can loop from the frame on show onwards, even if chance may end the loop, is given up at once, as is
    /// one that would take longer than LongestWayOut. `done` is then called from a timer, never inside this call.
    void Hurry();

    /// Returns to the neutral pose in the way the animation asks for: by its return animation (unless that is `next`,
    /// or `next` begins with the picture on show and has the same return animation), by exit branches from the frame it
    /// stands in, or straight on. `done` is called at the end of that way, at once when there is none. A way that has
    /// already begun is continued, not begun again.
    ///
    /// With exit branches, the frame on show is left at once for its exit frame. Once an exit branch has been taken,
    /// the way ends at a frame without one; but if it has led forward in the file and the next frame has none either,
    /// it goes on from there towards the animation's end. Before an exit branch has been taken, a frame without one is
    /// followed by the next frame if any frame behind it has one; if none has, the animation is simply broken off.
    void Leave(const Animation* next, std::function<void()> done);

    /// The animation goes on, but `done` is not called any more.
    void Forget() { done_ = nullptr; }

    /// Stands in one frame. It counts as the neutral pose, so there is nothing to leave.
    void Stand(const Frame& frame);

    /// Ends all motion. No frame is on show any more.
    void Clear();

    /// Whether this animation is playing along, not on its way out.
    bool Plays(const Animation& animation) const { return moving_ && way_ == Way::Along && animation_ == &animation; }
    /// Whether frames are to come, or the animation stands in a frame that branches to itself forever.
    bool Moving() const { return moving_; }
    /// The frame on show; null when there is none.
    const Frame* Shown() const { return shown_; }

    /// A way out and anything played by PlayToEnd take at most this many milliseconds; then what follows begins.
    static constexpr int LongestWayOut = 10000;
    /// After this many frames without a duration an animation counts as ended; no real file needs more.
    static constexpr int MaxUndrawn = 1000;
    /// A time that never comes.
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
    int at_ = 0;            ///< number of the frame on show
    int leftFrom_ = 0;      ///< frame from which the exit branches began
    std::int64_t end_ = 0;  ///< when a way out or a PlayToEnd is given up; else Never
    bool givenUp_ = false;  ///< ended because of `end_`, not by itself
    std::size_t drawn_ = 0; ///< frames drawn on the way out
    std::int64_t due_ = 0;  ///< when the time of the frame on show is over, by the stage's clock
    std::unique_ptr<StageTimer> timer_;
};

} // namespace voxmate::agent
