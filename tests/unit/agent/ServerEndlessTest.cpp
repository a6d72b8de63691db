#include "tests/unit/agent/ServerTest.h"

namespace voxmate::agent::test
{
namespace
{

/// Showing and hiding animations that do not end by themselves.
class EndlessShowingTest : public ServerTest
{
protected:
    /// Show and Hide loop forever; one round takes 300 ms.
    void GoRound()
    {
        description.animations[1].frames = {Picture(2), Picture(3, 20, -1, {{0, 100}})};
        description.animations[2].frames = {Picture(4), Picture(5, 20, -1, {{0, 100}})};
    }
    /// Show and Hide loop forever; one round takes 9 s.
    void GoRoundSlowly()
    {
        description.animations[1].frames = {Picture(2, 300), Picture(3, 600, -1, {{0, 100}})};
        description.animations[2].frames = {Picture(4, 300), Picture(5, 600, -1, {{0, 100}})};
    }
    /// Show and Hide stop at a picture that is never left.
    void StandStill()
    {
        description.animations[1].frames = {Picture(2, 10, -1, {{0, 100}})};
        description.animations[2].frames = {Picture(4, 10, -1, {{0, 100}})};
    }
    static constexpr int kLongest = Animator::LongestWayOut;
};

TEST_F(EndlessShowingTest, ShowingIsGivenUpAndTheCharacterStandsThere)
{
    for (const bool round : {true, false}) {
        round ? GoRound() : StandStill();
        AgentCharacter& bo = Load(round ? "Round" : "Still");
        Named("show", bo.Show(false));
        stage.Run(kLongest - 1);
        EXPECT_EQ(Log(), (Lines{"start show"}));
        Pictures();
        stage.Run(1);
        EXPECT_EQ(Log(), (Lines{std::string("shown ") + (round ? "Round" : "Still") + " 4", "end show 0"}));
        EXPECT_EQ(Pictures(), (Numbers{1}));
        stage.Run(5000);
        EXPECT_EQ(Pictures(), Numbers{});
    }
}

TEST_F(EndlessShowingTest, HidingIsGivenUpAndTheCharacterGoes)
{
    for (const bool round : {true, false}) {
        round ? GoRound() : StandStill();
        AgentCharacter& bo = LoadShown(round ? "Round" : "Still");
        Named("hide", bo.Hide(false));
        stage.Run(kLongest - 1);
        EXPECT_EQ(Log(), (Lines{"start hide"}));
        stage.Run(1);
        EXPECT_FALSE(stage.Window().visible);
        EXPECT_EQ(Log(), (Lines{std::string("hidden ") + (round ? "Round" : "Still") + " 3", "end hide 0"}));
    }
}

TEST_F(EndlessShowingTest, APictureThatStandsForMinutesIsGivenUpToo)
{
    description.animations[1].frames = {Picture(2, 65535)};
    AgentCharacter& bo = Load();
    Named("show", bo.Show(false));
    stage.Run(kLongest);
    EXPECT_EQ(Log(), (Lines{"start show", "shown Bo 4", "end show 0"}));
}

// "Stop Everything !!!" does not name what shows and hides, yet an animation without an end must not outlast it.
TEST_F(EndlessShowingTest, StoppingAnimationsFreesItAtOnce)
{
    GoRound();
    AgentCharacter& bo = Load();
    Named("show", bo.Show(false));
    Named("wave", bo.Play("Wave"));
    stage.Run(1000);
    bo.StopAll("Move, Play, Speak");
    Named("rest", bo.Play("RestPose"));
    Named("speak", bo.Speak("Hello", ""));
    stage.Run(100);
    EXPECT_EQ(Log(), (Lines{"start show", "end wave 3", "shown Bo 4", "end show 0", "start rest", "end rest 0",
                            "start speak"}));
    ASSERT_EQ(voice.started.size(), 1u);
    EXPECT_EQ(Pictures().back(), 1);
    voice.SpeakAll();
    stage.Settle();
    Log();
    Named("hide", bo.Hide(false));
    stage.Run(1000);
    bo.StopAll("Move, Play, Speak");
    stage.Settle();
    EXPECT_FALSE(stage.Window().visible);
    EXPECT_EQ(Log(), (Lines{"start hide", "hidden Bo 3", "end hide 0"}));
}

TEST_F(EndlessShowingTest, AskingToShowFreesItAtOnce)
{
    GoRound();
    AgentCharacter& bo = Load();
    Named("show", bo.Show(false));
    stage.Run(1000);
    Named("button", bo.Show(false));
    stage.Settle();
    EXPECT_EQ(Log(), (Lines{"start show", "shown Bo 4", "end show 0", "start button", "end button 0"}));
    Named("hide", bo.Hide(false));
    stage.Run(1000);
    Named("again", bo.Show(true));
    stage.Settle();
    EXPECT_EQ(Log(), (Lines{"start hide", "hidden Bo 3", "end hide 0", "start again", "shown Bo 4", "end again 0"}));
    EXPECT_TRUE(stage.Window().visible);
}

TEST_F(EndlessShowingTest, APictureThatStandsForMinutesIsFreedAtOnceToo)
{
    description.animations[1].frames = {Picture(2, 65535)};
    AgentCharacter& bo = Load();
    Named("show", bo.Show(false));
    stage.Run(10);
    bo.StopAll("Play");
    stage.Settle();
    EXPECT_EQ(Log(), (Lines{"start show", "shown Bo 4", "end show 0"}));
}

TEST_F(EndlessShowingTest, AHidingThatWaitsForAnEndlessWayOutIsFreedToo)
{
    description.animations[6].frames[2] = Picture(14, 65535);
    AgentCharacter& bo = LoadShown();
    bo.Play("Search");
    Named("hide", bo.Hide(false));
    stage.Run(50);
    bo.StopAll("Play");
    stage.Run(50);
    EXPECT_TRUE(stage.Window().visible);
    Log();
    bo.StopAll("Play");
    stage.Run(200);
    EXPECT_EQ(Log(), (Lines{"hidden Bo 3", "end hide 0"}));
}

// An animation that ends by itself is left alone. Show and Hide take 200 ms here.
TEST_F(EndlessShowingTest, AnAnimationWithAnEndOfItsOwnIsSeenToItsEnd)
{
    AgentCharacter& bo = Load();
    Named("show", bo.Show(false));
    stage.Run(50);
    bo.StopAll("Move, Play, Speak");
    Named("button", bo.Show(false));
    stage.Run(149);
    EXPECT_EQ(Log(), (Lines{"start show"}));
    EXPECT_EQ(Pictures(), (Numbers{2, 3}));
    stage.Run(1);
    EXPECT_EQ(Log(), (Lines{"shown Bo 4", "end show 0", "start button", "end button 0"}));
    Named("hide", bo.Hide(false));
    stage.Run(50);
    bo.StopAll("Move, Play, Speak");
    stage.Run(149);
    EXPECT_EQ(Log(), (Lines{"start hide"}));
    stage.Run(1);
    EXPECT_EQ(Log(), (Lines{"hidden Bo 3", "end hide 0"}));
}

// A round of 9 s is not worth waiting for either: it would only begin again.
TEST_F(EndlessShowingTest, ALongRoundIsFreedAtOnce)
{
    GoRoundSlowly();
    AgentCharacter& bo = Load();
    Named("show", bo.Show(false));
    stage.Run(1000);
    bo.StopAll("Move, Play, Speak");
    EXPECT_EQ(Log(), (Lines{"start show"})) << "told inside the call";
    stage.Settle();
    EXPECT_EQ(Log(), (Lines{"shown Bo 4", "end show 0"}));
    EXPECT_EQ(Pictures(), (Numbers{2, 1}));
    Named("hide", bo.Hide(false));
    stage.Run(1000);
    Named("button", bo.Show(false));
    stage.Settle();
    EXPECT_EQ(Log(), (Lines{"start hide", "hidden Bo 3", "end hide 0", "start button"}));
    stage.Run(1000);
    Named("again", bo.Show(false));
    stage.Settle();
    EXPECT_EQ(Log(), (Lines{"shown Bo 4", "end button 0", "start again", "end again 0"}));
}

TEST_F(EndlessShowingTest, AskingToHideFreesItAtOnce)
{
    for (const bool slowly : {false, true}) {
        slowly ? GoRoundSlowly() : GoRound();
        const std::string name = slowly ? "Slow" : "Quick";
        AgentCharacter& bo = Load(name);
        Named("show", bo.Show(false));
        stage.Run(1000);
        Named("hide", bo.Hide(false));
        stage.Settle();
        EXPECT_EQ(Log(), (Lines{"start show", "shown " + name + " 4", "end show 0", "start hide"}));
        stage.Run(1000);
        Named("again", bo.Hide(true));
        stage.Settle();
        EXPECT_EQ(Log(), (Lines{"hidden " + name + " 3", "end hide 0", "start again", "end again 0"}));
        EXPECT_FALSE(stage.Window().visible);
    }
}

TEST_F(EndlessShowingTest, AskingToHideWaitsForAnAnimationWithAnEndOfItsOwn)
{
    AgentCharacter& bo = Load();
    Named("show", bo.Show(false));
    stage.Run(50);
    Named("hide", bo.Hide(true));
    stage.Run(149);
    EXPECT_EQ(Log(), (Lines{"start show"}));
    stage.Run(1);
    EXPECT_EQ(Log(), (Lines{"shown Bo 4", "end show 0", "start hide", "hidden Bo 3", "end hide 0"}));
}

// Nobody can say when chance will end the loop.
TEST_F(EndlessShowingTest, WhatMayGoOnByChanceIsFreedAtOnce)
{
    description.animations[1].frames = {Picture(2), Picture(3, 20, -1, {{0, 1}})};
    AgentCharacter& bo = Load();
    Named("show", bo.Show(false));
    stage.Run(50);
    bo.StopAll("Play");
    stage.Settle();
    EXPECT_EQ(Log(), (Lines{"start show", "shown Bo 4", "end show 0"}));
}

// What counts is whether a picture can come back after the one on show.
TEST_F(EndlessShowingTest, BranchesThatLeadBackToNothingSeenAreWaitedFor)
{
    const std::vector<Frame> toAndFro = {Picture(2, 10, -1, {{2, 100}}), Picture(3, 10, -1, {{3, 100}}),
                                         Picture(4, 10, -1, {{1, 100}}), Picture(5)};
    const std::vector<Frame> never = {Picture(2, 20), Picture(3, 20, -1, {{0, 0}})};
    const std::vector<Frame> passed = {Picture(2), Picture(3, 0, -1, {{2, 50}, {0, 50}}), Picture(4, 30)};
    const std::vector<Frame> unreached = {Picture(2, 20, -1, {{2, 100}}), Picture(3, 20, -1, {{1, 100}}),
                                          Picture(4, 20)};
    int number = 0;
    for (const auto& frames : {toAndFro, never, passed, unreached}) {
        description.animations[1].frames = frames;
        const std::string name = "Bo" + std::to_string(number++);
        AgentCharacter& bo = Load(name);
        Named("show", bo.Show(false));
        stage.Run(150);
        bo.StopAll("Play");
        stage.Run(249);
        EXPECT_EQ(Log(), (Lines{"start show"})) << name;
        stage.Run(1);
        EXPECT_EQ(Log(), (Lines{"shown " + name + " 4", "end show 0"})) << name;
    }
}

TEST_F(EndlessShowingTest, AnAnimationThatTakesJustTheLongestTimeIsWaitedForAndALongerOneIsNot)
{
    for (const std::uint16_t rest : std::initializer_list<std::uint16_t>{900, 901}) {
        description.animations[1].frames = {Picture(2, 100), Picture(3, rest)};
        const std::string name = "Bo" + std::to_string(rest);
        AgentCharacter& bo = Load(name);
        Named("show", bo.Show(false));
        stage.Run(2000);
        bo.StopAll("Play");
        stage.Settle();
        const Lines end = {"shown " + name + " 4", "end show 0"};
        if (rest == 900) {
            EXPECT_EQ(Log(), (Lines{"start show"}));
            stage.Run(kLongest - 2000);
            EXPECT_EQ(Log(), end);
        } else {
            EXPECT_EQ(Log(), (Lines{"start show", end[0], end[1]}));
        }
    }
}

TEST_F(EndlessShowingTest, AHidingThatWaitsForAWayOutInACircleIsFreedAtOnce)
{
    description.animations[6].frames = {Picture(12, 10, 1), Picture(13, 200, 2), Picture(14, 200, 1)};
    AgentCharacter& bo = LoadShown();
    bo.Play("Search");
    stage.Run(50);
    Named("hide", bo.Hide(false));
    bo.StopAll("Play");
    stage.Run(1000);
    EXPECT_TRUE(stage.Window().visible);
    Log();
    bo.StopAll("Play");
    stage.Run(200);
    EXPECT_EQ(Log(), (Lines{"hidden Bo 3", "end hide 0"}));
}

TEST_F(EndlessShowingTest, AHidingThatWaitsForAWayOutWithAnEndOfItsOwnSeesItToItsEnd)
{
    description.animations[6].frames = {Picture(12, 10, 1), Picture(13, 20), Picture(14, 20)};
    AgentCharacter& bo = LoadShown();
    bo.Play("Search");
    stage.Run(50);
    bo.StopAll("Play");
    Named("hide", bo.Hide(false));
    stage.Settle();
    Log();
    Pictures();
    stage.Run(100);
    bo.StopAll("Play");
    stage.Run(499);
    EXPECT_EQ(Log(), Lines{});
    EXPECT_EQ(Pictures(), (Numbers{14, 4, 5}));
    stage.Run(1);
    EXPECT_EQ(Log(), (Lines{"hidden Bo 3", "end hide 0"}));
}

// A handler of Hidden that stops everything means what went on before, not a showing that was asked for since.
TEST_F(EndlessShowingTest, AHandlerOfHiddenDoesNotHurryALaterShowing)
{
    GoRound();
    description.animations[2].frames = {Picture(4)};
    AgentCharacter& bo = LoadShown();
    server.Hidden = [&](const std::string&, VisibilityCause) { bo.StopAll("Move, Play, Speak"); };
    Named("hide", bo.Hide(true));
    Named("show", bo.Show(false));
    stage.Run(1000);
    EXPECT_EQ(Log(), (Lines{"start hide", "end hide 0", "start show"}));
}

} // namespace
} // namespace voxmate::agent::test
