#include "readers/text/Clean.h"

#include <gtest/gtest.h>

using namespace voxmate::readers;

TEST(CleanTextTest, ARunOfBlanksOfAnyWidthIsOneBlankAndNoneIsAtTheEnds)
{
    EXPECT_EQ(Clean("  a \t\r\n b\xC2\xA0\xE2\x80\xAF\xE3\x80\x80 c "), "a b c");
}

TEST(CleanTextTest, WhatHasNoSoundIsLeftOutAndLigaturesBecomeLetters)
{
    EXPECT_EQ(Clean("re\xC2\xADport\xE2\x80\x8B \xEF\xAC\x81ne o\xEF\xAC\x83"
                    "ce \xEF\x82\xB7x\xEF\xBB\xBF"),
              "report fine office x");
}

TEST(CleanTextTest, ABreakIsALineEndAndNoBlankIsBesideIt)
{
    CleanText text;
    text.Break();
    text.Add("one ");
    text.Break();
    text.Break();
    text.Add(" two");
    text.Break();
    EXPECT_EQ(text.Take(), "one\ntwo");
    EXPECT_TRUE(text.Empty());
}

TEST(CleanTextTest, BytesThatAreNoCharactersBecomeReplacements)
{
    EXPECT_EQ(Clean("a\xFF"
                    "b\xE2\x82"),
              "a\xEF\xBF\xBD"
              "b\xEF\xBF\xBD\xEF\xBF\xBD");
}

TEST(CleanTextTest, WordsAreTakenUpToTheLastBlank)
{
    CleanText text;
    text.Add("one two thr");
    EXPECT_EQ(text.TakeWords(), "one two");
    text.Add("ee");
    EXPECT_EQ(text.Take(), "three");
}
