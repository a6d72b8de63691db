#include "ModuleTest.h"

#include <new>
#include <stdexcept>

namespace voxmate
{

namespace
{

class MessagesTest : public ModuleTest
{
};

TEST_F(MessagesTest, WithReadMessagesOffNothingIsPlayedOrSaidAndTheProgramIsBusy)
{
    WithCharacter();
    Settings.ReadMessages = 0;
    ShowMessage("Hear ye", "GetAttention", "Suggest");
    EXPECT_TRUE(fake.log.empty());
    EXPECT_EQ(IsBusy, True);
}

TEST_F(MessagesTest, TheUserIsAddressedByName)
{
    WithCharacter();
    ShowMessage("Hear ye", "");
    EXPECT_EQ(fake.log,
              (Lines{"Show", "DoEvents", "Speak \\Pit=50\\ \\Spd=156\\Dear Buddy, \r\nHear ye", "Play RestPose"}));
    EXPECT_EQ(IsBusy, True);
}

TEST_F(MessagesTest, AnEmptyNameOrTheSettingOffLeavesTheMessageAlone)
{
    WithCharacter();
    Settings.UserName = "";
    ShowMessage("Hear ye", "");
    Settings.UserName = "Buddy";
    Settings.ReadNameWithMessages = 0;
    ShowMessage("Hear ye", "");
    Settings.ReadNameWithMessages = 7;
    ShowMessage("Hear ye", "");
    const auto spoken = std::count(fake.log.begin(), fake.log.end(), "Speak \\Pit=50\\ \\Spd=156\\Hear ye");
    EXPECT_EQ(spoken, 3);
}

TEST_F(MessagesTest, AllFourAnimationsArePlayedInOrderBeforeTheSpeech)
{
    WithCharacter();
    ShowMessage("Hear ye", "GetAttention", "GetAttentionContinued", "GetAttentionReturn", "Suggest");
    EXPECT_EQ(Lines(fake.log.begin(), fake.log.begin() + 6),
              (Lines{"Status Busy...", "Play GetAttention", "Play GetAttentionContinued", "Play GetAttentionReturn",
                     "Play Suggest", "Show"}));
}

TEST_F(MessagesTest, AnEmptyAnimationEndsTheRun)
{
    WithCharacter();
    ShowMessage("Hear ye", "GetAttention", "", "Suggest");
    EXPECT_EQ(fake.log, (Lines{"Status Busy...", "Play GetAttention", "Show", "DoEvents",
                               "Speak \\Pit=50\\ \\Spd=156\\Dear Buddy, \r\nHear ye", "Play RestPose"}));
}

TEST_F(MessagesTest, AnEmptyFirstAnimationPlaysNoneAndLeavesTheStatus)
{
    WithCharacter();
    ShowMessage("Hear ye", "", "Suggest");
    EXPECT_EQ(fake.log.front(), "Show");
}

TEST_F(MessagesTest, TheLastPlayRequestIsKept)
{
    fakes::FakeCharacter& character = WithCharacter();
    Settings.UserName = " ";
    ShowMessage("   ", "GetAttention", "Suggest");
    // The message speaks for itself here: the last thing asked of the character is that speech's rest pose.
    EXPECT_NE(LastPlayRequest, nullptr);
    EXPECT_NE(LastPlayRequest, character.last);
}

TEST_F(MessagesTest, WithoutACharacterAMessageIsSilent)
{
    Settings.ReadMessages = 1;
    ShowMessage("Hear ye", "GetAttention");
    EXPECT_EQ(fake.log, (Lines{"Status Busy..."}));
    EXPECT_EQ(IsBusy, True);
}

TEST_F(MessagesTest, TheErrorReportIsShownAndEndsTheProgram)
{
    WithCharacter();
    Boolean busyMeanwhile = False;
    fake.windows.whileBoxIsUp = [&](const auto&) { busyMeanwhile = IsBusy; };
    EXPECT_TRUE(fake.Ends([this] { ReportError(-2147467259, "Something broke", 2); }));
    ASSERT_EQ(fake.windows.boxes.size(), 1u);
    EXPECT_EQ(fake.windows.boxes[0].text, "Following error has occurred:\r\n"
                                          "Error No. - -2147467259\r\n"
                                          "Error Description - Something broke\r\n"
                                          "Function/Module ID - 2\r\n"
                                          "Application Version - 1.1 - Build 5\r\n"
                                          "\r\n"
                                          "Please report it to Voxmate Support at support@voxmate.example\r\n"
                                          "While reporting please provide all the details you can.\r\n"
                                          "The error will be fixed at no cost to you.\r\n"
                                          "\r\n"
                                          "Voxmate will end now.");
    EXPECT_EQ(fake.windows.boxes[0].style, 16);
    EXPECT_EQ(fake.windows.boxes[0].title, "Voxmate - Unhandled Error");
    EXPECT_EQ(fake.log, (Lines{"MsgBox Voxmate - Unhandled Error", "EndProgram"}));
    EXPECT_EQ(busyMeanwhile, True);
}

TEST_F(MessagesTest, WhatIsNoRunTimeErrorEndsANumberedRoutineInTheSameReport)
{
    WithCharacter();
    const auto reported = [this](const auto& error) {
        fake.windows.boxes.clear();
        EXPECT_TRUE(fake.Ends([&] { NumberedRoutine(4, [&] { throw error; }); }));
        return fake.windows.boxes.size() == 1 ? fake.windows.boxes[0].text.substr(0, 110) : "no box";
    };
    const std::string outOfMemory =
        "Following error has occurred:\r\nError No. - 7\r\nError Description - Out of memory\r\n"
        "Function/Module ID - 4\r\n";
    EXPECT_EQ(reported(std::bad_alloc()).substr(0, outOfMemory.size()), outOfMemory);
    EXPECT_EQ(reported(std::length_error("basic_string::append")).substr(0, outOfMemory.size()), outOfMemory);
    const std::string other = "Following error has occurred:\r\nError No. - 51\r\nError Description - not there\r\n";
    EXPECT_EQ(reported(std::out_of_range("not there")).substr(0, other.size()), other);
}

TEST_F(MessagesTest, AnErrorInTheVoicesAndOneInTheCharacterSearchBothReportRoutineOne)
{
    fake.speech.error = RuntimeError(70, "Permission denied");
    EXPECT_TRUE(fake.Ends([this] { LoadSpeechEngines(); }));
    EXPECT_NE(fake.windows.boxes.back().text.find("Function/Module ID - 1\r\n"), std::string::npos);
    EXPECT_NE(fake.windows.boxes.back().text.find("Error No. - 70\r\nError Description - Permission denied"),
              std::string::npos);

    // More character files than a 16-bit count can hold.
    fake.files.folders.insert("C:\\Many\\");
    for (int i = 0; i < 32768; ++i)
        fake.files.files.insert("C:\\Many\\" + std::to_string(i) + ".acs");
    SearchPath = "C:\\Many\\";
    EXPECT_TRUE(fake.Ends([this] { FindCharacters(false); }));
    EXPECT_NE(fake.windows.boxes.back().text.find(
                  "Error No. - 6\r\nError Description - Overflow\r\nFunction/Module ID - 1\r\n"),
              std::string::npos);
}

TEST_F(MessagesTest, AnErrorWhileLoadingACharacterReportsRoutineTwo)
{
    fake.StoreDefaults();
    LoadSettings();
    fake.agent.loadError = RuntimeError(481, "C:\\Chars\\Alfa.acs is not a character");
    EXPECT_TRUE(fake.Ends([this] { LoadCharacter("Alfa", true); }));
    EXPECT_NE(fake.windows.boxes.back().text.find("Error Description - C:\\Chars\\Alfa.acs is not a character\r\n"
                                                  "Function/Module ID - 2\r\n"),
              std::string::npos);
}

} // namespace

} // namespace voxmate
