// A text in more than one script: who says what, in which order, and what is heard.
#include "speech/text/Relay.h"
#include "speech/sound/Resampler.h"
#include "speech/sound/SpeechMeasure.h"
#include "speech/text/LanguageGuess.h"
#include "tests/fakes/RecordingSink.h"
#include "tests/unit/speech/Segments.h"

#include <gtest/gtest.h>

#include <cmath>
#include <numbers>

namespace voxmate::speech
{
namespace
{

using Lines = std::vector<std::string>;

/// Records what each voice is told to say. A byte of text is a sound of 20 ms, a word an event.
struct ScriptEngine final : Engine {
    explicit ScriptEngine(std::vector<Voice> list, int samplesPerSecond)
        : voices(std::move(list)), rate(samplesPerSecond)
    {
    }
    const std::vector<Voice>& Voices() override { return voices; }
    int SampleRate(const Voice&) override { return rate; }
    bool Synthesize(const Voice& voice, std::span<const Segment> segments, SampleSink& sink) override
    {
        std::int64_t at = 0;
        if (voice.key == "mute")
            return false;
        if (voice.key == "weak")
            segments = segments.first(1);
        for (const Segment& segment : segments) {
            std::string line = voice.key + ": ";
            if (segment.kind == Segment::Kind::Bookmark) {
                sink.Event({SpeechEvent::Kind::Bookmark, at, segment.bookmark});
                line += "mark " + std::to_string(segment.bookmark);
            } else if (segment.kind == Segment::Kind::Pause) {
                line += "pause " + std::to_string(segment.milliseconds);
            } else {
                line += "[" + segment.text + "] " + std::to_string(segment.firstWord);
                if (segment.shownWords >= 0)
                    line += " of " + std::to_string(segment.shownWords);
                line += segment.emphasis ? " stressed" : "";
                sink.Event({SpeechEvent::Kind::Word, at, segment.firstWord});
                const std::vector<std::int16_t> sound(segment.text.size() * static_cast<std::size_t>(rate) / 50);
                at += static_cast<std::int64_t>(sound.size());
                if (!sink.Samples(sound))
                    return true;
            }
            log->push_back(line);
        }
        return voice.key != "broken" && voice.key != "weak";
    }

    std::vector<Voice> voices;
    int rate;
    Lines* log = nullptr;
};

class RelayTest : public ::testing::Test
{
protected:
    RelayTest()
    {
        auto plain = std::make_unique<ScriptEngine>(std::vector<Voice>{{"Flat", "1", "en-us", "flat"}}, 1000);
        auto broad = std::make_unique<ScriptEngine>(std::vector<Voice>{{"Russian", "2", "ru", "ru"},
                                                                       {"Ukrainian", "3", "uk", "uk"},
                                                                       {"Mandarin", "4", "cmn", "cmn"},
                                                                       {"Greek", "5", "el", "broken"}},
                                                    2000);
        plain->log = &log;
        broad->log = &log;
        engines.push_back(std::move(plain));
        engines.push_back(std::move(broad));
    }
    bool Speak(const std::vector<Segment>& segments, const char* mode = "1")
    {
        if (!catalog)
            catalog = std::make_unique<VoiceCatalog>(std::move(engines), desktop);
        return SpeakInTurns(*catalog, *catalog->Find(mode), segments, sink);
    }

    Lines log;
    std::string desktop = "en";
    std::vector<std::unique_ptr<Engine>> engines;
    std::unique_ptr<VoiceCatalog> catalog;
    fakes::RecordingSink sink;
};

TEST_F(RelayTest, WhatTheVoiceCanSayGoesToItWhole)
{
    EXPECT_TRUE(Speak({Text("Hello naïve world – 42 €."), Text("Ğ")}));
    EXPECT_EQ(log, (Lines{"flat: [Hello naïve world – 42 €.] 0", "flat: [Ğ] 0"}));
}

TEST_F(RelayTest, AStretchInAnotherWritingGoesToTheVoiceThatReadsItInItsTurn)
{
    EXPECT_TRUE(Speak({Text("She said: «Привет, мир!» and left. 你好，42 Bob")}));
    EXPECT_EQ(log, (Lines{"flat: [She said:] 0", "ru: [ «Привет, мир!»] 2", "flat: [ and left.] 4",
                          "cmn: [ 你好，42] 6", "flat: [ Bob] 7"}));
    EXPECT_EQ(sink.Values(SpeechEvent::Kind::Word), (std::vector<int>{0, 2, 4, 6, 7}));
}

TEST_F(RelayTest, WhatHasNoWritingBelongsToWhoComesNext)
{
    EXPECT_TRUE(Speak({Text("5. «Мир»"), Text(" — 7"), Text(" x")}));
    EXPECT_EQ(log, (Lines{"ru: [5. «Мир»] 0", "ru: [ — 7] 0", "flat: [ x] 0"}));
}

TEST_F(RelayTest, AWordOfTwoWritingsIsDivided)
{
    EXPECT_TRUE(Speak({Text("an iPhone手机 here")}));
    EXPECT_EQ(log, (Lines{"flat: [an iPhone] 0", "cmn: [手机] 1", "flat: [ here] 2"}));
    EXPECT_EQ(sink.Values(SpeechEvent::Kind::Word), (std::vector<int>{0, 1, 2}));
}

TEST_F(RelayTest, MarksPausesAndStressStayInTheirPlace)
{
    Segment stressed = Text("да yes");
    stressed.emphasis = true;
    Segment mark;
    mark.kind = Segment::Kind::Bookmark;
    mark.bookmark = 7;
    EXPECT_TRUE(Speak({Text("Hi"), mark, stressed, Pause(50), Text("Bye")}));
    EXPECT_EQ(log, (Lines{"flat: [Hi] 0", "flat: mark 7", "ru: [да] 0 stressed", "flat: [ yes] 1", "flat: pause 50",
                          "flat: [Bye] 0"}));
}

TEST_F(RelayTest, ShownWordsAreSharedOutInProportion)
{
    Segment mapped = Text("one два three четыре");
    mapped.firstWord = 10;
    mapped.shownWords = 8;
    EXPECT_TRUE(Speak({mapped}));
    EXPECT_EQ(log,
              (Lines{"flat: [one] 10 of 2", "ru: [ два] 12 of 2", "flat: [ three] 14 of 2", "ru: [ четыре] 16 of 2"}));
}

TEST_F(RelayTest, EventsAndSamplesFollowOneAnotherAtTheVoicesRate)
{
    EXPECT_TRUE(Speak({Text("abcd мир.")})); // 4 and 8 bytes of 20 ms each
    EXPECT_EQ(sink.samples.size(), 12 * 20U);
    ASSERT_EQ(sink.events.size(), 2U);
    EXPECT_EQ(sink.events[1].sample, 4 * 20);
}

TEST_F(RelayTest, TheDesktopsOwnLanguageReadsItsWriting)
{
    desktop = "uk_UA";
    EXPECT_TRUE(Speak({Text("мир")}));
    EXPECT_EQ(log, Lines{"uk: [мир] 0"});
}

TEST_F(RelayTest, AVoiceReadsItsOwnWritingItself)
{
    EXPECT_TRUE(Speak({Text("мир and 世界")}, "3"));
    EXPECT_EQ(log, (Lines{"uk: [мир and] 0", "cmn: [ 世界] 2"}));
}

TEST_F(RelayTest, WhatNobodyReadsAndAReaderThatFailsHoldNothingUp)
{
    EXPECT_TRUE(Speak({Text("a αβγ b שלום c")}));
    EXPECT_EQ(log, (Lines{"flat: [a] 0", "broken: [ αβγ] 1", "flat: [ b שלום c] 2"}));
}

TEST_F(RelayTest, AnAddedVoiceThatFailsIsStoodInFor)
{
    auto added = std::make_unique<ScriptEngine>(
        std::vector<Voice>{{"Damaged", "6", "en-us", "mute", Voice::Origin::Added}}, 1000);
    added->log = &log;
    engines.push_back(std::move(added));
    EXPECT_TRUE(Speak({Text("one")}, "6"));
    EXPECT_EQ(log, Lines{"flat: [one] 0"});
    EXPECT_EQ(sink.samples.size(), 3 * 20U);
}

TEST_F(RelayTest, AnAddedVoiceThatFailsInTheMiddleIsStoodInForFromThere)
{
    auto added =
        std::make_unique<ScriptEngine>(std::vector<Voice>{{"Weak", "6", "en-us", "weak", Voice::Origin::Added}}, 1000);
    added->log = &log;
    engines.push_back(std::move(added));
    Segment mark;
    mark.kind = Segment::Kind::Bookmark;
    mark.bookmark = 7;
    Segment rest = Text("three four. five");
    rest.firstWord = 2;
    EXPECT_TRUE(Speak({Text("one two"), mark, rest}, "6"));
    EXPECT_EQ(log, (Lines{"weak: [one two] 0", "flat: [two] 1", "flat: mark 7", "flat: [three four. five] 2"}));
    EXPECT_EQ(sink.Values(SpeechEvent::Kind::Word), (std::vector<int>{0, 1, 2}));
    EXPECT_EQ(sink.samples.size(), 7 * 20U + 3 * 20U + 16 * 20U);
}

TEST_F(RelayTest, AListenerWhoHasHadEnoughGetsNoMore)
{
    sink.stopAfter = 1;
    EXPECT_TRUE(Speak({Text("one два three")}));
    EXPECT_EQ(log.size(), 0U); // the fake is stopped before it records the text
}

TEST_F(RelayTest, ALongTextIsNotDealtOutBeforeItIsHeard)
{
    std::string text;
    for (int i = 0; i < 100; ++i)
        text += "да нет да нет да нет да нет\n";
    std::string russian;
    for (int i = 0; i < 40; ++i)
        russian += text;
    EXPECT_TRUE(Speak({Text(russian)}));
    EXPECT_GT(log.size(), 5U);
    std::size_t bytes = 0;
    int words = 0;
    for (const std::string& line : log) {
        const std::size_t end = line.rfind(']');
        EXPECT_LT(end, 20000U);
        EXPECT_EQ(line.substr(end), "] " + std::to_string(words));
        bytes += end - std::string("ru: [").size();
        words += static_cast<int>(std::count(line.begin(), line.end(), '\n')) * 8;
    }
    EXPECT_EQ(bytes, russian.size());
}

// Each paragraph by a voice of its language, with voices of one engine more.
class RelayByLanguageTest : public RelayTest
{
protected:
    RelayByLanguageTest()
    {
        auto spoken = std::make_unique<ScriptEngine>(
            std::vector<Voice>{{"German", "7", "de", "de"}, {"Mute Dane", "8", "da", "mute"}}, 1000);
        spoken->log = &log;
        engines.push_back(std::move(spoken));
    }
    void SetUp() override
    {
        if (!GuessesLanguages())
            GTEST_SKIP() << "built without the library that tells languages apart";
    }
    bool SpeakByLanguage(const std::vector<Segment>& segments, const char* mode = "1")
    {
        catalog = std::make_unique<VoiceCatalog>(std::move(engines), desktop);
        return SpeakInTurns(*catalog, *catalog->Find(mode), segments, sink, true);
    }
};

TEST_F(RelayByLanguageTest, AParagraphGoesToTheVoiceOfItsLanguage)
{
    EXPECT_TRUE(
        SpeakByLanguage({Text("This is written in English.\nHeute ist das Wetter sehr schön.\n\nIt was fine.")}));
    EXPECT_EQ(log, (Lines{"flat: [This is written in English.\n] 0", "de: [Heute ist das Wetter sehr schön.\n\n] 5",
                          "flat: [It was fine.] 11"}));
    EXPECT_EQ(sink.Values(SpeechEvent::Kind::Word), (std::vector<int>{0, 5, 11}));
}

TEST_F(RelayByLanguageTest, OtherwiseTheChosenVoiceSaysAll)
{
    EXPECT_TRUE(Speak({Text("Heute ist das Wetter sehr schön.")}));
    EXPECT_EQ(log, Lines{"flat: [Heute ist das Wetter sehr schön.] 0"});
}

TEST_F(RelayByLanguageTest, WhatCannotBeToldStaysWithTheVoiceBefore)
{
    EXPECT_TRUE(SpeakByLanguage({Text("Xyz 12.\n5. Heute ist das Wetter sehr schön.\nNein. 42")}));
    EXPECT_EQ(log, (Lines{"flat: [Xyz 12.\n] 0", "de: [5. Heute ist das Wetter sehr schön.\nNein. 42] 2"}));
}

TEST_F(RelayByLanguageTest, AParagraphOfSeveralPiecesIsToldByAllOfThem)
{
    Segment mark;
    mark.kind = Segment::Kind::Bookmark;
    mark.bookmark = 3;
    EXPECT_TRUE(
        SpeakByLanguage({Text("Heute "), mark, Text("ist "), Text("das Wetter "), Text("schön.\nIt was fine.")}));
    EXPECT_EQ(log, (Lines{"de: [Heute ] 0", "de: mark 3", "de: [ist ] 0", "de: [das Wetter ] 0", "de: [schön.\n] 0",
                          "flat: [It was fine.] 1"}));
}

TEST_F(RelayByLanguageTest, AnotherWritingInsideAParagraphStillGoesToItsReader)
{
    EXPECT_TRUE(SpeakByLanguage({Text(
        "Heute ist das Wetter in Москва und auch hier sehr schön, und alle gehen mit ihren Kindern spazieren.")}));
    EXPECT_EQ(log, (Lines{"de: [Heute ist das Wetter in] 0", "ru: [ Москва] 5",
                          "de: [ und auch hier sehr schön, und alle gehen mit ihren Kindern spazieren.] 6"}));
}

TEST_F(RelayByLanguageTest, ALanguageWithoutAVoiceAndOneWhoseVoiceFailsAreSaidByTheChosenVoice)
{
    EXPECT_TRUE(SpeakByLanguage({Text("Vandaag is het weer bijzonder mooi.\n"
                                      "Jeg ved ikke, hvad der skete i går, men det var sjovt.\nIt was fine.")}));
    EXPECT_EQ(log,
              (Lines{"flat: [Vandaag is het weer bijzonder mooi.\n] 0",
                     "flat: [Jeg ved ikke, hvad der skete i går, men det var sjovt.\n] 6", "flat: [It was fine.] 18"}));
}

TEST(ResamplerTest, KeepsATonesPitchLevelAndLength)
{
    for (const auto& [from, to] : {std::pair(22050, 16000), std::pair(22050, 8000), std::pair(16000, 22050)}) {
        std::vector<std::int16_t> tone(static_cast<std::size_t>(from));
        for (std::size_t i = 0; i < tone.size(); ++i)
            tone[i] =
                static_cast<std::int16_t>(10000 * std::sin(2 * std::numbers::pi * 220 * static_cast<double>(i) / from));
        Resampler resampler(from, to);
        std::vector<std::int16_t> made;
        for (std::size_t at = 0; at < tone.size(); at += 441)
            resampler.Push(std::span(tone).subspan(at, std::min<std::size_t>(441, tone.size() - at)), made);
        EXPECT_LT(static_cast<std::size_t>(to) - made.size(), static_cast<std::size_t>(to) / 200);
        resampler.Flush(made);
        EXPECT_EQ(made.size(), static_cast<std::size_t>(to));
        EXPECT_NEAR(measure::TrackPitch(made, to).Median(), 220, 1);
        EXPECT_NEAR(measure::SpeechLevel(made, to), 10000 / std::numbers::sqrt2, 70);
    }
}

TEST(ResamplerTest, LeavesOutWhatTheLowerRateCannotHold)
{
    std::vector<std::int16_t> tone(22050);
    for (std::size_t i = 0; i < tone.size(); ++i)
        tone[i] =
            static_cast<std::int16_t>(10000 * std::sin(2 * std::numbers::pi * 6000 * static_cast<double>(i) / 22050));
    Resampler resampler(22050, 8000);
    std::vector<std::int16_t> made;
    resampler.Push(tone, made);
    resampler.Flush(made);
    const auto loud = std::max_element(made.begin() + 100, made.end() - 100);
    EXPECT_LT(*loud, 32); // 50 dB below
}

// What is heard when a reader speaks in place of a Flite voice: it lasts, has the pitch asked for, and is about as loud
// as that voice.
TEST(RealRelayTest, FliteAndAReaderSayAMixedSentenceWhole)
{
    std::vector<std::unique_ptr<Engine>> engines;
    engines.push_back(CreateEspeakEngine());
    engines.push_back(CreateFliteEngine());
    Engine* const flite = engines[1].get();
    VoiceCatalog catalog(std::move(engines), "en");
    Prosody prosody;
    prosody.pitchHz = 150;
    prosody.wordsPerMinute = 160;
    for (const Voice& voice : flite->Voices()) {
        const VoiceCatalog::Entry& chosen = *catalog.Find(voice.modeId);
        const int rate = flite->SampleRate(voice);
        for (const char* text : {"Привет, дорогой друг, как твои дела сегодня вечером?",
                                 "今天天气很好，我们去公园玩吧。", "Καλημέρα σας, τι κάνετε;"}) {
            fakes::RecordingSink sink;
            ASSERT_TRUE(SpeakInTurns(catalog, chosen, std::vector<Segment>{Text(text, prosody)}, sink));
            EXPECT_GT(measure::SpeakingSeconds(sink.samples, rate), 1) << voice.name << text;
            EXPECT_NEAR(measure::TrackPitch(sink.samples, rate).Median(), 150, 25) << voice.name << text;
            EXPECT_LE(sink.latestEventBehind, rate / 10);
            fakes::RecordingSink english;
            flite->Synthesize(voice, std::vector<Segment>{Text("Good morning, my dear old friend.", prosody)}, english);
            EXPECT_NEAR(
                20 * std::log10(measure::SpeechLevel(sink.samples, rate) / measure::SpeechLevel(english.samples, rate)),
                0, 6)
                << voice.name << text;
        }
    }
}

} // namespace
} // namespace voxmate::speech
