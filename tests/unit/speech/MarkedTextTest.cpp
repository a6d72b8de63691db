#include "speech/text/MarkedText.h"
#include "base/Text.h"
#include "speech/Calibration.h"
#include "speech/engines/EspeakMarkup.h"
#include "speech/engines/FliteText.h"
#include "speech/sound/Mouths.h"
#include "tests/unit/speech/Segments.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <ctime>

namespace voxmate::speech
{
namespace
{

std::vector<MarkedText> Arrange(std::span<const Segment> segments)
{
    std::vector<MarkedText> parts;
    Arranger arranger(segments);
    while (auto part = arranger.Next())
        parts.push_back(std::move(*part));
    return parts;
}

TEST(MarkedTextTest, JoinsWhatIsSpokenAlikeAndKeepsTheBookmarkInItsPlace)
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

TEST(MarkedTextTest, PartsAtAPauseAndWhereTheMannerChanges)
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

TEST(MarkedTextTest, SpreadsTheShownWordsOverTheSpokenOnes)
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

TEST(MarkedTextTest, SpreadsAsManyWordsAsABookHas)
{
    constexpr int words = 70000;
    std::string text;
    for (int i = 0; i < words; ++i)
        text += "a ";
    Segment segment = Text(text);
    segment.shownWords = words;
    const std::vector<MarkedText> parts = Arrange(std::span(&segment, 1));
    EXPECT_EQ(parts.front().shownWord.front(), 0);
    EXPECT_EQ(parts.back().shownWord.back(), words - 1);
}

TEST(MarkedTextTest, StressesTheFirstWordOnly)
{
    Segment segment = Text(" stop now");
    segment.emphasis = true;
    const MarkedText part = Arrange(std::span(&segment, 1))[0];
    const std::vector<bool> expected{false, true, true, true, true, false, false, false, false};
    EXPECT_EQ(part.emphasised, expected);
}

// Joins all pieces, as in a text that was never cut.
MarkedText Joined(const std::vector<MarkedText>& pieces)
{
    MarkedText all;
    for (const MarkedText& piece : pieces) {
        EXPECT_LE(piece.text.size(), Arranger::LongestPiece);
        EXPECT_EQ(piece.end == MarkedText::End::Stretch, &piece == &pieces.back());
        for (const MarkedText::Mark& mark : piece.marks)
            all.marks.push_back({all.text.size() + mark.at, mark.number});
        all.text += piece.text;
        all.shownWord.insert(all.shownWord.end(), piece.shownWord.begin(), piece.shownWord.end());
        all.emphasised.insert(all.emphasised.end(), piece.emphasised.begin(), piece.emphasised.end());
    }
    return all;
}

TEST(MarkedTextTest, ALongStretchComesInPiecesWithoutLosingItsPlace)
{
    // Greek letters of two bytes and an emoji of four, so that the seams of pieces and blocks fall anywhere.
    std::string text;
    std::u32string expected;
    std::vector<int> words;
    for (int i = 0; i < 3000; ++i) {
        text += "αβγ😀δ ";
        expected += U"αβγ😀δ ";
        words.insert(words.end(), 6, i);
    }
    Segment first = Text(text);
    Segment second = Text(text);
    second.emphasis = true;
    second.firstWord = 3000;
    std::vector<int> secondWords = words;
    for (int& word : secondWords)
        word += 3000;
    words.insert(words.end(), secondWords.begin(), secondWords.end());
    const std::vector<Segment> segments{Bookmark(1), first, Bookmark(2), second, Bookmark(3)};
    const std::vector<MarkedText> pieces = Arrange(segments);
    EXPECT_GT(pieces.size(), 36000 / Arranger::LongestPiece);
    const MarkedText all = Joined(pieces);
    EXPECT_EQ(all.text, expected + expected);
    EXPECT_EQ(all.shownWord, words);
    ASSERT_EQ(all.marks.size(), 3U);
    EXPECT_EQ(all.marks[0].at, 0U);
    EXPECT_EQ(all.marks[1].at, 18000U);
    EXPECT_EQ(all.marks[2].at, 36000U);
    EXPECT_EQ(all.marks[2].number, 3);
    EXPECT_EQ(std::count(all.emphasised.begin(), all.emphasised.end(), true), 5);
    EXPECT_TRUE(all.emphasised[18000]);
}

TEST(MarkedTextTest, WordsAreSpreadEvenlyOverAllPieces)
{
    std::string text;
    for (int i = 0; i < 3000; ++i)
        text += "a bb ";
    Segment mapped = Text(text);
    mapped.firstWord = 7;
    mapped.shownWords = 3;
    const MarkedText all = Joined(Arrange(std::span(&mapped, 1)));
    ASSERT_EQ(all.shownWord.size(), 15000U);
    EXPECT_EQ(all.shownWord[0], 7);
    EXPECT_EQ(all.shownWord[4999], 7);
    EXPECT_EQ(all.shownWord[5000], 8);
    EXPECT_EQ(all.shownWord[10000], 9);
    EXPECT_EQ(all.shownWord[14999], 9);
}

struct Seam {
    std::u32string before;
    std::u32string after;
    MarkedText::End end;
};

// Cuts a text that has `place` in the middle of the stretch searched for a cut, and words and blanks elsewhere.
Seam FirstSeam(const std::string& place)
{
    std::string text;
    while (text.size() < Arranger::LongestPiece * 3 / 4)
        text += "word ";
    text += place;
    while (text.size() < Arranger::LongestPiece * 2)
        text += " word";
    const Segment segment = Text(text);
    const std::vector<MarkedText> pieces = Arrange(std::span(&segment, 1));
    const std::u32string& before = pieces.at(0).text;
    return {before.substr(before.size() - 6), pieces.at(1).text.substr(0, 4), pieces[0].end};
}

TEST(MarkedTextTest, ALongStretchIsCutWhereItIsHeardLeast)
{
    for (const auto& [place, before] : {std::pair{"remember! And", U"mber! "},
                                        {"remember? and", U"mber? "},
                                        {"remember. And", U"mber. "},
                                        {"so\n\nAnd", U"d so\n\n"},
                                        {"so\r\n \r\nAnd", U"\n  \n "}}) {
        const Seam seam = FirstSeam(place);
        EXPECT_EQ(seam.end, MarkedText::End::Sentence) << place;
        EXPECT_EQ(EncodeUtf8(seam.after), place == std::string("remember? and") ? "and " : "And ") << place;
        if (place != std::string("so\r\n \r\nAnd")) {
            EXPECT_EQ(EncodeUtf8(seam.before), EncodeUtf8(before)) << place;
        }
    }
    EXPECT_EQ(FirstSeam("了。我").after, U"我 wo");
    EXPECT_EQ(FirstSeam("so\nAnd").after, U"And ");
    EXPECT_EQ(FirstSeam("so\nAnd").end, MarkedText::End::Inside);
    // After a word of medium length a full stop counts as a sentence's end only if there is nothing better.
    EXPECT_EQ(FirstSeam("again. And").after, U"And ");
    EXPECT_EQ(FirstSeam("again. And").end, MarkedText::End::Sentence);
    EXPECT_EQ(FirstSeam("remember! Not approx. Nine").after, U"Not ");
    EXPECT_EQ(FirstSeam("again. And\nso").after, U"And\n");
    // Neither an abbreviation nor a full stop before a small letter ends a sentence, so the text is cut at the last
    // blank.
    for (const char* place : {"Dr. Smith", "p.m. And", "remember. and", "3.14159265 And", "remembers.\" And"}) {
        EXPECT_EQ(FirstSeam(place).after, U"word") << place;
        EXPECT_EQ(FirstSeam(place).end, MarkedText::End::Inside) << place;
    }
}

TEST(MarkedTextTest, AWordLongerThanAPieceIsCutAnywhere)
{
    const Segment segment = Text(std::string(Arranger::LongestPiece * 2 + 10, 'w'));
    const std::vector<MarkedText> pieces = Arrange(std::span(&segment, 1));
    ASSERT_EQ(pieces.size(), 3U);
    EXPECT_EQ(pieces[0].text.size(), Arranger::LongestPiece);
    EXPECT_EQ(pieces[2].text.size(), 10U);
    EXPECT_EQ(pieces[2].shownWord.back(), 0);
}

TEST(MarkedTextTest, AStretchAsLongAsAPieceIsNotCut)
{
    const Segment segment = Text(std::string(Arranger::LongestPiece, 'w'));
    EXPECT_EQ(Arrange(std::span(&segment, 1)).size(), 1U);
}

TEST(EspeakMarkupTest, IsLeftOpenWhereASentenceIsCut)
{
    MarkedText piece;
    piece.text = U"so";
    piece.shownWord = {0, 0};
    piece.emphasised = {false, false};
    EXPECT_EQ(EspeakMarkup(piece).ssml, "<speak>so</speak>");
    piece.end = MarkedText::End::Sentence;
    EXPECT_EQ(EspeakMarkup(piece).ssml, "<speak>so</speak>");
    piece.end = MarkedText::End::Inside;
    EXPECT_EQ(EspeakMarkup(piece).ssml, "<speak>so");
}

TEST(EspeakMarkupTest, EscapesWhatIsMarkupAndFindsTheWordsAgain)
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

TEST(FliteTextTest, SplitsAtTheEndsOfSentencesAndNotAtAbbreviations)
{
    EXPECT_EQ(Sentences("Dr. Smith came at 3.15 p.m. today. \"Really?\" Yes! J. Doe left."),
              (std::vector<std::string>{"Dr. Smith came at 3.15 p.m. today.", "\"Really?\"", "Yes!", "J. Doe left."}));
}

TEST(FliteTextTest, AnEmptyLineEndsASentenceHoweverLinesAreEnded)
{
    const std::vector<std::string> sentences{"Chapter One", "It was late"};
    EXPECT_EQ(Sentences("Chapter One\n\nIt was late"), sentences);
    EXPECT_EQ(Sentences("Chapter One\r\n\r\nIt was late"), sentences);
    EXPECT_EQ(Sentences("Chapter One\n \nIt was late"), sentences);
    EXPECT_EQ(Sentences("One line\nof two"), (std::vector<std::string>{"One line\nof two"}));
}

TEST(FliteTextTest, LeavesOutWhatHasNothingToSay)
{
    EXPECT_EQ(Sentences("... ! Hello. --- "), (std::vector<std::string>{"Hello."}));
    EXPECT_EQ(Sentences(" \n "), (std::vector<std::string>{}));
}

TEST(FliteTextTest, ReadsForeignLettersAndTypographyAsNearAsAsciiComes)
{
    EXPECT_EQ(Sentences("It’s a café — naïve…"), (std::vector<std::string>{"It's a cafe , naive..."}));
}

TEST(FliteTextTest, IsSplitQuicklyHoweverManyBlanksPartItsWords)
{
    MarkedText text;
    text.text = U"One" + std::u32string(100000, U' ') + U"two.";
    const std::clock_t start = std::clock();
    const std::vector<FliteSentence> sentences = SplitForFlite(text);
    ASSERT_EQ(sentences.size(), 1U);
    EXPECT_EQ(sentences[0].text.size(), text.text.size());
    EXPECT_LT(std::clock() - start, CLOCKS_PER_SEC);
}

TEST(MouthsTest, CloseOnTheLipsOpenOnAhAndNarrowOnOo)
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

TEST(MouthsTest, OpenWiderTheLouderItIs)
{
    EXPECT_EQ(MouthOfLoudness(0, 1000), 0);
    EXPECT_EQ(MouthOfLoudness(100, 1000), 6);
    EXPECT_EQ(MouthOfLoudness(300, 1000), 5);
    EXPECT_EQ(MouthOfLoudness(500, 1000), 2);
    EXPECT_EQ(MouthOfLoudness(1000, 1000), 1);
    EXPECT_EQ(MouthOfLoudness(0, 0), 0);
}

TEST(CalibrationTest, FindsTheSettingBetweenThePointsAndTheRemainderOutside)
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
