// A chosen voice that is missing for a while.
#include "ExtrasTest.h"

namespace voxmate
{

namespace
{

class KeptVoiceTest : public ExtrasTest
{
protected:
    void Start()
    {
        Begin();
        TimerOf("tmrWaiting").Fire();
    }
    std::string Chosen() { return fake.store.At("LastSpeechEngine").data; }
    std::string Kept() { return state.Get("voice.missing") + "; " + state.Get("voice.instead"); }
    void Was(const std::string& missing, const std::string& instead)
    {
        state.values["voice.missing"] = missing;
        state.values["voice.instead"] = instead;
    }
};

TEST_F(KeptVoiceTest, AMissingVoiceIsRemembered)
{
    fake.store.SetText("LastSpeechEngine", "Natural");
    Start();
    EXPECT_EQ(Chosen(), "First Voice");
    EXPECT_EQ(Kept(), "Natural; First Voice");
}

TEST_F(KeptVoiceTest, WhatIsThereIsNotRemembered)
{
    fake.store.SetText("LastSpeechEngine", "Second Voice");
    Start();
    EXPECT_EQ(Chosen(), "Second Voice");
    EXPECT_TRUE(state.values.empty() || Kept() == "; ");
}

TEST_F(KeptVoiceTest, ItIsTheChosenOneAgainWhenItIsBack)
{
    Was("Second Voice", "First Voice");
    fake.store.SetText("LastSpeechEngine", "First Voice");
    Start();
    EXPECT_EQ(Chosen(), "Second Voice");
    EXPECT_EQ(form.comSpEng.ListIndex, 1);
    EXPECT_EQ(Kept(), "; ");
    EXPECT_EQ(Boxes(), Lines{});
}

TEST_F(KeptVoiceTest, ItIsRememberedAsLongAsItIsMissing)
{
    Was("Natural", "First Voice");
    fake.store.SetText("LastSpeechEngine", "First Voice");
    Start();
    EXPECT_EQ(Chosen(), "First Voice");
    EXPECT_EQ(Kept(), "Natural; First Voice");
    EXPECT_EQ(Boxes(), Lines{});
}

TEST_F(KeptVoiceTest, ItIsRememberedWhenTheOtherVoiceIsMissingToo)
{
    Was("Natural", "Gone");
    fake.store.SetText("LastSpeechEngine", "Gone");
    Start();
    EXPECT_EQ(Chosen(), "First Voice");
    EXPECT_EQ(Kept(), "Natural; First Voice");
}

TEST_F(KeptVoiceTest, AVoiceThatTheUserChoosesMeanwhileStays)
{
    Was("Natural", "First Voice");
    fake.store.SetText("LastSpeechEngine", "First Voice");
    Start();
    form.comSpEng.UserSelect(1);
    EXPECT_EQ(Chosen(), "Second Voice");
    EXPECT_EQ(Kept(), "; ");
}

TEST_F(KeptVoiceTest, AVoiceThatWasSetOtherwiseMeanwhileStays)
{
    Was("Second Voice", "Gone");
    fake.store.SetText("LastSpeechEngine", "First Voice");
    Start();
    EXPECT_EQ(Chosen(), "First Voice");
    EXPECT_EQ(Kept(), "; ");
}

TEST_F(KeptVoiceTest, AQuietStartBringsItBackToo)
{
    Was("Second Voice", "First Voice");
    fake.store.SetText("LastSpeechEngine", "First Voice");
    CommandLine line;
    line.Quiet = true;
    Begin(line);
    EXPECT_EQ(Chosen(), "Second Voice");
}

} // namespace

} // namespace voxmate
