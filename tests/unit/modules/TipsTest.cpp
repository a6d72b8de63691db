#include "modules/Tips.h"
#include "tests/unit/modules/ModuleTest.h"

#include "base/Text.h"

#include <algorithm>
#include <fstream>
#include <set>

#include <gmock/gmock.h>

namespace voxmate
{

namespace
{

using ::testing::ElementsAre;

const std::string path = "C:\\Voxmate\\VoxmateTips.txt";

class TipsTest : public ModuleTest
{
};

TEST_F(TipsTest, EveryOpeningAppendsTheWholeFileAndShowsOneOfItsLines)
{
    WithCharacter();
    Settings.AutoReadTip = 0;
    fake.files.texts[path] = "one\r\ntwo\r\nthree\r\n";
    ShowTipOfTheDay(true);
    EXPECT_THAT(Tips, ElementsAre("one", "two", "three"));
    EXPECT_GE(CurrentTip, 1);
    EXPECT_LE(CurrentTip, 3);
    EXPECT_EQ(fake.log, (Lines{"Tip checks 1 0", "DisplayCurrentTip"}));
    ShowTipOfTheDay(false);
    EXPECT_THAT(Tips, ElementsAre("one", "two", "three", "one", "two", "three"));
    EXPECT_GE(CurrentTip, 1);
    EXPECT_LE(CurrentTip, 6);
}

TEST_F(TipsTest, EveryLineIsATipEmptyOnesAndBlanksIncluded)
{
    fake.files.texts[path] = "  one \n\ntwo\n\n";
    EXPECT_TRUE(LoadTips(path));
    EXPECT_THAT(Tips, ElementsAre("  one ", "", "two", ""));
}

TEST_F(TipsTest, AllTipsAreEquallyLikely)
{
    fake.files.texts[path] = "a\nb\nc\nd\ne\n";
    SeedTips(1);
    LoadTips(path);
    std::array<int, 6> drawn{};
    constexpr int draws = 10000;
    for (int i = 0; i < draws; ++i) {
        PickRandomTip();
        ++drawn.at(static_cast<std::size_t>(CurrentTip));
    }
    EXPECT_EQ(drawn[0], 0);
    // 2000 each are to be expected; five standard deviations are 200.
    for (std::size_t tip = 1; tip < drawn.size(); ++tip)
        EXPECT_NEAR(drawn.at(tip), draws / 5.0, 200) << tip;
}

TEST_F(TipsTest, TheClockDecidesTheChoice)
{
    fake.files.texts[path] = "a\nb\nc\nd\ne\nf\ng\nh\n";
    Settings.AutoReadTip = 0;
    std::set<std::int32_t> chosen;
    for (int second = 0; second < 30; ++second) {
        BeginAgain();
        fake.clock.now.second = second;
        ShowTipOfTheDay(true);
        const std::int32_t first = CurrentTip;
        BeginAgain();
        ShowTipOfTheDay(true);
        EXPECT_EQ(CurrentTip, first);
        chosen.insert(first);
    }
    EXPECT_GE(chosen.size(), 6u);
}

TEST_F(TipsTest, WithoutAFileTheWindowSaysWhatToDoAndTheListStaysAsItIs)
{
    Settings.AutoReadTip = 0;
    Tips = {"old"};
    CurrentTip = 1;
    ShowTipOfTheDay(false);
    EXPECT_EQ(window.tip.text, "VoxmateTips.txt file was not found? \r\n\r\nCreate a text file named VoxmateTips.txt "
                               "using NotePad with 1 tip per line. Then place it in the same directory as the "
                               "application. ");
    EXPECT_THAT(Tips, ElementsAre("old"));
    EXPECT_FALSE(LoadTips(""));
    EXPECT_FALSE(LoadTips("C:\\Voxmate\\Other.txt"));
    EXPECT_TRUE(fake.windows.boxes.empty());
}

TEST_F(TipsTest, AFileOfNoBytesIsLoadedAndShowsNothingNew)
{
    fake.files.texts[path] = "";
    EXPECT_TRUE(LoadTips(path));
    EXPECT_TRUE(Tips.empty());
    EXPECT_EQ(CurrentTip, 1);
    EXPECT_EQ(window.tip.text, "");
}

TEST_F(TipsTest, TheTipIsReadAloudWhenThatIsSetTheMissingFilesTextToo)
{
    WithCharacter();
    Settings.AutoReadTip = 1;
    Settings.ShowTipAtStartUp = 0;
    ShowTipOfTheDay(true);
    ASSERT_EQ(fake.log.size(), 6u);
    EXPECT_EQ(fake.log[0], "Tip checks 0 1");
    EXPECT_EQ(fake.log[3], "Play Suggest");
    EXPECT_TRUE(fake.log[4].starts_with("Speak \\Pit=50\\ \\Spd=156\\VoxmateTips.txt file was not found? \r\n"));
    fake.log.clear();
    fake.files.texts[path] = "tip\n";
    window.tip.text = "shown";
    ShowTipOfTheDay(false);
    EXPECT_EQ(fake.log, (Lines{"Tip checks 0 1", "DisplayCurrentTip", "Show", "DoEvents", "Play Suggest",
                               "Speak \\Pit=50\\ \\Spd=156\\shown", "Play RestPose"}));
}

TEST_F(TipsTest, WhatGoesWrongWhileReadingIsRaised)
{
    fake.files.texts[path] = "tip\n";
    fake.files.readErrors.emplace(path, DeviceIOError());
    EXPECT_THROW(LoadTips(path), RuntimeError);
}

TEST_F(TipsTest, TheShippedTipsAreManyShortDifferentAndPlain)
{
    std::ifstream file(VOXMATE_PACKAGING "VoxmateTips.txt");
    ASSERT_TRUE(file);
    std::set<std::string> tips;
    std::size_t lines = 0;
    for (std::string line; std::getline(file, line); ++lines) {
        EXPECT_FALSE(Trim(line).empty()) << lines;
        EXPECT_EQ(Trim(line), line) << lines;
        EXPECT_LE(line.size(), 200u) << line;
        // Speech would stumble over it.
        EXPECT_EQ(line.find('\\'), std::string::npos) << line;
        EXPECT_TRUE(std::all_of(line.begin(), line.end(), [](char c) { return c >= ' ' && c <= '~'; })) << line;
        tips.insert(line);
    }
    EXPECT_GE(tips.size(), 40u);
    EXPECT_EQ(tips.size(), lines);
}

} // namespace

} // namespace voxmate
