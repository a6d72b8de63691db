#include "ModuleTest.h"

#include <cstdio>
#include <fstream>
#include <map>

namespace voxmate
{

namespace
{

// The catalogue as users know it, written down a second time so that a slip in the program's own table shows.
const Lines displayNames{
    "Balloon Font Name",
    "Balloon Font Size",
    "Character Path",
    "Character Size",
    "Put in System Tray on Close",
    "System Date Format",
    "Enable Greeting",
    "Greeting Type",
    "Character Introduction At Start Up",
    "Last Loaded Character",
    "Other Greeting String",
    "Pitch",
    "Read Messages While Showing",
    "Read Name With Messages",
    "Read Name With Messages",
    "Show Balloon",
    "Show Character At Start Up",
    "Show Character At Start Up",
    "Speed",
    "Speak System Time in 24 hour format",
    "Your Name",
    "Voice Type Last Used",
    "Whisper",
    "Enable Sound Effects",
    "Speak Time Every x Minute(s)",
    "Balloon Auto Hide",
    "Balloon Auto Pace",
    "Balloon Characters per Line",
    "Balloon Total Number of Lines",
    "Show Tip at Startup",
    "Auto Read Tip at Startup",
    "Show Reminder on Top",
    "Speak Alert for Reminder ",
    "Reminder Alert Sentence",
    "Speak Reminder Title",
    "Speak Reminder Date",
    "Speak Reminder Time",
    "Speak Reminder Description",
    "Speak Next Reminder Schedule if Snoozed",
    "Reminder Type",
    "Alert Reminder Action",
    "Alert Reminder Gradient",
    "Alert Reminder Shape",
    "Alert Reminder Color",
    "Alert Reminder Auto Close",
    "Alert Reminder Auto Close Time",
};

struct IntegerRow {
    const char* name;
    int min;
    int max;
    int defaultValue;
};

const std::vector<IntegerRow> integerRows{
    {"BalloonFontSize", 4, 72, 10},
    {"CharacterSize", 0, 2, 1},
    {"CloseToTray", 0, 1, 0},
    {"DateFormat", 1, 6, 2},
    {"GreetingEnabled", 0, 1, 1},
    {"GreetingType", 0, 4, 3},
    {"IntroAtStart", 0, 1, 0},
    {"Pitch", 40, 400, 50},
    {"ReadMessages", 0, 1, 1},
    {"ReadNameWithMessages", 0, 1, 1},
    {"ReadTextBoxTextAtLeftClick", 0, 1, 1},
    {"ShowBalloon", 0, 1, 1},
    {"ShowCharacterAtStart", 0, 1, 1},
    {"SizeBallonToText", 0, 1, 0},
    {"Speed", 40, 400, 156},
    {"TimeIn24Hour", 0, 1, 0},
    {"Whisper", 0, 1, 0},
    {"EnableSoundEffects", 0, 1, 1},
    {"SpeakTimeInterval", 0, 999, 5},
    {"BalloonAutoHide", 0, 1, 1},
    {"BalloonAutoPace", 0, 1, 1},
    {"BalloonCharactersPerLine", 10, 99, 32},
    {"BalloonTotalLines", 1, 16, 2},
    {"ShowTipAtStartUp", 0, 1, 1},
    {"AutoReadTip", 0, 1, 1},
    {"ReminderOnTop", 0, 1, 1},
    {"ReminderSentenceSpeak", 0, 1, 1},
    {"ReminderTitleSpeak", 0, 1, 1},
    {"ReminderDateSpeak", 0, 1, 1},
    {"ReminderTimeSpeak", 0, 1, 1},
    {"ReminderDescSpeak", 0, 1, 1},
    {"ReminderNextSchSpeak", 0, 1, 1},
    {"ReminderType", 0, 1, 0},
    {"RemAlertAction", 0, 1, 0},
    {"RemAlertGradient", 0, 1, 1},
    {"RemAlertShape", 0, 1, 1},
    {"RemAlertColor", 0, 3, 3},
    {"RemAlertClose", 0, 1, 0},
    {"RemAlertCloseTime", 4, 20, 4},
};

std::string Listed(const Lines& names)
{
    std::string list;
    for (const std::string& name : names)
        list += name + "\r\n";
    return list;
}

class SettingsTest : public ModuleTest
{
};

TEST_F(SettingsTest, WithoutAnySettingEveryRowIsReportedInOrder)
{
    LoadSettings();
    EXPECT_EQ(Settings.SettingsErrorList, Listed(displayNames));
    EXPECT_EQ(RegFailed, False);
}

TEST_F(SettingsTest, WithoutAnySettingTheDefaultsAreUsedAndWrittenBackWithTheirTypes)
{
    LoadSettings();
    for (const IntegerRow& row : integerRows) {
        ASSERT_TRUE(fake.store.Has(row.name)) << row.name;
        EXPECT_EQ(fake.store.Dword(row.name), row.defaultValue) << row.name;
    }
    using Value = fakes::FakeSettingsStore::Value;
    EXPECT_EQ(fake.store.At("BalloonFontName"), (Value{1, "MS Sans Serif"}));
    EXPECT_EQ(fake.store.At("OtherGreeting"), (Value{1, "Welcome to Voxmate"}));
    EXPECT_EQ(fake.store.At("UserName"), (Value{1, "Buddy"}));
    EXPECT_EQ(fake.store.At("ReminderSentence"), (Value{1, "You have a reminder"}));
    for (const char* name : {"CharacterPath", "LastCharacter", "LastSpeechEngine"})
        EXPECT_FALSE(fake.store.Has(name)) << name;
    EXPECT_EQ(fake.store.keys["SOFTWARE\\Voxmate"].size(), integerRows.size() + 4);

    EXPECT_EQ(Settings.BalloonFontName, "MS Sans Serif");
    EXPECT_EQ(Settings.CharacterPath, "C:\\Voxmate\\Character\\");
    EXPECT_EQ(Settings.LastCharacter, "");
    EXPECT_EQ(Settings.OtherGreeting, "Welcome to Voxmate");
    EXPECT_EQ(Settings.UserName, "Buddy");
    EXPECT_EQ(Settings.LastSpeechEngine, "");
    EXPECT_EQ(Settings.ReminderSentence, "You have a reminder");
}

TEST_F(SettingsTest, TheFileForNewUsersHasEverySettingInOrderAtItsDefaultButForFour)
{
    const std::map<std::string, std::string> own{{"CharacterPath", "\"@SHARE@/msagent/chars/\""},
                                                 {"LastCharacter", "\"Nalu\""},
                                                 {"LastSpeechEngine", "\"eSpeak English (Great Britain)\""},
                                                 {"Pitch", "dword:000000be"}};
    Lines expected{std::string("[") + SettingsKey + "]"};
    for (const SettingRow& row : SettingsCatalogue()) {
        std::string value = std::string("\"") + row.defaultText + "\"";
        if (std::holds_alternative<NumberField>(row.field)) {
            char number[] = "dword:00000000";
            std::snprintf(number, sizeof number, "dword:%08x", static_cast<unsigned>(row.defaultNumber));
            value = number;
        }
        if (own.contains(row.name))
            value = own.at(row.name);
        expected.push_back(std::string("\"") + row.name + "\"=" + value);
    }
    Lines shipped;
    std::ifstream file(VOXMATE_PACKAGING "registry.reg.in");
    for (std::string line; std::getline(file, line);) {
        if (line.starts_with('"') || line.starts_with('['))
            shipped.push_back(line);
    }
    EXPECT_EQ(shipped, expected);
}

TEST_F(SettingsTest, ASecondStartReportsOnlyWhatIsNotWrittenBack)
{
    LoadSettings();
    Settings = {};
    LoadSettings();
    EXPECT_EQ(Settings.SettingsErrorList, Listed({"Character Path", "Last Loaded Character", "Voice Type Last Used"}));
}

TEST_F(SettingsTest, BothEndsOfEveryRangeAreTakenAndOnePastThemIsReplaced)
{
    for (const IntegerRow& row : integerRows) {
        for (const int good : {row.min, row.max}) {
            fake.StoreDefaults();
            fake.store.SetDword(row.name, static_cast<std::uint32_t>(good));
            Settings = {};
            LoadSettings();
            EXPECT_EQ(Settings.SettingsErrorList, "") << row.name << " = " << good;
            EXPECT_EQ(fake.store.Dword(row.name), good) << row.name;
        }
        for (const int bad : {row.min - 1, row.max + 1}) {
            fake.StoreDefaults();
            fake.store.SetDword(row.name, static_cast<std::uint32_t>(bad));
            Settings = {};
            LoadSettings();
            EXPECT_NE(Settings.SettingsErrorList, "") << row.name << " = " << bad;
            EXPECT_EQ(fake.store.Dword(row.name), row.defaultValue) << row.name;
        }
    }
}

TEST_F(SettingsTest, OnePastTheRangeIsReplacedReportedAndWrittenBack)
{
    fake.StoreDefaults();
    fake.store.SetDword("Pitch", 401);
    fake.store.SetDword("BalloonTotalLines", 0);
    fake.store.SetDword("RemAlertCloseTime", 21);
    LoadSettings();
    EXPECT_EQ(Settings.Pitch, 50);
    EXPECT_EQ(Settings.BalloonTotalLines, 2);
    EXPECT_EQ(Settings.RemAlertCloseTime, 4);
    EXPECT_EQ(Settings.SettingsErrorList,
              Listed({"Pitch", "Balloon Total Number of Lines", "Alert Reminder Auto Close Time"}));
    EXPECT_EQ(fake.store.Dword("Pitch"), 50);
    EXPECT_EQ(fake.store.Dword("BalloonTotalLines"), 2);
    EXPECT_EQ(fake.store.Dword("RemAlertCloseTime"), 4);
}

TEST_F(SettingsTest, AllBitsSetReadAsMinusOneAndAreOutOfRangeForEverySwitch)
{
    for (const IntegerRow& row : integerRows) {
        if (row.min != 0 || row.max != 1)
            continue;
        fake.StoreDefaults();
        fake.store.SetDword(row.name, 0xFFFFFFFF);
        Settings = {};
        LoadSettings();
        EXPECT_NE(Settings.SettingsErrorList, "") << row.name;
        EXPECT_EQ(fake.store.Dword(row.name), row.defaultValue) << row.name;
    }
}

TEST_F(SettingsTest, WithGreetingAndIntroductionBothOnTheGreetingWinsInMemoryOnly)
{
    fake.StoreDefaults();
    fake.store.SetDword("GreetingEnabled", 1);
    fake.store.SetDword("IntroAtStart", 1);
    fake.store.SetDword("ShowCharacterAtStart", 0);
    LoadSettings();
    EXPECT_EQ(Settings.GreetingEnabled, 1);
    EXPECT_EQ(Settings.IntroAtStart, 0);
    EXPECT_EQ(Settings.ShowCharacterAtStart, 1);
    EXPECT_EQ(fake.store.Dword("GreetingEnabled"), 1);
    EXPECT_EQ(fake.store.Dword("IntroAtStart"), 1);
    EXPECT_EQ(fake.store.Dword("ShowCharacterAtStart"), 0);
}

TEST_F(SettingsTest, TheIntroductionAloneForcesTheCharacterToBeShown)
{
    fake.StoreDefaults();
    fake.store.SetDword("GreetingEnabled", 0);
    fake.store.SetDword("IntroAtStart", 1);
    fake.store.SetDword("ShowCharacterAtStart", 0);
    LoadSettings();
    EXPECT_EQ(Settings.GreetingEnabled, 0);
    EXPECT_EQ(Settings.IntroAtStart, 1);
    EXPECT_EQ(Settings.ShowCharacterAtStart, 1);
}

TEST_F(SettingsTest, WithNeitherTheCharacterStaysHidden)
{
    fake.StoreDefaults();
    fake.store.SetDword("GreetingEnabled", 0);
    fake.store.SetDword("ShowCharacterAtStart", 0);
    LoadSettings();
    EXPECT_EQ(Settings.ShowCharacterAtStart, 0);
}

TEST_F(SettingsTest, ACharacterPathWithoutItsLastSeparatorGetsOneInMemoryOnly)
{
    fake.StoreDefaults();
    fake.store.SetText("CharacterPath", "D:\\Friends");
    LoadSettings();
    EXPECT_EQ(Settings.CharacterPath, "D:\\Friends\\");
    EXPECT_EQ(fake.store.At("CharacterPath").data, "D:\\Friends");
    EXPECT_EQ(Settings.SettingsErrorList, "");
}

TEST_F(SettingsTest, AnEmptyCharacterPathBecomesALoneSeparator)
{
    fake.StoreDefaults();
    fake.store.SetText("CharacterPath", std::string(1, '\0'));
    LoadSettings();
    EXPECT_EQ(Settings.CharacterPath, "\\");
    EXPECT_EQ(Settings.SettingsErrorList, "");
}

TEST_F(SettingsTest, AMissingCharacterPathIsReportedAndNotWritten)
{
    fake.StoreDefaults();
    fake.store.keys["SOFTWARE\\Voxmate"].erase("CharacterPath");
    LoadSettings();
    EXPECT_EQ(Settings.CharacterPath, "C:\\Voxmate\\Character\\");
    EXPECT_EQ(Settings.SettingsErrorList, "Character Path\r\n");
    EXPECT_FALSE(fake.store.Has("CharacterPath"));
}

TEST_F(SettingsTest, BlanksRoundAStoredNameAreRemoved)
{
    fake.StoreDefaults();
    fake.store.SetText("UserName", std::string("  Ada Lovelace  \0", 17));
    LoadSettings();
    EXPECT_EQ(Settings.UserName, "Ada Lovelace");
}

TEST_F(SettingsTest, ATextSavedAsEmptyIsReportedAndDefaultedOnTheNextStart)
{
    fake.StoreDefaults();
    WriteRegString(SettingsKey, "UserName", "");
    LoadSettings();
    EXPECT_EQ(Settings.UserName, "Buddy");
    EXPECT_EQ(Settings.SettingsErrorList, "Your Name\r\n");
    EXPECT_EQ(fake.store.At("UserName").data, "Buddy");
}

TEST_F(SettingsTest, ALoneNulLoadsAsTheEmptyTextWithoutComplaint)
{
    fake.StoreDefaults();
    fake.store.SetText("UserName", std::string(1, '\0'));
    LoadSettings();
    EXPECT_EQ(Settings.UserName, "");
    EXPECT_EQ(Settings.SettingsErrorList, "");
}

TEST_F(SettingsTest, SeveralFaultsKeepTheCatalogueOrderAndTheSharedDisplayNames)
{
    fake.StoreDefaults();
    fake.store.SetDword("ReadTextBoxTextAtLeftClick", 2);
    fake.store.SetDword("ReadNameWithMessages", 2);
    fake.store.SetDword("SizeBallonToText", 9);
    fake.store.SetDword("ReminderSentenceSpeak", 9);
    fake.store.SetDword("BalloonFontSize", 3);
    LoadSettings();
    EXPECT_EQ(
        Settings.SettingsErrorList,
        "Balloon Font Size\r\nRead Name With Messages\r\nRead Name With Messages\r\nShow Character At Start Up\r\n"
        "Speak Alert for Reminder \r\n");
}

TEST_F(SettingsTest, AStoreThatRefusesWritesStillGivesTheDefaults)
{
    fake.store.failures["RegCreateKeyA"] = 5;
    fake.store.failures["RegSetValueExA"] = 5;
    LoadSettings();
    EXPECT_EQ(Settings.Speed, 156);
    EXPECT_EQ(Settings.SettingsErrorList, Listed(displayNames));
    EXPECT_EQ(RegFailed, False);
    EXPECT_TRUE(fake.windows.boxes.empty());
}

TEST_F(SettingsTest, AnIntegerSettingWithoutADisplayNameIsNotReported)
{
    EXPECT_EQ(ReadIntSetting("Pitch", "", 40, 400, 50), 50);
    EXPECT_EQ(Settings.SettingsErrorList, "");
    EXPECT_EQ(fake.store.Dword("Pitch"), 50);
}

TEST_F(SettingsTest, TheReportIsReadThenShownThenForgotten)
{
    WithCharacter();
    Settings.SettingsErrorList = "Pitch\r\nSpeed\r\n";
    ReportSettingsInError();
    const std::string text = "Following option(s) not found (or inavlid values found) in your system registry:\r\n\r\n"
                             "Pitch\r\nSpeed\r\n\r\nDefault value(s) will be used for all these option(s)";
    EXPECT_EQ(fake.log,
              (Lines{"Status Busy...", "Play GetAttention", "Play GetAttentionContinued", "Play GetAttentionReturn",
                     "Play Suggest", "Show", "DoEvents", "Speak \\Pit=50\\ \\Spd=156\\Dear Buddy, \r\n" + text,
                     "Play RestPose", "MsgBox Voxmate - Options in Error"}));
    ASSERT_EQ(fake.windows.boxes.size(), 1u);
    EXPECT_EQ(fake.windows.boxes[0].text, text);
    EXPECT_EQ(fake.windows.boxes[0].style, 48);
    EXPECT_EQ(IsBusy, False);
    EXPECT_EQ(Settings.SettingsErrorList, "");
}

TEST_F(SettingsTest, NothingInErrorIsNotReported)
{
    WithCharacter();
    ReportSettingsInError();
    EXPECT_TRUE(fake.log.empty());
}

TEST_F(SettingsTest, WithReadMessagesOffTheReportIsSilentAndTheProgramIsBusyUntilItIsClosed)
{
    WithCharacter();
    Settings.ReadMessages = 0;
    Settings.SettingsErrorList = "Pitch\r\n";
    Boolean busyMeanwhile = False;
    fake.windows.whileBoxIsUp = [&](const auto&) { busyMeanwhile = IsBusy; };
    ReportSettingsInError();
    EXPECT_EQ(fake.log, (Lines{"MsgBox Voxmate - Options in Error"}));
    EXPECT_EQ(busyMeanwhile, True);
    EXPECT_EQ(IsBusy, False);
}

TEST_F(SettingsTest, TheReportIsUpWhileTheProgramIsBusy)
{
    WithCharacter();
    Settings.SettingsErrorList = "Pitch\r\n";
    Boolean busyMeanwhile = False;
    fake.windows.whileBoxIsUp = [&](const auto&) { busyMeanwhile = IsBusy; };
    ReportSettingsInError();
    EXPECT_EQ(busyMeanwhile, True);
    EXPECT_EQ(IsBusy, False);
}

} // namespace

} // namespace voxmate
