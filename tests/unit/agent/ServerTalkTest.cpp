// A body that moves while its character speaks: it takes the pose over in which the character stands, goes on from text
// to text, and comes to rest when the last one ends.
#include "tests/unit/agent/ServerTest.h"

namespace voxmate::agent::test
{

namespace
{

/// Talk begins and ends in the picture of the neutral pose, 1, and shows 30 and 31 between. All its frames have mouths;
/// mouth m of 31 is picture kMouths + 7 + m.
Animation Talk(const std::string& name = "Talk", std::uint32_t first = 30)
{
    Animation talk{name, Transition::ExitBranches, "", {}};
    talk.frames = {WithMouths(Picture(1, 10, 3)), WithMouths(Picture(first, 10, 3)),
                   WithMouths(Picture(first + 1, 10, 3)), WithMouths(Picture(1))};
    for (Overlay& overlay : talk.frames[2].overlays)
        overlay.image = static_cast<std::uint16_t>(overlay.image + MouthCount);
    return talk;
}

class ServerTalkTest : public ServerTest
{
protected:
    ServerTalkTest()
    {
        description.animations.push_back(Talk());
        description.states.push_back({"Speaking", {"Talk"}});
    }
};

} // namespace

TEST_F(ServerTalkTest, MovesInThePoseInWhichItStandsAsLongAsTheVoiceIsHeard)
{
    AgentCharacter& bo = LoadShown();
    Pictures();
    bo.Speak("Hello", "");
    stage.Settle();
    EXPECT_EQ(Pictures(), Numbers{}); // that picture is on show already
    // Before the voice is heard no mouth is drawn.
    stage.Run(850);
    EXPECT_EQ(Pictures(), (Numbers{30, 31, 1, 30, 31, 1}));
    voice.Begin();
    voice.End();
    stage.Run(1000);
    EXPECT_EQ(Pictures(), (Numbers{50, 1}));
    EXPECT_EQ(stage.Waiting(), 1u); // the balloon's timer
}

TEST_F(ServerTalkTest, EachFrameOnShowHasTheMouthThatIsHeard)
{
    AgentCharacter& bo = LoadShown();
    bo.Speak("Hello", "");
    stage.Settle();
    voice.Begin();
    Pictures();
    voice.Mouth(4);
    stage.Run(100);
    voice.Mouth(2);
    stage.Run(100);
    EXPECT_EQ(Pictures(), (Numbers{54, 52, 59}));
}

TEST_F(ServerTalkTest, IsLeftByItsExitWhenStopped)
{
    AgentCharacter& bo = LoadShown();
    bo.Speak("Hello", "");
    stage.Run(150);
    voice.Begin();
    Pictures();
    bo.StopAll("Speak");
    EXPECT_EQ(voice.stops, 1);
    stage.Run(1000);
    EXPECT_EQ(Pictures(), (Numbers{30, 1})); // its own picture without the mouth, then its exit
}

TEST_F(ServerTalkTest, GoesOnWhenTheNextTextFollows)
{
    AgentCharacter& bo = LoadShown();
    bo.Speak("One", "");
    bo.Speak("Two", "");
    stage.Run(150);
    Pictures();
    voice.SpeakAll();
    stage.Run(200);
    EXPECT_EQ(voice.started.size(), 2u);
    const Numbers seen = Pictures();
    EXPECT_EQ(Numbers(seen.end() - 2, seen.end()), (Numbers{31, 1}));
}

TEST_F(ServerTalkTest, AnAnimationDoesNotFollowItselfIfThereIsAnother)
{
    description.animations.push_back(Talk("Tell", 40));
    description.states.back().second.push_back("Tell");
    AgentCharacter& bo = LoadShown();
    Pictures();
    bo.Speak("Hello", "");
    stage.Run(1550);
    Numbers firsts;
    for (const int number : Pictures())
        if (number == 30 || number == 40)
            firsts.push_back(number);
    ASSERT_EQ(firsts.size(), 4u);
    for (std::size_t i = 1; i < firsts.size(); ++i)
        EXPECT_NE(firsts[i], firsts[i - 1]) << i;
}

TEST_F(ServerTalkTest, GoesOnInTheSpeakingPoseOfAGesture)
{
    Animation pointing = Talk("PointTalk", 42);
    for (const std::size_t at : {0u, 3u})
        pointing.frames[at].images = {{10, 0, 0}};
    pointing.transition = Transition::ReturnAnimation;
    pointing.returnAnimation = "PointReturn";
    description.animations.push_back(pointing);
    description.states.push_back({"SpeakingInPose", {"PointTalk"}});
    AgentCharacter& bo = LoadShown();
    bo.Play("Point");
    stage.Run(250);
    Pictures();
    bo.Speak("There", "");
    stage.Run(150);
    EXPECT_EQ(Pictures(), (Numbers{42}));
    voice.Begin();
    voice.End();
    stage.Run(1000);
    EXPECT_EQ(Pictures(), (Numbers{50, 42, 11, 1}));
}

TEST_F(ServerTalkTest, ASpeakingAnimationOfOneFrameOnlyMovesTheMouth)
{
    description.states.back().second = {"RestPose"};
    AgentCharacter& bo = LoadShown();
    Pictures();
    bo.Speak("Hello", "");
    stage.Settle();
    voice.Begin();
    voice.Mouth(4);
    stage.Run(1000);
    EXPECT_EQ(Pictures(), (Numbers{50, 54}));
}

TEST_F(ServerTalkTest, OneThatSometimesHasNoMouthIsNotTaken)
{
    description.animations.back().frames[1].overlays.clear();
    AgentCharacter& bo = LoadShown();
    Pictures();
    bo.Speak("Hello", "");
    stage.Run(1000);
    EXPECT_EQ(Pictures(), Numbers{});
}

} // namespace voxmate::agent::test
