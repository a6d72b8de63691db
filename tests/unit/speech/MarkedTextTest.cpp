#include "platform/speech/MarkedText.h"
#include "Fakes.h"
#include "platform/speech/Calibration.h"
#include "platform/speech/EspeakMarkup.h"
#include "platform/speech/FliteText.h"
#include "platform/speech/Mouths.h"

#include <gtest/gtest.h>

#include <array>
#include <ctime>

namespace voxmate::speech
{
namespace
{

TEST(MarkedText, JoinsWhatIsSpokenAlikeAndKeepsTheBookmarkInItsPlace)
{
    Segment second = Text("there.");
    second.firstWord = 1;
    const std::vector<Segment> segments{Text("Hello "), Bookmark(5), second};
    const std::vector<MarkedText> parts = Arrange(segments);
    ASSERT_EQ(parts.size(), 1U);
    EXPECT_EQ(parts[0].text, U"Hello there.");
    ASSERT_EQ(parts[0].marks.size(), 1U);
    EXPECT_EQ(parts[0].marks[0].at, 6U);
    EXPECT_EQ(parts[0].marks[0].number, 5);
    EXPECT_EQ(parts[0].shownWord.front(), 0);
    EXPECT_EQ(parts[0].shownWord.back(), 1);
}

TEST(MarkedText, PartsAtAPauseAndWhereTheMannerChanges)
{
    Prosody low;
    low.pitchHz = 60;
    const std::vector<Segment> segments{Text("One"), Pause(200), Text("two "), Text("three", low)};
    const std::vector<MarkedText> parts = Arrange(segments);
    ASSERT_EQ(parts.size(), 4U);
    EXPECT_EQ(parts[1].pauseMilliseconds, 200);
    EXPECT_EQ(parts[2].text, U"two ");
    EXPECT_EQ(parts[3].prosody.pitchHz, 60);
}

TEST(MarkedText, SpreadsTheShownWordsOverTheSpokenOnes)
{
    Segment mapped = Text("nineteen ninety nine now");
    mapped.firstWord = 4;
    mapped.shownWords = 2;
    const std::vector<MarkedText> parts = Arrange(std::span(&mapped, 1));
    EXPECT_EQ(parts[0].shownWord[0], 4);
    EXPECT_EQ(parts[0].shownWord[9], 4);
    EXPECT_EQ(parts[0].shownWord[16], 5);
    EXPECT_EQ(parts[0].shownWord[21], 5);
}

TEST(MarkedText, SpreadsAsManyWordsAsABookHas)
{
    constexpr int words = 70000;
    std::string text;
    for (int i = 0; i < words; ++i)
        text += "a ";
    Segment segment = Text(text);
    segment.shownWords = words;
    const MarkedText part = Arrange(std::span(&segment, 1))[0];
    EXPECT_EQ(part.shownWord.front(), 0);
    EXPECT_EQ(part.shownWord.back(), words - 1);
}

TEST(MarkedText, StressesTheFirstWordOnly)
{
    Segment segment = Text(" stop now");
    segment.emphasis = true;
    const MarkedText part = Arrange(std::span(&segment, 1))[0];
    const std::vector<bool> expected{false, true, true, true, true, false, false, false, false};
    EXPECT_EQ(part.emphasised, expected);
}

TEST(EspeakMarkup, EscapesWhatIsMarkupAndFindsTheWordsAgain)
{
    const Segment segment = Text("a & b <ü> c");
    const EspeakMarkup markup(Arrange(std::span(&segment, 1))[0]);
    EXPECT_EQ(markup.ssml, "<speak>a &amp; b &lt;ü&gt; c</speak>");
    EXPECT_EQ(markup.ShownWordAt(8), 0);
    EXPECT_EQ(markup.ShownWordAt(10), 1);
    EXPECT_EQ(markup.ShownWordAt(16), 2);
    EXPECT_EQ(markup.ShownWordAt(22), 3);
    EXPECT_EQ(markup.ShownWordAt(28), 4);
    EXPECT_EQ(markup.ShownWordAt(1000), -1);
}

std::vector<std::string> Sentences(std::string text)
{
    const Segment segment = Text(std::move(text));
    std::vector<std::string> sentences;
    for (const FliteSentence& sentence : SplitForFlite(Arrange(std::span(&segment, 1))[0]))
        sentences.push_back(sentence.text);
    return sentences;
}

TEST(FliteText, SplitsAtTheEndsOfSentencesAndNotAtAbbreviations)
{
    EXPECT_EQ(Sentences("Dr. Smith came at 3.15 p.m. today. \"Really?\" Yes! J. Doe left."),
              (std::vector<std::string>{"Dr. Smith came at 3.15 p.m. today.", "\"Really?\"", "Yes!", "J. Doe left."}));
}

TEST(FliteText, LeavesOutWhatHasNothingToSay)
{
    EXPECT_EQ(Sentences("... ! Hello. --- "), (std::vector<std::string>{"Hello."}));
    EXPECT_EQ(Sentences(" \n "), (std::vector<std::string>{}));
}

TEST(FliteText, ReadsForeignLettersAndTypographyAsNearAsAsciiComes)
{
    EXPECT_EQ(Sentences("It’s a café — naïve…"), (std::vector<std::string>{"It's a cafe , naive..."}));
}

TEST(FliteText, IsSplitQuicklyHoweverManyBlanksPartItsWords)
{
    const std::string text = "One" + std::string(100000, ' ') + "two.";
    const std::clock_t start = std::clock();
    EXPECT_EQ(Sentences(text), (std::vector<std::string>{text}));
    EXPECT_LT(std::clock() - start, CLOCKS_PER_SEC);
}

TEST(Mouths, CloseOnTheLipsOpenOnAhAndNarrowOnOo)
{
    for (const char* closed : {"m", "b", "p", "", "_", "__"})
        EXPECT_EQ(MouthOfIpa(closed), 0) << closed;
    EXPECT_EQ(MouthOfIpa("ɑː"), 1);
    EXPECT_EQ(MouthOfIpa("ˈaɪ"), 1);
    EXPECT_EQ(MouthOfIpa("ɛ"), 2);
    EXPECT_EQ(MouthOfIpa("əʊ"), 3);
    EXPECT_EQ(MouthOfIpa("iː"), 4);
    EXPECT_EQ(MouthOfIpa("t"), 5);
    EXPECT_EQ(MouthOfIpa("ŋ"), 5);
    EXPECT_EQ(MouthOfIpa("uː"), 6);
    EXPECT_EQ(MouthOfIpa("tʃ"), 6);
    EXPECT_EQ(MouthOfFlitePhone("pau"), 0);
    EXPECT_EQ(MouthOfFlitePhone("aa"), 1);
    EXPECT_EQ(MouthOfFlitePhone("uw"), 6);
    EXPECT_EQ(MouthOfFlitePhone("z"), 6);
    EXPECT_EQ(MouthOfFlitePhone("??"), 5);
}

TEST(Mouths, OpenWiderTheLouderItIs)
{
    EXPECT_EQ(MouthOfLoudness(0, 1000), 0);
    EXPECT_EQ(MouthOfLoudness(100, 1000), 6);
    EXPECT_EQ(MouthOfLoudness(300, 1000), 5);
    EXPECT_EQ(MouthOfLoudness(500, 1000), 2);
    EXPECT_EQ(MouthOfLoudness(1000, 1000), 1);
    EXPECT_EQ(MouthOfLoudness(0, 0), 0);
}

TEST(Calibration, FindsTheSettingBetweenThePointsAndTheRemainderOutside)
{
    constexpr std::array<CalibrationPoint, 3> points{{{100, 80}, {200, 180}, {400, 300}}};
    EXPECT_DOUBLE_EQ(SettingFor(points, 150).value, 130);
    EXPECT_DOUBLE_EQ(SettingFor(points, 150).remainder, 1);
    EXPECT_DOUBLE_EQ(SettingFor(points, 300).value, 240);
    EXPECT_DOUBLE_EQ(SettingFor(points, 50).value, 80);
    EXPECT_DOUBLE_EQ(SettingFor(points, 50).remainder, 0.5);
    EXPECT_DOUBLE_EQ(SettingFor(points, 800).remainder, 2);
}

} // namespace
} // namespace voxmate::speech
