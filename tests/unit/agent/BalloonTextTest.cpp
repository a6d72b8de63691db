#include "agent/balloon/BalloonText.h"

#include "base/Text.h"

#include <gtest/gtest.h>

#include <ctime>
#include <string>
#include <vector>

namespace voxmate::agent
{
namespace
{

constexpr int kAll = 1000000;
using Lines = std::vector<std::string>;

BalloonText Text(const std::string& text, int width)
{
    return {std::make_shared<const std::string>(text), width,
            [](const std::string& part) { return static_cast<int>(Len(part)); }};
}

Lines Wrapped(const std::string& text, int width, int lastWord = kAll)
{
    BalloonText balloon = Text(text, width);
    Lines lines;
    for (std::size_t i = 0; balloon.HasLine(i); ++i)
        lines.push_back(balloon.Line(i, lastWord));
    return lines;
}

TEST(BalloonTextTest, ATextThatFitsIsOneLine)
{
    EXPECT_EQ(Wrapped("Hello you", 9), (Lines{"Hello you"}));
}

TEST(BalloonTextTest, AnEmptyTextHasNoLine)
{
    EXPECT_EQ(Wrapped("", 10), Lines{});
}

TEST(BalloonTextTest, LinesAreBrokenAtBlanksAsLateAsPossible)
{
    EXPECT_EQ(Wrapped("The quick brown fox jumps", 10), (Lines{"The quick", "brown fox", "jumps"}));
    EXPECT_EQ(Wrapped("a b c d", 3), (Lines{"a b", "c d"}));
}

TEST(BalloonTextTest, RunsOfBlanksCountAsOne)
{
    EXPECT_EQ(Wrapped("a  \t b", 10), (Lines{"a b"}));
    EXPECT_EQ(Wrapped("10\u00A0km", 4), (Lines{"10", "km"}));
}

TEST(BalloonTextTest, LineEndsOfTheTextAreHonoured)
{
    EXPECT_EQ(Wrapped("one\r\ntwo\nthree\rfour", 20), (Lines{"one", "two", "three", "four"}));
    EXPECT_EQ(Wrapped("one\n\nthree", 20), (Lines{"one", "", "three"}));
    EXPECT_EQ(Wrapped("one  \n  two", 20), (Lines{"one", "two"}));
}

TEST(BalloonTextTest, AWordThatJustFillsALineIsFollowedByNoEmptyLine)
{
    EXPECT_EQ(Wrapped("abcde\nf", 5), (Lines{"abcde", "f"}));
    EXPECT_EQ(Wrapped("abcde fg", 5), (Lines{"abcde", "fg"}));
    EXPECT_EQ(Wrapped("abcde", 5), (Lines{"abcde"}));
}

TEST(BalloonTextTest, AWordWiderThanALineIsBrokenBetweenCharacters)
{
    EXPECT_EQ(Wrapped("abcdefghijkl", 5), (Lines{"abcde", "fghij", "kl"}));
    EXPECT_EQ(Wrapped("x abcdefghij y", 5), (Lines{"x", "abcde", "fghij", "y"}));
    EXPECT_EQ(Wrapped("x abcdefg y", 5), (Lines{"x", "abcde", "fg y"}));
    EXPECT_EQ(Wrapped("äöüßéè", 4), (Lines{"äöüß", "éè"}));
}

TEST(BalloonTextTest, EvenTheNarrowestLineHoldsOneCharacter)
{
    EXPECT_EQ(Wrapped("añb", 0), (Lines{"a", "ñ", "b"}));
}

TEST(BalloonTextTest, WordsNotYetSpokenAreLeftOutAndLinesStayAsTheyAre)
{
    EXPECT_EQ(Wrapped("The quick brown fox", 10, -1), (Lines{"", ""}));
    EXPECT_EQ(Wrapped("The quick brown fox", 10, 0), (Lines{"The", ""}));
    EXPECT_EQ(Wrapped("The quick brown fox", 10, 2), (Lines{"The quick", "brown"}));
}

TEST(BalloonTextTest, AWordIsFoundOnTheLineOnWhichItEnds)
{
    BalloonText text = Text("one two abcdefgh x\n\nlast", 4);
    // one / two / abcd / efgh / x / (empty) / last
    EXPECT_EQ(text.LineOfWord(-1), 0u);
    EXPECT_EQ(text.LineOfWord(0), 0u);
    EXPECT_EQ(text.LineOfWord(1), 1u);
    EXPECT_EQ(text.LineOfWord(2), 3u);
    EXPECT_EQ(text.LineOfWord(3), 4u);
    EXPECT_EQ(text.LineOfWord(4), 6u);
    EXPECT_EQ(text.LineOfWord(99), 6u);
}

TEST(BalloonTextTest, AParagraphRunsTheWayOfItsFirstLetter)
{
    BalloonText text = Text("ab שלום cd\n(3) שלום ab cd\n12 !\n\u200Fab\nЯ نعم\n\u0660 \U0001E900", 7);
    // ab שלום / cd / (3) / שלום ab / cd / 12 ! / RLM ab / Я نعم / ٠ adlam
    std::vector<bool> directions;
    for (std::size_t i = 0; text.HasLine(i); ++i)
        directions.push_back(text.RunsRightToLeft(i));
    EXPECT_EQ(directions, (std::vector<bool>{false, false, true, true, true, false, true, false, true}));
    EXPECT_FALSE(text.RunsRightToLeft(99));
}

TEST(BalloonTextTest, ALongTextIsMeasuredOnlyAsFarAsItIsSeen)
{
    std::string text;
    for (int i = 0; i < 100000; ++i)
        text += "word ";
    int measures = 0;
    BalloonText balloon(std::make_shared<const std::string>(text), 40, [&](const std::string& part) {
        ++measures;
        return static_cast<int>(Len(part));
    });
    EXPECT_TRUE(balloon.HasLine(3));
    EXPECT_LE(measures, 40);
}

TEST(BalloonTextTest, AWordAsLongAsABookIsBrokenWithoutMeasuringAllOfIt)
{
    std::size_t measured = 0;
    BalloonText balloon(std::make_shared<const std::string>(1000000, 'w'), 40, [&](const std::string& part) {
        measured += part.size();
        return static_cast<int>(Len(part));
    });
    EXPECT_EQ(balloon.Line(9, kAll), std::string(40, 'w'));
    EXPECT_LE(measured, 10u * 1000u);
    EXPECT_EQ(balloon.LineOfWord(0), 25000u - 1u);
}

TEST(BalloonTextTest, AWordAsLongAsABookIsBrokenQuicklyEvenIntoSingleLetters)
{
    BalloonText balloon = Text(std::string(300000, 'w') + " x", 1);
    const std::clock_t start = std::clock();
    EXPECT_EQ(balloon.LineOfWord(1), 300000u);
    EXPECT_LT(std::clock() - start, CLOCKS_PER_SEC);
}

} // namespace
} // namespace voxmate::agent
