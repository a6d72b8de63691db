#include "tests/unit/agent/ServerTest.h"

#include <functional>

namespace voxmate::agent::test
{
namespace
{

class ServerIdleTest : public ServerTest
{
protected:
    ServerIdleTest()
    {
        // One picture for each level, and a second for level 1.
        const auto add = [this](const std::string& name, std::uint32_t picture) {
            description.animations.push_back({name, Transition::None, "", {Picture(picture)}});
        };
        add("Idle1_1", 41);
        add("Idle1_2", 42);
        add("Idle2_1", 43);
        add("Idle3_1", 44);
    }
    void States(std::initializer_list<std::pair<std::string, std::vector<std::string>>> states)
    {
        description.states.insert(description.states.end(), states);
    }
    /// The idle pictures shown during the next `milliseconds`.
    Numbers After(int milliseconds)
    {
        Pictures();
        stage.Run(milliseconds);
        Numbers idle;
        for (const int picture : Pictures())
            if (picture > 40 && picture < 45)
                idle.push_back(picture);
        return idle;
    }
    static constexpr int kGap = Idling::GapMinimum; // the stage's random choices are 0
};

TEST_F(ServerIdleTest, ACharacterWithoutIdleStatesNeverWakesUp)
{
    LoadShown();
    EXPECT_EQ(stage.Waiting(), 0u);
}

TEST_F(ServerIdleTest, AnAnimationOfLevelOneIsPlayedEveryFewSeconds)
{
    States({{"IdlingLevel1", {"Idle1_1"}}});
    LoadShown();
    EXPECT_EQ(stage.NextDue(), kGap);
    Pictures();
    stage.Run(kGap);
    EXPECT_EQ(Pictures(), (Numbers{41}));
    stage.Run(100);
    EXPECT_EQ(Pictures(), (Numbers{1}));
    EXPECT_EQ(stage.NextDue(), kGap);
    EXPECT_EQ(After(10 * (kGap + 100)).size(), 10u);
    EXPECT_EQ(Log(), Lines{});
}

TEST_F(ServerIdleTest, TheGapIsDrawnAtRandomFromThreeToSevenSeconds)
{
    States({{"IdlingLevel1", {"Idle1_1"}}});
    stage.random = [](int bound) { return bound - 1; };
    LoadShown();
    EXPECT_EQ(stage.NextDue(), 7000);
}

TEST_F(ServerIdleTest, TheAnimationIsDrawnAtRandomFromThoseThatExist)
{
    States({{"IdlingLevel1", {"Idle1_1", "Missing", "Nothing", "Idle1_2"}}});
    int turn = 0;
    stage.random = [&](int bound) { return bound == 2 ? turn++ % 2 : 0; };
    LoadShown();
    EXPECT_EQ(After(4 * (kGap + 100)), (Numbers{41, 42, 41, 42}));
}

TEST_F(ServerIdleTest, AfterMinutesTheHigherLevelsArePlayed)
{
    States({{"IdlingLevel1", {"Idle1_1"}}, {"IdlingLevel2", {"Idle2_1"}}, {"IdlingLevel3", {"Idle3_1"}}});
    LoadShown();
    Numbers seen = After(119000);
    EXPECT_EQ(seen, Numbers(seen.size(), 41));
    After(5000);
    seen = After(170000);
    EXPECT_EQ(seen, Numbers(seen.size(), 43));
    EXPECT_FALSE(seen.empty());
    After(10000);
    seen = After(600000);
    EXPECT_EQ(seen, Numbers(seen.size(), 44));
    EXPECT_FALSE(seen.empty());
}

TEST_F(ServerIdleTest, ARequestOrAPressBeginsWithLevelOneAgain)
{
    States({{"IdlingLevel1", {"Idle1_1"}}, {"IdlingLevel2", {"Idle2_1"}}});
    AgentCharacter& bo = LoadShown();
    stage.Run(200000);
    bo.Play("RestPose");
    EXPECT_EQ(After(2 * kGap), (Numbers{41}));
    stage.Run(200000);
    stage.Mouse(MouseAction::Press, 1, {5, 5});
    stage.Mouse(MouseAction::Release, 1, {5, 5});
    EXPECT_EQ(After(kGap + 100), (Numbers{41}));
}

TEST_F(ServerIdleTest, AMissingLevelIsReplacedByTheOneBelow)
{
    States({{"IdlingLevel1", {"Idle1_1"}}});
    LoadShown();
    stage.Run(400000);
    EXPECT_EQ(After(kGap + 100), (Numbers{41}));
}

TEST_F(ServerIdleTest, ACharacterWithOnlyHigherLevelsSleepsUntilTheyBegin)
{
    States({{"IdlingLevel3", {"Idle3_1"}}});
    LoadShown();
    EXPECT_EQ(stage.NextDue(), 300000);
    stage.Run(300000);
    EXPECT_EQ(After(kGap + 100), (Numbers{44}));
}

TEST_F(ServerIdleTest, AHiddenCharacterDoesNotIdle)
{
    States({{"IdlingLevel1", {"Idle1_1"}}});
    AgentCharacter& bo = LoadShown();
    bo.Hide(true);
    stage.Settle();
    EXPECT_EQ(stage.Waiting(), 0u);
    EXPECT_EQ(After(600000), Numbers{});
}

TEST_F(ServerIdleTest, NothingIdlesWhileARequestRuns)
{
    States({{"IdlingLevel1", {"Idle1_1"}}});
    AgentCharacter& bo = LoadShown();
    bo.Speak("A long text", "");
    stage.Settle();
    voice.Begin();
    EXPECT_EQ(After(60000), Numbers{});
    voice.End();
    EXPECT_EQ(After(kGap + 100), (Numbers{41}));
}

TEST_F(ServerIdleTest, AnAnimationLongerThanTheGapIsNotDisturbed)
{
    States({{"IdlingLevel1", {"Idle1_1"}}});
    AgentCharacter& bo = LoadShown();
    Pictures();
    Named("look", bo.Play("Look"));
    stage.Run(3200);
    EXPECT_EQ(Pictures(), (Numbers{20, 21, 22}));
    EXPECT_EQ(Log(), (Lines{"start look", "end look 0"}));
}

TEST_F(ServerIdleTest, APoseThatWasHeldIsLeftForTheIdleAnimation)
{
    States({{"IdlingLevel1", {"Idle1_1"}}});
    AgentCharacter& bo = LoadShown();
    bo.Play("Point");
    stage.Run(200);
    Pictures();
    stage.Run(kGap + 100);
    EXPECT_EQ(Pictures(), (Numbers{11, 41}));
}

TEST_F(ServerIdleTest, ANewRequestEndsAnIdleAnimationByItsExitAtOnce)
{
    States({{"IdlingLevel1", {"Look"}}});
    AgentCharacter& bo = LoadShown();
    stage.Run(kGap + 500);
    Pictures();
    Named("bow", bo.Play("Bow"));
    stage.Settle();
    EXPECT_EQ(Pictures(), (Numbers{22}));
    stage.Run(200);
    EXPECT_EQ(Pictures(), (Numbers{16}));
    EXPECT_EQ(Log(), (Lines{"start bow", "end bow 0"}));
}

TEST_F(ServerIdleTest, EvenARequestThatMovesNothingEndsAnIdleAnimationByItsExitAtOnce)
{
    States({{"IdlingLevel1", {"Look"}}});
    AgentCharacter& bo = LoadShown();
    for (const auto& [what, ask] :
         std::vector<std::pair<std::string, std::function<void()>>>{{"shown already", [&] { bo.Show(false); }},
                                                                    {"unknown animation", [&] { bo.Play("Juggle"); }},
                                                                    {"nothing to say", [&] { bo.Speak("", ""); }}}) {
        stage.Run(kGap + 500);
        Pictures();
        ask();
        stage.Settle();
        EXPECT_EQ(Pictures(), (Numbers{22})) << what;
        stage.Run(100);
        EXPECT_EQ(Pictures(), (Numbers{1})) << what;
        EXPECT_EQ(stage.NextDue(), kGap) << what;
    }
}

TEST_F(ServerIdleTest, TheSoundOfAnIdleAnimationEndsWithIt)
{
    States({{"IdlingLevel1", {"Chime"}}});
    AgentCharacter& bo = LoadShown();
    stage.Run(kGap + 50);
    ASSERT_EQ(stage.sounds.size(), 1u);
    bo.Show(false);
    stage.Settle();
    EXPECT_EQ(stage.soundStops, 1);
}

TEST_F(ServerIdleTest, ACharacterThatWaitsForAnothersVoiceDoesNotIdle)
{
    States({{"IdlingLevel1", {"Idle1_1"}}});
    AgentCharacter& bo = LoadShown("Bo");
    AgentCharacter& mia = LoadShown("Mia");
    bo.Speak("A long text", "");
    mia.Speak("Wait", "");
    EXPECT_EQ(After(60000), Numbers{});
    voice.SpeakAll();
    stage.Settle();
    voice.SpeakAll();
    EXPECT_EQ(After(kGap + 100), (Numbers{41}));
}

TEST_F(ServerIdleTest, AnIdleAnimationIsEndedByARequestThatWaitsForAnothersVoice)
{
    States({{"IdlingLevel1", {"Look"}}});
    AgentCharacter& bo = LoadShown("Bo");
    AgentCharacter& mia = LoadShown("Mia");
    stage.Run(kGap + 500);
    bo.Speak("A long text", "");
    stage.Settle();
    Pictures();
    mia.Speak("Wait", "");
    stage.Run(1000);
    EXPECT_EQ(Pictures(), (Numbers{22, 1}));
}

TEST_F(ServerIdleTest, AFailedRequestTooBeginsWithLevelOneAgain)
{
    States({{"IdlingLevel1", {"Idle1_1"}}, {"IdlingLevel2", {"Idle2_1"}}});
    AgentCharacter& bo = LoadShown();
    stage.Run(200000);
    bo.Play("Juggle");
    EXPECT_EQ(After(2 * kGap), (Numbers{41}));
}

TEST_F(ServerIdleTest, AnIdleAnimationThatLoopsGoesOnUntilARequest)
{
    States({{"IdlingLevel1", {"Search"}}});
    AgentCharacter& bo = LoadShown();
    stage.Run(600000);
    Named("bow", bo.Play("Bow"));
    stage.Run(300);
    EXPECT_EQ(Log(), (Lines{"start bow", "end bow 0"}));
}

} // namespace
} // namespace voxmate::agent::test
