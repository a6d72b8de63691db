// The real engines: what they deliver, and how it sounds.
#include "bench/speech_prose.h"
#include "speech/player/Shaper.h"
#include "speech/sound/SpeechMeasure.h"
#include "speech/text/MarkedText.h"
#include "tests/fakes/RecordingSink.h"
#include "tests/unit/speech/HeapInUse.h"
#include "tests/unit/speech/Segments.h"

#include <gtest/gtest.h>

#include <cmath>
#include <new>
#include <set>
#include <stdexcept>

namespace voxmate::speech
{
namespace
{

using measure::CheckProse;
using measure::PitchTrack;
using measure::SpeakingSeconds;
using measure::SpeechLevel;
using measure::TrackPitch;

/// One of the default voices.
struct Case {
    const char* test;
    std::unique_ptr<Engine> (*create)();
    const char* key;
};

void PrintTo(const Case& value, std::ostream* out)
{
    *out << value.test;
}

class EngineTest : public ::testing::TestWithParam<Case>
{
protected:
    // Loading a library once is enough for all tests.
    static Engine& EngineOf(const Case& which)
    {
        static const std::unique_ptr<Engine> espeak = CreateEspeakEngine();
        static const std::unique_ptr<Engine> flite = CreateFliteEngine();
        return which.create == CreateEspeakEngine ? *espeak : *flite;
    }

    void SetUp() override
    {
        engine = &EngineOf(GetParam());
        for (const Voice& listed : engine->Voices()) {
            if (listed.key == GetParam().key)
                voice = listed;
            for (const Voice& variant : engine->VariantsOf(listed))
                if (variant.key == GetParam().key)
                    voice = variant;
        }
        ASSERT_FALSE(voice.name.empty()) << "the voice is not installed";
        rate = engine->SampleRate(voice);
    }

    fakes::RecordingSink Speak(const std::vector<Segment>& segments)
    {
        fakes::RecordingSink sink;
        EXPECT_TRUE(engine->Synthesize(voice, segments, sink));
        return sink;
    }

    fakes::RecordingSink Speak(std::string_view text, Prosody prosody = {})
    {
        return Speak({Text(std::string(text), prosody)});
    }

    Engine* engine = nullptr;
    Voice voice;
    int rate = 0;
};

TEST_P(EngineTest, ItsVoicesHaveNamesAndIdentifiersOfTheirOwn)
{
    std::set<std::string> names;
    std::set<std::string> ids;
    for (const Voice& listed : engine->Voices()) {
        EXPECT_TRUE(names.insert(listed.name).second) << listed.name;
        EXPECT_TRUE(ids.insert(listed.modeId).second) << listed.name;
        EXPECT_FALSE(listed.language.empty()) << listed.name;
    }
}

TEST_P(EngineTest, PitchIsTheMedianFundamentalInHertz)
{
    double before = 0;
    for (const int hertz : {40, 60, 100, 160, 250, 400}) {
        Prosody prosody;
        prosody.pitchHz = hertz;
        const double heard = TrackPitch(Speak(CheckProse[2], prosody).samples, rate).Median();
        if (hertz >= 60 && hertz <= 250) {
            EXPECT_NEAR(heard, hertz, hertz * 0.1);
        }
        EXPECT_GT(heard, before) << hertz;
        before = heard;
    }
}

TEST_P(EngineTest, APitchHoldsForEveryUtteranceAndThroughALongText)
{
    Prosody prosody;
    prosody.pitchHz = 180;
    for (int turn = 0; turn < 3; ++turn)
        EXPECT_NEAR(TrackPitch(Speak(CheckProse[2], prosody).samples, rate).Median(), 180, 18) << turn;
    std::string text;
    while (text.size() < 2 * Arranger::LongestPiece)
        text += std::string(CheckProse[2]) + " ";
    prosody.wordsPerMinute = 400;
    const std::vector<std::int16_t> samples = Speak(text, prosody).samples;
    for (const std::size_t tenth : {0, 5, 9}) {
        const auto part = std::span(samples).subspan(samples.size() / 10 * tenth, static_cast<std::size_t>(rate) * 5);
        EXPECT_NEAR(TrackPitch(part, rate).Median(), 180, 18) << tenth;
    }
}

TEST_P(EngineTest, SpeedIsWordsPerMinute)
{
    double before = 0;
    for (const int wordsPerMinute : {40, 80, 156, 250, 400}) {
        Prosody prosody;
        prosody.wordsPerMinute = wordsPerMinute;
        double seconds = 0;
        double words = 0;
        for (const std::string_view text : CheckProse) {
            seconds += SpeakingSeconds(Speak(text, prosody).samples, rate);
            words += static_cast<double>(measure::CountWords(text));
        }
        const double heard = words * 60 / seconds;
        if (wordsPerMinute >= 80) {
            EXPECT_NEAR(heard, wordsPerMinute, wordsPerMinute * 0.1);
        }
        EXPECT_GT(heard, before) << wordsPerMinute;
        before = heard;
    }
}

TEST_P(EngineTest, AnExtremePitchLeavesTheSpeedAlone)
{
    Prosody slow;
    slow.wordsPerMinute = 150;
    const double seconds = SpeakingSeconds(Speak(CheckProse[2], slow).samples, rate);
    for (const int hertz : {40, 400}) {
        Prosody prosody = slow;
        prosody.pitchHz = hertz;
        EXPECT_NEAR(SpeakingSeconds(Speak(CheckProse[2], prosody).samples, rate), seconds, seconds * 0.05) << hertz;
    }
}

TEST_P(EngineTest, AWhisperHasNoVoiceAndIsAsLoud)
{
    const std::vector<std::int16_t> voiced = Speak(CheckProse[2]).samples;
    Prosody prosody;
    prosody.whisper = true;
    const std::vector<std::int16_t> whispered = Speak(CheckProse[2], prosody).samples;
    EXPECT_GT(TrackPitch(voiced, rate).VoicedShare(), 0.3);
    EXPECT_LT(TrackPitch(whispered, rate).VoicedShare(), 0.05);
    EXPECT_NEAR(SpeechLevel(whispered, rate) / SpeechLevel(voiced, rate), 0.85, 0.2);
    EXPECT_NEAR(static_cast<double>(whispered.size()), static_cast<double>(voiced.size()),
                static_cast<double>(voiced.size()) * 0.1);
}

TEST_P(EngineTest, AWhisperStaysAWhisperAtEverySpeed)
{
    for (const int wordsPerMinute : {60, 350}) {
        Prosody prosody;
        prosody.whisper = true;
        prosody.wordsPerMinute = wordsPerMinute;
        EXPECT_LT(TrackPitch(Speak(CheckProse[2], prosody).samples, rate).VoicedShare(), 0.05) << wordsPerMinute;
    }
}

TEST_P(EngineTest, MonotoneSpeechHasNoMelody)
{
    Prosody prosody;
    prosody.pitchHz = 120;
    const PitchTrack lively = TrackPitch(Speak(CheckProse[2], prosody).samples, rate);
    prosody.monotone = true;
    const PitchTrack flat = TrackPitch(Speak(CheckProse[2], prosody).samples, rate);
    const auto spread = [](const PitchTrack& track) { return track.Quantile(0.8) / track.Quantile(0.2); };
    EXPECT_GT(spread(lively), 1.05);
    EXPECT_LT(spread(flat), 1.03);
    EXPECT_NEAR(flat.Median(), 120, 12);
}

TEST_P(EngineTest, VolumeScalesWhatIsHeard)
{
    Prosody half;
    half.volume = 32768;
    const double full = SpeechLevel(Speak("one two three").samples, rate);
    EXPECT_NEAR(SpeechLevel(Speak("one two three", half).samples, rate) / full, 0.5, 0.05);
    Prosody none;
    none.volume = 0;
    EXPECT_EQ(SpeechLevel(Speak("one two three", none).samples, rate), 0);
}

TEST_P(EngineTest, APauseIsExactSilence)
{
    const fakes::RecordingSink sink = Speak({Pause(500)});
    EXPECT_EQ(sink.samples, std::vector<std::int16_t>(static_cast<std::size_t>(rate) / 2));
}

TEST_P(EngineTest, EveryWordIsReportedInItsTurnWhileItIsSpoken)
{
    const fakes::RecordingSink sink = Speak("Hello Bob & Ann, here are 42 näive words.");
    EXPECT_EQ(sink.Values(SpeechEvent::Kind::Word), (std::vector<int>{0, 1, 2, 3, 4, 5, 6, 7, 8}));
    std::int64_t before = 0;
    for (const SpeechEvent& event : sink.events) {
        EXPECT_GE(event.sample, before);
        EXPECT_LE(event.sample, static_cast<std::int64_t>(sink.samples.size()));
        before = event.sample;
    }
    EXPECT_LE(sink.latestEventBehind, rate / 10);
}

TEST_P(EngineTest, EachWordIsToldWhereItsSoundBegins)
{
    const fakes::RecordingSink sink = Speak("Moon. Lion. Mellow. Nine. Wall. Yellow. Room. Lemon.");
    const std::vector<std::int64_t> onsets = measure::Onsets(sink.samples, rate);
    ASSERT_GE(onsets.size(), 8U);
    int words = 0;
    for (const SpeechEvent& event : sink.events) {
        if (event.kind != SpeechEvent::Kind::Word)
            continue;
        std::int64_t nearest = rate;
        for (const std::int64_t onset : onsets)
            nearest = std::min(nearest, std::abs(event.sample - onset));
        EXPECT_LT(nearest * 1000 / rate, 60) << "word " << words;
        ++words;
    }
    EXPECT_EQ(words, 8);
}

TEST_P(EngineTest, TheMouthMovesWithTheSoundsAndEndsClosed)
{
    const std::vector<int> mouths = Speak("Mama saw you.").Values(SpeechEvent::Kind::Mouth);
    ASSERT_GE(mouths.size(), 6U);
    EXPECT_EQ(mouths.back(), 0);
    for (const int mouth : {0, 1, 3, 6})
        EXPECT_NE(std::find(mouths.begin(), mouths.end(), mouth), mouths.end()) << mouth;
    for (const int mouth : mouths)
        EXPECT_TRUE(mouth >= 0 && mouth <= 6) << mouth;
}

TEST_P(EngineTest, TheMouthIsOpenWhereTheSoundIs)
{
    // Two loud syllables around a pause, slowed far beyond the engine's own range: the events must follow.
    Prosody prosody;
    prosody.wordsPerMinute = 50;
    const fakes::RecordingSink sink = Speak({Text("ah", prosody), Pause(1000), Text("ah", prosody)});
    std::vector<int> mouthAt(sink.samples.size(), 0);
    for (std::size_t i = 0; i < sink.events.size(); ++i)
        if (sink.events[i].kind == SpeechEvent::Kind::Mouth)
            std::fill(mouthAt.begin() + std::min<std::ptrdiff_t>(sink.events[i].sample, std::ssize(mouthAt)),
                      mouthAt.end(), sink.events[i].value);
    std::size_t loud = 0;
    std::size_t open = 0;
    const std::size_t block = static_cast<std::size_t>(rate) / 50;
    for (std::size_t at = 0; at + block <= sink.samples.size(); at += block) {
        const auto peak = std::max_element(sink.samples.begin() + static_cast<std::ptrdiff_t>(at),
                                           sink.samples.begin() + static_cast<std::ptrdiff_t>(at + block));
        if (*peak < 3000)
            continue;
        ++loud;
        open += mouthAt[at + block / 2] != 0;
    }
    ASSERT_GT(loud, 10U);
    EXPECT_GE(static_cast<double>(open), 0.9 * static_cast<double>(loud));
}

TEST_P(EngineTest, BookmarksComeWhereTheyStandAndNoneIsLost)
{
    Segment second = Text("there my friend.");
    second.firstWord = 1;
    const fakes::RecordingSink sink =
        Speak({Bookmark(1), Text("Hello "), Bookmark(2), second, Bookmark(3), Pause(100), Bookmark(4)});
    EXPECT_EQ(sink.Values(SpeechEvent::Kind::Bookmark), (std::vector<int>{1, 2, 3, 4}));
    std::int64_t word = -1;
    std::int64_t mark = -1;
    for (const SpeechEvent& event : sink.events) {
        if (event.kind == SpeechEvent::Kind::Word && event.value == 1)
            word = event.sample;
        if (event.kind == SpeechEvent::Kind::Bookmark && event.value == 2)
            mark = event.sample;
    }
    EXPECT_NEAR(static_cast<double>(mark), static_cast<double>(word), rate * 0.05);
}

TEST_P(EngineTest, AStressedWordIsLouderOrLongerOrHigher)
{
    Segment plain = Text("Come here.");
    Segment stressed = plain;
    stressed.emphasis = true;
    const std::vector<std::int16_t> without = Speak({plain}).samples;
    const std::vector<std::int16_t> with = Speak({stressed}).samples;
    const double louder = SpeechLevel(with, rate) / SpeechLevel(without, rate);
    const double longer = static_cast<double>(with.size()) / static_cast<double>(without.size());
    const double higher = TrackPitch(with, rate).Quantile(0.9) / TrackPitch(without, rate).Quantile(0.9);
    EXPECT_GT(std::max({louder, longer, higher}), 1.08) << louder << " " << longer << " " << higher;
}

TEST_P(EngineTest, ASinkThatWantsNoMoreIsObeyedWithinABlock)
{
    fakes::RecordingSink sink;
    sink.stopAfter = 1;
    const std::vector<Segment> segments{Text(std::string(CheckProse[0])), Text(std::string(CheckProse[1]))};
    EXPECT_TRUE(engine->Synthesize(voice, segments, sink));
    EXPECT_GT(sink.samples.size(), 0U);
    EXPECT_LT(sink.samples.size(), static_cast<std::size_t>(rate) / 4);
    fakes::RecordingSink again;
    EXPECT_TRUE(engine->Synthesize(voice, std::vector<Segment>{Text("Hello")}, again));
    EXPECT_GT(again.samples.size(), static_cast<std::size_t>(rate) / 10);
}

/// Throws the exception of exhausted memory at the call with this number.
struct ThrowingSink final : SampleSink {
    bool Samples(std::span<const std::int16_t>) override
    {
        if (--callsLeft == 0)
            throw std::bad_alloc();
        return true;
    }
    void Event(const SpeechEvent&) override
    {
        if (--eventsLeft == 0)
            throw std::length_error("no more events");
    }
    int callsLeft = 0;
    int eventsLeft = 0;
};

// What the library holds while it speaks is released only when it has returned; otherwise the next text would be spoken
// in the middle of the one before.
TEST_P(EngineTest, WhatTheSinkThrowsComesOutAndTheNextTextIsSpokenAsEver)
{
    Prosody prosody;
    prosody.pitchHz = 150;
    const std::vector<Segment> segments{Text(std::string(CheckProse[0]), prosody), Text(std::string(CheckProse[1]))};
    const std::size_t usual = Speak("Hello there", prosody).samples.size();
    for (const int calls : {1, 2, 20}) {
        ThrowingSink sink;
        sink.callsLeft = calls;
        EXPECT_THROW(engine->Synthesize(voice, segments, sink), std::bad_alloc);
        ThrowingSink other;
        other.eventsLeft = calls;
        EXPECT_THROW(engine->Synthesize(voice, segments, other), std::length_error);
        const fakes::RecordingSink again = Speak("Hello there", prosody);
        // No two renderings of a text are equal to the sample.
        EXPECT_NEAR(static_cast<double>(again.samples.size()), static_cast<double>(usual), rate / 50.0) << calls;
        EXPECT_EQ(again.Values(SpeechEvent::Kind::Word), (std::vector<int>{0, 1})) << calls;
    }
}

// One sentence repeated, each of which should take equally long, whether or not a seam is in it.
struct Repeated {
    explicit Repeated(const std::string& one) : sentence(one)
    {
        for (int i = 0; i < Count(); ++i)
            text += sentence;
    }
    static constexpr int Words = 9; ///< words in the sentence
    int Count() const { return static_cast<int>(Arranger::LongestPiece / sentence.size()) + 20; }
    /// Seconds from the beginning of each sentence to that of the next, without the first and the last.
    std::vector<double> Lengths(const fakes::RecordingSink& sink, int rate) const
    {
        std::vector<double> lengths;
        std::int64_t before = -1;
        for (const SpeechEvent& event : sink.events) {
            if (event.kind != SpeechEvent::Kind::Word || event.value % Words != 0 || event.value / Words >= Count())
                continue;
            if (before > 0)
                lengths.push_back(static_cast<double>(event.sample - before) / rate);
            before = event.sample;
        }
        return lengths;
    }

    std::string sentence;
    std::string text;
};

TEST_P(EngineTest, TheSeamsOfALongTextAreNotHeard)
{
    const Repeated repeated("The old clock in the hall has stopped completely. ");
    Prosody quick; // beyond the engines' own speed, so that the later stages must keep events in place, too
    quick.wordsPerMinute = 600;
    Segment last = Text("The end.", quick);
    last.firstWord = repeated.Count() * Repeated::Words;
    const fakes::RecordingSink sink = Speak({Text(repeated.text, quick), Bookmark(8), last});
    // An engine may join two words into one.
    const std::vector<int> inOne = Speak(repeated.sentence).Values(SpeechEvent::Kind::Word);
    EXPECT_GE(inOne.size(), 7U);
    std::vector<int> expected;
    for (int i = 0; i < repeated.Count(); ++i)
        for (const int word : inOne)
            expected.push_back(i * Repeated::Words + word);
    expected.insert(expected.end(), {last.firstWord, last.firstWord + 1});
    EXPECT_EQ(sink.Values(SpeechEvent::Kind::Word), expected);
    EXPECT_EQ(sink.Values(SpeechEvent::Kind::Bookmark), (std::vector<int>{8}));
    EXPECT_LE(sink.latestEventBehind, rate / 10);
    const std::vector<double> lengths = repeated.Lengths(sink, rate);
    const auto [shortest, longest] = std::minmax_element(lengths.begin(), lengths.end());
    EXPECT_LT(*longest - *shortest, 0.03);
}

TEST_P(EngineTest, WhereALongTextHasNoSentencesASeamIsNoPause)
{
    const Repeated repeated("The old clock in the hall has stopped completely ");
    std::vector<double> lengths = repeated.Lengths(Speak(repeated.text), rate);
    std::sort(lengths.begin(), lengths.end());
    // Both engines pause longer than that between two sentences; the ends of clauses differ by half of it.
    EXPECT_LT(lengths.back() - lengths[lengths.size() / 2], 0.25);
}

TEST_P(EngineTest, OddTextIsNoTrouble)
{
    for (const char* text :
         {"", " ", "...", "<", "&&&", "\xFF\xFE\x80", "\x01\x02", "日本語", "😀", "<speak>", "[[h]]", "a\nb\n\nc"}) {
        fakes::RecordingSink sink;
        EXPECT_TRUE(engine->Synthesize(voice, std::vector<Segment>{Text(text)}, sink)) << text;
    }
}

INSTANTIATE_TEST_SUITE_P(Voices, EngineTest,
                         ::testing::Values(Case{"EspeakBritish", CreateEspeakEngine, "gmw/en"},
                                           Case{"EspeakAmerican", CreateEspeakEngine, "gmw/en-US"},
                                           Case{"EspeakFemale", CreateEspeakEngine, "gmw/en+f2"},
                                           Case{"EspeakSteph", CreateEspeakEngine, "gmw/en-US+steph"},
                                           Case{"EspeakOtherMale", CreateEspeakEngine, "gmw/en+m3"},
                                           Case{"FliteKal", CreateFliteEngine, "kal"},
                                           Case{"FliteSlt", CreateFliteEngine, "slt"},
                                           Case{"FliteRms", CreateFliteEngine, "rms"}),
                         [](const auto& info) { return info.param.test; });

TEST(EspeakEngineTest, NamesItsVoicesAsPeopleKnowThem)
{
    const auto engine = CreateEspeakEngine();
    std::set<std::string> names;
    for (const Voice& voice : engine->Voices())
        names.insert(voice.name);
    EXPECT_TRUE(names.contains("eSpeak English (Great Britain)"));
    EXPECT_TRUE(names.contains("eSpeak German"));
    EXPECT_GT(names.size(), 100U);
}

TEST(EspeakEngineTest, MakesOtherPeoplesVoicesOfEachOfItsOwn)
{
    const auto engine = CreateEspeakEngine();
    for (const Voice& voice : engine->Voices()) {
        std::vector<std::string> names;
        std::set<std::string> ids{voice.modeId};
        for (const Voice& variant : engine->VariantsOf(voice)) {
            EXPECT_EQ(variant.language, voice.language);
            EXPECT_TRUE(ids.insert(variant.modeId).second);
            names.push_back(variant.name);
        }
        if (voice.key == "gmw/de") {
            EXPECT_EQ(names, (std::vector<std::string>{"eSpeak German (female 2)", "eSpeak German (female, Steph)",
                                                       "eSpeak German (male 3)"}));
        }
        if (voice.key == "gmw/en") {
            EXPECT_EQ(names.front(), "eSpeak English (Great Britain, female 2)");
        }
    }
}

TEST(EspeakEngineTest, AFemaleVoiceIsHigherAndAsLoudAsTheOneItIsMadeOf)
{
    const auto engine = CreateEspeakEngine();
    for (const Voice& voice : engine->Voices()) {
        if (voice.key != "gmw/en" && voice.key != "gmw/de" && voice.key != "roa/fr" && voice.key != "zle/ru")
            continue;
        const char* const text = voice.key == "zle/ru" ? "Привет, дорогой друг, как твои дела сегодня вечером?"
                                                       : "Good morning, my dear old friend, how are you tonight?";
        const auto say = [&](const Voice& speaker) {
            fakes::RecordingSink sink;
            EXPECT_TRUE(engine->Synthesize(speaker, std::vector<Segment>{Text(text)}, sink));
            return sink.samples;
        };
        const int rate = engine->SampleRate(voice);
        const std::vector<std::int16_t> own = say(voice);
        for (const Voice& variant : engine->VariantsOf(voice)) {
            const std::vector<std::int16_t> other = say(variant);
            EXPECT_NEAR(20 * std::log10(SpeechLevel(other, rate) / SpeechLevel(own, rate)), 0, 3) << variant.name;
            EXPECT_NEAR(SpeakingSeconds(other, rate) / SpeakingSeconds(own, rate), 1, 0.1) << variant.name;
            const double higher = TrackPitch(other, rate).Median() / TrackPitch(own, rate).Median();
            if (variant.name.find("female") != std::string::npos) {
                EXPECT_GT(higher, 1.6) << variant.name;
            }
        }
    }
}

// An utterance of the library's that an exception skipped would never be freed; each takes some hundred kilobytes.
TEST(FliteEngineTest, WhatTheSinkThrowsLeavesNothingBehind)
{
    const std::unique_ptr<Engine> engine = CreateFliteEngine();
    ASSERT_FALSE(engine->Voices().empty());
    const std::vector<Segment> segments{Text(std::string(CheckProse[0]))};
    const auto speakAndThrow = [&] {
        ThrowingSink sink;
        sink.callsLeft = 1;
        EXPECT_THROW(engine->Synthesize(engine->Voices().front(), segments, sink), std::bad_alloc);
    };
    speakAndThrow(); // loads the voice, which stays loaded
    const std::size_t before = HeapInUse();
    for (int i = 0; i < 10; ++i)
        speakAndThrow();
    EXPECT_LT(HeapInUse(), before + 100'000);
}

TEST(FliteEngineTest, HasItsFourEnglishVoices)
{
    const auto engine = CreateFliteEngine();
    std::set<std::string> names;
    for (const Voice& voice : engine->Voices()) {
        names.insert(voice.name);
        EXPECT_TRUE(voice.language.starts_with("en"));
    }
    EXPECT_EQ(names, (std::set<std::string>{"Flite KAL (American English)", "Flite SLT (American English)",
                                            "Flite AWB (Scottish English)", "Flite RMS (American English)"}));
}

TEST(EnginesTest, OneAfterTheOtherSpeakAsTheFirstDid)
{
    for (const auto create : {CreateEspeakEngine, CreateFliteEngine})
        for (int turn = 0; turn < 2; ++turn) {
            const auto engine = create();
            ASSERT_FALSE(engine->Voices().empty());
            fakes::RecordingSink sink;
            EXPECT_TRUE(engine->Synthesize(engine->Voices().back(), std::vector<Segment>{Text("Hello.")}, sink));
            EXPECT_GT(sink.samples.size(), 2000U);
        }
}

TEST(EspeakEngineTest, AVoiceIsAsFastBehindAnotherOneAsByItself)
{
    const auto engine = CreateEspeakEngine();
    const auto length = [&engine](const char* name, const char* text) {
        fakes::RecordingSink sink;
        for (const Voice& voice : engine->Voices())
            if (voice.name == name) {
                EXPECT_TRUE(engine->Synthesize(voice, std::vector<Segment>{Text(text)}, sink));
            }
        return static_cast<double>(sink.samples.size());
    };
    const char* const english = "eSpeak English (Great Britain)";
    const char* const text = "The quick brown fox jumps over the lazy dog, and the dog does not mind at all.";
    length(english, text);
    const double alone = length(english, text);
    ASSERT_GT(alone, 0);
    ASSERT_GT(length("eSpeak Russian", "Привет мир"), 0);
    // The library says nothing twice with just as many samples.
    EXPECT_NEAR(length(english, text) / alone, 1, 0.01);
}

TEST(EspeakEngineTest, AGermanVoiceIsAsHighAsIsAsked)
{
    const auto engine = CreateEspeakEngine();
    for (const Voice& voice : engine->Voices()) {
        if (voice.name != "eSpeak German")
            continue;
        for (const int hertz : {60, 120, 250}) {
            Prosody prosody;
            prosody.pitchHz = hertz;
            fakes::RecordingSink sink;
            const std::vector<Segment> text{
                Text("Der Nordwind und die Sonne stritten sich, wer von ihnen wohl der Stärkere wäre.", prosody)};
            ASSERT_TRUE(engine->Synthesize(voice, text, sink));
            EXPECT_NEAR(TrackPitch(sink.samples, engine->SampleRate(voice)).Median(), hertz, hertz * 0.1);
        }
        return;
    }
    FAIL() << "no German voice";
}

TEST(ShaperTest, MovesEventsAlongWithTheSamples)
{
    fakes::RecordingSink sink;
    Shaper shaper(8000, sink);
    shaper.Silence(100);
    Shape shape;
    shape.speed = 2;
    shaper.Begin(shape);
    shaper.Event(SpeechEvent::Kind::Word, 4000, 1);
    std::vector<std::int16_t> tone(8000);
    for (std::size_t i = 0; i < tone.size(); ++i)
        tone[i] = i % 80 < 40 ? 8000 : -8000;
    EXPECT_TRUE(shaper.Samples(tone));
    EXPECT_TRUE(shaper.End());
    EXPECT_EQ(sink.events.back().sample, 800 + 2000);
    EXPECT_NEAR(static_cast<double>(sink.samples.size()), 800 + 4000, 200);
}

TEST(ShaperTest, RunsLikeATapeWhenTheRateIsChanged)
{
    fakes::RecordingSink sink;
    Shaper shaper(8000, sink);
    Shape shape;
    shape.rate = 0.5;
    shaper.Begin(shape);
    std::vector<std::int16_t> tone(8000);
    for (std::size_t i = 0; i < tone.size(); ++i)
        tone[i] = i % 80 < 40 ? 8000 : -8000;
    shaper.Samples(tone);
    shaper.End();
    EXPECT_NEAR(static_cast<double>(sink.samples.size()), 16000, 200);
    EXPECT_NEAR(TrackPitch(sink.samples, 8000).Median(), 50, 1);
}

} // namespace
} // namespace voxmate::speech
