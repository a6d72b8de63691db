#include "base/Text.h"
#include "base/Checked.h"

#include <gtest/gtest.h>

namespace voxmate
{

namespace
{

TEST(TextTest, LengthsAndPositionsCountCharacters)
{
    EXPECT_EQ(Len(""), 0u);
    EXPECT_EQ(Len("a\xC3\xA9\xE2\x82\xAC\xF0\x9F\x98\x80"), 4u);
    EXPECT_EQ(Left("\xC3\xA9zz", 2), "\xC3\xA9z");
    EXPECT_EQ(Left("ab", 9), "ab");
    EXPECT_EQ(Left("ab", 0), "");
}

TEST(TextTest, AnInvalidByteCountsAsOneCharacter)
{
    EXPECT_EQ(Len("a\xFFz"), 3u);
    EXPECT_EQ(Len("\xC3"), 1u);
    EXPECT_EQ(Len("\xC0\x80"), 2u);
    EXPECT_EQ(Len("\xED\xA0\x80"), 3u);
    EXPECT_EQ(Len("\xF5\x80\x80\x80"), 4u);
    EXPECT_FALSE(IsValidUtf8("\xE2\x82"));
    EXPECT_TRUE(IsValidUtf8("\xE2\x82\xAC"));
}

TEST(TextTest, AnInvalidByteIsFoundBehindAnyNumberOfAsciiCharacters)
{
    for (std::size_t before = 0; before < 20; ++before) {
        EXPECT_FALSE(IsValidUtf8(std::string(before, 'a') + "\xFF"));
        EXPECT_FALSE(IsValidUtf8(std::string(before, 'a') + "\xFF" + std::string(20, 'a')));
        EXPECT_TRUE(IsValidUtf8(std::string(before, 'a') + "\xC3\xA9" + std::string(20, 'a')));
    }
}

TEST(TextTest, ACharacterThatBreaksOffIsNoPartOfTheWholeText)
{
    EXPECT_EQ(WholeUtf8(""), 0u);
    EXPECT_EQ(WholeUtf8("ab"), 2u);
    EXPECT_EQ(WholeUtf8("a\xC3"), 1u);
    EXPECT_EQ(WholeUtf8("a\xC3\xA9"), 3u);
    EXPECT_EQ(WholeUtf8("a\xE2"), 1u);
    EXPECT_EQ(WholeUtf8("a\xE2\x82"), 1u);
    EXPECT_EQ(WholeUtf8("a\xE2\x82\xAC"), 4u);
    EXPECT_EQ(WholeUtf8("a\xF0\x9F\x98"), 1u);
    EXPECT_EQ(WholeUtf8("a\xF0\x9F\x98\x80"), 5u);
    EXPECT_EQ(WholeUtf8("a\x80\x80\x80\x80"), 5u);
}

TEST(TextTest, TrimRemovesBlanksOnly)
{
    EXPECT_EQ(Trim("  a b  "), "a b");
    EXPECT_EQ(Trim("\t a \r\n"), "\t a \r\n");
    EXPECT_EQ(Trim("   "), "");
    EXPECT_EQ(Trim(""), "");
    EXPECT_EQ(Trim(std::string("  a b  ")), "a b");
    EXPECT_EQ(Trim(std::string("\t a \r\n")), "\t a \r\n");
    EXPECT_EQ(Trim(std::string("   ")), "");
    EXPECT_EQ(Trim(std::string()), "");
}

TEST(TextTest, UpperCaseReachesBeyondAscii)
{
    EXPECT_EQ(UCase("stra\xC3\x9F"
                    "e \xC3\xBC\xC3\xBF"),
              "STRA\xC3\x9F"
              "E \xC3\x9C\xC5\xB8");
    EXPECT_EQ(UCase("\xCE\xB1\xD0\xB6\xC4\x8D"), "\xCE\x91\xD0\x96\xC4\x8C");
    EXPECT_TRUE(EqualNoCase("\xC3\x84pfel", "\xC3\xA4PFEL"));
    EXPECT_TRUE(ContainsNoCase("Voice Type Last Used", "TYPE last"));
    EXPECT_FALSE(ContainsNoCase("Voice", "Voices"));
}

TEST(TextTest, PositionsStartAtOneAndZeroMeansNone)
{
    EXPECT_EQ(InStr("HKEY_USERS\\x", "\\"), 11u);
    EXPECT_EQ(InStr("abc", "z"), 0u);
}

TEST(TextTest, Utf16RoundTripKeepsSurrogatePairsAndReplacesLoneOnes)
{
    const std::string text = "a\xC3\xA9\xF0\x9F\x98\x80";
    EXPECT_EQ(Utf16ToUtf8(Utf8ToUtf16(text)), text);
    EXPECT_EQ(Utf16ToUtf8(std::u16string(1, u'\xD800')), "\xEF\xBF\xBD");
    EXPECT_EQ(Utf8ToUtf16(text).size(), 4u);
}

TEST(TextTest, Windows1252IsReadAlikeByteByByteAndAsAWhole)
{
    std::string bytes;
    std::string one;
    for (int i = 1; i < 256; ++i) {
        const std::string byte(1, static_cast<char>(i));
        bytes += byte;
        one += Windows1252ToUtf8(byte);
    }
    EXPECT_EQ(Windows1252ToUtf8(bytes), one);
    EXPECT_EQ(Len(one), 255u);
    EXPECT_TRUE(IsValidUtf8(one));
}

TEST(TextTest, Windows1252HasLettersWhereLatin1HasControls)
{
    EXPECT_EQ(Windows1252ToUtf8("a\x80\x9F\xE9\xFF"), "a\xE2\x82\xAC\xC5\xB8\xC3\xA9\xC3\xBF");
    EXPECT_EQ(Windows1252ToUtf8("\x81"), "\xC2\x81");
}

TEST(TextTest, LinesAreJoinedByCrLf)
{
    const std::vector<std::string> lines{"a", "", "b"};
    EXPECT_EQ(JoinLines(lines), "a\r\n\r\nb");
    EXPECT_EQ(JoinLines({}), "");
}

TEST(CheckedTest, WhatDoesNotFitOverflows)
{
    EXPECT_EQ(ToInt16(32767), 32767);
    EXPECT_EQ(ToInt16(-32768), -32768);
    EXPECT_THROW(ToInt16(32768), RuntimeError);
    EXPECT_EQ(MultiplyInt16(546, 60), 32760);
    EXPECT_THROW(MultiplyInt16(547, 60), RuntimeError);
    EXPECT_EQ(AddInt32(2147483646, 1), 2147483647);
    try {
        AddInt32(2147483647, 1);
        FAIL();
    } catch (const RuntimeError& error) {
        EXPECT_EQ(error.Number, 6);
        EXPECT_EQ(error.Description, "Overflow");
    }
}

TEST(CheckedTest, HalvesRoundToTheEvenNeighbour)
{
    EXPECT_EQ(RoundHalfEven(0.5), 0);
    EXPECT_EQ(RoundHalfEven(1.5), 2);
    EXPECT_EQ(RoundHalfEven(2.5), 2);
    EXPECT_EQ(RoundHalfEven(2.51), 3);
    EXPECT_EQ(RoundHalfEven(-0.5), 0);
    EXPECT_EQ(RoundHalfEven(-1.5), -2);
    EXPECT_EQ(RoundHalfEven(-2.4), -2);
}

} // namespace

} // namespace voxmate
