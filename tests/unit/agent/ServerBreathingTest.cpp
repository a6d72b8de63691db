// The quiet movement of a character that waits: breath and blinks between its idle plays.
#include "tests/unit/agent/ServerTest.h"

#include <algorithm>
#include <random>

namespace voxmate::agent::test
{

namespace
{

class ServerBreathingTest : public ServerTest
{
protected:
    ServerBreathingTest()
    {
        // 30 and 31 between the neutral pose, 1; with lids half shut 33 to 36, wholly shut 43 to 46.
        const auto add = [this](const std::string& name, std::initializer_list<std::uint32_t> pictures) {
            Animation& animation = description.animations.emplace_back(Animation{name, Transition::None, "", {}});
            for (const std::uint32_t picture : pictures)
                animation.frames.push_back(Picture(picture, 12));
        };
        add("Breathe", {1, 30, 31, 1});
        add("BreatheHalfShut", {33, 34, 35, 36, 1});
        add("BreatheShut", {43, 44, 45, 46, 1});
        add("Idle1_1", {41});
        add("Yawn", {42});
        description.states.push_back({"Breathing", {"Breathe"}});
        // Every draw in the middle: a pace of 103 %, pauses of 350 ms and blinks far from the beginning.
        stage.random = [](int bound) { return bound / 2; };
    }
    void WithLids()
    {
        description.states.push_back({"BreathingHalfShut", {"BreatheHalfShut"}});
        description.states.push_back({"BreathingShut", {"BreatheShut"}});
    }
    void State(const std::string& name, const std::string& animation)
    {
        description.states.push_back({name, {animation}});
    }
    static constexpr int kFrame = 123; // milliseconds of a frame at that pace
};

TEST_F(ServerBreathingTest, AWaitingCharacterGoesThroughTheAnimationAgainAndAgainWithPauses)
{
    LoadShown();
    Pictures();
    stage.Run(4 * kFrame - 10);
    EXPECT_EQ(Pictures(), (Numbers{30, 31, 1}));
    stage.Run(10 + 350 + kFrame);
    EXPECT_EQ(Pictures(), (Numbers{30}));
}

TEST_F(ServerBreathingTest, TheFirstBlinkComesAfterItsIntervalWithTheSameMovementUnderShutLids)
{
    WithLids();
    LoadShown();
    Pictures();
    // Draws of a half: the logarithm of the interval is sqrt(2 ln 2) spreads below its middle.
    const int interval = 1728;
    stage.Run(interval - 1);
    Numbers seen = Pictures();
    EXPECT_TRUE(std::ranges::none_of(seen, [](int picture) { return picture > 32; }));
    stage.Run(Breathing::LidsClose + Breathing::LidsShut + Breathing::LidsOpen + 2);
    seen = Pictures();
    const auto lids = [](int picture) { return picture >= 43 ? 's' : picture >= 33 ? 'h' : 'o'; };
    std::string order;
    for (const int picture : seen)
        if (order.empty() || order.back() != lids(picture))
            order += lids(picture);
    EXPECT_EQ(order, "hsho");
}

TEST_F(ServerBreathingTest, BlinksComeSeventeenTimesAMinuteAndNeverRegularly)
{
    WithLids();
    std::mt19937 random(1);
    stage.random = [&](int bound) { return static_cast<int>(random() % static_cast<unsigned>(bound)); };
    LoadShown();
    stage.Window().frames.clear();
    stage.Window().frameTimes.clear();
    constexpr int minutes = 10;
    stage.Run(minutes * 60'000);
    std::vector<std::int64_t> blinks;
    const auto& window = stage.Window();
    bool shut = false;
    for (std::size_t i = 0; i < window.frames.size(); ++i) {
        const bool now = (window.frames[i].pixels.front() >> 16 & 0xFF) >= 43;
        if (now && !shut)
            blinks.push_back(window.frameTimes[i]);
        shut = now;
    }
    EXPECT_NEAR(static_cast<double>(blinks.size()) / minutes, Breathing::BlinksAMinute, 2);
    std::vector<std::int64_t> intervals;
    for (std::size_t i = 1; i < blinks.size(); ++i)
        intervals.push_back(blinks[i] - blinks[i - 1]);
    std::ranges::sort(intervals);
    EXPECT_GE(intervals.front(), Breathing::ShortestInterval - 1);
    EXPECT_GT(intervals[intervals.size() * 9 / 10], 2 * intervals[intervals.size() / 10]);
}

TEST_F(ServerBreathingTest, AFileWithoutTheStateWakesUpAndDrawsByChanceAsBefore)
{
    description.states.pop_back();
    int draws = 0;
    stage.random = [&](int) { return ++draws, 0; };
    LoadShown();
    EXPECT_EQ(stage.Waiting(), 0u);
    EXPECT_EQ(draws, 0);
}

TEST_F(ServerBreathingTest, OfSeveralAnimationsNoneFollowsItself)
{
    Animation& other = description.animations.emplace_back(Animation{"Other", Transition::None, "", {}});
    other.frames = {Picture(50, 12), Picture(51, 12), Picture(1, 12)};
    description.states.back().second.push_back("Other");
    std::mt19937 random(1);
    stage.random = [&](int bound) { return static_cast<int>(random() % static_cast<unsigned>(bound)); };
    LoadShown();
    Pictures();
    stage.Run(60'000);
    Numbers begins;
    for (const int picture : Pictures())
        if (picture == 30 || picture == 50)
            begins.push_back(picture);
    ASSERT_GT(begins.size(), 30u);
    EXPECT_EQ(std::ranges::adjacent_find(begins), begins.end());
}

TEST_F(ServerBreathingTest, IdlePlaysComeAtTheirTimesAndItGoesOnBehindThem)
{
    State("IdlingLevel1", "Idle1_1");
    LoadShown();
    Pictures();
    stage.Run(Idling::GapMinimum + Idling::GapSpread / 2 - 1);
    Numbers seen = Pictures();
    EXPECT_EQ(std::ranges::count(seen, 41), 0);
    stage.Run(1);
    EXPECT_EQ(Pictures().back(), 41);
    stage.Run(120 + kFrame);
    EXPECT_EQ(Pictures(), (Numbers{1, 30}));
}

TEST_F(ServerBreathingTest, ARequestEndsItAtOnceInTheNeutralPose)
{
    AgentCharacter& bo = LoadShown();
    stage.Run(kFrame);
    Pictures();
    bo.Play("Wave");
    stage.Run(350);
    EXPECT_EQ(Pictures(), (Numbers{1, 6, 7, 8}));
    EXPECT_EQ(stage.Waiting(), 0u); // the pose of an animation that has ended is held
}

TEST_F(ServerBreathingTest, ItSpeaksInTheNeutralPoseAndStandsStillThere)
{
    AgentCharacter& bo = LoadShown();
    stage.Run(2 * kFrame);
    Pictures();
    bo.Speak("Hello", "");
    stage.Settle();
    voice.Begin();
    voice.Mouth(4);
    stage.Run(1000);
    EXPECT_EQ(Pictures(), (Numbers{1, kMouths, kMouths + 4}));
}

TEST_F(ServerBreathingTest, AHiddenCharacterDoesNotBreathe)
{
    AgentCharacter& bo = LoadShown();
    bo.Hide(true);
    stage.Settle();
    EXPECT_EQ(stage.Waiting(), 0u);
}

TEST_F(ServerBreathingTest, ItGoesOnAtAnotherSizeWithoutAnotherPose)
{
    AgentCharacter& bo = LoadShown();
    stage.Run(kFrame);
    Pictures();
    bo.SetWidth(80);
    EXPECT_EQ(Pictures(), (Numbers{30}));
}

TEST_F(ServerBreathingTest, SlowlyItTakesTwiceTheTime)
{
    server.SetIdleLife(IdleLife::Slow);
    LoadShown();
    Pictures();
    stage.Run(2 * kFrame - 1);
    EXPECT_EQ(Pictures(), Numbers{});
    stage.Run(2 * kFrame + 4);
    EXPECT_EQ(Pictures(), (Numbers{30, 31}));
}

TEST_F(ServerBreathingTest, WithPlaysOnlyItStandsStillBetweenThem)
{
    State("IdlingLevel1", "Idle1_1");
    LoadShown();
    stage.Run(kFrame);
    Pictures();
    server.SetIdleLife(IdleLife::PlaysOnly);
    EXPECT_EQ(Pictures(), (Numbers{1}));
    stage.Run(Idling::GapMinimum + Idling::GapSpread + 1000);
    EXPECT_EQ(Pictures(), (Numbers{41, 1}));
    server.SetIdleLife(IdleLife::Full);
    stage.Run(kFrame);
    EXPECT_EQ(Pictures(), (Numbers{30}));
}

TEST_F(ServerBreathingTest, AsleepNothingMovesNotEvenAPlayThatHasBegun)
{
    State("IdlingLevel1", "Search"); // without an end
    LoadShown();
    stage.Run(10'000);
    Pictures();
    server.SetIdleLife(IdleLife::None);
    stage.Run(1000);
    EXPECT_EQ(Pictures(), (Numbers{14, 1}));
    EXPECT_EQ(stage.Waiting(), 0u);
}

TEST_F(ServerBreathingTest, AsleepItDoesWhatItIsAskedFor)
{
    State("IdlingLevel1", "Idle1_1");
    server.SetIdleLife(IdleLife::None);
    AgentCharacter& bo = LoadShown();
    Pictures();
    Named("wave", bo.Play("Wave"));
    stage.Run(300);
    EXPECT_EQ(Log(), (Lines{"start wave", "end wave 0"}));
    EXPECT_EQ(Pictures(), (Numbers{6, 7, 8}));
    EXPECT_EQ(stage.Waiting(), 0u);
}

TEST_F(ServerBreathingTest, OnWakingItStretchesAndThenBreathes)
{
    State("Waking", "Yawn");
    server.SetIdleLife(IdleLife::None);
    LoadShown();
    Pictures();
    server.SetIdleLife(IdleLife::Full);
    stage.Run(120 + kFrame);
    EXPECT_EQ(Pictures(), (Numbers{42, 1, 30}));
    server.SetIdleLife(IdleLife::PlaysOnly);
    server.SetIdleLife(IdleLife::Full);
    stage.Run(3 * kFrame);
    EXPECT_EQ(Pictures(), (Numbers{1, 30, 31, 1})); // it had not slept
}

TEST_F(ServerBreathingTest, WhileItSpeaksNothingIsInterruptedBySleep)
{
    AgentCharacter& bo = LoadShown();
    bo.Speak("Hello", "");
    stage.Settle();
    voice.Begin();
    Pictures();
    server.SetIdleLife(IdleLife::None);
    voice.Mouth(4);
    EXPECT_EQ(Pictures(), (Numbers{kMouths + 4}));
    voice.End();
    stage.Run(100);
    EXPECT_EQ(Pictures(), (Numbers{1}));
}

TEST_F(ServerBreathingTest, FramesOfNoTimeAndStatesThatDoNotMatchAreNoHarm)
{
    description.animations.push_back({"Empty", Transition::None, "", {Picture(1, 0), Picture(30, 0)}});
    description.states.back().second.push_back("Empty");
    State("BreathingShut", "Empty"); // one for two
    LoadShown();
    Pictures();
    stage.Run(20'000);
    const Numbers seen = Pictures();
    EXPECT_GT(seen.size(), 20u);
    EXPECT_TRUE(std::ranges::all_of(seen, [](int picture) { return picture == 1 || picture == 30 || picture == 31; }));
}

TEST_F(ServerBreathingTest, APlayComesAgainOnlyAfterThreeOthers)
{
    std::mt19937 random(1);
    stage.random = [&](int bound) { return static_cast<int>(random() % static_cast<unsigned>(bound)); };
    description.states.push_back({"IdlingLevel1", {}});
    for (std::uint32_t picture = 40; picture < 45; ++picture) {
        const std::string name = "Play" + std::to_string(picture);
        description.animations.push_back({name, Transition::None, "", {Picture(picture, 12)}});
        description.states.back().second.push_back(name);
    }
    LoadShown();
    Pictures();
    stage.Run(110'000);
    Numbers plays = Pictures();
    std::erase_if(plays, [](int picture) { return picture < 40; });
    ASSERT_GT(plays.size(), 14u);
    for (std::size_t i = 0; i < plays.size(); ++i)
        EXPECT_EQ(std::count(plays.begin() + static_cast<std::ptrdiff_t>(i > 3 ? i - 3 : 0),
                             plays.begin() + static_cast<std::ptrdiff_t>(i), plays[i]),
                  0)
            << i;
}

TEST_F(ServerBreathingTest, OneWithoutLidsOfItsOwnPlaysABlink)
{
    description.animations.push_back({"Blink", Transition::None, "", {Picture(42, 12)}});
    State("IdlingLevel1", "Blink");
    description.states.back().second.push_back("Idle1_1");
    stage.random = [](int) { return 0; };
    LoadShown();
    Pictures();
    stage.Run(Idling::GapMinimum);
    EXPECT_EQ(Pictures().back(), 42);
}

TEST_F(ServerBreathingTest, OneWhoBlinksAnywayPlaysABlinkOnlyWhileItDoesNotBreathe)
{
    description.animations.push_back({"Blink", Transition::None, "", {Picture(42, 12)}});
    State("IdlingLevel1", "Blink");
    description.states.back().second.push_back("Idle1_1");
    WithLids();
    stage.random = [](int) { return 0; };
    LoadShown();
    Pictures();
    stage.Run(Idling::GapMinimum);
    EXPECT_EQ(Pictures().back(), 41);
    server.SetIdleLife(IdleLife::PlaysOnly);
    stage.Run(Idling::GapMinimum + 200);
    EXPECT_EQ(std::ranges::count(Pictures(), 42), 1);
}

} // namespace
} // namespace voxmate::agent::test
