#include "agent/body/Animator.h"

#include "base/Text.h"

#include <algorithm>
#include <utility>

namespace voxmate::agent
{

namespace
{

// In milliseconds. When playing is later than this (a suspended machine, a stalled desktop), frames are not hurried to
// catch up.
constexpr std::int64_t kMaxLateness = 500;

/// Whether `next` continues in the pose in which `leaving` stands: it begins with the picture on show and has the same
/// return animation, as ReadContinued goes on where Read holds. Going home and back again would look like a jump.
bool GoesOn(const Animation& leaving, const Frame& shown, const Animation& next)
{
    if (&leaving == &next || leaving.transition != Transition::ReturnAnimation ||
        next.transition != Transition::ReturnAnimation || !EqualNoCase(leaving.returnAnimation, next.returnAnimation))
        return false;
    const Frame* const first = next.FirstDrawn();
    return first && first->images == shown.images;
}

std::int64_t Milliseconds(const Frame& frame)
{
    return std::int64_t{frame.duration} * 10;
}

/// The frames that may follow frame `index`: the targets of its branches, and the next frame if it may happen that no
/// branch is taken. The end, behind the last frame, is left out.
std::vector<std::size_t> Following(const std::vector<Frame>& frames, std::size_t index)
{
    std::vector<std::size_t> following;
    int chance = 100;
    for (const Branch& branch : frames[index].branches) {
        if (branch.percent > 0 && branch.frame < frames.size())
            following.push_back(branch.frame);
        chance -= branch.percent;
    }
    if (chance > 0 && index + 1 < frames.size())
        following.push_back(index + 1);
    return following;
}

/// The latest time at which an animation ends by itself: the longest way to its end from frame `from`, whose time is
/// over at `due`. Never when a frame can come again, because then chance alone, or nothing, ends it.
std::int64_t LatestEnd(const std::vector<Frame>& frames, int from, std::int64_t due)
{
    const auto start = static_cast<std::size_t>(from);
    std::vector<std::size_t> leadingHere(frames.size()); // for each frame, the number of possible ways that lead to it
    std::vector<bool> found(frames.size());
    std::vector<std::size_t> reached{start};
    found[start] = true;
    for (std::size_t i = 0; i < reached.size(); ++i) {
        for (const std::size_t next : Following(frames, reached[i])) {
            ++leadingHere[next];
            if (!found[next])
                reached.push_back(next);
            found[next] = true;
        }
    }
    if (leadingHere[start] > 0)
        return Animator::Never;
    // A frame's turn comes when all frames that lead to it have had theirs. In a loop that never happens.
    std::vector<std::int64_t> over(frames.size());
    over[start] = due;
    std::vector<std::size_t> turns{start};
    for (std::size_t i = 0; i < turns.size(); ++i) {
        for (const std::size_t next : Following(frames, turns[i])) {
            over[next] = std::max(over[next], over[turns[i]] + Milliseconds(frames[next]));
            if (--leadingHere[next] == 0)
                turns.push_back(next);
        }
    }
    return turns.size() == reached.size() ? *std::max_element(over.begin(), over.end()) : Animator::Never;
}

} // namespace

Animator::Animator(Stage& stage, const AcsFile& file, std::function<void(const Frame&)> show,
                   std::function<void(const Frame&)> pass)
    : stage_(stage), file_(file), show_(std::move(show)), pass_(std::move(pass))
{
}

void Animator::Play(const Animation& animation, std::function<void()> done)
{
    done_ = std::move(done);
    left_ = false;
    Begin(animation, Way::Along, Never);
}

void Animator::PlayToEnd(const Animation& animation, std::function<void(bool givenUp)> done)
{
    done_ = [this, done = std::move(done)] { done(givenUp_); };
    left_ = false;
    Begin(animation, Way::Along, LongestWayOut);
}

void Animator::Hurry()
{
    if (!moving_ || end_ == Never)
        return;
    const std::int64_t latest = way_ == Way::Exit ? EndOfExits() : LatestEnd(animation_->frames, at_, due_);
    if (latest <= end_)
        return;
    end_ = stage_.Now();
    Wait();
}

void Animator::Begin(const Animation& animation, Way way, std::int64_t longest)
{
    timer_.reset();
    animation_ = &animation;
    way_ = way;
    onWayOut_ = false;
    drawn_ = 0;
    moving_ = true;
    at_ = 0;
    givenUp_ = false;
    due_ = stage_.Now();
    end_ = longest == Never ? Never : due_ + longest;
    Enter(0);
}

void Animator::Leave(const Animation* next, std::function<void()> done)
{
    done_ = std::move(done);
    if (!left_ && way_ != Way::Along && moving_)
        return;
    if (left_ || !animation_) {
        timer_.reset();
        End();
        return;
    }
    const Animation& leaving = *animation_;
    if (next && shown_ && GoesOn(leaving, *shown_, *next)) {
        timer_.reset();
        left_ = true;
        End();
        return;
    }
    if (leaving.transition == Transition::ReturnAnimation) {
        const Animation* back = file_.FindAnimation(leaving.returnAnimation);
        if (back && back != next && !back->frames.empty()) {
            Begin(*back, Way::Return, LongestWayOut);
            return;
        }
    } else if (leaving.transition == Transition::ExitBranches) {
        way_ = Way::Exit;
        onWayOut_ = false;
        leftFrom_ = at_;
        drawn_ = 0;
        moving_ = true;
        timer_.reset();
        due_ = stage_.Now();
        end_ = due_ + LongestWayOut;
        Enter(AfterOnExit(at_, onWayOut_));
        return;
    }
    timer_.reset();
    left_ = true;
    End();
}

void Animator::Stand(const Frame& frame)
{
    Clear();
    shown_ = &frame;
    show_(frame);
}

void Animator::Clear()
{
    timer_.reset();
    done_ = nullptr;
    animation_ = nullptr;
    shown_ = nullptr;
    moving_ = false;
    left_ = true;
}

/// Shows the first frame from `index` on that has a duration and whose time is not over yet; ends the animation when
/// there is none.
void Animator::Enter(int index)
{
    const auto count = static_cast<int>(animation_->frames.size());
    const Frame* late = nullptr;
    for (int step = 0; step < MaxUndrawn && index >= 0 && index < count; ++step) {
        const Frame& frame = animation_->frames[static_cast<std::size_t>(index)];
        if (frame.duration == 0) {
            index = After(index);
            continue;
        }
        // What is waited for must end: a file may lead it in circles, or hold one frame for minutes.
        givenUp_ = (way_ != Way::Along && ++drawn_ > 2 * animation_->frames.size()) || stage_.Now() >= end_;
        if (givenUp_)
            break;
        Pass(std::exchange(late, &frame));
        at_ = index;
        due_ += Milliseconds(frame);
        const bool still = StandsStill(frame, index);
        if (!still && due_ <= stage_.Now()) {
            index = After(index);
            continue;
        }
        shown_ = &frame;
        if (!still)
            Wait();
        show_(frame);
        return;
    }
    if (late) {
        shown_ = late;
        show_(*late);
    }
    End();
}

/// The frame after `index`, by branches or exit branches. A number that is no frame's means the end.
int Animator::After(int index)
{
    if (way_ == Way::Exit)
        return AfterOnExit(index, onWayOut_);
    const Frame& frame = animation_->frames[static_cast<std::size_t>(index)];
    if (!frame.branches.empty()) {
        int chance = stage_.Random(100);
        for (const Branch& branch : frame.branches) {
            if (chance < branch.percent)
                return branch.frame;
            chance -= branch.percent;
        }
    }
    return index + 1;
}

/// The frame after `index` on a way out by exit branches, -1 for the end. `onWayOut` says whether an exit branch has
/// been taken, and is set when this frame's is taken.
int Animator::AfterOnExit(int index, bool& onWayOut) const
{
    constexpr int end = -1;
    const auto& frames = animation_->frames;
    const auto count = static_cast<int>(frames.size());
    if (index < 0 || index >= count)
        return end;
    const auto hasExit = [](const Frame& frame) { return frame.exitFrame >= 0; };
    const Frame& frame = frames[static_cast<std::size_t>(index)];
    if (hasExit(frame) && frame.exitFrame < count && frame.exitFrame != index) {
        onWayOut = true;
        return frame.exitFrame;
    }
    const auto behind = frames.begin() + index + 1;
    if (onWayOut) {
        const bool leadsOn = index > leftFrom_ && behind != frames.end() && !hasExit(*behind);
        return leadsOn ? index + 1 : end;
    }
    return std::any_of(behind, frames.end(), hasExit) ? index + 1 : end;
}

/// When a way out by exit branches ends by itself; Never when it loops.
std::int64_t Animator::EndOfExits() const
{
    const auto& frames = animation_->frames;
    const auto count = static_cast<int>(frames.size());
    // A way is longer than this only if it loops: a frame can come once before the first exit and once after it. A way
    // of more than MaxUndrawn frames counts as a loop: even at 10 ms a frame it would take too long.
    const int longest = std::min(2 * count, MaxUndrawn);
    std::int64_t over = due_;
    bool onWayOut = onWayOut_;
    int index = at_;
    for (int step = 0; step <= longest; ++step) {
        index = AfterOnExit(index, onWayOut);
        if (index < 0 || index >= count)
            return over;
        over += Milliseconds(frames[static_cast<std::size_t>(index)]);
    }
    return Never;
}

/// Whether a frame always branches to itself, so that nothing changes any more and no timer is needed. A sound that
/// repeats, or a limit on the waiting, still needs one.
bool Animator::StandsStill(const Frame& frame, int index) const
{
    return end_ == Never && frame.sound < 0 && !frame.branches.empty() && frame.branches.front().frame == index &&
           frame.branches.front().percent >= 100;
}

void Animator::Pass(const Frame* frame)
{
    if (frame && pass_)
        pass_(*frame);
}

/// Waits until the time of the frame on show is over, or until it is time to give up.
void Animator::Wait()
{
    const std::int64_t rest = std::min(due_, end_) - stage_.Now();
    timer_ = stage_.After(static_cast<int>(std::max<std::int64_t>(0, rest)), [this] { Tick(); });
}

void Animator::Tick()
{
    timer_.reset();
    if (stage_.Now() - due_ > kMaxLateness)
        due_ = stage_.Now();
    Enter(After(at_));
}

void Animator::End()
{
    moving_ = false;
    if (way_ != Way::Along)
        left_ = true;
    const std::function<void()> done = std::move(done_);
    done_ = nullptr;
    if (done)
        done();
}

} // namespace voxmate::agent
