#include "readers/text/PlainText.h"
#include "Blocks.h"
#include "readers/text/Markdown.h"

#include <gtest/gtest.h>

using namespace voxmate::readers;
using namespace voxmate::readers::test;

namespace
{

Lines Text(std::string_view text)
{
    return LinesOf([&](const BlockSink& sink) { ReadPlainText(text, sink); });
}

Lines Marked(std::string_view text)
{
    return LinesOf([&](const BlockSink& sink) { ReadMarkdown(text, sink); });
}

} // namespace

TEST(PlainTextTest, EmptyLinesPartParagraphs)
{
    EXPECT_EQ(Text("One.\r\n\r\n \r\nTwo.\n"), (Lines{"paragraph: One.", "paragraph: Two."}));
}

TEST(PlainTextTest, LinesBrokenToFitAWidthAreJoinedAndDividedWordsMended)
{
    EXPECT_EQ(Text("The quick brown fox jumps over the lazy dog and goes on to the next gar-\n"
                   "den, where it meets a hedgehog that does not want to talk about the matter\n"
                   "at all.\n"),
              (Lines{"paragraph: The quick brown fox jumps over the lazy dog and goes on to the next garden, where it "
                     "meets a hedgehog that does not want to talk about the matter at all."}));
}

TEST(PlainTextTest, ThePoemsLineEndsStay)
{
    EXPECT_EQ(Text("Tyger tyger,\nburning bright\n\nIn the forests\nof the night\n"),
              (Lines{"paragraph: Tyger tyger, / burning bright", "paragraph: In the forests / of the night"}));
}

TEST(PlainTextTest, ALongLineIsAParagraphByItself)
{
    const std::string line(200, 'a');
    EXPECT_EQ(Text(line + "\n" + line + "\n"), (Lines{"paragraph: " + line, "paragraph: " + line}));
}

TEST(PlainTextTest, AnIndentedLineBeginsAParagraphWhereLinesFillTheirWidth)
{
    EXPECT_EQ(Text("    The quick brown fox jumps over the lazy dog and goes on to the next\n"
                   "garden, where it meets a hedgehog that does not want to talk about it.\n"
                   "    The hedgehog knows that whatever it says will be held against it in\n"
                   "the end.\n")
                  .size(),
              2U);
}

TEST(PlainTextTest, ListItemsHaveTheirLabels)
{
    EXPECT_EQ(Text("- one\n- two\n  goes on\n\n1. first\n2. second\n"),
              (Lines{"item 1: \xE2\x80\xA2 one", "item 1: \xE2\x80\xA2 two goes on", "item 1: 1. first",
                     "item 1: 2. second"}));
}

TEST(PlainTextTest, UnmarkedBytesThatAreNotUtf8AreReadInAnOlderEncoding)
{
    std::string own;
    EXPECT_EQ(TextOf("Stra\xDF"
                     "e",
                     own),
              "Stra\xC3\x9F"
              "e");
    EXPECT_EQ(TextOf("\xEF\xBB\xBF"
                     "ab",
                     own),
              "ab");
    EXPECT_EQ(TextOf(std::string_view("\xFF\xFE"
                                      "a\0b\0",
                                      6),
                     own),
              "ab");
}

TEST(MarkdownTest, HeadingsListsTablesAndEmphasisAreReadWithoutTheirMarks)
{
    EXPECT_EQ(
        Marked("# Title\n\nSome *fine* and **bold** text,\ngoing on.\n\n1. one\n2. two\n   - deep\n\n"
               "| a | b |\n|---|---|\n| c | d |\n\n> quoted\n\n`code` [link](http://x/) ![picture](y.png)\n"),
        (Lines{"heading 1: Title", "paragraph: Some fine and bold text, going on.", "item 1: 1. one", "item 1: 2. two",
               "item 2: \xE2\x80\xA2 deep", "row: a | b", "row: c | d", "paragraph: quoted", "paragraph: code link"}));
}

TEST(MarkdownTest, FootnotesHaveTheirNumbersAndTheTextDoesNot)
{
    EXPECT_EQ(Marked("One[^a] word.\n\n[^a]: The note.\n"), (Lines{"paragraph: One word.", "note 1: The note."}));
}

TEST(MarkdownTest, FrontMatterAndScriptsAreLeftOut)
{
    EXPECT_EQ(Marked("---\ntitle: X\n---\n\nText.\n\n<script>alert(1)</script>\n\n<div>page</div>\n"),
              (Lines{"paragraph: Text.", "paragraph: page"}));
}

TEST(MarkdownTest, IsToldFromPlainTextAndFromPrograms)
{
    EXPECT_TRUE(LooksLikeMarkdown("# Title\n\nText.\n"));
    EXPECT_TRUE(LooksLikeMarkdown("Title\n=====\n\nText.\n"));
    EXPECT_TRUE(LooksLikeMarkdown("See [there](x.html).\n"));
    EXPECT_FALSE(LooksLikeMarkdown("Plain text - with a dash, 2 * 3 * 4, and #1.\n"));
    EXPECT_FALSE(LooksLikeMarkdown("#!/bin/sh\n\n# Title\n\n"));
    EXPECT_FALSE(LooksLikeMarkdown("# a comment\n# and more\nset x=1\n"));
}
