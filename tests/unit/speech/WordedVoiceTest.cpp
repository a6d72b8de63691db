#include "speech/player/WordedVoice.h"
#include "tests/fakes/FakeVoiceOutput.h"
#include "tests/unit/speech/Segments.h"

#include <gtest/gtest.h>

namespace voxmate::speech
{
namespace
{

TEST(WordedVoiceTest, SaysWordsByTheRulesThatWereSetLast)
{
    fakes::FakeVoiceOutput voice;
    WordedVoice worded(voice);
    worded.Start({"", {Text("a b")}, "", 2}, {});
    ASSERT_EQ(voice.started.back().segments.size(), 1U);
    EXPECT_EQ(voice.started.back().segments[0].text, "a b");
    worded.UseWording({{"a", "x"}}, false);
    worded.UseWording({{"b", "y"}}, false);
    worded.Start({"", {Text("a b")}, "", 2}, {});
    ASSERT_EQ(voice.started.back().segments.size(), 2U);
    EXPECT_EQ(voice.started.back().segments[0].text, "a ");
    EXPECT_EQ(voice.started.back().segments[1].text, "y");
    EXPECT_EQ(voice.started.back().shownWords, 2);
}

TEST(WordedVoiceTest, HandsOnWhetherEachLanguageHasAVoice)
{
    fakes::FakeVoiceOutput voice;
    WordedVoice worded(voice);
    worded.UseVoicesByLanguage(true);
    worded.Start({"", {Text("a")}, "", 1}, {});
    EXPECT_TRUE(voice.started.back().byLanguage);
    EXPECT_TRUE(worded.ByLanguage());
    worded.UseVoicesByLanguage(false);
    worded.Start({"", {Text("a")}, "", 1}, {});
    EXPECT_FALSE(voice.started.back().byLanguage);
}

TEST(WordedVoiceTest, LeavesTheWordsBesideAWaveFileAlone)
{
    fakes::FakeVoiceOutput voice;
    WordedVoice worded(voice);
    worded.UseWording({{"a", "x"}}, false);
    worded.Start({"", {Text("a")}, "a.wav", 1}, {});
    ASSERT_EQ(voice.started.back().segments.size(), 1U);
    EXPECT_EQ(voice.started.back().segments[0].text, "a");
}

} // namespace
} // namespace voxmate::speech
