#include "ModuleTest.h"

namespace voxmate
{

namespace
{

class StartUpTest : public ModuleTest
{
};

TEST_F(StartUpTest, TheSequenceRunsInItsFixedOrder)
{
    fake.StoreDefaults();
    fake.store.SetDword("AutoReadTip", 0);
    StartMain();
    const Lines expected{
        "MainWindow shown",
        "DoEvents",
        "Status Loading your personal settings. Please wait...",
        "Status Searching for characters. Please wait...",
        "Status Loading character. Please wait...",
        "Load Alfa C:\\Chars\\Alfa.acs",
        "Show",
        "Status Loading installed speech engines. Please wait...",
        "DoEvents",
        "TTSModeID {11111111-0000-8000-8000-000000000001}",
        "DoEvents",
        "Status I am Idle now !",
        "VoiceControls 50 156 0",
        "Show",
        "DoEvents",
        "Play Greet",
        "Speak \\Pit=50\\ \\Spd=156\\Hello Buddy.",
        "Play RestPose",
        "Show",
        "DoEvents",
        "Play Announce",
        "Speak \\Pit=50\\ \\Spd=156\\Today is Monday, 17th of March, 1975 and Time now is 2:05 PM",
        "Play RestPose",
        "Tip shown",
        "Tip checks 1 0",
    };
    EXPECT_EQ(fake.log, expected);
    // Reminders are on, and no file has been made for them.
    EXPECT_TRUE(window.reminderTimer);
    EXPECT_TRUE(window.enableChecked);
    EXPECT_FALSE(window.disableChecked);
    EXPECT_FALSE(fake.files.FileExists("C:\\Voxmate\\VoxmateReminders.txt"));
    EXPECT_TRUE(fake.windows.boxes.empty());
    EXPECT_EQ(WindowsDir, "C:\\WINDOWS");
    EXPECT_EQ(ReminderFilePath, "C:\\Voxmate\\VoxmateReminders.txt");
    EXPECT_EQ(ReminderTempPath, "C:\\Voxmate\\VoxmateReminders.tmp");
    EXPECT_EQ(SearchPath, "C:\\Chars\\");
}

TEST_F(StartUpTest, TheReportIsReadInTheChosenVoiceAfterTheVoiceControlsAreSet)
{
    fake.StoreDefaults();
    fake.store.SetDword("Speed", 39);
    RunStartUp();
    const auto at = [this](const std::string& call) {
        return std::find(fake.log.begin(), fake.log.end(), call) - fake.log.begin();
    };
    EXPECT_LT(at("TTSModeID {11111111-0000-8000-8000-000000000001}"), at("VoiceControls 50 156 0"));
    EXPECT_LT(at("VoiceControls 50 156 0"), at("Play GetAttention"));
    EXPECT_LT(at("Play GetAttention"), at("MsgBox Voxmate - Options in Error"));
    EXPECT_LT(at("MsgBox Voxmate - Options in Error"), at("Play Greet"));
    EXPECT_EQ(Settings.SettingsErrorList, "");
}

TEST_F(StartUpTest, WithEverySwitchOffStartUpEndsSilently)
{
    fake.StoreDefaults();
    fake.store.SetDword("GreetingEnabled", 0);
    fake.store.SetDword("IntroAtStart", 0);
    fake.store.SetDword("ShowCharacterAtStart", 0);
    fake.store.SetDword("ShowTipAtStartUp", 0);
    StartMain();
    EXPECT_EQ(fake.log.back(), "VoiceControls 50 156 0");
    EXPECT_EQ(std::count(fake.log.begin(), fake.log.end(), "Show"), 0);
}

TEST_F(StartUpTest, WithoutSettingsEveryRowIsReportedAndTheSecondStartIsSilent)
{
    fake.AddCharacters("C:\\Voxmate\\Character\\", {"Zulu"});
    RunStartUp();
    ASSERT_EQ(fake.windows.boxes.size(), 1u);
    EXPECT_EQ(std::count(fake.windows.boxes[0].text.begin(), fake.windows.boxes[0].text.end(), '\n'), 46 + 3);
    EXPECT_EQ(fake.store.At("LastCharacter").data, "Zulu");
    EXPECT_EQ(fake.store.At("CharacterPath").data, "C:\\Voxmate\\Character\\");
    EXPECT_EQ(fake.store.At("LastSpeechEngine").data, "First Voice");

    fake.windows.boxes.clear();
    fake.agent.loaded.clear();
    BeginProgram();
    RunStartUp();
    EXPECT_TRUE(fake.windows.boxes.empty());
}

TEST_F(StartUpTest, WithoutCharactersNothingAfterTheSearchRuns)
{
    EXPECT_TRUE(fake.Ends([this] { RunStartUp(); }));
    EXPECT_EQ(fake.log.back(), "EndProgram");
    EXPECT_EQ(window.statuses.back(), "Searching for characters. Please wait...");
}

TEST_F(StartUpTest, WithoutAnEngineNothingAfterTheEnginesRuns)
{
    fake.StoreDefaults();
    fake.speech.engines.clear();
    EXPECT_TRUE(fake.Ends([this] { RunStartUp(); }));
    EXPECT_EQ(window.statuses.back(), "Loading installed speech engines. Please wait...");
}

TEST_F(StartUpTest, AWindowsDirectoryLongerThanTheBufferIsTakenWhole)
{
    fake.StoreDefaults();
    fake.process.windowsDirectory = "C:\\" + std::string(240, 'w');
    RunStartUp();
    EXPECT_EQ(WindowsDir, fake.process.windowsDirectory);
}

} // namespace

} // namespace voxmate
