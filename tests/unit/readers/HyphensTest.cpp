#include "readers/text/Hyphens.h"

#include <gtest/gtest.h>

using namespace voxmate::readers;

namespace
{

std::string Joined(std::string first, std::string_view second, std::string_view known = "")
{
    Vocabulary vocabulary;
    vocabulary.Add(known);
    AppendLine(first, second, vocabulary);
    return first;
}

} // namespace

TEST(HyphensTest, LinesAreJoinedWithABlank)
{
    EXPECT_EQ(Joined("one", "two"), "one two");
    EXPECT_EQ(Joined("", "two"), "two");
}

TEST(HyphensTest, ADividedWordLosesItsHyphen)
{
    EXPECT_EQ(Joined("an exam-", "ple of it"), "an example of it");
    EXPECT_EQ(Joined("an exam\xC2\xAD", "ple"), "an example");
    EXPECT_EQ(Joined("an exam\xE2\x80\x90", "ple"), "an example");
    EXPECT_EQ(Joined("Stra\xC3\x9F"
                     "en-",
                     "\xC3\xBC"
                     "berg\xC3\xA4nge"),
              "Stra\xC3\x9F"
              "en\xC3\xBC"
              "berg\xC3\xA4nge");
}

TEST(HyphensTest, AHyphenThatTheDocumentWritesElsewhereStays)
{
    EXPECT_EQ(Joined("a well-", "known man", "He is Well-known here"), "a well-known man");
    EXPECT_EQ(Joined("a well-", "known man", "well-known and wellknown"), "a wellknown man");
}

TEST(HyphensTest, NamesAndNumbersKeepTheirHyphen)
{
    EXPECT_EQ(Joined("the Anglo-", "Saxon"), "the Anglo-Saxon");
    EXPECT_EQ(Joined("from 10-", "20"), "from 10-20");
}

TEST(HyphensTest, DashesAndWordsWithoutTheirEndStayApart)
{
    EXPECT_EQ(Joined("he came -", "and went"), "he came - and went");
    EXPECT_EQ(Joined("Ein-", "und Ausgang"), "Ein- und Ausgang");
}
