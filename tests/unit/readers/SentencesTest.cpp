#include "readers/text/Sentences.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

using namespace voxmate::readers;

namespace
{

using Lines = std::vector<std::string>;

Lines Sentences(const std::string& text)
{
    Lines sentences;
    std::size_t begin = 0;
    for (const std::size_t end : SentenceEnds(text)) {
        sentences.push_back(text.substr(begin, end - begin));
        begin = end;
    }
    return sentences;
}

} // namespace

TEST(SentencesTest, ATextIsDividedBehindItsStopsAndLineEnds)
{
    EXPECT_EQ(Sentences("One. Two!  Three? \"Four.\" five"), (Lines{"One. ", "Two!  ", "Three? ", "\"Four.\" five"}));
    EXPECT_EQ(Sentences("A line\nanother line"), (Lines{"A line\n", "another line"}));
    EXPECT_EQ(Sentences("Version 3.5 is out… and more."), (Lines{"Version 3.5 is out… and more."}));
    EXPECT_EQ(Sentences(""), Lines{});
    EXPECT_EQ(Sentences("no stop"), (Lines{"no stop"}));
}

TEST(SentencesTest, OtherWritingsHaveTheirOwnStops)
{
    EXPECT_EQ(Sentences("Это так. Да."), (Lines{"Это так. ", "Да."}));
    EXPECT_EQ(Sentences("今日は。明日。"), (Lines{"今日は。", "明日。"}));
}

TEST(SentencesTest, AbbreviationsEndNone)
{
    EXPECT_EQ(Sentences("Dr. Smith saw Mrs. Jones, i.e. Ann."), (Lines{"Dr. Smith saw Mrs. Jones, i.e. Ann."}));
    EXPECT_EQ(Sentences("See Fig. 2 and (p. 7). Go on."), (Lines{"See Fig. 2 and (p. 7). ", "Go on."}));
    EXPECT_EQ(Sentences("He said No. She went."), (Lines{"He said No. ", "She went."}));
    EXPECT_EQ(Sentences("Ask the Dr.\nThen rest."), (Lines{"Ask the Dr.\n", "Then rest."}));
}

TEST(SentencesTest, BytesThatAreNoTextAreKept)
{
    EXPECT_EQ(Sentences("One.\xFF\xFE Two"), (Lines{"One.", "\xFF\xFE Two"}));
}
