#include "agent/body/Animator.h"

#include "tests/fakes/FakeStage.h"
#include "tests/unit/agent/Bo.h"

#include <gtest/gtest.h>

#include <deque>
#include <string>
#include <vector>

namespace voxmate::agent
{
namespace
{

using test::Picture;

/// Its log names a frame by the number of its first image.
class AnimatorTest : public testing::Test
{
protected:
    const Animation& Add(const std::string& name, Transition transition, std::vector<Frame> frames,
                         const std::string& back = "")
    {
        file.animations.reserve(20);
        file.animations.push_back({name, transition, back, std::move(frames)});
        return file.animations.back();
    }
    void Play(const Animation& animation)
    {
        animator.Play(animation, [this] { log += "done@" + At(); });
    }
    void Leave(const Animation* next = nullptr)
    {
        animator.Leave(next, [this] { log += "left@" + At(); });
    }
    std::string At() const { return std::to_string(stage.now - 1000) + " "; }

    AcsFile file;
    fakes::FakeStage stage;
    std::string log;
    Animator animator{stage, file,
                      [this](const Frame& frame) { log += std::to_string(frame.images[0].image) + "@" + At(); }};
};

TEST_F(AnimatorTest, ShowsEachFrameForItsTimeAndIsDoneAfterTheLast)
{
    Play(Add("A", Transition::None, {Picture(1, 10), Picture(2, 5), Picture(3, 20)}));
    stage.Run(1000);
    EXPECT_EQ(log, "1@0 2@100 3@150 done@350 ");
    EXPECT_FALSE(animator.Moving());
    EXPECT_EQ(animator.Shown()->images[0].image, 3u);
    EXPECT_EQ(stage.Waiting(), 0u);
}

TEST_F(AnimatorTest, WakesUpOnlyWhenAFrameIsDue)
{
    Play(Add("A", Transition::None, {Picture(1, 300), Picture(2, 500)}));
    stage.Run(20000);
    EXPECT_EQ(stage.timersRun, 2);
}

TEST_F(AnimatorTest, AnAnimationWithoutFramesIsDoneAtOnce)
{
    Play(Add("A", Transition::None, {}));
    EXPECT_EQ(log, "done@0 ");
}

TEST_F(AnimatorTest, TimesDoNotDriftWhenTimersComeLate)
{
    Play(Add("A", Transition::None, {Picture(1, 10), Picture(2, 10), Picture(3, 10), Picture(4, 10)}));
    stage.Stall(107);
    stage.Run(1000);
    EXPECT_EQ(log, "1@0 2@107 3@200 4@300 done@400 ");
}

TEST_F(AnimatorTest, AFrameWhoseTimeIsOverBeforeItsTurnIsNotDrawn)
{
    Play(Add("A", Transition::None, {Picture(1, 10), Picture(2, 10), Picture(3, 10), Picture(4, 10), Picture(5, 10)}));
    stage.Stall(350);
    stage.Run(1000);
    EXPECT_EQ(log, "1@0 4@350 5@400 done@500 ");
}

TEST_F(AnimatorTest, AnAnimationEndsInItsLastFrameHoweverLate)
{
    Play(Add("A", Transition::None, {Picture(1, 10), Picture(2, 10), Picture(3, 10), Picture(4, 0)}));
    stage.Stall(450);
    stage.Run(1000);
    EXPECT_EQ(log, "1@0 3@450 done@450 ");
    EXPECT_EQ(animator.Shown()->images[0].image, 3u);
}

TEST_F(AnimatorTest, WhatIsNotDrawnIsPassedOnceEach)
{
    std::string passed;
    Animator late{stage, file, [](const Frame&) {},
                  [&passed](const Frame& frame) { passed += std::to_string(frame.images[0].image) + " "; }};
    late.Play(Add("A", Transition::None, {Picture(1, 10), Picture(2, 10), Picture(3, 10), Picture(4, 10)}), {});
    stage.Stall(350);
    stage.Run(1000);
    EXPECT_EQ(passed, "2 3 ");
}

TEST_F(AnimatorTest, ALoopThatIsLateCatchesUpAndAFrameThatStandsStillIsDrawn)
{
    Play(Add("A", Transition::None, {Picture(1, 10), Picture(2, 10, -1, {{0, 100}})}));
    stage.Stall(450);
    stage.Run(50);
    EXPECT_EQ(log, "1@0 1@450 2@500 ");
    log.clear();
    Play(Add("B", Transition::None, {Picture(1, 10), Picture(2, 10), Picture(3, 10, -1, {{2, 100}})}));
    stage.Stall(450);
    stage.Run(1000);
    EXPECT_EQ(log, "1@500 3@950 ");
}

TEST_F(AnimatorTest, AfterALongStandstillNothingIsHurried)
{
    Play(Add("A", Transition::None, {Picture(1, 10), Picture(2, 10), Picture(3, 10)}));
    stage.Stall(60000);
    stage.Run(1000);
    EXPECT_EQ(log, "1@0 2@60000 3@60100 done@60200 ");
}

TEST_F(AnimatorTest, BranchesAreTakenByChanceAndWhatIsLeftOverGoesOn)
{
    const Animation& animation =
        Add("A", Transition::None,
            {Picture(1, 10, -1, {{2, 30}, {3, 20}}), Picture(2, 10), Picture(3, 10), Picture(4, 10)});
    const auto shownWith = [&](int chance) {
        log.clear();
        stage.random = [chance](int bound) {
            EXPECT_EQ(bound, 100);
            return chance;
        };
        Play(animation);
        stage.Run(100);
        return animator.Shown()->images[0].image;
    };
    EXPECT_EQ(shownWith(0), 3u);
    EXPECT_EQ(shownWith(29), 3u);
    EXPECT_EQ(shownWith(30), 4u);
    EXPECT_EQ(shownWith(49), 4u);
    EXPECT_EQ(shownWith(50), 2u);
    EXPECT_EQ(shownWith(99), 2u);
}

TEST_F(AnimatorTest, NoChanceIsDrawnWhereThereIsNoBranch)
{
    stage.random = [](int) {
        ADD_FAILURE();
        return 0;
    };
    Play(Add("A", Transition::None, {Picture(1, 10), Picture(2, 10)}));
    stage.Run(1000);
}

TEST_F(AnimatorTest, ALoopGoesOnForever)
{
    Play(Add("A", Transition::None, {Picture(1, 10), Picture(2, 10, -1, {{0, 100}})}));
    stage.Run(450);
    EXPECT_EQ(log, "1@0 2@100 1@200 2@300 1@400 ");
    EXPECT_TRUE(animator.Moving());
}

TEST_F(AnimatorTest, AFrameThatAlwaysBranchesToItselfNeedsNoTimer)
{
    Play(Add("A", Transition::None, {Picture(1, 10), Picture(2, 10, -1, {{1, 100}})}));
    stage.Run(5000);
    EXPECT_EQ(log, "1@0 2@100 ");
    EXPECT_TRUE(animator.Moving());
    EXPECT_EQ(stage.Waiting(), 0u);
}

TEST_F(AnimatorTest, FramesOfNoDurationAreNotDrawnButTheirBranchesAreTaken)
{
    Play(Add("A", Transition::None,
             {Picture(1, 0, -1, {{2, 100}}), Picture(2, 10), Picture(3, 0), Picture(4, 10), Picture(5, 0)}));
    stage.Run(1000);
    EXPECT_EQ(log, "4@0 done@100 ");
}

TEST_F(AnimatorTest, ALoopThroughFramesOfNoDurationEndsTheAnimation)
{
    Play(Add("A", Transition::None, {Picture(1, 10), Picture(2, 0), Picture(3, 0, -1, {{1, 100}})}));
    stage.Run(1000);
    EXPECT_EQ(log, "1@0 done@100 ");
    Play(Add("B", Transition::None, {Picture(1, 0, -1, {{0, 100}})}));
    EXPECT_EQ(log, "1@0 done@100 done@1000 ");
}

TEST_F(AnimatorTest, ABranchToAFrameThatDoesNotExistEndsTheAnimation)
{
    Play(Add("A", Transition::None, {Picture(1, 10, -1, {{7, 100}}), Picture(2, 10)}));
    stage.Run(1000);
    EXPECT_EQ(log, "1@0 done@100 ");
}

TEST_F(AnimatorTest, LeavingByExitBranchesGoesAtOnceAndOnToTheEnd)
{
    Play(Add("A", Transition::ExitBranches,
             {Picture(1, 10), Picture(2, 500, 3), Picture(3, 10), Picture(4, 10), Picture(5, 10)}));
    stage.Run(150);
    Leave();
    stage.Run(1000);
    EXPECT_EQ(log, "1@0 2@100 4@150 5@250 left@350 ");
}

TEST_F(AnimatorTest, ExitBranchesThatLeadBackEndWhereTheyEnd)
{
    Play(Add("A", Transition::ExitBranches, {Picture(1, 10), Picture(2, 10, 0), Picture(3, 10, 1)}));
    stage.Run(300);
    log.clear();
    Leave();
    stage.Run(1000);
    EXPECT_EQ(log, "2@300 1@400 left@500 ");
}

TEST_F(AnimatorTest, ExitBranchesEndBeforeAHeldFrameBehindThem)
{
    // The animation ends in its last frame. A branch leads there, past the frames of the way out.
    const Animation& held =
        Add("A", Transition::ExitBranches,
            {Picture(1, 10, 2), Picture(2, 10, 2, {{4, 100}}), Picture(3, 10, 3), Picture(4, 10), Picture(5, 10, 2)});
    Play(held);
    stage.Run(300);
    Leave();
    stage.Run(1000);
    EXPECT_EQ(log, "1@0 2@100 5@200 done@300 3@300 4@400 left@500 ");
    log.clear();
    Play(held);
    Leave();
    stage.Run(1000);
    EXPECT_EQ(log, "1@1300 3@1300 4@1400 left@1500 ");
}

TEST_F(AnimatorTest, AFrameWithoutExitIsFollowedByTheNextWhenThatHasOne)
{
    Play(Add("A", Transition::ExitBranches,
             {Picture(1, 100), Picture(2, 10, 4), Picture(3, 10), Picture(4, 10), Picture(5, 10)}));
    stage.Run(50);
    Leave();
    stage.Run(1000);
    EXPECT_EQ(log, "1@0 2@50 5@150 left@250 ");
}

TEST_F(AnimatorTest, AnAnimationWithoutExitBranchesIsBrokenOff)
{
    Play(Add("A", Transition::ExitBranches, {Picture(1, 100), Picture(2, 100)}));
    stage.Run(50);
    Leave();
    EXPECT_EQ(log, "1@0 left@50 ");
    EXPECT_EQ(stage.Waiting(), 0u);
}

TEST_F(AnimatorTest, ExitBranchesInACircleEndAfterTwiceTheFrames)
{
    Play(Add("A", Transition::ExitBranches, {Picture(1, 10, 1), Picture(2, 10, 0)}));
    Leave();
    stage.Run(10000);
    EXPECT_EQ(log, "1@0 2@0 1@100 2@200 1@300 left@400 ");
}

TEST_F(AnimatorTest, AWayOutThatTakesTooLongIsGivenUp)
{
    Play(Add("A", Transition::ExitBranches, {Picture(1, 10, 1), Picture(2, 65535), Picture(3, 10)}));
    Leave();
    stage.Run(60000);
    EXPECT_EQ(log, "1@0 2@0 left@10000 ");
}

TEST_F(AnimatorTest, LeavingByReturnAnimationPlaysIt)
{
    Add("AReturn", Transition::None, {Picture(8, 10), Picture(9, 10)});
    Play(Add("A", Transition::ReturnAnimation, {Picture(1, 10)}, "areturn"));
    stage.Run(100);
    Leave();
    stage.Run(1000);
    EXPECT_EQ(log, "1@0 done@100 8@100 9@200 left@300 ");
}

TEST_F(AnimatorTest, TheReturnAnimationIsNotPlayedTwiceWhenItIsAskedForItself)
{
    const Animation& back = Add("AReturn", Transition::None, {Picture(8, 10)});
    Play(Add("A", Transition::ReturnAnimation, {Picture(1, 10)}, "AReturn"));
    stage.Run(100);
    Leave(&back);
    EXPECT_EQ(log, "1@0 done@100 left@100 ");
}

TEST_F(AnimatorTest, AnAnimationThatTakesUpThePoseAndHasTheSameReturnGoesStraightOn)
{
    Add("ReadReturn", Transition::None, {Picture(8, 10)});
    const Animation& goesOn =
        Add("ReadContinued", Transition::ReturnAnimation, {Picture(5, 0), Picture(2, 10)}, "readreturn");
    Play(Add("Read", Transition::ReturnAnimation, {Picture(1, 10), Picture(2, 10)}, "ReadReturn"));
    stage.Run(200);
    Leave(&goesOn);
    EXPECT_EQ(log, "1@0 2@100 done@200 left@200 ");
}

TEST_F(AnimatorTest, AnAnimationOfAnotherPoseOrReturnBeginsFromTheNeutralOne)
{
    Add("ReadReturn", Transition::None, {Picture(8, 10)});
    Add("Other", Transition::None, {Picture(9, 10)});
    const Animation& again = Add("Read", Transition::ReturnAnimation, {Picture(2, 10)}, "ReadReturn");
    const Animation& otherPose = Add("B", Transition::ReturnAnimation, {Picture(3, 10)}, "ReadReturn");
    const Animation& otherReturn = Add("C", Transition::ReturnAnimation, {Picture(2, 10)}, "Other");
    const Animation& noReturn = Add("D", Transition::ExitBranches, {Picture(2, 10)}, "ReadReturn");
    const Animation& nothingDrawn = Add("E", Transition::ReturnAnimation, {Picture(2, 0)}, "ReadReturn");
    for (const Animation* next : {&again, &otherPose, &otherReturn, &noReturn, &nothingDrawn}) {
        log.clear();
        stage.now = 1000;
        Play(again);
        stage.Run(100);
        Leave(next);
        stage.Run(200);
        EXPECT_EQ(log, "2@0 done@100 8@100 left@200 ") << next->name;
    }
}

TEST_F(AnimatorTest, AMissingReturnAnimationIsNone)
{
    Play(Add("A", Transition::ReturnAnimation, {Picture(1, 10)}, "Nowhere"));
    stage.Run(100);
    Leave();
    EXPECT_EQ(log, "1@0 done@100 left@100 ");
}

TEST_F(AnimatorTest, AReturnAnimationThatLoopsEndsAfterTwiceItsFrames)
{
    Add("Back", Transition::None, {Picture(8, 10), Picture(9, 10, -1, {{0, 100}})});
    Play(Add("A", Transition::ReturnAnimation, {Picture(1, 10)}, "Back"));
    Leave();
    stage.Run(10000);
    EXPECT_EQ(log, "1@0 8@0 9@100 8@200 9@300 left@400 ");
}

TEST_F(AnimatorTest, AnimationsThatReturnByEachOtherOrByThemselvesReturnOnce)
{
    Add("B", Transition::ReturnAnimation, {Picture(2, 10)}, "A");
    const Animation& first = Add("A", Transition::ReturnAnimation, {Picture(1, 10)}, "B");
    Play(first);
    stage.Run(100);
    Leave();
    stage.Run(1000);
    EXPECT_EQ(log, "1@0 done@100 2@100 left@200 ");
    log.clear();
    Play(Add("C", Transition::ReturnAnimation, {Picture(3, 10)}, "C"));
    stage.Run(100);
    Leave();
    stage.Run(1000);
    EXPECT_EQ(log, "3@1100 done@1200 3@1200 left@1300 ");
}

TEST_F(AnimatorTest, ALoopWithUndrawnFramesWakesUpOnceForEachFrameItDraws)
{
    std::vector<Frame> frames{Picture(1, 1)};
    for (std::uint32_t i = 2; i < 900; ++i)
        frames.push_back(Picture(i, 0));
    frames.push_back(Picture(900, 1, -1, {{0, 100}}));
    Play(Add("A", Transition::None, frames));
    stage.Run(1000);
    EXPECT_EQ(stage.timersRun, 100);
    EXPECT_EQ(stage.Waiting(), 1u);
}

TEST_F(AnimatorTest, ExitBranchesThroughFramesOfNoDurationInACircleEndAtOnce)
{
    Play(Add("A", Transition::ExitBranches, {Picture(1, 10, 1), Picture(2, 0, 2), Picture(3, 0, 1)}));
    Leave();
    EXPECT_EQ(log, "1@0 left@0 ");
    EXPECT_EQ(stage.Waiting(), 0u);
}

TEST_F(AnimatorTest, StraightOnLeavesAtOnceWhateverIsOnShow)
{
    Play(Add("A", Transition::None, {Picture(1, 100, 1), Picture(2, 100)}));
    stage.Run(50);
    Leave();
    stage.Run(1000);
    EXPECT_EQ(log, "1@0 left@50 ");
}

TEST_F(AnimatorTest, AWayOutIsGoneOnlyOnce)
{
    Add("Back", Transition::None, {Picture(8, 10), Picture(9, 10)});
    Play(Add("A", Transition::ReturnAnimation, {Picture(1, 10)}, "Back"));
    Leave();
    stage.Run(50);
    log += "again ";
    Leave();
    stage.Run(1000);
    Leave();
    EXPECT_EQ(log, "1@0 8@0 again 9@100 left@200 left@1050 ");
}

TEST_F(AnimatorTest, ForgettingLetsTheAnimationGoOnUnattended)
{
    Play(Add("A", Transition::None, {Picture(1, 10), Picture(2, 10)}));
    animator.Forget();
    stage.Run(1000);
    EXPECT_EQ(log, "1@0 2@100 ");
}

} // namespace
} // namespace voxmate::agent
