// Standing aside for a while, beside the requests.
#include "tests/unit/agent/ServerTest.h"

namespace voxmate::agent::test
{
namespace
{

// The window is 40 wide and 60 high; unless the user moves it, it stands at 1200, 644 of a work area of 1280 by 720.
constexpr Point kHome{1200, 644};
constexpr Point kAside{1000, 644};
constexpr int kLongest = Glide::LongestTime + 1000;

class ServerAsideTest : public ServerTest
{
protected:
    ServerAsideTest() { description.states.push_back({"MovingLeft", {"Point"}}); }

    void Drag(Point from, Point to)
    {
        stage.Mouse(MouseAction::Press, 1, from);
        (*stage.Window().mouse)({MouseAction::Move, 0, 0, from, to});
        (*stage.Window().mouse)({MouseAction::Release, 1, 0, from, to});
        stage.Settle();
    }
    Point Place() { return stage.Window().place; }
    static Point CornerOf(const CharacterPlace& place) { return {place.Window.x, place.Window.y}; }
};

TEST_F(ServerAsideTest, WalksInItsAnimationAndReturnsFromIt)
{
    AgentCharacter& bo = LoadShown();
    Pictures();
    EXPECT_TRUE(bo.StandAside(kAside, Going::Walk));
    EXPECT_EQ(CornerOf(bo.Place()), kAside);
    EXPECT_EQ(CornerOf(bo.Home()), kHome);
    stage.Run(Glide::ShortestTime / 2);
    EXPECT_NEAR(Place().x, 1100, 10) << "half way in half of the time";
    stage.Run(Glide::ShortestTime);
    EXPECT_EQ(Place(), kAside);
    EXPECT_EQ(Pictures(), (Numbers{9, 10, 11, 1}));
    EXPECT_EQ(Log(), (Lines{})) << "it is no request";
}

TEST_F(ServerAsideTest, WalksHomeToWhereItStood)
{
    AgentCharacter& bo = LoadShown();
    bo.StandAside(kAside, Going::Walk);
    EXPECT_FALSE(bo.StandAtHome()) << "on its way";
    stage.Run(kLongest);
    EXPECT_TRUE(bo.StandAtHome());
    EXPECT_EQ(CornerOf(bo.Place()), kHome);
    stage.Run(kLongest);
    EXPECT_EQ(Place(), kHome);
    EXPECT_EQ(bo.Place(), bo.Home());
}

TEST_F(ServerAsideTest, WalksHomeToWhereTheUserPutItEvenPartlyOffTheScreen)
{
    AgentCharacter& bo = LoadShown();
    Drag({10, 10}, {-5, 310});
    EXPECT_EQ(Place(), (Point{-15, 300}));
    bo.StandAside(kAside, Going::Walk);
    stage.Run(kLongest);
    bo.StandAtHome();
    stage.Run(kLongest);
    EXPECT_EQ(Place(), (Point{-15, 300}));
}

TEST_F(ServerAsideTest, ASpeechIsNeitherDelayedNorCut)
{
    AgentCharacter& bo = LoadShown();
    const AgentRequestPtr speech = Named("speech", bo.Speak("Hello", ""));
    stage.Settle();
    voice.Begin();
    Pictures();
    EXPECT_TRUE(bo.StandAside(kAside, Going::Walk));
    stage.Run(kLongest);
    EXPECT_EQ(Place(), kAside);
    EXPECT_EQ(Pictures(), (Numbers{})) << "it keeps the pose in which it speaks";
    EXPECT_EQ(Log(), (Lines{"start speech"}));
    EXPECT_TRUE(bo.StandAtHome());
    stage.Run(kLongest);
    EXPECT_EQ(Place(), kHome);
    EXPECT_EQ(Pictures(), (Numbers{}));
    EXPECT_EQ(speech->Status(), RequestStatus::InProgress);
}

TEST_F(ServerAsideTest, ASpeechBeginsAtOnceWhileItWalks)
{
    AgentCharacter& bo = LoadShown();
    bo.StandAside(kAside, Going::Walk);
    stage.Run(150);
    Named("speech", bo.Speak("Hello", ""));
    stage.Settle();
    EXPECT_EQ(Log(), (Lines{"start speech"}));
    EXPECT_EQ(voice.started.size(), 1u);
    stage.Run(kLongest);
    EXPECT_EQ(Place(), kAside);
}

TEST_F(ServerAsideTest, AnAnimationGoesOnWhileThePlaceChanges)
{
    AgentCharacter& bo = LoadShown();
    Named("wave", bo.Play("Wave"));
    stage.Settle();
    Pictures();
    EXPECT_TRUE(bo.StandAside(kAside, Going::Walk));
    stage.Run(kLongest);
    EXPECT_EQ(Place(), kAside);
    EXPECT_EQ(Pictures(), (Numbers{7, 8}));
    EXPECT_EQ(Log(), (Lines{"start wave", "end wave 0"}));
}

TEST_F(ServerAsideTest, ADragOnTheWayMakesItsPlaceTheHome)
{
    AgentCharacter& bo = LoadShown();
    bo.StandAside(kAside, Going::Walk);
    stage.Run(200);
    Drag({10, 10}, {310, 210});
    EXPECT_EQ(Place(), (Point{300, 200}));
    stage.Run(kLongest);
    EXPECT_EQ(Place(), (Point{300, 200}));
    EXPECT_EQ(bo.Place(), bo.Home());
    EXPECT_EQ(CornerOf(bo.Home()), (Point{300, 200}));
}

TEST_F(ServerAsideTest, GoesAtOnceWithoutAWalk)
{
    AgentCharacter& bo = LoadShown();
    Pictures();
    EXPECT_TRUE(bo.StandAside(kAside, Going::AtOnce));
    EXPECT_EQ(Place(), kAside);
    stage.Run(kLongest);
    EXPECT_EQ(Pictures(), (Numbers{}));
    EXPECT_EQ(CornerOf(bo.Home()), kHome);
}

TEST_F(ServerAsideTest, APressOnTheWayStopsItUntilTheRelease)
{
    AgentCharacter& bo = LoadShown();
    bo.StandAside(kAside, Going::Walk);
    stage.Run(Glide::ShortestTime / 2);
    const Point held = Place();
    EXPECT_NE(held, kHome);
    stage.Mouse(MouseAction::Press, 1, {10, 10});
    stage.Run(kLongest);
    EXPECT_EQ(Place(), held);
    stage.Mouse(MouseAction::Release, 1, {10, 10});
    EXPECT_EQ(Place(), held);
    stage.Run(kLongest);
    EXPECT_EQ(Place(), kAside);
    EXPECT_EQ(CornerOf(bo.Home()), kHome);
    EXPECT_TRUE(bo.StandAtHome());
}

TEST_F(ServerAsideTest, TellsWhereItsBalloonWouldStand)
{
    AgentCharacter& bo = LoadShown();
    EXPECT_EQ(bo.BalloonAt(kAside), std::nullopt);
    bo.Speak("Hello", "");
    stage.Settle();
    voice.Begin();
    voice.Word(0);
    stage.Settle();
    const std::optional<Rect> there = bo.BalloonAt(kAside);
    ASSERT_TRUE(there);
    EXPECT_LT(there->Bottom(), kAside.y);
    EXPECT_EQ(there->Middle().x, kAside.x + 20);
}

TEST_F(ServerAsideTest, DoesNotGoWhileTheUserHoldsIt)
{
    AgentCharacter& bo = LoadShown();
    stage.Mouse(MouseAction::Press, 1, {10, 10});
    EXPECT_FALSE(bo.StandAside(kAside, Going::Walk));
    EXPECT_EQ(bo.Place(), bo.Home());
    stage.Mouse(MouseAction::Release, 1, {10, 10});
    EXPECT_TRUE(bo.StandAside(kAside, Going::Walk));
}

TEST_F(ServerAsideTest, DoesNotGoWhileItIsBeingHidden)
{
    AgentCharacter& bo = LoadShown();
    bo.Hide(false);
    stage.Settle();
    EXPECT_FALSE(bo.StandAside(kAside, Going::Walk));
}

TEST_F(ServerAsideTest, AHiddenOneIsThereAtOnceAndAppearsThere)
{
    AgentCharacter& bo = Load();
    EXPECT_TRUE(bo.StandAside(kAside, Going::Walk));
    EXPECT_EQ(Place(), kAside);
    bo.Show(false);
    stage.Settle();
    EXPECT_EQ(Place(), kAside);
    EXPECT_TRUE(bo.StandAside({900, 644}, Going::Walk)) << "while it appears";
    EXPECT_EQ(Place(), (Point{900, 644}));
}

TEST_F(ServerAsideTest, OneThatIsHiddenOnItsWayAppearsAtItsEnd)
{
    AgentCharacter& bo = LoadShown();
    bo.StandAside(kAside, Going::Walk);
    stage.Run(100);
    bo.Hide(true);
    stage.Settle();
    EXPECT_EQ(Place(), kAside);
    bo.Show(true);
    stage.Settle();
    EXPECT_EQ(Place(), kAside);
    EXPECT_EQ(CornerOf(bo.Home()), kHome);
}

TEST_F(ServerAsideTest, TheNextCharacterStandsAsideAndHasTheSameHome)
{
    AgentCharacter& bo = LoadShown();
    Drag({10, 10}, {310, 210});
    bo.StandAside(kAside, Going::Walk);
    stage.Run(kLongest);
    server.Unload("Bo");
    AgentCharacter& other = LoadShown("Other");
    EXPECT_EQ(Place(), kAside);
    EXPECT_EQ(CornerOf(other.Home()), (Point{300, 200}));
}

TEST_F(ServerAsideTest, OtherScreensBringItHome)
{
    AgentCharacter& bo = LoadShown();
    bo.StandAside(kAside, Going::Walk);
    stage.Run(kLongest);
    stage.ChangeScreens({{0, 0, 1000, 600}});
    EXPECT_EQ(Place(), (Point{1000 - 80, 600 - 76}));
    EXPECT_EQ(bo.Place(), bo.Home());
}

TEST_F(ServerAsideTest, AnotherSizeKeepsTheFeetAside)
{
    AgentCharacter& bo = LoadShown();
    bo.StandAside({600, 300}, Going::Walk);
    stage.Run(kLongest);
    bo.SetWidth(80);
    bo.SetHeight(120);
    EXPECT_EQ(Place(), (Point{580, 240}));
}

TEST_F(ServerAsideTest, TellsTheFigureWithinTheWindow)
{
    // Only the lower right quarter of the neutral pose is drawn.
    auto& pixels = description.images[1].pixels;
    for (int y = 0; y < kHeight; ++y)
        for (int x = 0; x < kWidth; ++x)
            if (x < kWidth / 2 || y < kHeight / 2)
                pixels[static_cast<std::size_t>(y * kWidth + x)] = 0;
    AgentCharacter& bo = LoadShown();
    EXPECT_EQ(bo.Place().Window, (Rect{1200, 644, 40, 60}));
    EXPECT_EQ(bo.Place().Figure, (Rect{1220, 674, 20, 30}));
}

} // namespace
} // namespace voxmate::agent::test
