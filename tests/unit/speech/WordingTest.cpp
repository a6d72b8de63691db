#include "speech/text/Wording.h"
#include "speech/text/MarkedText.h"
#include "tests/unit/speech/Segments.h"

#include <gtest/gtest.h>

namespace voxmate::speech
{
namespace
{

using Rules = std::vector<WordingRule>;

std::string Said(const Wording& wording, std::string text)
{
    std::string said;
    for (const Segment& segment : wording.Apply({Text(std::move(text))}))
        said += segment.text;
    return said;
}

std::string Said(const Rules& rules, std::string text)
{
    return Said(Wording(rules, false), std::move(text));
}

std::string Shortened(std::string text)
{
    return Said(Wording({}, true), std::move(text));
}

TEST(WordingTest, LeavesATextWithoutAnythingToReplaceAsItIs)
{
    const std::vector<Segment> segments = Wording({{"cat", "dog"}}, true).Apply({Text(" A \t concatenated\ntext. ")});
    ASSERT_EQ(segments.size(), 1U);
    EXPECT_EQ(segments[0].text, " A \t concatenated\ntext. ");
    EXPECT_EQ(segments[0].shownWords, -1);
}

TEST(WordingTest, FindsWholeWordsOnly)
{
    const Rules rules{{"nas", "network storage"}};
    EXPECT_EQ(Said(rules, "The NAS, a nas; (nas) Nas's nasal gymnast 4nas nas"),
              "The network storage, a network storage; (network storage) network storage's nasal gymnast 4nas network "
              "storage");
}

TEST(WordingTest, TellsCapitalLettersApartWhereTheRuleHasOne)
{
    EXPECT_EQ(Said(Rules{{"US", "United States"}}, "US to us"), "United States to us");
    EXPECT_EQ(Said(Rules{{"ärzte", "doctors"}}, "ÄRZTE Ärzte ärzte"), "doctors doctors doctors");
    EXPECT_EQ(Said(Rules{{"Ärzte", "band"}}, "Ärzte ärzte"), "band ärzte");
}

TEST(WordingTest, FindsSignsBesideLettersAndDigits)
{
    EXPECT_EQ(Said(Rules{{"°C", " degrees Celsius"}, {":-)", "smile"}}, "20°C outside:-)"),
              "20 degrees Celsius outsidesmile");
}

TEST(WordingTest, FindsSeveralWordsWithAnyBlanksBetweenThemInOneLine)
{
    const Rules rules{{" new  york ", "N. Y."}};
    EXPECT_EQ(Said(rules, "new york, New \t York, new\nyork, new yorker"), "N. Y., N. Y., new\nyork, new yorker");
}

TEST(WordingTest, TheRuleThatIsWrittenLongestHolds)
{
    const Rules rules{{"new", "A"}, {"new york", "B"}, {"new york", "C"}, {"n*", "D"}};
    EXPECT_EQ(Said(rules, "new york new nil"), "B A D");
}

TEST(WordingTest, AnAsteriskStandsForPartOfAWordAndIsSaidInItsTurn)
{
    EXPECT_EQ(Said(Rules{{"*.exe", "* dot exe"}}, "Run (Set-Up.exe) and x.exes"), "Run (Set-Up dot exe) and x.exes");
    EXPECT_EQ(Said(Rules{{"v*.*", "version * point *"}}, "v12.4, V3.0"), "version 12 point 4, version 3 point 0");
    EXPECT_EQ(Said(Rules{{"*kg", "* kilos *"}}, "5kg kg"), "5 kilos  kg");
}

TEST(WordingTest, ManyRulesThatBeginWithAnAsteriskAreLookedAtOnlyWhereTheyMayFit)
{
    Rules rules;
    for (int i = 0; i < 20000; ++i)
        rules.push_back({"*a*" + std::to_string(i) + "x", "rule " + std::to_string(i)});
    std::string text;
    while (text.size() < 2000)
        text += "banana a17 ";
    EXPECT_EQ(Said(rules, text + "hat417x."), text + "rule 417.");
}

TEST(WordingTest, LeavesOutRulesThatFitEverythingOrHaveTooManyAsterisks)
{
    EXPECT_EQ(Said(Rules{{"", "a"}, {" ", "b"}, {"*", "c"}, {"* *", "d"}, {"*a*b*", "e"}}, "x xaxbx y"), "x xaxbx y");
}

TEST(WordingTest, FindsWordsInWritingThatPutsNoBlanksBetweenThem)
{
    EXPECT_EQ(Said(Rules{{"日本", "にっぽん"}}, "私は日本人です"), "私はにっぽん人です");
}

TEST(WordingTest, ShownWordsKeepTheirNumbers)
{
    Segment segment = Text("Ask the NAS in New York (NAS) now", {});
    segment.firstWord = 10;
    segment.emphasis = true;
    const std::vector<Segment> said =
        Wording({{"NAS", "network storage"}, {"new york", "York"}}, false).Apply({segment});
    std::vector<std::string> seen;
    for (const Segment& part : said)
        seen.push_back(part.text + "|" + std::to_string(part.firstWord) + "|" + std::to_string(part.shownWords) +
                       (part.emphasis ? "|!" : ""));
    EXPECT_EQ(seen, (std::vector<std::string>{"Ask the |10|-1|!", "network storage|12|1", " in |13|-1", "York|14|2",
                                              " (|16|-1", "network storage|16|1", ") now|16|-1"}));
    Arranger arranger(said);
    const auto piece = arranger.Next();
    ASSERT_TRUE(piece);
    EXPECT_EQ(piece->text, U"Ask the network storage in York (network storage) now");
    EXPECT_EQ(piece->shownWord.back(), 17);
}

TEST(WordingTest, AWordThatIsNotSaidIsCountedAllTheSame)
{
    Segment segment = Text("one umm two");
    segment.emphasis = true;
    const std::vector<Segment> said = Wording({{"umm", ""}, {"one", ""}}, false).Apply({segment});
    ASSERT_EQ(said.size(), 2U);
    EXPECT_EQ(said[0].text, " ");
    EXPECT_FALSE(said[0].emphasis);
    EXPECT_EQ(said[1].text, " two");
    EXPECT_EQ(said[1].firstWord, 2);
    EXPECT_TRUE(said[1].emphasis);
}

TEST(WordingTest, LeavesWhatTheTextSaysItselfHowToSay)
{
    Segment mapped = Text("nas");
    mapped.shownWords = 1;
    const std::vector<Segment> said =
        Wording({{"nas", "x"}}, true).Apply({mapped, Pause(10), Bookmark(3), Text("nas")});
    ASSERT_EQ(said.size(), 4U);
    EXPECT_EQ(said[0].text, "nas");
    EXPECT_EQ(said[1].milliseconds, 10);
    EXPECT_EQ(said[2].bookmark, 3);
    EXPECT_EQ(said[3].text, "x");
}

TEST(WordingTest, SaysTheServerOfAWebAddress)
{
    EXPECT_EQ(Shortened("See https://www.example.org/a/b?c=1#d, (HTTP://user@example.org:80/x) or www.example.org."),
              "See example.org, (example.org) or example.org.");
    EXPECT_EQ(Shortened("mail bo@example.org, https:// www. wwwx http"),
              "mail bo@example.org, https:// www. wwwx http");
}

TEST(WordingTest, SaysTheEndsOfLongCodes)
{
    EXPECT_EQ(Shortened("Commit 3f2a9c1d77e04b5fa1b2c3d4e5f60718293a4b5c."), "Commit 3 f 2 a, 4 b 5 c.");
    EXPECT_EQ(Shortened("550e8400-e29b-41d4-a716-446655440000"), "5 5 0 e, 0 0 0 0");
    EXPECT_EQ(Shortened("1234567890123456789012"), "1 2 3 4, 9 0 1 2");
    const std::string words = "Donaudampfschifffahrtsgesellschaft state-of-the-art-2024-edition 12345678901234567890";
    EXPECT_EQ(Shortened(words), words);
}

TEST(WordingTest, LeavesOutRuledLines)
{
    EXPECT_EQ(Shortened("Title\n=====\n-- a --\n*** b ***"), "Title\n\n-- a --\n b ");
    EXPECT_EQ(Shortened("What?! No... Wait!!! C+++"), "What?! No... Wait!!! C");
}

TEST(WordingTest, SaysTheSamePictographOnce)
{
    EXPECT_EQ(Shortened("Ha 😂😂😂! 👍🏽👍🏽 👍👎 ❤️❤️"),
              "Ha 😂! 👍🏽 👍👎 ❤️");
}

TEST(WordingTest, TheUsersOwnRuleComesBeforeAShortForm)
{
    const Wording wording({{"https://example.org/*", "our page *"}}, true);
    EXPECT_EQ(Said(wording, "https://example.org/help"), "our page help");
}

} // namespace
} // namespace voxmate::speech
