#include "tests/unit/speech/VoicePlayerTest.h"
#include "tests/fakes/RecordingSink.h"

#include <algorithm>

namespace voxmate::speech
{
namespace
{

TEST_F(VoicePlayerTest, ReportsEachEventSoSoonBeforeItIsHeardThatItIsSeenWithItsSound)
{
    constexpr int early = fakes::FakeEngine::Rate * 15 / 1000; // samples in the 15 ms until the screen shows an event
    engine->synthesize = [](SampleSink& sink) {
        sink.Event({SpeechEvent::Kind::Word, 0, 0});
        sink.Event({SpeechEvent::Kind::Mouth, 0, 1});
        sink.Event({SpeechEvent::Kind::Bookmark, 100 + early, 7});
        sink.Event({SpeechEvent::Kind::Word, 150 + early, 1});
        return sink.Samples(std::vector<std::int16_t>(300 + early, 5));
    };
    player->Start(Say("hello there"), Log());
    output.RunEvents();
    EXPECT_EQ(log, Lines{});

    ASSERT_TRUE(fakes::Eventually([this] { return engine->returns == 1; }));
    ASSERT_EQ(output.Play(100), 100U);
    EXPECT_EQ(log, (Lines{"started", "word 0", "mouth 1"}));
    ASSERT_EQ(output.Play(50), 50U);
    EXPECT_EQ(log, (Lines{"started", "word 0", "mouth 1", "bookmark 7"}));
    ASSERT_EQ(output.Play(1), 1U);
    EXPECT_EQ(log.back(), "word 1");
    ASSERT_TRUE(output.PlayAll());
    EXPECT_EQ(log, (Lines{"started", "word 0", "mouth 1", "bookmark 7", "word 1", "mouth 0", "ended well"}));
    EXPECT_EQ(output.played.size(), 300U + early);
    EXPECT_EQ(output.rate, fakes::FakeEngine::Rate);
}

TEST_F(VoicePlayerTest, BeginsWithTheFirstSampleThatIsHeardHoweverLongTheDevicesQueueIs)
{
    engine->synthesize = [](SampleSink& sink) {
        sink.Event({SpeechEvent::Kind::Word, 0, 0});
        sink.Event({SpeechEvent::Kind::Mouth, 0, 1});
        return sink.Samples(std::vector<std::int16_t>(700, 5));
    };
    output.queue = 500;
    player->Start(Say("hello there"), Log());
    ASSERT_TRUE(fakes::Eventually([this] { return engine->returns == 1; }));
    ASSERT_EQ(output.Play(500), 500U);
    output.RunEvents();
    EXPECT_EQ(log, Lines{});
    ASSERT_EQ(output.Play(1), 1U);
    EXPECT_EQ(log, (Lines{"started", "word 0", "mouth 1"}));
}

TEST_F(VoicePlayerTest, WhatIsOverBeforeTheDeviceSaidThatItIsHeardHasBegunAllTheSame)
{
    engine->synthesize = [](SampleSink& sink) {
        sink.Event({SpeechEvent::Kind::Word, 0, 0});
        return sink.Samples(std::vector<std::int16_t>(20, 5));
    };
    output.queue = 500;
    player->Start(Say("hi"), Log());
    ASSERT_TRUE(output.PlayAll());
    EXPECT_EQ(log, (Lines{"started", "word 0", "ended well"}));
}

TEST_F(VoicePlayerTest, IsHeardBeforeAllOfItIsSynthesised)
{
    std::atomic<bool> goOn = false;
    engine->synthesize = [&goOn](SampleSink& sink) {
        sink.Samples(std::vector<std::int16_t>(100, 1));
        while (!goOn)
            std::this_thread::yield();
        return sink.Samples(std::vector<std::int16_t>(100, 2));
    };
    player->Start(Say("hello"), Log());
    EXPECT_TRUE(fakes::Eventually([this] { return output.Play(10) == 10; }));
    EXPECT_EQ(log, Lines{"started"});
    EXPECT_EQ(engine->returns, 0);
    goOn = true;
    ASSERT_TRUE(output.PlayAll());
    EXPECT_EQ(output.played.size(), 200U);
    EXPECT_EQ(log, (Lines{"started", "ended well"}));
}

TEST_F(VoicePlayerTest, LetsTheEngineBeNoMoreThanTwoSecondsAhead)
{
    std::atomic<int> delivered = 0;
    engine->synthesize = [&delivered](SampleSink& sink) {
        for (int i = 0; i < 100; ++i, ++delivered)
            if (!sink.Samples(std::vector<std::int16_t>(100, 1)))
                return true;
        return true;
    };
    player->Start(Say("a long story"), Log());
    ASSERT_TRUE(fakes::Eventually([&delivered] { return delivered == 20; }));
    std::this_thread::sleep_for(std::chrono::milliseconds(20));
    EXPECT_EQ(delivered, 20);
    ASSERT_TRUE(fakes::Eventually([this] { return output.Play(100) == 100; }));
    EXPECT_TRUE(fakes::Eventually([&delivered] { return delivered == 21; }));
    ASSERT_TRUE(output.PlayAll());
    EXPECT_EQ(output.played.size(), 10000U);
}

TEST_F(VoicePlayerTest, AStoppedUtteranceGivesUpItsStreamAtOnceAndOnlyEnds)
{
    engine->synthesize = [](SampleSink& sink) {
        sink.Event({SpeechEvent::Kind::Mouth, 0, 1});
        sink.Event({SpeechEvent::Kind::Word, 500, 3});
        while (sink.Samples(std::vector<std::int16_t>(100, 1))) {
        }
        return true;
    };
    player->Start(Say("hello"), Log());
    ASSERT_TRUE(fakes::Eventually([this] { return output.Play(10) == 10; }));
    EXPECT_EQ(player->Status(), AudioStatus::CharacterSpeaking);
    player->Stop();
    EXPECT_EQ(output.openStreams, 0);
    EXPECT_EQ(player->Status(), AudioStatus::Available);
    EXPECT_EQ(log, (Lines{"started", "mouth 1"}));
    output.RunEvents();
    output.RunEvents();
    EXPECT_EQ(log, (Lines{"started", "mouth 1", "ended badly"}));
    EXPECT_TRUE(fakes::Eventually([this] { return engine->returns == 1; }));
    EXPECT_TRUE(output.Idle());
}

TEST_F(VoicePlayerTest, AStopDoesNotWaitForAnEngineThatIsDeepInItsWork)
{
    std::atomic<bool> goOn = false;
    engine->synthesize = [&goOn](SampleSink&) {
        while (!goOn)
            std::this_thread::yield();
        return true;
    };
    player->Start(Say("first"), Log());
    ASSERT_TRUE(fakes::Eventually([this] { return engine->calls == 1; }));
    const auto before = std::chrono::steady_clock::now();
    player->Stop();
    player->Start(Say("second"), {});
    EXPECT_LT(std::chrono::steady_clock::now() - before, std::chrono::milliseconds(5));
    output.RunEvents();
    EXPECT_EQ(log, Lines{"ended badly"});
    goOn = true;
    EXPECT_TRUE(fakes::Eventually([this] { return engine->calls == 2; }));
    EXPECT_TRUE(output.PlayAll());
    EXPECT_EQ(engine->lastText, "second");
}

TEST_F(VoicePlayerTest, ANewUtteranceEndsTheRunningOne)
{
    engine->synthesize = [](SampleSink& sink) { return sink.Samples(std::vector<std::int16_t>(10, 1)); };
    Lines other;
    VoiceEvents events;
    events.Ended = [&other](bool ok) { other.push_back(ok ? "ended well" : "ended badly"); };
    player->Start(Say("first"), events);
    player->Start(Say("second"), Log());
    ASSERT_TRUE(output.PlayAll());
    EXPECT_EQ(other, Lines{"ended badly"});
    EXPECT_EQ(log.back(), "ended well");
}

TEST_F(VoicePlayerTest, ACallbackMayStopOrStartAnew)
{
    engine->synthesize = [](SampleSink& sink) {
        sink.Event({SpeechEvent::Kind::Bookmark, 0, 1});
        sink.Event({SpeechEvent::Kind::Bookmark, 1, 2});
        return sink.Samples(std::vector<std::int16_t>(100, 1));
    };
    int restarts = 0;
    VoiceEvents events = Log();
    events.Bookmark = [&](int number) {
        log.push_back("bookmark " + std::to_string(number));
        if (restarts++ == 0)
            player->Start(Say("again"), Log());
    };
    player->Start(Say("first"), events);
    ASSERT_TRUE(output.PlayAll());
    output.RunEvents();
    EXPECT_EQ(log,
              (Lines{"started", "bookmark 1", "ended badly", "started", "bookmark 1", "bookmark 2", "ended well"}));
}

TEST_F(VoicePlayerTest, AnEngineThatFailsIsABadEndAfterWhatCouldBeSaid)
{
    engine->synthesize = [](SampleSink& sink) {
        sink.Samples(std::vector<std::int16_t>(50, 1));
        return false;
    };
    player->Start(Say("hello"), Log());
    ASSERT_TRUE(output.PlayAll());
    EXPECT_EQ(output.played.size(), 50U);
    EXPECT_EQ(log, (Lines{"started", "ended badly"}));
}

TEST_F(VoicePlayerTest, ADeviceThatGivesOutIsABadEnd)
{
    engine->synthesize = [](SampleSink& sink) {
        while (sink.Samples(std::vector<std::int16_t>(100, 1))) {
        }
        return true;
    };
    player->Start(Say("hello"), Log());
    ASSERT_TRUE(fakes::Eventually([this] { return output.Play(10) == 10; }));
    const auto failed = output.failed;
    failed();
    EXPECT_EQ(log, (Lines{"started", "ended badly"}));
    EXPECT_EQ(output.openStreams, 0);
    EXPECT_EQ(player->Status(), AudioStatus::Available);
    EXPECT_TRUE(fakes::Eventually([this] { return engine->returns == 1; }));
}

TEST_F(VoicePlayerTest, WithoutADeviceItEndsBadlyFromTheEventLoop)
{
    output.state = AudioStatus::NoSupport;
    EXPECT_EQ(player->Status(), AudioStatus::NoSupport);
    player->Start(Say("hello"), Log());
    EXPECT_EQ(log, Lines{});
    output.RunEvents();
    EXPECT_EQ(log, Lines{"ended badly"});
    EXPECT_EQ(player->Status(), AudioStatus::NoSupport);
}

TEST_F(VoicePlayerTest, TellsEveryStateOfTheDevice)
{
    output.state = AudioStatus::Available;
    EXPECT_EQ(player->Status(), AudioStatus::Available);
    output.state = AudioStatus::CannotOpen;
    EXPECT_EQ(player->Status(), AudioStatus::CannotOpen);
    output.state = AudioStatus::Unknown;
    EXPECT_EQ(player->Status(), AudioStatus::Unknown);
}

TEST_F(VoicePlayerTest, ChoosesTheVoiceByItsIdentifierAndTheFirstForAnUnknownOne)
{
    player->Start(Say("hello", "{22222222-0000-8000-8000-000000000000}"), Log());
    ASSERT_TRUE(output.PlayAll());
    EXPECT_EQ(engine->lastKey, "bert");
    player->Start(Say("hello", "33333333-0000-8000-8000-000000000000"), Log());
    ASSERT_TRUE(output.PlayAll());
    EXPECT_EQ(engine->lastKey, "anna");
}

TEST_F(VoicePlayerTest, AnUtteranceOfNothingEndsWell)
{
    player->Start({}, Log());
    ASSERT_TRUE(output.PlayAll());
    EXPECT_EQ(log, Lines{"ended well"});
}

TEST_F(VoicePlayerTest, NothingIsReportedAfterThePlayerIsGone)
{
    engine->synthesize = [](SampleSink& sink) {
        while (sink.Samples(std::vector<std::int16_t>(100, 1))) {
        }
        return true;
    };
    player->Start(Say("hello"), Log());
    ASSERT_TRUE(fakes::Eventually([this] { return output.Play(10) == 10; }));
    player->Stop();
    player.reset();
    log.clear();
    output.RunEvents();
    EXPECT_EQ(log, Lines{});
}

TEST_F(VoicePlayerTest, EnginesRestOnceWhenNothingWasSpokenForAWhile)
{
    player = std::make_unique<VoicePlayer>(*catalog, output, std::chrono::milliseconds(1));
    EXPECT_EQ(engine->rests, 0);
    player->Start(Say("hello"), Log());
    EXPECT_TRUE(fakes::Eventually([this] { return engine->rests == 1; }));
    EXPECT_EQ(engine->returns, 1);
    player->Start(Say("again"), Log());
    EXPECT_TRUE(fakes::Eventually([this] { return engine->rests == 2; }));
    EXPECT_EQ(engine->returns, 2);
}

TEST_F(VoicePlayerTest, WhatAnEngineThrowsIsThrownInTheEventLoopAndEndsTheUtterance)
{
    engine->synthesize = [](SampleSink&) -> bool { throw std::bad_alloc(); };
    player->Start(Say("hello"), Log());
    int thrown = 0;
    EXPECT_TRUE(fakes::Eventually([&] {
        try {
            output.Play(10);
        } catch (const std::bad_alloc&) {
            ++thrown;
        }
        return thrown > 0 && !log.empty();
    }));
    EXPECT_EQ(thrown, 1);
    EXPECT_EQ(log, Lines{"ended badly"});
}

} // namespace
} // namespace voxmate::speech
