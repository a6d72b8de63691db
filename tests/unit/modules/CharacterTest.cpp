#include "ModuleTest.h"

namespace voxmate
{

namespace
{

class CharacterTest : public ModuleTest
{
protected:
    CharacterTest()
    {
        fake.StoreDefaults();
        LoadSettings();
        WindowsDir = "C:\\WINDOWS";
        SearchPath = Settings.CharacterPath;
    }
};

TEST_F(CharacterTest, CharactersOfTheFolderAreListedByTheirBaseNames)
{
    FindCharacters(false);
    EXPECT_EQ(window.characters, (Lines{"Alfa", "Bravo"}));
    EXPECT_EQ(CharacterCount, 2);
    EXPECT_EQ(CurrentRoutineId, 1);
    EXPECT_EQ(Settings.LastCharacter, "Alfa");
    EXPECT_EQ(fake.store.At("CharacterPath").data, "C:\\Chars\\");
    EXPECT_TRUE(fake.windows.boxes.empty());
}

TEST_F(CharacterTest, ACharacterThatIsGoneGivesWayToTheFirst)
{
    Settings.LastCharacter = "Gone";
    FindCharacters(false);
    EXPECT_EQ(Settings.LastCharacter, "Alfa");
}

TEST_F(CharacterTest, ACharactersNameIsFoundWhateverTheCaseOfItsLetters)
{
    Settings.LastCharacter = "bRAVO";
    FindCharacters(false);
    EXPECT_EQ(Settings.LastCharacter, "Bravo");
    LoadCharacter(Settings.LastCharacter, true);
    EXPECT_EQ(fake.log.front(), "Load Bravo C:\\Chars\\Bravo.acs");
    EXPECT_EQ(window.checked, "Bravo");
    EXPECT_EQ(fake.store.At("LastCharacter").data, "Bravo");
}

TEST_F(CharacterTest, OfNamesThatDifferInCaseOnlyTheOneAsWrittenIsTaken)
{
    fake.AddCharacters("C:\\Chars\\", {"ALFA", "alfa"});
    Settings.LastCharacter = "alfa";
    FindCharacters(false);
    EXPECT_EQ(Settings.LastCharacter, "alfa");
}

TEST_F(CharacterTest, AMissingFolderIsAskedAboutAndTheSystemFolderTakesItsPlace)
{
    SearchPath = "D:\\Nowhere\\";
    fake.AddCharacters("C:\\WINDOWS\\msagent\\chars\\", {"Sierra"});
    fake.windows.answers = {vbYes};
    FindCharacters(false);
    ASSERT_EQ(fake.windows.boxes.size(), 1u);
    EXPECT_EQ(fake.windows.boxes[0].text,
              "Following folder containing the characters does not exist:\r\nD:\\Nowhere\\\r\n"
              "Do you want to let Voxmate load characters from windows system directory ?\r\n"
              "If no then Voxmate will end.");
    EXPECT_EQ(fake.windows.boxes[0].style, 16 + 4);
    EXPECT_EQ(fake.windows.boxes[0].title, "Voxmate - Path Error");
    EXPECT_EQ(Settings.CharacterPath, "C:\\WINDOWS\\msagent\\chars\\");
    EXPECT_EQ(fake.store.At("CharacterPath").data, "C:\\WINDOWS\\msagent\\chars\\");
    EXPECT_EQ(window.characters, (Lines{"Sierra"}));
    EXPECT_EQ(Settings.LastCharacter, "Sierra");
}

TEST_F(CharacterTest, ANoAtStartUpEndsTheProgram)
{
    SearchPath = "D:\\Nowhere\\";
    fake.windows.answers = {vbNo};
    EXPECT_TRUE(fake.Ends([this] { FindCharacters(false); }));
    EXPECT_EQ(fake.windows.boxes.size(), 1u);
}

TEST_F(CharacterTest, WithoutTheSystemFolderThePageIsOfferedAndTheProgramEnds)
{
    SearchPath = "D:\\Nowhere\\";
    fake.windows.answers = {vbYes, vbYes};
    EXPECT_TRUE(fake.Ends([this] { FindCharacters(false); }));
    ASSERT_EQ(fake.windows.boxes.size(), 2u);
    EXPECT_EQ(fake.windows.boxes[1].text, "Following folder containing the characters does not exist:\r\n"
                                          "C:\\WINDOWS\\msagent\\chars\\\r\n"
                                          "Please goto following MS Agents' download page and install MS Agent.\r\n"
                                          "file:///C:/WINDOWS/web/characters.html\r\n"
                                          "Do you want to goto download site now ?");
    EXPECT_EQ(fake.process.commands, (Lines{"explorer.exe file:///C:/WINDOWS/web/characters.html style 3"}));
    EXPECT_EQ(fake.log.back(), "EndProgram");
}

TEST_F(CharacterTest, ANoToThePageEndsTheProgramWithoutIt)
{
    SearchPath = "D:\\Nowhere\\";
    fake.windows.answers = {vbYes, vbNo};
    EXPECT_TRUE(fake.Ends([this] { FindCharacters(false); }));
    EXPECT_TRUE(fake.process.commands.empty());
}

TEST_F(CharacterTest, AFolderWithoutCharactersIsAskedAboutInTheSameWay)
{
    SearchPath = "C:\\Empty\\";
    fake.files.folders.insert("C:\\Empty\\");
    fake.files.files.insert("C:\\Empty\\readme.txt");
    fake.AddCharacters("C:\\WINDOWS\\msagent\\chars\\", {"Sierra"});
    fake.windows.answers = {vbYes};
    FindCharacters(false);
    ASSERT_EQ(fake.windows.boxes.size(), 1u);
    EXPECT_EQ(fake.windows.boxes[0].text,
              "No characters found in the following path:\r\nC:\\Empty\\\r\n"
              "Do you want to let Voxmate load characters from windows system directory ?\r\n"
              "If no then Voxmate will end.");
    EXPECT_EQ(window.characters, (Lines{"Sierra"}));
}

TEST_F(CharacterTest, AnEmptySystemFolderEndsTheProgramToo)
{
    SearchPath = "D:\\Nowhere\\";
    fake.files.folders.insert("C:\\WINDOWS\\msagent\\chars\\");
    fake.windows.answers = {vbYes, vbNo};
    EXPECT_TRUE(fake.Ends([this] { FindCharacters(false); }));
    ASSERT_EQ(fake.windows.boxes.size(), 2u);
    EXPECT_EQ(fake.windows.boxes[1].text.substr(0, 44), "No characters found in the following path:\r\n");
}

TEST_F(CharacterTest, ANoFromTheOptionsKeepsThePathInUse)
{
    FindCharacters(false);
    SearchPath = "D:\\Nowhere\\";
    fake.windows.answers = {vbNo};
    FindCharacters(true);
    EXPECT_EQ(fake.windows.boxes.back().text,
              "Following folder containing the characters does not exist:\r\nD:\\Nowhere\\\r\n"
              "Do you want to let Voxmate load characters from windows system directory ?\r\n"
              "If no then CharacterPath setting will not take effect.");
    EXPECT_EQ(Settings.CharacterPath, "C:\\Chars\\");
    EXPECT_EQ(fake.store.At("CharacterPath").data, "C:\\Chars\\");
    EXPECT_EQ(CharacterCount, 2);
}

TEST_F(CharacterTest, LoadingSetsEverythingUp)
{
    fake.agent.prepare = [](fakes::FakeCharacter& character) { character.styles = {0xFF00FF0F}; };
    window.selectedEngine = 1;
    EngineIds[2] = "{B}";
    LoadCharacter("Bravo", true);
    EXPECT_EQ(fake.log, (Lines{"Load Bravo C:\\Chars\\Bravo.acs", "Show", "TTSModeID {B}"}));
    EXPECT_EQ(CurrentRoutineId, 2);
    EXPECT_EQ(Character, &fake.Loaded("Bravo"));
    EXPECT_EQ(Settings.LastCharacter, "Bravo");
    EXPECT_EQ(fake.store.At("LastCharacter").data, "Bravo");
    EXPECT_EQ(window.characterPanel, "BRAVO");
    EXPECT_EQ(window.checked, "Bravo");
    EXPECT_EQ(AnimationNames[0], "RestPose");
    EXPECT_EQ(AnimationNames[3], "Greet");
    EXPECT_EQ(AnimationNames[4], "");
    EXPECT_EQ(
        fake.Loaded("Bravo").commands,
        (Lines{"mnuStop|&Stop|Stop|enabled|visible", "mnuTime|Tell me &Time|Tell me Time|enabled|visible",
               "mnuDate|Tell me &Date|Tell me Date|enabled|visible", "mnuIntro|&Who Am I?|Who Am I?|enabled|visible"}));
}

TEST_F(CharacterTest, ACharacterIsNotShownWhenTheSettingIsOff)
{
    Settings.ShowCharacterAtStart = 0;
    LoadCharacter("Bravo", true);
    EXPECT_EQ(fake.log, (Lines{"Load Bravo C:\\Chars\\Bravo.acs"}));
}

TEST_F(CharacterTest, LoadingFromTheMenuUnloadsTheOneBefore)
{
    LoadCharacter("Alfa", true);
    fake.log.clear();
    LoadCharacter("Bravo", false);
    EXPECT_EQ(fake.log, (Lines{"Unload Alfa", "Load Bravo C:\\Chars\\Bravo.acs", "Show"}));
    EXPECT_EQ(window.checked, "Bravo");
}

TEST_F(CharacterTest, AMissingFileIsSaidAndChangesNothing)
{
    LoadCharacter("Alfa", true);
    fake.log.clear();
    LoadCharacter("Gone", false);
    const std::string text =
        "Please make sure following file is available to load this charater:\r\nC:\\Chars\\Gone.acs";
    ASSERT_EQ(fake.windows.boxes.size(), 1u);
    EXPECT_EQ(fake.windows.boxes[0].text, text);
    EXPECT_EQ(fake.windows.boxes[0].style, 48);
    EXPECT_EQ(fake.windows.boxes[0].title, "Voxmate - File Error");
    EXPECT_EQ(Character, &fake.Loaded("Alfa"));
    EXPECT_EQ(Settings.LastCharacter, "Alfa");
    EXPECT_EQ(IsBusy, False);
    EXPECT_EQ(fake.log.back(), "MsgBox Voxmate - File Error");
}

TEST_F(CharacterTest, DamagedPicturesAreToldAsMessagesAre)
{
    WithCharacter();
    StartedUp = true;
    const std::string text = "The character file \"C:\\Chars\\Alfa.acs\" cannot be used: image 7 is damaged.";
    EXPECT_TRUE(TellDamagedCharacter(text));
    EXPECT_EQ(fake.log, (Lines{"Status Busy...", "Play Decline", "Show", "DoEvents",
                               "Speak \\Pit=50\\ \\Spd=156\\Dear Buddy, \r\nThe character file "
                               "\"C:\\\\Chars\\\\Alfa.acs\" cannot be used: image 7 is damaged.",
                               "Play RestPose", "MsgBox Voxmate - File Error"}));
    ASSERT_EQ(fake.windows.boxes.size(), 1u);
    EXPECT_EQ(fake.windows.boxes[0].text, text);
    EXPECT_EQ(fake.windows.boxes[0].style, 48);
    EXPECT_EQ(IsBusy, False);
}

TEST_F(CharacterTest, DamagedPicturesAreNotToldWhileTheProgramStartsNorOverAnotherMessage)
{
    WithCharacter();
    EXPECT_FALSE(TellDamagedCharacter("damaged"));
    StartedUp = true;
    IsBusy = True;
    EXPECT_FALSE(TellDamagedCharacter("damaged"));
    EXPECT_TRUE(fake.log.empty());
    IsBusy = False;
    EXPECT_TRUE(TellDamagedCharacter("damaged"));
    EXPECT_EQ(fake.windows.boxes.size(), 1u);
}

TEST_F(CharacterTest, OnlyTheFirst1001AnimationNamesAreKept)
{
    fake.agent.prepare = [](fakes::FakeCharacter& character) {
        character.animations.clear();
        for (int i = 0; i < 1002; ++i)
            character.animations.push_back("A" + std::to_string(i));
    };
    LoadCharacter("Alfa", true);
    EXPECT_EQ(AnimationNames[0], "A0");
    EXPECT_EQ(AnimationNames[1000], "A1000");
    fake.agent.prepare = [](fakes::FakeCharacter& character) { character.animations = {"Only"}; };
    LoadCharacter("Bravo", false);
    EXPECT_EQ(AnimationNames[0], "Only");
    EXPECT_EQ(AnimationNames[1], "");
}

TEST_F(CharacterTest, LinesAndCharactersLandInTheirBitsWithoutDisturbingTheSwitches)
{
    fake.agent.prepare = [](fakes::FakeCharacter& character) { character.styles = {0xAB00CD0F}; };
    Settings.BalloonTotalLines = 16;
    Settings.BalloonCharactersPerLine = 99;
    Settings.SizeBallonToText = 1;
    LoadCharacter("Alfa", true);
    EXPECT_EQ(fake.Loaded("Alfa").styles, (std::vector<std::uint32_t>{0xAB00CD0F, 0x1000CD0F, 0x1063CD0F, 0x1063CD0F,
                                                                      0x1063CD0F, 0x1063CD0F, 0x1063CD0F}));
}

TEST_F(CharacterTest, TheSwitchesAreSetAndClearedOneByOneAndOnlyOneMeansOn)
{
    fake.agent.prepare = [](fakes::FakeCharacter& character) { character.styles = {0x0220000F}; };
    Settings.ShowBalloon = 2;
    Settings.BalloonAutoHide = -1;
    Settings.BalloonAutoPace = 0;
    Settings.SizeBallonToText = 0;
    LoadCharacter("Alfa", true);
    EXPECT_EQ(fake.Loaded("Alfa").styles, (std::vector<std::uint32_t>{0x0220000F, 0x0220000F, 0x0220000F, 0x0220000E,
                                                                      0x0220000A, 0x02200002, 0x02200000}));
    Settings.ShowBalloon = 1;
    Settings.BalloonAutoHide = 1;
    Settings.BalloonAutoPace = 1;
    Settings.SizeBallonToText = 1;
    ApplyCharacterSettings();
    EXPECT_EQ(fake.Loaded("Alfa").styles.back(), 0x0220000Fu);
}

TEST_F(CharacterTest, FontSizeAndSoundEffectsAreApplied)
{
    Settings.BalloonFontName = "Comic Neue";
    Settings.BalloonFontSize = 14;
    Settings.EnableSoundEffects = 5;
    LoadCharacter("Alfa", true);
    EXPECT_EQ(fake.Loaded("Alfa").fontName, "Comic Neue");
    EXPECT_EQ(fake.Loaded("Alfa").fontSize, 14);
    EXPECT_EQ(fake.agent.soundEffects, true);
    Settings.EnableSoundEffects = 0;
    ApplyCharacterSettings();
    EXPECT_EQ(fake.agent.soundEffects, false);
}

TEST_F(CharacterTest, SizesAreHalfOneAndTwo)
{
    fake.agent.prepare = [](fakes::FakeCharacter& character) {
        character.originalWidth = 129;
        character.originalHeight = 163;
    };
    Settings.CharacterSize = 0;
    LoadCharacter("Alfa", true);
    EXPECT_EQ(fake.Loaded("Alfa").width, 64);
    EXPECT_EQ(fake.Loaded("Alfa").height, 82);
    Settings.CharacterSize = 1;
    ApplyCharacterSettings();
    EXPECT_EQ(fake.Loaded("Alfa").width, 129);
    EXPECT_EQ(fake.Loaded("Alfa").height, 163);
    Settings.CharacterSize = 2;
    ApplyCharacterSettings();
    EXPECT_EQ(fake.Loaded("Alfa").width, 258);
    EXPECT_EQ(fake.Loaded("Alfa").height, 326);
}

TEST_F(CharacterTest, TwiceAWidthOver16383OverflowsAndIsReported)
{
    Settings.CharacterSize = 2;
    fake.agent.prepare = [](fakes::FakeCharacter& character) { character.originalWidth = 16383; };
    LoadCharacter("Alfa", true);
    EXPECT_EQ(fake.Loaded("Alfa").width, 32766);
    fake.agent.prepare = [](fakes::FakeCharacter& character) { character.originalWidth = 16384; };
    EXPECT_TRUE(fake.Ends([this] { LoadCharacter("Bravo", false); }));
    EXPECT_NE(
        fake.windows.boxes.back().text.find("Error No. - 6\r\nError Description - Overflow\r\nFunction/Module ID - 2"),
        std::string::npos);
}

} // namespace

} // namespace voxmate
