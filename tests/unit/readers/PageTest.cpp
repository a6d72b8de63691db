#include "readers/markup/Page.h"
#include "Blocks.h"
#include "readers/markup/Numbering.h"

#include <gtest/gtest.h>

using namespace voxmate::readers;
using namespace voxmate::readers::test;

namespace
{

Lines Page(std::string_view page)
{
    return LinesOf([&](const BlockSink& sink) { ReadPage(page, sink); });
}

} // namespace

TEST(PageTest, HeadingsParagraphsAndBreaks)
{
    EXPECT_EQ(Page("<!DOCTYPE html><html><head><title>T</title></head><body><h1>One</h1>\n<p>Some <b>bold</b>\n"
                   "text<br>here &amp;&nbsp;there<div>block<h3>Three</h3></div>tail</body>"),
              (Lines{"heading 1: One", "paragraph: Some bold text / here & there", "paragraph: block",
                     "heading 3: Three", "paragraph: tail"}));
}

TEST(PageTest, ListsHaveTheirNumbersAndDepths)
{
    EXPECT_EQ(Page("<ol start=3><li>c<li value=7><p>g</p><p>more</p><ul><li>deep</li></ul></ol>"
                   "<ol type=a><li>x</ol><ol type=I reversed start=4><li>y<li>z</ol>"),
              (Lines{"item 1: 3. c", "item 1: 7. g", "paragraph: more", "item 2: \xE2\x80\xA2 deep", "item 1: a. x",
                     "item 1: IV. y", "item 1: III. z"}));
}

TEST(PageTest, ATableOfPlainCellsIsReadRowByRow)
{
    EXPECT_EQ(Page("<table><caption>Prices</caption><tr><th>Name<th>Price<tr><td>Tea<td>2</table>"),
              (Lines{"paragraph: Prices", "row: Name | Price", "row: Tea | 2"}));
}

TEST(PageTest, ATableThatArrangesAPageIsReadCellByCell)
{
    EXPECT_EQ(Page("<table><tr><td><p>one<p>two<td><h2>Head</h2><table><tr><td>a<td>b</table></table>"),
              (Lines{"paragraph: one", "paragraph: two", "heading 2: Head", "row: a | b"}));
}

TEST(PageTest, WhatIsNotSeenIsNotRead)
{
    EXPECT_EQ(Page("<p>a<script>b<\x2Fscript><style>c</style><!-- d --><span hidden>e</span>"
                   "<i style='display: NONE'>f</i><nav>g</nav><b aria-hidden=true>h</b><svg><text>i</text></svg>j"),
              (Lines{"paragraph: aj"}));
}

TEST(PageTest, LineEndsOfPreformattedTextStay)
{
    EXPECT_EQ(Page("<pre>one\n  two\n</pre>"), (Lines{"paragraph: one / two"}));
}

TEST(PageTest, FootnotesAreNotesAndTheirMarksAreNotRead)
{
    EXPECT_EQ(
        Page("<p>Word<a role='doc-noteref' href='#f1'><sup>1</sup></a> next.</p><section role='doc-endnotes'><ol>"
             "<li id=f1 role='doc-endnote'><p>Text.<a role='doc-backlink' href='#r1'>back</a></p></ol></section>"),
        (Lines{"paragraph: Word next.", "note 1: Text."}));
    EXPECT_EQ(Page("<p>Word<a class='sdfootnoteanc' href='#s'>2</a></p><div><p class='sdfootnote'>"
                   "<a class='sdfootnotesym' href='#a'>2</a>Text.</p></div>"),
              (Lines{"paragraph: Word", "note 2: Text."}));
    // Of these only the number is a link.
    EXPECT_EQ(
        Page("<p>Word</p><aside role='doc-footnote'><p><a href='#r3' class='footnote-back' role='doc-backlink'>3</a>"
             ". Text (a).</p><p>More.</p></aside>"),
        (Lines{"paragraph: Word", "note 3: Text (a).", "note: More."}));
    EXPECT_EQ(
        Page("<p>Word</p><aside role='doc-footnote'><p><a href='#r3' role='doc-backlink'>\u21A9</a> Text.</p></aside>"
             "<p>.5</p>"),
        (Lines{"paragraph: Word", "note: Text.", "paragraph: .5"}));
}

TEST(PageTest, TheNearestLanguageCounts)
{
    std::vector<std::string> languages;
    LinesOf([](const BlockSink& sink) { ReadPage("<html lang=en><p>a<p lang=de-AT>b<div>c</div>", sink); }, &languages);
    EXPECT_EQ(languages, (Lines{"en", "de-AT", "en"}));
}

TEST(PageTest, TheDeclaredEncodingCountsUnlessTheTextIsUtf8)
{
    EXPECT_EQ(Page("<meta charset='windows-1251'><p>\xCC\xE8\xF0"), (Lines{"paragraph: \xD0\x9C\xD0\xB8\xD1\x80"}));
    EXPECT_EQ(Page("<meta charset='windows-1251'><p>\xC3\xA4"), (Lines{"paragraph: \xC3\xA4"}));
    EXPECT_EQ(Page("<meta charset='nonsense/x'><p>\xE4"), (Lines{"paragraph: \xC3\xA4"}));
}

TEST(PageTest, AChapterThatIsNotWellFormedIsReadAsABrowserWould)
{
    const auto chapter = [](std::string_view text) {
        return LinesOf([&](const BlockSink& sink) { ReadChapter(text, "en", sink); });
    };
    EXPECT_EQ(
        chapter("<html xmlns='http://www.w3.org/1999/xhtml'><head><title/></head><body><p>a&nbsp;b</p></body></html>"),
        (Lines{"paragraph: a b"}));
    EXPECT_EQ(chapter("<html><p>a<p>b &hellip;"), (Lines{"paragraph: a", "paragraph: b \xE2\x80\xA6"}));
}

TEST(PageTest, EntitiesThatADocumentDeclaresAreNotReplaced)
{
    const Lines lines = LinesOf([](const BlockSink& sink) {
        ReadChapter("<!DOCTYPE html [<!ENTITY a 'aaaaaaaaaa'><!ENTITY b '&a;&a;&a;&a;&a;&a;'>"
                    "<!ENTITY f SYSTEM 'file:///etc/passwd'>]><html xmlns='http://www.w3.org/1999/xhtml'><body>"
                    "<p>x &b; &f; y</p></body></html>",
                    "", sink);
    });
    for (const std::string& line : lines) {
        EXPECT_EQ(line.find("aaaa"), std::string::npos) << line;
        EXPECT_EQ(line.find("root"), std::string::npos) << line;
    }
}

TEST(NumberingTest, NumbersInEveryFormat)
{
    EXPECT_EQ(InFormat(4, "1"), "4");
    EXPECT_EQ(InFormat(1, "a") + InFormat(26, "a") + InFormat(27, "A"), "azAA");
    EXPECT_EQ(InFormat(1994, "i") + InFormat(4, "I"), "mcmxcivIV");
    EXPECT_EQ(InFormat(0, "i") + InFormat(-1, "a") + InFormat(4000, "I"), "0-14000");
}
