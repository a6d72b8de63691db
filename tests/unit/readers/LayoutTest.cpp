#include "readers/pdf/Layout.h"
#include "Blocks.h"

#include <gtest/gtest.h>

#include <sstream>

using namespace voxmate::readers;
using namespace voxmate::readers::test;

namespace
{

constexpr double Size = 10;
constexpr double CharacterWidth = 5;

struct Look {
    double size = Size;
    bool bold = false;
};

// A page on which every character is five points wide, at ten points.
class Sheet
{
public:
    explicit Sheet(std::string label) { page.label = std::move(label); }

    Sheet& At(double left, double foot, const std::string& text, const Look& look = {})
    {
        std::istringstream words(text);
        std::string word;
        while (words >> word) {
            PdfWord one;
            one.text = word;
            one.left = left;
            one.right = left + CharacterWidth * static_cast<double>(word.size()) * look.size / Size;
            one.bottom = foot;
            one.top = foot - look.size;
            one.size = look.size;
            one.bold = look.bold;
            left = one.right + CharacterWidth * look.size / Size;
            page.words.push_back(one);
        }
        page.words.back().blank = false;
        return *this;
    }
    // What comes next is taken for the same line's where there is no wide gap.
    Sheet& Blank()
    {
        page.words.back().blank = true;
        return *this;
    }
    // Lines one below the other.
    Sheet& Lines(double left, double foot, const std::vector<std::string>& lines, const Look& look = {})
    {
        for (const std::string& line : lines) {
            At(left, foot, line, look);
            foot += 1.2 * look.size;
        }
        return *this;
    }

    PdfPage page;
};

const std::map<std::string, int> NoHeadings;

test::Lines Layouted(const std::vector<Sheet>& sheets, const std::map<std::string, int>& headings = NoHeadings)
{
    return LinesOf([&](const BlockSink& sink) {
        Layout layout(sink, headings);
        for (const Sheet& sheet : sheets)
            layout.Add(sheet.page);
        layout.Finish();
    });
}

// Ten lines of forty characters each, the first and last with their own beginning and end.
std::vector<std::string> Prose(const std::string& name)
{
    std::vector<std::string> lines{name + " begins with a line of forty letters in it"};
    lines.resize(9, "and this line has forty letters in it too");
    lines.push_back("and so ends " + name + ".");
    return lines;
}

} // namespace

TEST(LayoutTest, LinesBecomeParagraphsAndLargeLinesHeadings)
{
    EXPECT_EQ(
        Layouted(
            {Sheet("1")
                 .At(50, 80, "The Title", {18, true})
                 .Lines(50, 120, {"This is the first line of the para-", "graph and here is the second line", "of it."})
                 .Lines(50, 170, {"Another begins after a gap and goes", "on."})}),
        (test::Lines{"page 1", "heading 1: The Title",
                     "paragraph: This is the first line of the paragraph and here is the second line of it.",
                     "paragraph: Another begins after a gap and goes on."}));
}

TEST(LayoutTest, AnIndentedLineBeginsAParagraph)
{
    EXPECT_EQ(
        Layouted(
            {Sheet("1")
                 .Lines(50, 100, {"This is the first line of a paragraph.", "and this one is just as long as it was."})
                 .At(65, 124, "The next one begins farther right here")
                 .Lines(50, 136, {"and goes on at the left like this one"})}),
        (test::Lines{"page 1",
                     "paragraph: This is the first line of a paragraph. and this one is just as long as it was.",
                     "paragraph: The next one begins farther right here and goes on at the left like this one"}));
}

TEST(LayoutTest, WhatIsPrintedOnEveryPageIsLeftOutAndParagraphsGoOnOverIt)
{
    std::vector<Sheet> sheets;
    const std::vector<std::vector<std::string>> texts{
        {"A text begins here on the first of pages", "and every line of it is as long as others",
         "and none of the sentences is ever over but"},
        {"goes on from the one page to the next one", "without a thought about what comes then as",
         "is usual in texts that are made for tests"},
        {"of programs which have never been young or", "old but are what they are by nature and so",
         "they will always be until it ends."}};
    for (std::size_t i = 0; i < texts.size(); ++i)
        sheets.push_back(Sheet(std::to_string(i + 1))
                             .At(200, 40, "THE BOOK")
                             .Lines(50, 100, texts[i])
                             .At(250, 780, std::to_string(i + 1)));
    EXPECT_EQ(
        Layouted(sheets),
        (test::Lines{"page 1",
                     "paragraph: A text begins here on the first of pages and every line of it is as long as others "
                     "and none of the sentences is ever over but goes on from the one page to the next one without a "
                     "thought about what comes then as is usual in texts that are made for tests of programs which "
                     "have never been young or old but are what they are by nature and so they will always be until "
                     "it ends.",
                     "page 2", "page 3"}));
}

TEST(LayoutTest, ColumnsAreReadOneAfterTheOtherWhateverTheirOrderInTheFile)
{
    Sheet sheet("1");
    const std::vector<std::string> left = Prose("One");
    const std::vector<std::string> right = Prose("Two");
    for (std::size_t i = 0; i < left.size(); ++i)
        sheet.At(50, 100 + 12 * static_cast<double>(i), left[i]).At(300, 100 + 12 * static_cast<double>(i), right[i]);
    const test::Lines lines = Layouted({sheet});
    ASSERT_EQ(lines.size(), 3U);
    EXPECT_EQ(lines[1].substr(0, 26), "paragraph: One begins with");
    EXPECT_EQ(lines[1].substr(lines[1].size() - 12), "so ends One.");
    EXPECT_EQ(lines[2].substr(0, 26), "paragraph: Two begins with");
}

TEST(LayoutTest, ColumnsWithANarrowGapBetweenThemAreReadOneAfterTheOtherToo)
{
    Sheet sheet("1");
    const auto prose = [](const std::string& name) {
        std::vector<std::string> lines = Prose(name);
        std::string turned = lines[1];
        // Its words in another order in each line, so that they stand one below the other nowhere.
        for (std::size_t i = 1; i + 1 < lines.size(); ++i) {
            turned = turned.substr(turned.find(' ') + 1) + " " + turned.substr(0, turned.find(' '));
            lines[i] = turned;
        }
        return lines;
    };
    const std::vector<std::string> left = prose("One");
    const std::vector<std::string> right = prose("Two");
    sheet.At(150, 60, "A running head that stands across the gap");
    for (std::size_t i = 0; i < left.size(); ++i)
        sheet.At(50, 100 + 12 * static_cast<double>(i), left[i])
            .Blank()
            .At(i == 0 ? 297 : 287, 100 + 12 * static_cast<double>(i), right[i]);
    const test::Lines lines = Layouted({sheet});
    ASSERT_EQ(lines.size(), 4U) << testing::PrintToString(lines);
    EXPECT_EQ(lines[1], "paragraph: A running head that stands across the gap");
    EXPECT_EQ(lines[2].substr(0, 26), "paragraph: One begins with");
    EXPECT_EQ(lines[2].substr(lines[2].size() - 12), "so ends One.");
    EXPECT_EQ(lines[3].substr(0, 26), "paragraph: Two begins with");
}

TEST(LayoutTest, AFewLinesBehindColumnsAreColumnsTooUnlessTheirCellsAreShort)
{
    const auto sheet = [](const std::string& label, const std::vector<std::string>& left,
                          const std::vector<std::string>& right) {
        Sheet one(label);
        for (std::size_t i = 0; i < left.size(); ++i) {
            one.At(50, 100 + 12 * static_cast<double>(i), left[i]);
            if (i < right.size())
                one.At(300, 100 + 12 * static_cast<double>(i), right[i]);
        }
        return one;
    };
    const Sheet columns = sheet("1", Prose("One"), Prose("Two"));
    const std::vector<std::string> left{"Three begins with a line of forty letters",
                                        "and this line has forty letters in it too"};
    const std::vector<std::string> right{"in it and this line has forty letters too", "and ends."};
    const test::Lines prose = Layouted({columns, sheet("2", left, right)});
    EXPECT_EQ(prose.back(), "paragraph: " + left[0] + " " + left[1] + " " + right[0] + " " + right[1]);
    // Nothing tells that these are columns where no page before has any.
    EXPECT_EQ(Layouted({sheet("2", left, right)}).back(), "row: " + left[1] + " | " + right[1]);
    const test::Lines table = Layouted({columns, sheet("2", {"Name", "Kettle"}, {"Price", "12"})});
    EXPECT_EQ(table.back(), "row: Kettle | 12");
}

TEST(LayoutTest, RowsOfShortCellsAreATableWithMendedWords)
{
    EXPECT_EQ(Layouted({Sheet("1")
                            .Lines(50, 100, {"Before the table there is a line of text."})
                            .At(50, 130, "Tea")
                            .At(150, 130, "two")
                            .At(250, 130, "pounds")
                            .At(50, 150, "Coffee")
                            .At(150, 150, "thir-")
                            .At(250, 150, "francs")
                            .At(150, 162, "teen")
                            .At(50, 182, "Milk")
                            .At(150, 182, "one")
                            .At(250, 182, "mark")
                            .Lines(50, 220, {"Behind the table there is a line of text."})}),
              (test::Lines{"page 1", "paragraph: Before the table there is a line of text.", "row: Tea | two | pounds",
                           "row: Coffee | thirteen | francs", "row: Milk | one | mark",
                           "paragraph: Behind the table there is a line of text."}));
}

TEST(LayoutTest, WideBlanksInJustifiedTextAreNoTable)
{
    Sheet sheet("1");
    double foot = 100;
    const auto line = [&](const std::vector<std::string>& words, double blank) {
        double left = 50;
        for (const std::string& word : words) {
            sheet.At(left, foot, word);
            left += CharacterWidth * static_cast<double>(word.size()) + blank;
        }
        foot += 12;
    };
    const std::string full = "these forty letters fill the whole width."; // 41 of them
    for (int i = 0; i < 5; ++i)
        line({full}, 0);
    line({"enormous", "words", "are", "here"}, 35);
    line({"and they", "here", "too", "in"}, 40.0 + 2.0 / 3);
    for (int i = 0; i < 5; ++i)
        line({full}, 0);
    std::string text = "paragraph:";
    for (int i = 0; i < 5; ++i)
        text += " " + full;
    text += " enormous words are here and they here too in";
    for (int i = 0; i < 5; ++i)
        text += " " + full;
    EXPECT_EQ(Layouted({sheet}), (test::Lines{"page 1", text}));
}

TEST(LayoutTest, ListItemsKeepTheirLabelsAndBulletsStandingByThemselvesAreJoined)
{
    EXPECT_EQ(
        Layouted(
            {Sheet("1")
                 .Lines(50, 100, {"Some text that is as wide as the page is."})
                 .At(60, 124, "\xE2\x80\xA2")
                 .At(60, 148, "\xE2\x80\xA2")
                 .Lines(80, 124, {"The first item has more than one line", "of text in it.", "The second one has not."})
                 .At(60, 172, "1. Numbered.")}),
        (test::Lines{"page 1", "paragraph: Some text that is as wide as the page is.",
                     "item 1: \xE2\x80\xA2 The first item has more than one line of text in it.",
                     "item 1: \xE2\x80\xA2 The second one has not.", "item 1: 1. Numbered."}));
}

TEST(LayoutTest, AFootnoteFollowsTheParagraphAndItsMarkIsNotRead)
{
    Sheet sheet("1");
    sheet.Lines(50, 100, {"A text with a word", "and more of it, which is longer than that."})
        .Lines(50, 140, {"Another paragraph, to which no note belongs."});
    // A raised mark behind the first line's last word.
    PdfWord mark;
    mark.text = "1";
    mark.left = sheet.page.words[4].right;
    mark.right = mark.left + 3;
    mark.top = 90;
    mark.bottom = 96;
    mark.size = 6;
    sheet.page.words.insert(sheet.page.words.begin() + 5, mark);
    sheet.page.words[5].blank = false;
    sheet.At(50, 700, "1 The note is small", {8, false}).At(50, 710, "and goes on.", {8, false});
    EXPECT_EQ(Layouted({sheet}),
              (test::Lines{"page 1", "paragraph: A text with a word and more of it, which is longer than that.",
                           "note 1: The note is small and goes on.",
                           "paragraph: Another paragraph, to which no note belongs."}));
}

// groff's pages have it so where the lines of the next column are a little higher.
TEST(LayoutTest, ARaisedMarkThatComesBeforeItsLineBelongsToItAllTheSame)
{
    Sheet sheet("1");
    sheet.Lines(50, 100, {"A text with a word", "and more of it, which is longer than that."})
        .Lines(50, 140, {"Another paragraph, to which no note belongs."});
    // Behind "more" in the second line.
    PdfWord mark;
    mark.text = "1";
    mark.left = sheet.page.words[6].right;
    mark.right = mark.left + 3;
    mark.top = 101;
    mark.bottom = 108;
    mark.size = 6;
    mark.blank = false;
    sheet.page.words.insert(sheet.page.words.begin() + 5, mark);
    sheet.At(50, 700, "1 The note is small", {8, false}).At(50, 710, "and goes on.", {8, false});
    EXPECT_EQ(Layouted({sheet}),
              (test::Lines{"page 1", "paragraph: A text with a word and more of it, which is longer than that.",
                           "note 1: The note is small and goes on.",
                           "paragraph: Another paragraph, to which no note belongs."}));
}

TEST(LayoutTest, ATitleInTheOutlineIsAHeadingWhateverItsSize)
{
    EXPECT_EQ(Layouted({Sheet("1").At(50, 100, "Introduction").Lines(50, 130, Prose("One"))}, {{"introduction", 2}})[1],
              "heading 2: Introduction");
}
