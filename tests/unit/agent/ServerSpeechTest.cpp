#include "tests/unit/agent/ServerTest.h"

namespace voxmate::agent::test
{
namespace
{

using ServerSpeechTest = ServerTest;

TEST_F(ServerSpeechTest, SpeakStartsTheVoiceAtOnceAndEndsWithIt)
{
    AgentCharacter& bo = LoadShown();
    bo.SetTTSModeID("{ABC-1}");
    const auto speak = Named("speak", bo.Speak("\\Pit=50\\ \\Spd=156\\Hello", ""));
    stage.Settle();
    ASSERT_EQ(voice.started.size(), 1u);
    EXPECT_EQ(voice.started[0].modeId, "ABC-1");
    EXPECT_EQ(voice.started[0].waveFile, "");
    ASSERT_EQ(voice.started[0].segments.size(), 1u);
    EXPECT_EQ(voice.started[0].segments[0].text, "Hello");
    EXPECT_EQ(voice.started[0].segments[0].prosody.pitchHz, 50);
    EXPECT_EQ(voice.started[0].segments[0].prosody.wordsPerMinute, 156);
    EXPECT_EQ(Log(), (Lines{"start speak"}));
    EXPECT_EQ(StatusOf(speak), 4);
    stage.Run(5000);
    voice.Begin();
    stage.Run(5000);
    EXPECT_EQ(Log(), Lines{});
    voice.End();
    EXPECT_EQ(Log(), Lines{});
    stage.Settle();
    EXPECT_EQ(Log(), (Lines{"end speak 0"}));
}

TEST_F(ServerSpeechTest, OneSpokenTextOfTheProgramRunsInItsOrder)
{
    AgentCharacter& bo = LoadShown();
    Named("show", bo.Show(false));
    Named("wave", bo.Play("Wave"));
    Named("speak", bo.Speak("Hello", ""));
    Named("rest", bo.Play("RestPose"));
    stage.Run(300);
    voice.Begin();
    stage.Run(700);
    voice.End();
    stage.Run(1000);
    EXPECT_EQ(Log(), (Lines{"start show", "end show 0", "start wave", "end wave 0", "start speak", "end speak 0",
                            "start rest", "end rest 0"}));
}

// The caller may keep a request for long, and its text can be as long as a library.
TEST_F(ServerSpeechTest, ARequestThatHasHadItsTurnHoldsNoText)
{
    AgentCharacter& bo = LoadShown();
    const auto textOf = [](const AgentRequestPtr& request) { return dynamic_cast<const Request&>(*request).text; };
    const auto spoken = bo.Speak("Hello", "");
    const auto stopped = bo.Speak("Hello again", "");
    EXPECT_EQ(textOf(spoken), "Hello");
    stage.Settle();
    EXPECT_EQ(textOf(spoken), "");
    EXPECT_EQ(textOf(stopped), "Hello again");
    bo.StopAll("");
    EXPECT_EQ(textOf(stopped), "");
    // The text can still be said again.
    bo.Speak("\\Lst\\", "");
    stage.Settle();
    EXPECT_EQ(voice.started.back().segments.at(0).text, "Hello");
}

TEST_F(ServerSpeechTest, AWaveFileIsPlayedInPlaceOfTheText)
{
    AgentCharacter& bo = LoadShown();
    bo.Speak("Listen", "/sounds/a.wav");
    stage.Settle();
    ASSERT_EQ(voice.started.size(), 1u);
    EXPECT_EQ(voice.started[0].waveFile, "/sounds/a.wav");
    EXPECT_TRUE(voice.started[0].segments.empty());
    voice.Begin();
    EXPECT_EQ(stage.View().lines, (Lines{"Listen"}));
}

TEST_F(ServerSpeechTest, AWaveFilesTextTellsTheVoiceItsWordsAndBookmarks)
{
    AgentCharacter& bo = LoadShown();
    bo.Speak("\\Pit=80\\one \\Mrk=7\\two \\Map=\"3\"=\"the third\"\\ \\Pau=500\\ word", "/a.wav");
    stage.Settle();
    ASSERT_EQ(voice.started.size(), 1u);
    EXPECT_EQ(voice.started[0].shownWords, 5);
    ASSERT_EQ(voice.started[0].segments.size(), 1u);
    EXPECT_EQ(voice.started[0].segments[0].bookmark, 7);
    EXPECT_EQ(voice.started[0].segments[0].firstWord, 1);
    voice.Begin();
    voice.Bookmark(7);
    stage.Settle();
    EXPECT_EQ(Log().back(), "bookmark 7");
}

TEST_F(ServerSpeechTest, ATextThatIsOnlyShownStandsInTheBalloonForAWhile)
{
    AgentCharacter& bo = LoadShown();
    Named("speak", bo.Speak("\\Map=\"\"=\"Look here\"\\", ""));
    stage.Settle();
    ASSERT_EQ(voice.started.size(), 1u);
    EXPECT_TRUE(voice.started[0].segments.empty());
    voice.End(); // with nothing to be heard the voice does not begin
    stage.Settle();
    EXPECT_EQ(Log(), (Lines{"start speak", "end speak 0"}));
    ASSERT_TRUE(stage.BalloonVisible());
    EXPECT_EQ(stage.View().lines, (Lines{"Look here"}));
    stage.Run(Balloon::AutoHideDelay);
    EXPECT_FALSE(stage.BalloonVisible());
}

TEST_F(ServerSpeechTest, BookmarksOfSpeechesInTheQueueComeEachWithItsOwnAndNoneAfterAStop)
{
    AgentCharacter& bo = LoadShown();
    Named("one", bo.Speak("a \\Mrk=1\\", ""));
    Named("two", bo.Speak("\\Mrk=2\\ b \\Mrk=3\\ c", ""));
    stage.Settle();
    voice.Begin();
    voice.Bookmark(1);
    voice.End();
    stage.Settle();
    voice.Begin();
    voice.Bookmark(2);
    bo.StopAll("");
    voice.Bookmark(3);
    stage.Settle();
    EXPECT_EQ(Log(), (Lines{"start one", "bookmark 1", "end one 0", "start two", "bookmark 2", "end two 3"}));
}

TEST_F(ServerSpeechTest, ATextWithNothingToSayCompletesWithoutTheVoice)
{
    AgentCharacter& bo = LoadShown();
    Named("empty", bo.Speak("", ""));
    Named("tags", bo.Speak("\\Pit=50\\ \\Rst\\", ""));
    stage.Settle();
    EXPECT_EQ(Log(), (Lines{"start empty", "end empty 0", "start tags", "end tags 0"}));
    EXPECT_TRUE(voice.started.empty());
}

TEST_F(ServerSpeechTest, AVoiceThatFailsFailsTheRequestAndTheQueueGoesOn)
{
    AgentCharacter& bo = LoadShown();
    Named("speak", bo.Speak("Hello", ""));
    Named("bow", bo.Play("Bow"));
    stage.Settle();
    voice.End(false);
    stage.Run(100);
    EXPECT_EQ(Log(), (Lines{"start speak", "end speak 1", "start bow", "end bow 0"}));
    EXPECT_FALSE(stage.BalloonVisible());
}

TEST_F(ServerSpeechTest, StopAllSilencesTheVoiceAtOnceAndTheBalloonGoes)
{
    AgentCharacter& bo = LoadShown();
    const auto speak = Named("speak", bo.Speak("Hello", ""));
    stage.Settle();
    voice.Begin();
    EXPECT_TRUE(stage.BalloonVisible());
    bo.StopAll("Move, Play, Speak");
    EXPECT_EQ(voice.stops, 1);
    EXPECT_FALSE(stage.BalloonVisible());
    EXPECT_EQ(StatusOf(speak), 3);
    stage.Settle();
    EXPECT_EQ(Log(), (Lines{"start speak", "end speak 3"}));
    voice.End(false);
    stage.Settle();
    EXPECT_EQ(Log(), Lines{});
}

TEST_F(ServerSpeechTest, WhatAStoppedVoiceStillReportsConcernsNobody)
{
    AgentCharacter& bo = LoadShown();
    bo.Speak("First", "");
    stage.Settle();
    voice.Begin();
    const speech::VoiceEvents stale = voice.Last();
    bo.StopAll("");
    Named("second", bo.Speak("Second", ""));
    stage.Settle();
    Log();
    stale.Mouth(3);
    stale.Word(0);
    stale.Bookmark(9);
    stale.Ended(false);
    stage.Settle();
    EXPECT_EQ(Log(), Lines{});
    EXPECT_FALSE(stage.BalloonVisible());
    voice.SpeakAll();
    stage.Settle();
    EXPECT_EQ(Log(), (Lines{"end second 0"}));
}

TEST_F(ServerSpeechTest, AQueuedSpeakThatIsDroppedIsNeverHeard)
{
    AgentCharacter& bo = LoadShown();
    bo.Play("Wave");
    const auto speak = Named("speak", bo.Speak("Hello", ""));
    stage.Settle();
    bo.Stop(speak);
    stage.Run(1000);
    EXPECT_TRUE(voice.started.empty());
    EXPECT_EQ(voice.stops, 0);
}

TEST_F(ServerSpeechTest, ANewTextIsSpokenWithoutWaitingForTheStoppedOneToReportItsEnd)
{
    AgentCharacter& bo = LoadShown();
    bo.Speak("First", "");
    stage.Settle();
    bo.StopAll("Speak");
    bo.Speak("Second", "");
    stage.Settle();
    ASSERT_EQ(voice.started.size(), 2u);
    EXPECT_EQ(voice.started[1].segments[0].text, "Second");
}

TEST_F(ServerSpeechTest, WordsAreRaisedAsTheyAreHeardWithTheirRequest)
{
    AgentCharacter& bo = LoadShown();
    Lines words;
    AgentRequestPtr one;
    server.Word = [&](const AgentRequestPtr& request, int word) {
        words.push_back((request == one ? "one " : "other ") + std::to_string(word));
    };
    one = bo.Speak("\\Pit=80\\ Hello my friend", "");
    stage.Settle();
    voice.Begin();
    EXPECT_EQ(words, Lines{}) << "events come from the event loop";
    stage.Settle();
    voice.Word(1);
    voice.Word(2);
    stage.Settle();
    EXPECT_EQ(words, (Lines{"one 0", "one 1", "one 2"}));
    voice.End();
    bo.Speak("\\Pau=500\\ Again", "");
    stage.Settle();
    voice.Begin();
    stage.Settle();
    EXPECT_EQ(words.size(), 3u) << "it begins with a pause";
    voice.Word(0);
    stage.Settle();
    EXPECT_EQ(words.back(), "other 0");
}

TEST_F(ServerSpeechTest, BookmarksAreRaisedAsTheyAreHeard)
{
    AgentCharacter& bo = LoadShown();
    bo.Speak("one \\Mrk=7\\two", "");
    stage.Settle();
    voice.Begin();
    Log();
    voice.Bookmark(7);
    EXPECT_EQ(Log(), Lines{});
    stage.Settle();
    EXPECT_EQ(Log(), (Lines{"bookmark 7"}));
}

TEST_F(ServerSpeechTest, TheMouthFollowsTheVoiceInTheFrameTheCharacterStandsIn)
{
    AgentCharacter& bo = LoadShown();
    bo.Speak("Hello", "");
    stage.Settle();
    Pictures();
    voice.Begin();
    voice.Mouth(2);
    voice.Mouth(2);
    voice.Mouth(0);
    voice.Mouth(6);
    voice.End();
    EXPECT_EQ(Pictures(), (Numbers{50, 52, 50, 56, 1}));
}

TEST_F(ServerSpeechTest, NoMouthIsDrawnBeforeTheVoiceIsHeardNorAfterItWasStopped)
{
    AgentCharacter& bo = LoadShown();
    Pictures();
    bo.Speak("Hello", "");
    stage.Run(1000);
    EXPECT_EQ(Pictures(), Numbers{});
    voice.Begin();
    bo.StopAll("");
    stage.Run(1000);
    EXPECT_EQ(Pictures(), (Numbers{50, 1}));
}

TEST_F(ServerSpeechTest, APoseWithMouthsIsHeldWhileSpeaking)
{
    AgentCharacter& bo = LoadShown();
    bo.Play("Point");
    bo.Speak("There", "");
    stage.Run(1000);
    Pictures();
    voice.Begin();
    voice.Mouth(1);
    voice.End();
    stage.Run(1000);
    EXPECT_EQ(Pictures(), (Numbers{50, 51, 10}));
}

TEST_F(ServerSpeechTest, APoseWithoutMouthsIsLeftForTheNeutralOneWhileTheVoiceIsHeardAlready)
{
    AgentCharacter& bo = LoadShown();
    bo.Play("Bow");
    bo.Speak("Hello", "");
    stage.Run(99);
    EXPECT_TRUE(voice.started.empty());
    Pictures();
    stage.Run(1);
    EXPECT_EQ(voice.started.size(), 1u);
    EXPECT_EQ(Pictures(), (Numbers{1}));
}

/// Talk moves its arms: pictures 30 and 31 in a loop, both with mouths. Its way out is picture 32.
Animation Talk()
{
    Animation talk{"Talk", Transition::ExitBranches, "", {}};
    talk.frames = {WithMouths(Picture(30, 10, 2)), WithMouths(Picture(31, 10, 2, {{0, 100}})), Picture(32)};
    return talk;
}

TEST_F(ServerSpeechTest, AfterAPoseWithoutMouthsAnAnimationOfTheStateSpeakingIsPlayedEvenIfTheNeutralPoseHasMouths)
{
    description.animations.push_back(Talk());
    description.states.push_back({"Speaking", {"Talk"}});
    AgentCharacter& bo = LoadShown();
    bo.Play("Bow");
    bo.Speak("Hello", "");
    stage.Run(100);
    EXPECT_EQ(voice.started.size(), 1u);
    voice.Begin();
    voice.Mouth(4);
    EXPECT_EQ(Pictures(), (Numbers{1, 16, 1, 30, 50, 54}));
    stage.Run(1150);
    voice.End();
    EXPECT_EQ(Pictures(), (Numbers{31})); // its own picture again, without the mouth
    stage.Run(1000);
    EXPECT_EQ(Pictures(), (Numbers{32, 1}));
}

TEST_F(ServerSpeechTest, AfterAnIdleAnimationAnAnimationOfTheStateSpeakingIsPlayedToo)
{
    description.animations.push_back(Talk());
    description.states.push_back({"Speaking", {"Talk"}});
    description.states.push_back({"IdlingLevel1", {"Look"}});
    AgentCharacter& bo = LoadShown();
    stage.Run(3200);
    Pictures();
    bo.Speak("Hello", "");
    stage.Run(100);
    EXPECT_EQ(Pictures(), (Numbers{22, 1, 30}));
}

TEST_F(ServerSpeechTest, ANeutralPoseWithMouthsInWhichItStandsIsSpokenIn)
{
    description.animations.push_back(Talk());
    description.states.push_back({"Speaking", {"Talk"}});
    AgentCharacter& bo = LoadShown();
    Pictures();
    bo.Speak("Hello", "");
    stage.Settle();
    voice.Begin();
    stage.Run(1000);
    EXPECT_EQ(Pictures(), (Numbers{50}));
}

TEST_F(ServerSpeechTest, AMouthThatCanBeSeenGoesBeforeAMovementWithoutOne)
{
    Animation wag{"Wag", Transition::None, "", {Picture(33), Picture(34, 10, -1, {{0, 100}})}};
    description.animations.push_back(wag);
    description.states.push_back({"Speaking", {"Wag"}});
    AgentCharacter& bo = LoadShown();
    bo.Play("Bow");
    stage.Run(100);
    Pictures();
    bo.Speak("Hello", "");
    stage.Settle();
    voice.Begin();
    voice.Mouth(4);
    stage.Run(1000);
    EXPECT_EQ(Pictures(), (Numbers{1, 50, 54}));
}

// In the characters that ship, the state Speaking is the neutral pose.
TEST_F(ServerSpeechTest, WhereTheStateSpeakingIsTheNeutralPoseOnlyTheMouthMoves)
{
    description.states.push_back({"Speaking", {"RestPose"}});
    AgentCharacter& bo = LoadShown();
    bo.Play("Bow");
    stage.Run(100);
    Pictures();
    bo.Speak("Hello", "");
    stage.Settle();
    voice.Begin();
    voice.Mouth(4);
    stage.Run(1000);
    voice.Mouth(2);
    voice.End();
    stage.Run(1000);
    EXPECT_EQ(Pictures(), (Numbers{1, 50, 54, 52, 1}));
}

TEST_F(ServerSpeechTest, WithoutMouthsInTheNeutralPoseAnAnimationOfTheStateSpeakingIsPlayed)
{
    description.animations[0].frames = {Picture(1)};
    description.animations.push_back(
        {"Talk", Transition::ExitBranches, "", {Picture(30, 10, 2), WithMouths(Picture(31, 10, 2)), Picture(32)}});
    description.animations.back().frames[1].branches = {{1, 100}};
    description.states.push_back({"Speaking", {"Talk"}});
    AgentCharacter& bo = LoadShown();
    Pictures();
    bo.Speak("Hello", "");
    stage.Settle();
    EXPECT_EQ(voice.started.size(), 1u);
    EXPECT_EQ(Pictures(), (Numbers{30}));
    voice.Begin();
    stage.Run(100);
    voice.Mouth(4);
    EXPECT_EQ(Pictures(), (Numbers{50, 54}));
    voice.End();
    stage.Run(1000);
    EXPECT_EQ(Pictures(), (Numbers{31, 32, 1}));
}

TEST_F(ServerSpeechTest, WithoutMouthsAndWithoutTheStateSpeakingItSpeaksInTheNeutralPoseAllTheSame)
{
    description.animations[0].frames = {Picture(1)};
    AgentCharacter& bo = LoadShown();
    bo.Play("Bow");
    stage.Run(100);
    Pictures();
    Log();
    Named("speak", bo.Speak("Hello", ""));
    stage.Settle();
    EXPECT_EQ(Pictures(), (Numbers{1}));
    voice.Begin();
    voice.Mouth(4);
    stage.Run(5000);
    EXPECT_TRUE(stage.BalloonVisible());
    voice.End();
    stage.Settle();
    EXPECT_EQ(Pictures(), Numbers{});
    EXPECT_EQ(Log(), (Lines{"start speak", "end speak 0"}));
}

TEST_F(ServerSpeechTest, ASpeakingAnimationThatEndsWithoutMouthsIsPlayedAgainWhileTheVoiceGoesOn)
{
    description.animations[0].frames = {Picture(1)};
    description.animations.push_back({"Talk", Transition::None, "", {Picture(30), Picture(31)}});
    description.states.push_back({"Speaking", {"Talk"}});
    AgentCharacter& bo = LoadShown();
    Pictures();
    bo.Speak("Hello", "");
    stage.Settle();
    voice.Begin();
    stage.Run(550);
    EXPECT_EQ(Pictures(), (Numbers{30, 31, 1, 30, 31, 1, 30, 31}));
    voice.End();
    stage.Run(1000);
    EXPECT_EQ(Pictures(), (Numbers{1}));
    EXPECT_EQ(stage.Waiting(), 1u); // the balloon's timer
}

TEST_F(ServerSpeechTest, ASpeakingAnimationWithNothingToShowIsPlayedOnce)
{
    description.animations[0].frames = {Picture(1)};
    description.animations.push_back({"Talk", Transition::None, "", {Picture(30, 0)}});
    description.states.push_back({"Speaking", {"Talk"}});
    AgentCharacter& bo = LoadShown();
    Pictures();
    bo.Speak("Hello", "");
    stage.Settle();
    voice.Begin();
    stage.Run(1000);
    EXPECT_EQ(Pictures(), Numbers{});
    voice.End();
}

TEST_F(ServerSpeechTest, AnIdleAnimationIsLeftByItsExitWhileTheVoiceStartsAtOnce)
{
    description.states.push_back({"IdlingLevel1", {"Look"}});
    AgentCharacter& bo = LoadShown();
    stage.Run(3200);
    Pictures();
    const std::int64_t asked = stage.now;
    bo.Speak("Hello", "");
    stage.Settle();
    EXPECT_EQ(voice.started.size(), 1u);
    EXPECT_EQ(stage.now, asked);
    EXPECT_EQ(Pictures(), (Numbers{22}));
    voice.Begin();
    voice.Mouth(1);
    stage.Run(100);
    EXPECT_EQ(Pictures(), (Numbers{51}));
}

TEST_F(ServerSpeechTest, AnIdleAnimationIsLeftEvenInAFrameWithMouthsWhichMoveMeanwhile)
{
    description.animations.push_back({"Hum", Transition::ExitBranches, "", {}});
    description.animations.back().frames = {WithMouths(Picture(40, 300, 1)), WithMouths(Picture(41))};
    description.states.push_back({"IdlingLevel1", {"Hum"}});
    AgentCharacter& bo = LoadShown();
    stage.Run(3200);
    Pictures();
    bo.Speak("Hello", "");
    stage.Settle();
    EXPECT_EQ(Pictures(), (Numbers{41}));
    voice.Begin();
    voice.Mouth(1);
    voice.Mouth(2);
    EXPECT_EQ(Pictures(), (Numbers{50, 51, 52}));
    stage.Run(100);
    voice.End();
    EXPECT_EQ(Pictures(), (Numbers{1}));
}

TEST_F(ServerSpeechTest, ASpeechThatEndsBeforeThePoseIsReachedLeavesTheCharacterNeutral)
{
    description.states.push_back({"IdlingLevel1", {"Look"}});
    AgentCharacter& bo = LoadShown();
    stage.Run(3200);
    Named("speak", bo.Speak("Hello", ""));
    stage.Settle();
    voice.SpeakAll();
    Pictures();
    stage.Run(100);
    EXPECT_EQ(Pictures(), (Numbers{1}));
    EXPECT_EQ(Log(), (Lines{"start speak", "end speak 0"}));
    // The character idles again.
    stage.Run(8000);
    EXPECT_EQ(Pictures().front(), 20);
}

TEST_F(ServerSpeechTest, TheLastTextIsSaidAgain)
{
    AgentCharacter& bo = LoadShown();
    Named("nothing", bo.Speak("\\Lst\\", ""));
    stage.Settle();
    EXPECT_EQ(Log(), (Lines{"start nothing", "end nothing 0"}));
    bo.Speak("\\Pit=60\\Hello", "");
    stage.Settle();
    voice.SpeakAll();
    for (int i = 0; i < 2; ++i) {
        bo.Speak(" \\lst\\", "");
        stage.Settle();
        EXPECT_EQ(voice.started.back().segments[0].text, "Hello");
        EXPECT_EQ(voice.started.back().segments[0].prosody.pitchHz, 60);
        voice.Begin();
        EXPECT_EQ(stage.View().lines, (Lines{"Hello"}));
        voice.End();
    }
    EXPECT_EQ(voice.started.size(), 3u);
}

TEST_F(ServerSpeechTest, TheLastWaveFileIsPlayedAgain)
{
    AgentCharacter& bo = LoadShown();
    bo.Speak("Listen", "/a.wav");
    stage.Settle();
    voice.SpeakAll();
    bo.Speak("\\Lst\\", "");
    stage.Settle();
    ASSERT_EQ(voice.started.size(), 2u);
    EXPECT_EQ(voice.started[1].waveFile, "/a.wav");
}

TEST_F(ServerSpeechTest, CharactersSpeakOneAfterTheOther)
{
    AgentCharacter& bo = LoadShown("Bo");
    AgentCharacter& mia = LoadShown("Mia");
    Named("bo", bo.Speak("First", ""));
    Named("mia", mia.Speak("Second", ""));
    Named("mia bows", mia.Play("Bow"));
    stage.Run(1000);
    EXPECT_EQ(voice.started.size(), 1u);
    EXPECT_EQ(Log(), (Lines{"start bo"}));
    voice.SpeakAll();
    stage.Settle();
    EXPECT_EQ(voice.started.size(), 2u);
    EXPECT_EQ(Log(), (Lines{"end bo 0", "start mia"}));
    voice.SpeakAll();
    stage.Run(1000);
    EXPECT_EQ(Log(), (Lines{"end mia 0", "start mia bows", "end mia bows 0"}));
}

TEST_F(ServerSpeechTest, TheVoiceOfAnUnloadedOrSilencedCharacterIsFreeForTheOthers)
{
    AgentCharacter& bo = LoadShown("Bo");
    AgentCharacter& mia = LoadShown("Mia");
    bo.Speak("First", "");
    mia.Speak("Second", "");
    stage.Settle();
    bo.StopAll("");
    stage.Settle();
    ASSERT_EQ(voice.started.size(), 2u);
    bo.Speak("Third", "");
    stage.Settle();
    server.Unload("Mia");
    stage.Settle();
    ASSERT_EQ(voice.started.size(), 3u);
    EXPECT_EQ(voice.started[2].segments[0].text, "Third");
}

TEST_F(ServerSpeechTest, AVoiceThatFailsInsideItsOwnStartIsNoTrouble)
{
    class DeadVoice : public fakes::FakeVoiceOutput
    {
        void Start(speech::Utterance utterance, speech::VoiceEvents events) override
        {
            FakeVoiceOutput::Start(utterance, std::move(events));
            End(false);
        }
    } dead;
    Server other(stage, dead, [this](const std::string& path) { return AcsFile::Parse(WriteAcs(description), path); });
    other.Load("Bo", "Bo.acs");
    AgentCharacter& bo = other.Characters("Bo");
    bo.Balloon().SetStyle(BalloonOn | 10 << 16);
    bo.Show(true);
    const auto first = bo.Speak("a", "");
    const auto second = bo.Speak("b", "");
    stage.Settle();
    EXPECT_EQ(StatusOf(first), 1);
    EXPECT_EQ(StatusOf(second), 1);
    EXPECT_EQ(dead.started.size(), 2u);
    EXPECT_FALSE(stage.BalloonVisible());
}

} // namespace
} // namespace voxmate::agent::test
