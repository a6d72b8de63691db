// The system's voices as an engine: words, mouths, bookmarks and stress in their places, pitch and speed as asked,
// stops and failures.
#include "speech/sound/SpeechMeasure.h"
#include "tests/fakes/FakeSystemVoices.h"
#include "tests/unit/speech/Segments.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cmath>
#include <memory>
#include <vector>

namespace voxmate::speech
{
namespace
{

using ::testing::DoubleNear;
using ::testing::ElementsAre;

struct Collect final : SampleSink {
    std::vector<std::int16_t> samples;
    std::vector<SpeechEvent> events;
    std::size_t most = SIZE_MAX;

    bool Samples(std::span<const std::int16_t> more) override
    {
        samples.insert(samples.end(), more.begin(), more.end());
        return samples.size() < most;
    }
    bool Wanted() const override { return samples.size() < most; }
    void Event(const SpeechEvent& event) override { events.push_back(event); }

    /// The values of one kind of event, and the hundredths of a second at which they are.
    std::vector<std::pair<int, int>> Of(SpeechEvent::Kind kind) const
    {
        std::vector<std::pair<int, int>> found;
        for (const SpeechEvent& event : events)
            if (event.kind == kind)
                found.emplace_back(event.value, static_cast<int>(std::lround(static_cast<double>(event.sample) * 100 /
                                                                             fakes::FakeSystemVoices::Rate)));
        return found;
    }
};

class SystemEngineTest : public ::testing::Test
{
protected:
    std::unique_ptr<fakes::FakeSystemVoices> made = std::make_unique<fakes::FakeSystemVoices>();
    fakes::FakeSystemVoices& system = *made;
    std::unique_ptr<Engine> engine = CreateSystemEngine(std::move(made));
    Collect heard;

    bool Say(const std::vector<Segment>& segments)
    {
        return engine->Synthesize(engine->Voices().at(0), segments, heard);
    }
};

TEST_F(SystemEngineTest, TheSystemsVoicesAreListedOnce)
{
    const std::vector<Voice>& voices = engine->Voices();
    engine->Voices();
    EXPECT_THAT(system.log, ElementsAre("list"));
    ASSERT_EQ(voices.size(), 2u);
    EXPECT_EQ(voices[0].name, "Anna (German)");
    EXPECT_EQ(voices[0].language, "de-de");
    EXPECT_EQ(voices[1].language, "");
    EXPECT_NE(voices[0].modeId, voices[1].modeId);
    EXPECT_EQ(engine->SampleRate(voices[0]), 22050);
}

TEST_F(SystemEngineTest, WordsMouthsAndBookmarksAreWhereTheVoiceSaysThem)
{
    for (const bool late : {false, true}) {
        SCOPED_TRACE(late);
        system.lateEvents = late;
        heard = {};
        Segment second = Text("three");
        second.firstWord = 2;
        ASSERT_TRUE(Say({Text("one two "), Bookmark(7), second}));
        EXPECT_THAT(heard.Of(SpeechEvent::Kind::Word),
                    ElementsAre(std::pair(0, 0), std::pair(1, 30), std::pair(2, 60)));
        EXPECT_THAT(heard.Of(SpeechEvent::Kind::Bookmark), ElementsAre(std::pair(7, 60)));
        EXPECT_THAT(heard.Of(SpeechEvent::Kind::Mouth),
                    ElementsAre(std::pair(1, 0), std::pair(0, 25), std::pair(1, 30), std::pair(0, 55), std::pair(1, 60),
                                std::pair(0, 85), std::pair(0, 90)));
        EXPECT_EQ(heard.samples.size(), 3u * fakes::FakeSystemVoices::WordSamples);
        EXPECT_TRUE(std::is_sorted(heard.events.begin(), heard.events.end(),
                                   [](const auto& a, const auto& b) { return a.sample < b.sample; }));
    }
}

TEST_F(SystemEngineTest, CharactersBeyondTheBasicPlaneDoNotShiftTheWordsBehindThem)
{
    ASSERT_TRUE(Say({Text("\xF0\x9F\x98\x80\xF0\x9F\x98\x80 two three")}));
    EXPECT_THAT(heard.Of(SpeechEvent::Kind::Word), ElementsAre(std::pair(0, 0), std::pair(1, 30), std::pair(2, 60)));
}

TEST_F(SystemEngineTest, AStressedWordAloneIsLouder)
{
    Segment stressed = Text("two ");
    stressed.emphasis = true;
    stressed.firstWord = 1;
    Segment last = Text("three");
    last.firstWord = 2;
    ASSERT_TRUE(Say({Text("one "), stressed, last}));
    std::vector<double> levels;
    for (std::size_t word = 0; word < 3; ++word)
        levels.push_back(measure::SpeechLevel(std::span(heard.samples).subspan(word * 6615, 5512), 22050));
    EXPECT_NEAR(levels[1] / levels[0], 1.78, 0.02);
    EXPECT_NEAR(levels[2] / levels[0], 1, 0.02);
}

TEST_F(SystemEngineTest, ItIsHeardAtThePitchAndSpeedThatAreSet)
{
    std::string text = "one";
    for (int i = 1; i < 30; ++i)
        text += " word";
    // The prose by which it is measured has 54 words of 0.3 seconds, but for the pause behind the last.
    const double own = 54 * 60 / (54 * 0.3 - 0.05) / 1.08;
    for (const auto& [hertz, words] : {std::pair(110, 0), std::pair(165, 0), std::pair(0, 100), std::pair(220, 300)}) {
        SCOPED_TRACE(std::to_string(hertz) + " Hz, " + std::to_string(words));
        heard = {};
        ASSERT_TRUE(Say({Text(text, {hertz, words})}));
        EXPECT_THAT(measure::TrackPitch(heard.samples, 22050).Median(), DoubleNear(hertz == 0 ? 110 : hertz, 5));
        const double seconds = static_cast<double>(heard.samples.size()) / 22050;
        EXPECT_NEAR(seconds, 30 * 0.3 * (words == 0 ? 1 : own / words), 0.2);
    }
    EXPECT_EQ(std::count_if(system.log.begin(), system.log.end(),
                            [](const std::string& line) { return line.find("rain had stopped") != line.npos; }),
              1);
}

TEST_F(SystemEngineTest, PausesLastAsLongAsAsked)
{
    ASSERT_TRUE(Say({Text("one"), Pause(500), Text("two")}));
    EXPECT_EQ(heard.samples.size(), 2u * 6615 + 11025);
    EXPECT_THAT(heard.Of(SpeechEvent::Kind::Mouth).back(), std::pair(0, 110));
}

TEST_F(SystemEngineTest, AfterAStopNothingMoreIsAskedOfTheVoice)
{
    ASSERT_TRUE(Say({Text("measured")}));
    system.log.clear();
    heard = {};
    heard.most = 1;
    EXPECT_TRUE(Say({Text("one two three four"), Pause(10), Text("five")}));
    EXPECT_THAT(system.log, ElementsAre("tokens/anna: one two three four"));
}

TEST_F(SystemEngineTest, AVoiceThatFailsFailsTheText)
{
    ASSERT_TRUE(Say({Text("measured")}));
    system.failAfter = 2;
    EXPECT_FALSE(Say({Text("one two three four")}));
    EXPECT_TRUE((system.failAfter = -1, Say({Text("one")})));
}

TEST_F(SystemEngineTest, AVoiceThatCannotBeMeasuredFailsTheText)
{
    system.failAfter = 0;
    EXPECT_FALSE(Say({Text("one")}));
    EXPECT_TRUE(heard.samples.empty());
}

TEST_F(SystemEngineTest, AtRestTheVoiceIsGivenBack)
{
    engine->Rest();
    EXPECT_THAT(system.log, ElementsAre("rest"));
}

} // namespace
} // namespace voxmate::speech
