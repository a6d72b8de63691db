#include "readers/rtf/Rtf.h"
#include "Blocks.h"

#include <gtest/gtest.h>

using namespace voxmate::readers;
using namespace voxmate::readers::test;

namespace
{

Lines Rtf(const std::string& content)
{
    return LinesOf([&](const BlockSink& sink) { ReadRtf("{\\rtf1\\ansi\\ansicpg1252\\deff0 " + content + "}", sink); });
}

} // namespace

TEST(RtfTest, ParagraphsAndSpecialCharacters)
{
    EXPECT_EQ(Rtf("One\\~two\\_three\\-x \\{y\\}\\line z\\par\r\nsec\r\nond \\ldblquote q\\rdblquote \\emdash\\par}"),
              (Lines{"paragraph: One two-threex {y} / z", "paragraph: second \xE2\x80\x9Cq\xE2\x80\x9D\xE2\x80\x94"}));
}

TEST(RtfTest, BytesAreReadInTheFontsEncoding)
{
    EXPECT_EQ(Rtf("{\\fonttbl{\\f0\\fcharset0 A;}{\\f1\\fcharset204 B;}{\\f2\\fcharset128 C;}{\\f3\\fcharset2 S;}}"
                  "\\'e4 {\\f1\\'cc\\'e8\\'f0} {\\f2\\'83\\'41} {\\f3\\'b7}end\\par"),
              (Lines{"paragraph: \xC3\xA4 \xD0\x9C\xD0\xB8\xD1\x80 \xE3\x82\xA2 end"}));
}

TEST(RtfTest, UnicodeReplacesItsStandIn)
{
    EXPECT_EQ(Rtf("\\uc1 a\\u8364 ?b\\u228\\'e4c{\\uc2\\u-10179 ab\\u-8704 cd}{\\uc0\\u228}d\\par"),
              (Lines{"paragraph: a\xE2\x82\xAC"
                     "b\xC3\xA4"
                     "c\xF0\x9F\x98\x80\xC3\xA4"
                     "d"}));
}

TEST(RtfTest, HeadingsComeFromStylesAndOutlineLevels)
{
    EXPECT_EQ(Rtf("{\\stylesheet{\\s0 Normal;}{\\s3 heading 2;}{\\s4\\outlinelevel0 Mine;}}"
                  "{\\pard\\s3 Two\\par}{\\pard\\s4 One\\par}{\\pard\\outlinelevel2 Three\\par}\\pard\\s0 Text\\par"),
              (Lines{"heading 2: Two", "heading 1: One", "heading 3: Three", "paragraph: Text"}));
}

TEST(RtfTest, ListItemsHaveTheLabelsThatAreWrittenForOldReaders)
{
    EXPECT_EQ(Rtf("{\\listtext\\pard\\plain 1.\\tab}\\ls1\\ilvl0 one\\par{\\listtext\\bullet\\tab}\\ilvl1 deep\\par"
                  "\\pard 2.\\tab two\\par\\pard Name\\tab value\\par"),
              (Lines{"item 1: 1. one", "item 2: \xE2\x80\xA2 deep", "item 1: 2. two", "paragraph: Name value"}));
}

TEST(RtfTest, TablesFootnotesAndTextBoxes)
{
    EXPECT_EQ(Rtf("\\trowd\\cellx1\\cellx2\\pard\\intbl a\\cell b\\cell\\row\\pard One{\\super\\chftn}{\\footnote "
                  "\\pard\\chftn  Note.\\par} two.{\\shp{\\*\\shpinst{\\shptxt \\pard Box\\par}}{\\shprslt no}}\\par "
                  "End\\par"),
              (Lines{"row: a | b", "paragraph: One two.", "note 1: Note.", "paragraph: Box", "paragraph: End"}));
}

TEST(RtfTest, WhatIsHiddenOrNoTextIsNotRead)
{
    EXPECT_EQ(Rtf("{\\info{\\title no}}{\\header no}a{\\v no}{\\deleted no}{\\*\\unknown no}{\\pict\\bin4 }{\\}}"
                  "{\\field{\\*\\fldinst no}{\\fldrslt 7}}{\\upr{no}{\\*\\ud{b}}}{\\*\\bkmkstart no}\\par"),
              (Lines{"paragraph: a7b"}));
}

TEST(RtfTest, TheLanguageOfTheText)
{
    std::vector<std::string> languages;
    LinesOf([](const BlockSink& sink) { ReadRtf("{\\rtf1\\deflang1033 a\\par\\lang1031 b\\par}", sink); }, &languages);
    EXPECT_EQ(languages, (Lines{"en", "de"}));
}

TEST(RtfTest, ATextThatIsCutOffIsDamagedAfterWhatWasRead)
{
    EXPECT_EQ(LinesOf([](const BlockSink& sink) { ReadRtf("{\\rtf1 one\\par two", sink); }),
              (Lines{"paragraph: one", "paragraph: two", "refused: \"F\" cannot be read: it is damaged."}));
}
