// What a listener hears of a document's blocks.
#include "extras/Spoken.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace voxmate
{

namespace
{

using readers::BlockKind;
using Lines = std::vector<std::string>;

// The parts' texts, a ">" in front of those that begin a block and the silence behind them.
Lines Heard(BlockKind kind, const std::string& label, const std::string& text)
{
    Lines lines;
    for (const SpokenPart& part : PartsOf({kind, 0, label, text, ""}))
        lines.push_back((part.begins ? ">" : "") + part.text +
                        (part.pause > 0 ? " (" + std::to_string(part.pause) + ")" : ""));
    return lines;
}

TEST(SpokenTest, AParagraphIsHeardSentenceBySentence)
{
    EXPECT_EQ(Heard(BlockKind::Paragraph, "", "One. Two is\nhere. Three"),
              (Lines{">One.", "Two is", "here.", "Three (350)"}));
}

TEST(SpokenTest, AHeadingStandsByItselfWithItsNumber)
{
    EXPECT_EQ(Heard(BlockKind::Heading, "2.1", "Methods"), (Lines{">2.1 Methods (600)"}));
    EXPECT_EQ(Heard(BlockKind::Heading, "", "Methods"), (Lines{">Methods (600)"}));
}

TEST(SpokenTest, OfAListTheNumbersAreHeardAndNotTheBullets)
{
    EXPECT_EQ(Heard(BlockKind::ListItem, "2.", "Milk. Fresh."), (Lines{">2. Milk.", "Fresh. (200)"}));
    EXPECT_EQ(Heard(BlockKind::ListItem, "b)", "Milk"), (Lines{">b) Milk (200)"}));
    for (const char* bullet : {"•", "-", "*", "–", "▪", "‣"})
        EXPECT_EQ(Heard(BlockKind::ListItem, bullet, "Milk"), (Lines{">Milk (200)"})) << bullet;
}

TEST(SpokenTest, ARowsCellsAreToldApart)
{
    EXPECT_EQ(Heard(BlockKind::TableRow, "", "Name\tAge\t\tTown:\tYork"), (Lines{">Name, Age, Town: York (200)"}));
    EXPECT_EQ(Heard(BlockKind::TableRow, "", "\t"), Lines{});
}

TEST(SpokenTest, AFootnoteIsAnnounced)
{
    EXPECT_EQ(Heard(BlockKind::Footnote, "3", "See there."), (Lines{">Footnote 3: See there. (350)"}));
    EXPECT_EQ(Heard(BlockKind::Footnote, "†", "See there."), (Lines{">Footnote: See there. (350)"}));
    EXPECT_EQ(Heard(BlockKind::Footnote, "", "See there."), (Lines{">Footnote: See there. (350)"}));
}

TEST(SpokenTest, MarksAreNotHeard)
{
    EXPECT_EQ(Heard(BlockKind::Page, "12", ""), Lines{});
    EXPECT_EQ(Heard(BlockKind::Chapter, "One", ""), Lines{});
}

TEST(SpokenTest, ATextWithoutStopsIsCutAtBlanks)
{
    std::string words;
    for (int i = 0; i < 300; ++i)
        words += "lettered ";
    words.pop_back();
    const Lines heard = Heard(BlockKind::Paragraph, "", words);
    ASSERT_EQ(heard.size(), 3u);
    std::string all;
    for (const std::string& line : heard) {
        EXPECT_LE(line.size(), 1000u + 6);
        all += (all.empty() ? "" : " ") + line;
    }
    EXPECT_EQ(all, ">" + words + " (350)");
    // Where there is no blank, a character stays whole.
    std::string lengthy;
    for (int i = 0; i < 500; ++i)
        lengthy += "日";
    EXPECT_EQ(Heard(BlockKind::Paragraph, "", lengthy).front().size(), 1u + 999u);
}

} // namespace

} // namespace voxmate
