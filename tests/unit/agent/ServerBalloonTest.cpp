#include "tests/unit/agent/ServerTest.h"

#include <limits>

namespace voxmate::agent::test
{
namespace
{

constexpr std::uint32_t kAllSwitches = BalloonOn | BalloonSizeToText | BalloonAutoHide | BalloonAutoPace;

constexpr std::uint32_t Style(std::uint32_t switches, std::uint32_t characters, std::uint32_t lines)
{
    return switches | characters << 16 | lines << 24;
}

class ServerBalloonTest : public ServerTest
{
protected:
    /// The character with a balloon of the given style. Its letters are 8 pixels wide, its lines 20 pixels high.
    AgentCharacter& With(std::uint32_t switches, std::uint32_t characters = 10, std::uint32_t lines = 2)
    {
        AgentCharacter& bo = LoadShown();
        bo.Balloon().SetStyle(Style(switches, characters, lines));
        return bo;
    }
    void Say(AgentCharacter& bo, const std::string& text)
    {
        bo.Speak(text, "");
        stage.Settle();
        voice.Begin();
    }
    const Lines& Shown() const { return stage.View().lines; }
};

TEST_F(ServerBalloonTest, TheStyleIsFirstThatOfTheFile)
{
    description.balloon = BalloonInfo{3, 28, {1, 2, 3}, {4, 5, 6}, {7, 8, 9}, "Arial", -16, 700, true, 0};
    EXPECT_EQ(Load("A").Balloon().Style(), Style(BalloonOn | BalloonAutoHide | BalloonAutoPace, 28, 3));
    description.flags = FlagSizeToText | FlagAutoHideOff | FlagAutoPaceOff;
    EXPECT_EQ(Load("B").Balloon().Style(), Style(BalloonOn | BalloonSizeToText, 28, 3));
    description.flags = FlagBalloonDisabled;
    EXPECT_EQ(Load("C").Balloon().Style(), Style(BalloonAutoHide | BalloonAutoPace, 28, 3));
}

TEST_F(ServerBalloonTest, AFileWithoutABalloonOfItsOwnGetsAnOrdinaryOne)
{
    AgentCharacter& bo = LoadShown();
    EXPECT_EQ(bo.Balloon().Style(), Style(BalloonOn | BalloonAutoHide | BalloonAutoPace, 32, 4));
    EXPECT_EQ(bo.Balloon().FontSize(), 10);
    Say(bo, "Hello");
    EXPECT_TRUE(stage.BalloonVisible());
}

TEST_F(ServerBalloonTest, FontAndColoursAreThoseOfTheFileUntilTheyAreSet)
{
    description.balloon = BalloonInfo{3, 28, {1, 2, 3}, {4, 5, 6}, {7, 8, 9}, "Arial", -16, 700, true, 0};
    AgentCharacter& bo = LoadShown();
    EXPECT_EQ(bo.Balloon().FontName(), "Arial");
    EXPECT_EQ(bo.Balloon().FontSize(), 12);
    Say(bo, "Hello");
    EXPECT_EQ(stage.View().font, (BalloonFont{"Arial", 12, true, true}));
    EXPECT_EQ(stage.View().text, (Colour{1, 2, 3}));
    EXPECT_EQ(stage.View().background, (Colour{4, 5, 6}));
    EXPECT_EQ(stage.View().border, (Colour{7, 8, 9}));
    bo.Balloon().SetFontName("Courier");
    bo.Balloon().SetFontSize(20);
    EXPECT_EQ(stage.View().font, (BalloonFont{"Courier", 20, true, true}));
    EXPECT_EQ(stage.View().lineHeight, 40);
    bo.Balloon().SetFontName("");
    bo.Balloon().SetFontSize(0);
    EXPECT_EQ(stage.View().font, (BalloonFont{"Arial", 12, true, true}));
}

TEST_F(ServerBalloonTest, AStyleIsGivenBackAsItWasSet)
{
    AgentCharacter& bo = LoadShown();
    for (const std::uint32_t style : {0u, Style(15, 99, 16), 0xFFFFFFFFu, Style(1, 0, 0)}) {
        bo.Balloon().SetStyle(style);
        EXPECT_EQ(bo.Balloon().Style(), style);
        Say(bo, "The quick brown fox");
        voice.End();
        stage.Settle();
    }
}

TEST_F(ServerBalloonTest, ItsWidthHoldsTheCharactersAndItsHeightTheTextWhenSizedToIt)
{
    AgentCharacter& bo = With(kAllSwitches & ~BalloonAutoPace, 10, 2);
    Say(bo, "The quick brown fox jumps over");
    EXPECT_EQ(Shown(), (Lines{"The quick", "brown fox", "jumps over"}));
    EXPECT_EQ(stage.View().bubble.width, 10 * 8 + 2 * BalloonPadding);
    EXPECT_EQ(stage.View().bubble.height, 3 * 20 + 2 * BalloonPadding);
    EXPECT_EQ(stage.View().lineHeight, 20);
}

TEST_F(ServerBalloonTest, OtherwiseItIsAsHighAsItsLinesAndTheTextScrollsAsItIsSpoken)
{
    AgentCharacter& bo = With(BalloonOn, 10, 2);
    Say(bo, "The quick brown fox jumps over it");
    EXPECT_EQ(stage.View().bubble.height, 2 * 20 + 2 * BalloonPadding);
    EXPECT_EQ(Shown(), (Lines{"The quick", "brown fox"}));
    voice.Word(3);
    EXPECT_EQ(Shown(), (Lines{"The quick", "brown fox"}));
    voice.Word(4);
    EXPECT_EQ(Shown(), (Lines{"brown fox", "jumps over"}));
    voice.Word(6);
    EXPECT_EQ(Shown(), (Lines{"jumps over", "it"}));
}

TEST_F(ServerBalloonTest, AShortTextDoesNotMakeABalloonOfFixedHeightSmaller)
{
    AgentCharacter& bo = With(BalloonOn, 10, 4);
    Say(bo, "Hi");
    EXPECT_EQ(stage.View().bubble.height, 4 * 20 + 2 * BalloonPadding);
    EXPECT_EQ(Shown(), (Lines{"Hi"}));
}

TEST_F(ServerBalloonTest, WithAutoPaceWordsAppearAsTheyAreSpoken)
{
    AgentCharacter& bo = With(kAllSwitches, 10);
    bo.Speak("The quick brown fox", "");
    stage.Settle();
    EXPECT_FALSE(stage.BalloonVisible());
    voice.Begin();
    EXPECT_EQ(Shown(), (Lines{"The"}));
    EXPECT_EQ(stage.View().bubble.height, 2 * 20 + 2 * BalloonPadding);
    voice.Word(1);
    EXPECT_EQ(Shown(), (Lines{"The quick"}));
    voice.Word(2);
    EXPECT_EQ(Shown(), (Lines{"The quick", "brown"}));
    voice.End();
    EXPECT_EQ(Shown(), (Lines{"The quick", "brown fox"}));
}

TEST_F(ServerBalloonTest, WithAutoPaceAndFixedHeightTheSpokenLineIsTheLast)
{
    AgentCharacter& bo = With(BalloonOn | BalloonAutoPace, 10, 2);
    Say(bo, "The quick brown fox jumps over it");
    voice.Word(4);
    EXPECT_EQ(Shown(), (Lines{"brown fox", "jumps"}));
    voice.End();
    EXPECT_EQ(Shown(), (Lines{"jumps over", "it"}));
}

TEST_F(ServerBalloonTest, WithoutAutoPaceTheWholeTextIsThereAtOnce)
{
    AgentCharacter& bo = With(BalloonOn | BalloonSizeToText, 10);
    bo.Speak("The quick brown fox", "");
    stage.Settle();
    EXPECT_EQ(Shown(), (Lines{"The quick", "brown fox"}));
    voice.Begin();
    voice.Word(0);
    voice.Word(1);
    EXPECT_EQ(stage.balloons.back()->views.size(), 1u);
}

TEST_F(ServerBalloonTest, TheTextOfAWaveFileAppearsAndScrollsAsItIsHeard)
{
    AgentCharacter& bo = With(BalloonOn | BalloonAutoPace, 10, 1);
    bo.Speak("The quick brown fox", "/a.wav");
    stage.Settle();
    EXPECT_FALSE(stage.BalloonVisible());
    voice.Begin();
    EXPECT_EQ(Shown(), (Lines{"The"}));
    voice.Word(2);
    EXPECT_EQ(Shown(), (Lines{"brown"}));
    voice.End();
    EXPECT_EQ(Shown(), (Lines{"brown fox"}));
}

TEST_F(ServerBalloonTest, WithAutoPaceAPauseAtTheBeginningComesBeforeTheFirstWord)
{
    AgentCharacter& bo = With(kAllSwitches, 10);
    Say(bo, "\\Mrk=1\\\\Pau=2000\\The quick");
    EXPECT_FALSE(stage.BalloonVisible());
    voice.Word(0);
    EXPECT_EQ(Shown(), (Lines{"The"}));
    voice.End();
    Say(bo, "The \\Pau=2000\\quick");
    EXPECT_EQ(Shown(), (Lines{"The"}));
}

TEST_F(ServerBalloonTest, TagsAreNotShownAndMapsShowTheirSecondText)
{
    AgentCharacter& bo = With(BalloonOn | BalloonSizeToText, 30);
    Say(bo, "\\Chr=\"WHISPER\"\\ \\Pit=50\\ \\Spd=156\\It is \\Map=\"three\"=\"3:00\"\\ in C:\\\\x");
    EXPECT_EQ(Shown(), (Lines{"It is 3:00 in C:\\x"}));
}

TEST_F(ServerBalloonTest, LineEndsAreHonouredAndLongWordsBroken)
{
    AgentCharacter& bo = With(BalloonOn | BalloonSizeToText, 10);
    Say(bo, "One\r\n\r\nabcdefghijklm");
    EXPECT_EQ(Shown(), (Lines{"One", "", "abcdefghij", "klm"}));
}

TEST_F(ServerBalloonTest, SwitchedOffThereIsNone)
{
    AgentCharacter& bo = With(kAllSwitches & ~BalloonOn, 10);
    Say(bo, "Hello");
    voice.Word(0);
    voice.End();
    stage.Run(100);
    EXPECT_TRUE(stage.balloons.empty());
}

TEST_F(ServerBalloonTest, SwitchingItWhileSpeakingTakesEffectAtOnce)
{
    AgentCharacter& bo = With(BalloonOn | BalloonSizeToText, 10);
    Say(bo, "The quick brown fox");
    bo.Balloon().SetStyle(Style(BalloonSizeToText, 10, 2));
    EXPECT_FALSE(stage.BalloonVisible());
    bo.Balloon().SetStyle(Style(BalloonOn | BalloonSizeToText, 5, 2));
    EXPECT_TRUE(stage.BalloonVisible());
    EXPECT_EQ(Shown(), (Lines{"The", "quick", "brown", "fox"}));
}

TEST_F(ServerBalloonTest, ATextWithoutWordsHasNoBalloon)
{
    AgentCharacter& bo = With(BalloonOn, 10);
    Say(bo, "\\Pau=500\\");
    EXPECT_FALSE(stage.BalloonVisible());
}

TEST_F(ServerBalloonTest, AutoHideTakesItAwayTwoSecondsAfterTheVoice)
{
    AgentCharacter& bo = With(kAllSwitches, 10);
    Say(bo, "Hello");
    stage.Run(10000);
    EXPECT_TRUE(stage.BalloonVisible());
    voice.End();
    stage.Run(1999);
    EXPECT_TRUE(stage.BalloonVisible());
    stage.Run(1);
    EXPECT_FALSE(stage.BalloonVisible());
}

TEST_F(ServerBalloonTest, WithoutAutoHideItStaysUntilTheNextSpeak)
{
    AgentCharacter& bo = With(BalloonOn | BalloonAutoPace | BalloonSizeToText, 10);
    Say(bo, "Hello");
    voice.End();
    bo.Play("Wave");
    stage.Run(3600000);
    EXPECT_TRUE(stage.BalloonVisible());
    EXPECT_EQ(Shown(), (Lines{"Hello"}));
    bo.Speak("Next", "");
    stage.Settle();
    EXPECT_FALSE(stage.BalloonVisible());
    voice.Begin();
    EXPECT_EQ(Shown(), (Lines{"Next"}));
}

TEST_F(ServerBalloonTest, WithoutAutoHideEvenASpeakOfNothingTakesItAway)
{
    AgentCharacter& bo = With(BalloonOn | BalloonSizeToText, 10);
    for (const char* nothing : {"", "\\Rst\\", "\\Pau=500\\"}) {
        Say(bo, "Hello");
        voice.End();
        stage.Settle();
        ASSERT_TRUE(stage.BalloonVisible());
        bo.Speak(nothing, "");
        stage.Settle();
        EXPECT_FALSE(stage.BalloonVisible()) << nothing;
        voice.End();
    }
}

TEST_F(ServerBalloonTest, AutoHideSwitchedOnTakesAStandingBalloonAwayAndSwitchedOffLetsItStay)
{
    AgentCharacter& bo = With(BalloonOn | BalloonSizeToText, 10);
    Say(bo, "Hello");
    bo.Balloon().SetStyle(Style(BalloonOn | BalloonAutoHide, 10, 2));
    stage.Run(10000);
    EXPECT_TRUE(stage.BalloonVisible()); // the voice goes on
    voice.End();
    stage.Run(1000);
    bo.Balloon().SetStyle(Style(BalloonOn, 10, 2));
    stage.Run(10000);
    EXPECT_TRUE(stage.BalloonVisible());
    bo.Balloon().SetStyle(Style(BalloonOn | BalloonAutoHide, 10, 2));
    stage.Run(1999);
    EXPECT_TRUE(stage.BalloonVisible());
    stage.Run(1);
    EXPECT_FALSE(stage.BalloonVisible());
}

TEST_F(ServerBalloonTest, WithoutAutoHideItGoesWhenTheCharacterIsHidden)
{
    AgentCharacter& bo = With(BalloonOn, 10);
    Say(bo, "Hello");
    voice.End();
    bo.Hide(false);
    stage.Settle();
    EXPECT_FALSE(stage.BalloonVisible());
}

TEST_F(ServerBalloonTest, AClickOnItTakesItAwayAndTheVoiceGoesOn)
{
    AgentCharacter& bo = With(BalloonOn, 10);
    Say(bo, "Hello you");
    const auto& mouse = *stage.balloons.back()->mouse;
    mouse({MouseAction::Press, 1, 0, {5, 5}, {700, 600}});
    EXPECT_TRUE(stage.BalloonVisible());
    mouse({MouseAction::Release, 1, 0, {5, 5}, {700, 600}});
    EXPECT_FALSE(stage.BalloonVisible());
    voice.Word(1);
    EXPECT_FALSE(stage.BalloonVisible());
    EXPECT_EQ(voice.stops, 0);
}

TEST_F(ServerBalloonTest, FilesDroppedOnItOrOnTheCharacterAreToldOf)
{
    AgentCharacter& bo = With(BalloonOn, 10);
    Say(bo, "Hello you");
    std::vector<std::vector<std::string>> dropped;
    server.FilesDropped = [&](const std::vector<std::string>& files) { dropped.push_back(files); };
    (*stage.Window().filesDropped)({"/a.pdf", "/b.txt"});
    (*stage.balloons.back()->filesDropped)({"/c.odt"});
    EXPECT_TRUE(dropped.empty()) << "not within the drop";
    stage.Run(1);
    EXPECT_EQ(dropped, (std::vector<std::vector<std::string>>{{"/a.pdf", "/b.txt"}, {"/c.odt"}}));
    EXPECT_TRUE(stage.BalloonVisible());
}

TEST_F(ServerBalloonTest, ADragOfItTakesItAway)
{
    AgentCharacter& bo = With(BalloonOn, 10);
    Say(bo, "Hello you");
    const auto& mouse = *stage.balloons.back()->mouse;
    mouse({MouseAction::Press, 1, 0, {5, 5}, {700, 600}});
    mouse({MouseAction::Move, 0, 0, {50, 5}, {745, 600}});
    mouse({MouseAction::Release, 1, 0, {50, 5}, {745, 600}});
    EXPECT_FALSE(stage.BalloonVisible());
}

TEST_F(ServerBalloonTest, ANewSpeakBeforeTheOldBalloonHidesIsNotHiddenWithIt)
{
    AgentCharacter& bo = With(kAllSwitches, 10);
    Say(bo, "One");
    voice.End();
    stage.Run(1500);
    Say(bo, "Two");
    stage.Run(5000);
    EXPECT_TRUE(stage.BalloonVisible());
    EXPECT_EQ(Shown(), (Lines{"Two"}));
}

TEST_F(ServerBalloonTest, ItStandsAboveTheCharacterAndFollowsADrag)
{
    AgentCharacter& bo = With(BalloonOn | BalloonSizeToText, 10);
    Say(bo, "Hello");
    const Point place = stage.Window().place;
    EXPECT_EQ(stage.View().bubble, (Rect{place.x + 20 - 50, place.y - BalloonTailLength - 40, 100, 40}));
    EXPECT_EQ(stage.View().tailTip, (Point{place.x + 20, place.y}));
    stage.Mouse(MouseAction::Press, 1, {10, 10});
    (*stage.Window().mouse)({MouseAction::Move, 0, 0, {}, {210, 310}});
    EXPECT_EQ(stage.Window().place, (Point{200, 300}));
    EXPECT_EQ(stage.View().bubble, (Rect{220 - 50, 300 - BalloonTailLength - 40, 100, 40}));
    EXPECT_EQ(stage.View().tailTip, (Point{220, 300}));
}

TEST_F(ServerBalloonTest, TheTailPointsAtWhatIsDrawnOfTheCharacter)
{
    // The neutral pose leaves the upper third and both sides of the frame empty.
    auto& pixels = description.images[1].pixels;
    for (int y = 0; y < kHeight; ++y)
        for (int x = 0; x < kWidth; ++x)
            if (y < 20 || x < 5 || x >= 25)
                pixels[static_cast<std::size_t>(y * kWidth + x)] = 0;
    AgentCharacter& bo = With(BalloonOn | BalloonSizeToText, 10);
    Say(bo, "Hello");
    const Point place = stage.Window().place;
    EXPECT_EQ(stage.View().tailTip, (Point{place.x + 15, place.y + 20}));
    EXPECT_EQ(stage.View().bubble.Bottom(), place.y + 20 - BalloonTailLength);
}

TEST_F(ServerBalloonTest, ItFollowsTheCharactersSize)
{
    AgentCharacter& bo = With(BalloonOn | BalloonSizeToText, 10);
    Say(bo, "Hello");
    bo.SetWidth(80);
    bo.SetHeight(120);
    const Point place = stage.Window().place;
    EXPECT_EQ(stage.View().tailTip, (Point{place.x + 40, place.y}));
}

TEST_F(ServerBalloonTest, ATextTooLongForTheScreenScrollsThoughSizedToText)
{
    stage.workAreas = {{0, 0, 640, 200}};
    AgentCharacter& bo = With(BalloonOn | BalloonSizeToText, 1);
    std::string text = "0";
    for (int i = 1; i < 30; ++i)
        text += " " + std::to_string(i % 10);
    Say(bo, text);
    EXPECT_EQ(Shown().size(), 9u); // (200 - 2 * 10) / 20
    EXPECT_EQ(stage.View().bubble.height, 200);
    EXPECT_EQ(stage.View().bubble.y, 0);
    voice.Word(9);
    EXPECT_EQ(Shown().back(), "9");
    EXPECT_EQ(Shown().front(), "1");
}

TEST_F(ServerBalloonTest, AFontTooLargeForTheScreenDoesNotMakeItLargerThanTheScreen)
{
    stage.workAreas = {{0, 0, 15, 90}};
    AgentCharacter& bo = With(BalloonOn | BalloonSizeToText, 10);
    for (const int points : {72, 1000000, std::numeric_limits<int>::max() / 2}) {
        bo.Balloon().SetFontSize(points);
        Say(bo, "Hello");
        EXPECT_EQ(stage.View().bubble, (Rect{0, 0, 15, 90})) << points;
        voice.End();
    }
}

TEST_F(ServerBalloonTest, OnASmallerScreenItIsLaidOutAnewSoAsToStandWhollyOnIt)
{
    stage.workAreas = {{0, 0, 1280, 720}, {1280, 0, 320, 160}};
    AgentCharacter& bo = With(BalloonOn | BalloonSizeToText, 60);
    std::string text = "word0";
    for (int i = 1; i < 40; ++i)
        text += " word" + std::to_string(i % 10);
    Say(bo, text);
    EXPECT_EQ(stage.View().bubble.width, 60 * 8 + 2 * BalloonPadding);
    stage.MoveWindow({1400, 60});
    EXPECT_EQ(stage.View().bubble, (Rect{1280, 0, 320, 160}));
    EXPECT_EQ(Shown().size(), 7u); // (160 - 2 * 10) / 20
    EXPECT_EQ(Shown()[0], "word0 word1 word2 word3 word4 word5");
    stage.MoveWindow({600, 600});
    EXPECT_EQ(stage.View().bubble.width, 60 * 8 + 2 * BalloonPadding);
    stage.ChangeScreens({{0, 0, 320, 160}});
    EXPECT_EQ(stage.View().bubble, (Rect{0, 0, 320, 160}));
}

TEST_F(ServerBalloonTest, AnotherScreenOfTheSameSizeIsNoReasonToMeasureAgain)
{
    stage.workAreas = {{0, 0, 1280, 720}, {1280, 0, 1280, 720}};
    AgentCharacter& bo = With(BalloonOn | BalloonSizeToText, 20);
    Say(bo, "The quick brown fox");
    const int measures = stage.measures;
    stage.MoveWindow({1400, 300});
    stage.MoveWindow({1500, 300});
    EXPECT_EQ(stage.measures, measures);
}

TEST_F(ServerBalloonTest, LinesOfTextThatRunsFromRightToLeftAreMarkedAsSuch)
{
    AgentCharacter& bo = With(BalloonOn | BalloonSizeToText, 10);
    Say(bo, "Hello you\nשלום Qt world\n3 نعم");
    EXPECT_EQ(Shown(), (Lines{"Hello you", "שלום Qt", "world", "3 نعم"}));
    EXPECT_EQ(stage.View().rightToLeft, (std::vector<bool>{false, true, true, true}));
}

TEST_F(ServerBalloonTest, ABalloonWiderThanTheScreenIsAsWideAsTheScreen)
{
    stage.workAreas = {{0, 0, 300, 400}};
    AgentCharacter& bo = With(BalloonOn, 99);
    Say(bo, "Hello");
    EXPECT_EQ(stage.View().bubble.x, 0);
    EXPECT_EQ(stage.View().bubble.width, 300);
}

TEST_F(ServerBalloonTest, NothingIsDrawnAgainWhileNothingChanges)
{
    AgentCharacter& bo = With(BalloonOn | BalloonAutoPace | BalloonSizeToText, 10);
    Say(bo, "Hello you");
    voice.Word(0);
    voice.Mouth(3);
    EXPECT_EQ(stage.balloons.back()->views.size(), 1u);
    voice.Word(1);
    EXPECT_EQ(stage.balloons.back()->views.size(), 2u);
}

TEST_F(ServerBalloonTest, ALongTextIsLaidOutOnlyAsFarAsItIsSeen)
{
    AgentCharacter& bo = With(BalloonOn, 32, 2);
    std::string text;
    for (int i = 0; i < 50000; ++i)
        text += "word ";
    Say(bo, text);
    EXPECT_LT(stage.measures, 50);
}

} // namespace
} // namespace voxmate::agent::test
