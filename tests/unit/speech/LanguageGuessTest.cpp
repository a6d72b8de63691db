#include "speech/text/LanguageGuess.h"

#include <gtest/gtest.h>

namespace voxmate::speech
{
namespace
{

class LanguageGuessTest : public ::testing::Test
{
protected:
    void SetUp() override
    {
        if (!GuessesLanguages())
            GTEST_SKIP() << "built without the library that tells languages apart";
    }
};

TEST_F(LanguageGuessTest, TellsALanguageFromAShortSentence)
{
    for (const auto& [language, text] :
         {std::pair("de", "Guten Morgen, wie geht es dir heute?"), std::pair("en", "Good morning, how are you today?"),
          std::pair("fr", "Bonjour le monde"), std::pair("es", "Buenos días, ¿cómo estás hoy?"),
          std::pair("pt", "Bom dia, como você está hoje?"), std::pair("it", "Il tempo oggi è molto bello."),
          std::pair("nl", "Ik ben een beetje moe vandaag."), std::pair("he", "שלום, מה שלומך היום?"),
          std::pair("ja", "今日は天気がいいですね。"), std::pair("zh", "今天天气很好，我们去公园吧。")})
        for (const char* expected : {"en", "de", "xx", ""})
            EXPECT_EQ(LanguageOf(text, expected), language) << expected;
}

TEST_F(LanguageGuessTest, TakesTheExpectedOneOfTwoThatAreHardlyTold)
{
    EXPECT_EQ(LanguageOf("God morgen, hvordan har du det i dag?", "da"), "da");
    EXPECT_EQ(LanguageOf("God morgen, hvordan har du det i dag?", "no"), "no");
    EXPECT_EQ(LanguageOf("Dobar dan, kako ste danas? Lijepo je vrijeme.", "hr"), "hr");
    EXPECT_EQ(LanguageOf("Dobar dan, kako ste danas? Lijepo je vrijeme.", "bs"), "bs");
}

TEST_F(LanguageGuessTest, SaysNothingOfNamesNumbersAndMixedTexts)
{
    for (const char* text : {"", " ", "Berlin", "No.", "12 345", "a b c", "\xff\xfe",
                             "This is written in English and it goes on for a while. "
                             "Dies ist auf Deutsch geschrieben und geht eine Weile so weiter."})
        EXPECT_EQ(LanguageOf(text, ""), "") << text;
}

TEST_F(LanguageGuessTest, ALongTextIsToldByItsBeginning)
{
    std::string text;
    const char* const sentences[] = {"Am Morgen ging sie in den Garten und sah nach den Rosen. ",
                                     "Niemand hatte ihr gesagt, dass der Winter so früh kommt. ",
                                     "Der Hund lief voraus, blieb stehen und wartete auf sie. ",
                                     "Später tranken alle zusammen Tee und erzählten von früher. "};
    for (int i = 0; text.size() < 4000; ++i)
        text += sentences[i % 4] + std::to_string(i) + " ";
    text.resize(4095, '.');
    text += "ä"; // of its two bytes the first 4096 hold one
    for (int i = 0; i < 1000; ++i)
        text += "In the morning she went into the garden " + std::to_string(i) + " times. ";
    EXPECT_EQ(LanguageOf(text, "en"), "de");
}

} // namespace
} // namespace voxmate::speech
