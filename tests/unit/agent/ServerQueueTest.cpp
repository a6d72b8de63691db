#include "tests/unit/agent/ServerTest.h"

namespace voxmate::agent::test
{
namespace
{

using ServerQueueTest = ServerTest;

TEST_F(ServerQueueTest, ACallOnlyAppendsItsRequest)
{
    AgentCharacter& bo = Load();
    const auto show = Named("show", bo.Show(false));
    const auto wave = Named("wave", bo.Play("Wave"));
    EXPECT_EQ(StatusOf(show), 2);
    EXPECT_EQ(StatusOf(wave), 2);
    EXPECT_FALSE(bo.Visible());
    EXPECT_EQ(Pictures(), Numbers{});
    EXPECT_EQ(Log(), Lines{});
}

TEST_F(ServerQueueTest, ShowPlaysTheShowingAnimationAndEndsWithIt)
{
    AgentCharacter& bo = Load();
    const auto show = Named("show", bo.Show(false));
    stage.Settle();
    EXPECT_EQ(StatusOf(show), 4);
    EXPECT_EQ(Log(), (Lines{"start show"}));
    EXPECT_TRUE(bo.Visible());
    EXPECT_TRUE(stage.Window().visible);
    EXPECT_EQ(Pictures(), (Numbers{2}));
    stage.Run(199);
    EXPECT_EQ(Log(), Lines{});
    stage.Run(1);
    EXPECT_EQ(Log(), (Lines{"shown Bo 4", "end show 0"}));
    EXPECT_EQ(StatusOf(show), 0);
    EXPECT_EQ(Pictures(), (Numbers{3}));
}

TEST_F(ServerQueueTest, ShowFastAppearsInTheNeutralPoseAtOnce)
{
    AgentCharacter& bo = Load();
    Named("show", bo.Show(true));
    stage.Settle();
    EXPECT_EQ(Log(), (Lines{"start show", "shown Bo 4", "end show 0"}));
    EXPECT_EQ(Pictures(), (Numbers{1}));
}

TEST_F(ServerQueueTest, WithoutAShowingAnimationAndANeutralPoseSomeFrameIsShown)
{
    description.states.clear();
    description.animations.erase(description.animations.begin());
    AgentCharacter& bo = Load();
    Named("show", bo.Show(false));
    stage.Settle();
    EXPECT_EQ(Log(), (Lines{"start show", "shown Bo 4", "end show 0"}));
    EXPECT_EQ(Pictures(), (Numbers{2}));
    EXPECT_TRUE(bo.Visible());
}

TEST_F(ServerQueueTest, ShowOfAVisibleCharacterCompletesAtOnceThroughTheQueue)
{
    AgentCharacter& bo = LoadShown();
    const auto wave = Named("wave", bo.Play("Wave"));
    const auto show = Named("show", bo.Show(false));
    stage.Settle();
    EXPECT_EQ(StatusOf(show), 2);
    stage.Run(300);
    EXPECT_EQ(Log(), (Lines{"start wave", "end wave 0", "start show", "end show 0"}));
    EXPECT_EQ(StatusOf(show), 0);
}

TEST_F(ServerQueueTest, HidePlaysTheHidingAnimationAndEndsWithIt)
{
    AgentCharacter& bo = LoadShown();
    Pictures();
    Named("hide", bo.Hide(false));
    stage.Run(199);
    EXPECT_TRUE(bo.Visible());
    EXPECT_EQ(Log(), (Lines{"start hide"}));
    stage.Run(1);
    EXPECT_FALSE(bo.Visible());
    EXPECT_FALSE(stage.Window().visible);
    EXPECT_EQ(Log(), (Lines{"hidden Bo 3", "end hide 0"}));
    EXPECT_EQ(Pictures(), (Numbers{4, 5}));
    stage.Run(600000);
    EXPECT_EQ(stage.Waiting(), 0u);
}

TEST_F(ServerQueueTest, HideFastIsGoneAtOnceAndHideOfAHiddenCharacterChangesNothing)
{
    AgentCharacter& bo = LoadShown();
    Named("hide", bo.Hide(true));
    Named("again", bo.Hide(false));
    stage.Settle();
    EXPECT_EQ(Log(), (Lines{"start hide", "hidden Bo 3", "end hide 0", "start again", "end again 0"}));
    EXPECT_FALSE(stage.Window().visible);
}

TEST_F(ServerQueueTest, PlayEndsWhenTheLastFrameHasBeenShown)
{
    AgentCharacter& bo = LoadShown();
    Pictures();
    Named("wave", bo.Play("wAVE"));
    stage.Run(299);
    EXPECT_EQ(Log(), (Lines{"start wave"}));
    stage.Run(1);
    EXPECT_EQ(Log(), (Lines{"end wave 0"}));
    EXPECT_EQ(Pictures(), (Numbers{6, 7, 8}));
}

TEST_F(ServerQueueTest, RequestsAreCarriedOutInOrder)
{
    AgentCharacter& bo = Load();
    Named("show", bo.Show(false));
    Named("wave", bo.Play("Wave"));
    Named("rest", bo.Play("RestPose"));
    stage.Run(1000);
    EXPECT_EQ(Log(), (Lines{"start show", "shown Bo 4", "end show 0", "start wave", "end wave 0", "start rest",
                            "end rest 0"}));
    EXPECT_EQ(Pictures(), (Numbers{2, 3, 6, 7, 8, 1}));
}

TEST_F(ServerQueueTest, AnUnknownAnimationFailsInItsTurnAndTheQueueGoesOn)
{
    AgentCharacter& bo = LoadShown();
    Named("wave", bo.Play("Wave"));
    const auto unknown = Named("unknown", bo.Play("Juggle"));
    const auto empty = Named("empty", bo.Play(""));
    Named("bow", bo.Play("Bow"));
    stage.Settle();
    EXPECT_EQ(StatusOf(unknown), 2);
    stage.Run(1000);
    EXPECT_EQ(Log(), (Lines{"start wave", "end wave 0", "end unknown 1", "end empty 1", "start bow", "end bow 0"}));
    EXPECT_EQ(StatusOf(unknown), 1);
    EXPECT_EQ(StatusOf(empty), 1);
}

TEST_F(ServerQueueTest, AnAnimationWithoutFramesCompletesAtOnce)
{
    AgentCharacter& bo = LoadShown();
    Pictures();
    Named("nothing", bo.Play("Nothing"));
    stage.Settle();
    EXPECT_EQ(Log(), (Lines{"start nothing", "end nothing 0"}));
    EXPECT_EQ(Pictures(), Numbers{});
}

TEST_F(ServerQueueTest, ALoopNeverEndsUntilItIsStoppedAndThenGoesHome)
{
    AgentCharacter& bo = LoadShown();
    Pictures();
    const auto search = Named("search", bo.Play("Search"));
    stage.Run(3600000);
    EXPECT_EQ(Log(), (Lines{"start search"}));
    Pictures();
    bo.Stop(search);
    stage.Run(200);
    EXPECT_EQ(Log(), (Lines{"end search 3"}));
    EXPECT_EQ(Pictures(), (Numbers{14, 1}));
    EXPECT_EQ(stage.Waiting(), 0u);
}

TEST_F(ServerQueueTest, AHiddenCharacterFailsToPlayAndToSpeak)
{
    AgentCharacter& bo = Load();
    Named("wave", bo.Play("Wave"));
    Named("speak", bo.Speak("Hello", ""));
    stage.Settle();
    EXPECT_EQ(Log(), (Lines{"end wave 1", "end speak 1"}));
    EXPECT_TRUE(voice.started.empty());
    EXPECT_FALSE(stage.BalloonVisible());
}

TEST_F(ServerQueueTest, WhatIsQueuedBehindAHideFailsAndWhatIsQueuedBehindAShowDoesNot)
{
    AgentCharacter& bo = LoadShown();
    Named("hide", bo.Hide(true));
    Named("wave", bo.Play("Wave"));
    Named("show", bo.Show(true));
    Named("bow", bo.Play("Bow"));
    stage.Run(100);
    EXPECT_EQ(Log(), (Lines{"start hide", "hidden Bo 3", "end hide 0", "end wave 1", "start show", "shown Bo 4",
                            "end show 0", "start bow", "end bow 0"}));
}

TEST_F(ServerQueueTest, StopDropsAQueuedRequestOnly)
{
    AgentCharacter& bo = LoadShown();
    Named("wave", bo.Play("Wave"));
    const auto bow = Named("bow", bo.Play("Bow"));
    Named("rest", bo.Play("RestPose"));
    stage.Settle();
    bo.Stop(bow);
    EXPECT_EQ(StatusOf(bow), 3);
    stage.Run(1000);
    EXPECT_EQ(Log(), (Lines{"start wave", "end bow 3", "end wave 0", "start rest", "end rest 0"}));
}

TEST_F(ServerQueueTest, StopOfAFinishedAForeignOrNoRequestDoesNothing)
{
    AgentCharacter& bo = LoadShown();
    const auto bow = Named("bow", bo.Play("Bow"));
    stage.Run(100);
    const auto other = Named("other", Load("Other").Show(true));
    Log();
    bo.Stop(bow);
    bo.Stop(nullptr);
    bo.Stop(other);
    EXPECT_EQ(StatusOf(bow), 0);
    EXPECT_EQ(StatusOf(other), 2);
    stage.Settle();
    EXPECT_EQ(Log(), (Lines{"start other", "shown Other 4", "end other 0"}));
}

class StopAllTest : public ServerTest
{
protected:
    /// What is logged when `types` are stopped while Wave runs and at least one request of each kind waits behind it.
    Lines After(const std::string& types)
    {
        AgentCharacter& bo = LoadShown();
        Named("wave", bo.Play("Wave"));
        Named("show", bo.Show(false));
        Named("speak", bo.Speak("\\Rst\\", ""));
        Named("bow", bo.Play("Bow"));
        Named("hide", bo.Hide(true));
        stage.Run(50);
        bo.StopAll(types);
        stage.Run(2000);
        return Log();
    }
};

TEST_F(StopAllTest, WithoutTypesEverythingIsStoppedInOrder)
{
    EXPECT_EQ(After(""), (Lines{"start wave", "end wave 3", "end show 3", "end speak 3", "end bow 3", "end hide 3"}));
}

TEST_F(StopAllTest, ABlankListMeansAllAsAnEmptyOneDoes)
{
    EXPECT_EQ(After("  "), (Lines{"start wave", "end wave 3", "end show 3", "end speak 3", "end bow 3", "end hide 3"}));
}

TEST_F(StopAllTest, PlayStopsTheRunningAndTheQueuedAnimations)
{
    EXPECT_EQ(After("Play"), (Lines{"start wave", "end wave 3", "end bow 3", "start show", "end show 0", "start speak",
                                    "end speak 0", "start hide", "hidden Bo 3", "end hide 0"}));
}

TEST_F(StopAllTest, SpeakLeavesTheRunningAnimationAlone)
{
    EXPECT_EQ(After("Speak"), (Lines{"start wave", "end speak 3", "end wave 0", "start show", "end show 0", "start bow",
                                     "end bow 0", "start hide", "hidden Bo 3", "end hide 0"}));
}

TEST_F(StopAllTest, VisibilityStopsShowsAndHides)
{
    EXPECT_EQ(After("Visibility"), (Lines{"start wave", "end show 3", "end hide 3", "end wave 0", "start speak",
                                          "end speak 0", "start bow", "end bow 0"}));
}

TEST_F(StopAllTest, TypesAreAListWithoutRegardToCaseAndBlanks)
{
    EXPECT_EQ(After("move,  PLAY ,speak"), (Lines{"start wave", "end wave 3", "end speak 3", "end bow 3", "start show",
                                                  "end show 0", "start hide", "hidden Bo 3", "end hide 0"}));
}

TEST_F(StopAllTest, MoveGetAndUnknownTypesStopNothing)
{
    EXPECT_EQ(After("Move, Get, Dance"),
              (Lines{"start wave", "end wave 0", "start show", "end show 0", "start speak", "end speak 0", "start bow",
                     "end bow 0", "start hide", "hidden Bo 3", "end hide 0"}));
}

TEST_F(ServerQueueTest, AStoppedShowLeavesTheCharacterStandingThere)
{
    AgentCharacter& bo = Load();
    const auto show = Named("show", bo.Show(false));
    stage.Run(50);
    bo.StopAll("Visibility");
    stage.Settle();
    EXPECT_EQ(Log(), (Lines{"start show", "shown Bo 4", "end show 3"}));
    EXPECT_TRUE(bo.Visible());
    EXPECT_EQ(Pictures(), (Numbers{2, 1}));
    EXPECT_EQ(StatusOf(show), 3);
}

TEST_F(ServerQueueTest, AStoppedHideLeavesTheCharacterStandingThere)
{
    AgentCharacter& bo = LoadShown();
    Pictures();
    Named("hide", bo.Hide(false));
    stage.Run(150);
    bo.StopAll("");
    stage.Run(1000);
    EXPECT_EQ(Log(), (Lines{"start hide", "end hide 3"}));
    EXPECT_TRUE(bo.Visible());
    EXPECT_TRUE(stage.Window().visible);
    EXPECT_EQ(Pictures(), (Numbers{4, 5, 1}));
}

TEST_F(ServerQueueTest, AShowAskedForWhileItHidesBringsItBackWhenItHasGone)
{
    AgentCharacter& bo = LoadShown();
    Named("hide", bo.Hide(false));
    stage.Run(150);
    Named("show", bo.Show(true));
    stage.Run(49);
    EXPECT_EQ(Log(), (Lines{"start hide"}));
    stage.Run(1);
    EXPECT_EQ(Log(), (Lines{"hidden Bo 3", "end hide 0", "start show", "shown Bo 4", "end show 0"}));
    EXPECT_TRUE(bo.Visible());
}

TEST_F(ServerQueueTest, AHideAskedForWhileItAppearsWaitsUntilItIsThere)
{
    AgentCharacter& bo = Load();
    Named("show", bo.Show(false));
    stage.Run(50);
    Named("hide", bo.Hide(true));
    stage.Run(100);
    EXPECT_EQ(Log(), (Lines{"start show"}));
    stage.Run(50);
    EXPECT_EQ(Log(), (Lines{"shown Bo 4", "end show 0", "start hide", "hidden Bo 3", "end hide 0"}));
    EXPECT_FALSE(bo.Visible());
}

TEST_F(ServerQueueTest, AStoppedShowMayBeFollowedByAHide)
{
    AgentCharacter& bo = Load();
    Named("show", bo.Show(false));
    stage.Run(50);
    bo.StopAll("");
    Named("hide", bo.Hide(false));
    stage.Run(1000);
    EXPECT_EQ(Log(), (Lines{"start show", "shown Bo 4", "end show 3", "start hide", "hidden Bo 3", "end hide 0"}));
    EXPECT_FALSE(stage.Window().visible);
}

TEST_F(ServerQueueTest, ShowAndHideAreStoppedByThemselvesWhileQueuedAndWhileRunning)
{
    AgentCharacter& bo = LoadShown();
    const auto hide = Named("hide", bo.Hide(false));
    const auto show = Named("show", bo.Show(false));
    stage.Run(50);
    bo.Stop(show);
    bo.Stop(hide);
    bo.Stop(hide);
    stage.Run(1000);
    EXPECT_EQ(Log(), (Lines{"start hide", "end show 3", "end hide 3"}));
    EXPECT_TRUE(bo.Visible());
}

TEST_F(ServerQueueTest, BeforeTheNextAnimationTheReturnAnimationIsPlayed)
{
    AgentCharacter& bo = LoadShown();
    Pictures();
    Named("point", bo.Play("Point"));
    stage.Run(1000);
    EXPECT_EQ(Pictures(), (Numbers{9, 10}));
    Named("bow", bo.Play("Bow"));
    stage.Settle();
    EXPECT_EQ(Pictures(), (Numbers{11}));
    stage.Run(100);
    EXPECT_EQ(Pictures(), (Numbers{16}));
    stage.Run(100);
    EXPECT_EQ(Log(), (Lines{"start point", "end point 0", "start bow", "end bow 0"}));
}

TEST_F(ServerQueueTest, TheSamePictureIsNotDrawnTwice)
{
    description.animations.push_back({"Same", Transition::None, "", {Picture(6), Picture(6), Picture(7), Picture(7)}});
    AgentCharacter& bo = LoadShown();
    Pictures();
    bo.Play("Same");
    bo.Play("RestPose");
    bo.Play("RestPose");
    stage.Run(1000);
    EXPECT_EQ(Pictures(), (Numbers{6, 7, 1}));
}

TEST_F(ServerQueueTest, StandingStillNeedsNoTimer)
{
    AgentCharacter& bo = LoadShown();
    bo.Play("Wave");
    stage.Run(300);
    EXPECT_EQ(stage.Waiting(), 0u);
}

TEST_F(ServerQueueTest, SoundsOfFramesArePlayedWhileTheSwitchIsOn)
{
    AgentCharacter& bo = LoadShown();
    bo.Play("Chime");
    stage.Run(200);
    ASSERT_EQ(stage.sounds.size(), 1u);
    EXPECT_EQ(stage.sounds[0], (std::vector<std::uint8_t>{'R', 'I', 'F', 'F', 1, 2, 3}));
    server.SetSoundEffectsOn(false);
    EXPECT_EQ(stage.soundStops, 1);
    bo.Play("Chime");
    stage.Run(200);
    EXPECT_EQ(stage.sounds.size(), 1u);
    server.SetSoundEffectsOn(true);
    bo.Play("Chime");
    stage.Run(200);
    EXPECT_EQ(stage.sounds.size(), 2u);
}

TEST_F(ServerQueueTest, TheSoundSwitchHoldsForCharactersLoadedLater)
{
    server.SetSoundEffectsOn(false);
    AgentCharacter& bo = LoadShown();
    bo.Play("Chime");
    stage.Run(200);
    EXPECT_TRUE(stage.sounds.empty());
}

TEST_F(ServerQueueTest, StoppingAnAnimationStopsItsSound)
{
    AgentCharacter& bo = LoadShown();
    bo.Play("Chime");
    stage.Run(50);
    bo.StopAll("Play");
    EXPECT_EQ(stage.soundStops, 1);
}

TEST_F(ServerQueueTest, HandlersMayAskForMoreFromInsideAnEvent)
{
    AgentCharacter& bo = LoadShown();
    const auto note = server.RequestComplete;
    server.RequestComplete = [&](const AgentRequestPtr& request) {
        note(request);
        if (names[request] == "wave") {
            Named("bow", bo.Play("Bow"));
            EXPECT_EQ(log.back(), "end wave 0");
        }
    };
    Named("wave", bo.Play("Wave"));
    stage.Run(1000);
    EXPECT_EQ(Log(), (Lines{"start wave", "end wave 0", "start bow", "end bow 0"}));
}

TEST_F(ServerQueueTest, HandlersMayStopAllFromInsideAnEvent)
{
    AgentCharacter& bo = LoadShown();
    const auto note = server.RequestStart;
    server.RequestStart = [&](const AgentRequestPtr& request) {
        note(request);
        bo.StopAll("");
        Note("stopped");
    };
    Named("wave", bo.Play("Wave"));
    Named("bow", bo.Play("Bow"));
    stage.Run(1000);
    EXPECT_EQ(Log(), (Lines{"start wave", "stopped", "end wave 3", "end bow 3"}));
}

TEST_F(ServerQueueTest, HandlersMayUnloadTheCharacterFromInsideAnEvent)
{
    AgentCharacter& bo = LoadShown();
    const auto note = server.RequestStart;
    server.RequestStart = [&](const AgentRequestPtr& request) {
        note(request);
        server.Unload("Bo");
        Note("unloaded");
    };
    Named("wave", bo.Play("Wave"));
    Named("bow", bo.Play("Bow"));
    stage.Run(10000);
    EXPECT_EQ(Log(), (Lines{"start wave", "unloaded", "end wave 3", "end bow 3"}));
    EXPECT_EQ(stage.Waiting(), 0u);
}

TEST_F(ServerQueueTest, EventsGoOnArrivingWhileAHandlerShowsAModalBox)
{
    AgentCharacter& bo = LoadShown();
    const auto note = server.RequestStart;
    server.RequestStart = [&](const AgentRequestPtr& request) {
        Note("box opens");
        server.RequestStart = note;
        stage.Run(250);
        Note("box closes " + names[request]);
    };
    Named("bow", bo.Play("Bow"));
    Named("rest", bo.Play("RestPose"));
    stage.Run(1000);
    EXPECT_EQ(Log(), (Lines{"box opens", "end bow 0", "start rest", "end rest 0", "box closes bow"}));
}

TEST_F(ServerQueueTest, AnErrorInAHandlerLeavesTheServerInOrder)
{
    AgentCharacter& bo = LoadShown();
    const auto note = server.RequestStart;
    server.RequestStart = [&](const AgentRequestPtr&) {
        server.RequestStart = note;
        throw 1;
    };
    Named("bow", bo.Play("Bow"));
    Named("rest", bo.Play("RestPose"));
    EXPECT_THROW(stage.Run(1000), int);
    stage.Run(1000);
    EXPECT_EQ(Log(), (Lines{"end bow 0", "start rest", "end rest 0"}));
}

TEST_F(ServerQueueTest, WithoutHandlersEventsAreLost)
{
    Server silent(stage, voice,
                  [this](const std::string& path) { return AcsFile::Parse(WriteAcs(description), path); });
    silent.Load("Bo", "Bo.acs");
    const auto show = silent.Characters("Bo").Show(false);
    stage.Run(1000);
    EXPECT_EQ(StatusOf(show), 0);
}

TEST_F(ServerQueueTest, TheServerMayEndAtAnyMoment)
{
    auto other = std::make_unique<Server>(
        stage, voice, [this](const std::string& path) { return AcsFile::Parse(WriteAcs(description), path); });
    other->Load("Bo", "Bo.acs");
    AgentCharacter& bo = other->Characters("Bo");
    bo.Show(true);
    bo.Speak("Hello", "");
    stage.Settle();
    ASSERT_TRUE(voice.speaking);
    other.reset();
    EXPECT_FALSE(voice.speaking);
    EXPECT_EQ(stage.Waiting(), 0u);
    voice.End(false);
}

} // namespace
} // namespace voxmate::agent::test
