// What other programs and the command line ask for: coming to the front, files, actions, and installing a character.
#include "ExtrasTest.h"

namespace voxmate
{

namespace
{

class OpeningTest : public ExtrasTest
{
protected:
    OpeningTest()
    {
        fake.files.log = &fake.log;
        fake.files.texts["C:\\Bo.acs"] = "bytes";
        fake.files.texts["C:\\a.TXT"] = "One\nTwo";
        fake.files.texts["C:\\b.txt"] = "Three";
        fake.files.files.insert("C:\\song.xyz");
        documents.told["C:\\song.xyz"] = {readers::Refusal::Unknown};
    }
    void Open(const std::vector<std::string>& files) { desktop.Called({files, ""}); }
    void Answer(const std::vector<int>& answers) { fake.windows.answers.assign(answers.begin(), answers.end()); }
    const std::string question = "Voxmate - Install Character: Do you want to install this character?\r\n\r\nName: "
                                 "Bo\r\nDescription: A robot\r\nSize: 2.3 MB\r\nFile: C:\\Bo.acs";
    const std::string seeIt = "Voxmate - Install Character: Bo is installed. Do you want to see this character now?";
};

TEST_F(OpeningTest, TheProgramIsCalledFromItsStartOn)
{
    extras.Begin({}, [this] { fake.log.push_back("splash"); });
    EXPECT_EQ(fake.log, (Lines{"Listen", "splash"}));
}

TEST_F(OpeningTest, ACallBringsTheWindowToTheFront)
{
    Begin();
    form.mnuSysTray.UserClick();
    fake.log.clear();
    desktop.Called({});
    EXPECT_EQ(fake.log, (Lines{"Window frmMain shown", "Window frmMain activated"}));
}

TEST_F(OpeningTest, DuringTheSplashTheWindowComesAsItWouldAnyway)
{
    extras.Begin({}, [] {});
    desktop.Called({});
    TimerOf("tmrWaiting").Fire();
    EXPECT_FALSE(form.IsShown());
    StartMain();
    fake.log.clear();
    TimerOf("tmrWaiting").Fire();
    EXPECT_TRUE(fake.log.empty());
    EXPECT_FALSE(TimerOf("tmrWaiting").Enabled);
}

TEST_F(OpeningTest, TextFilesAreReadAloud)
{
    Begin();
    Open({"C:\\a.TXT"});
    Lines spoken;
    for (const std::string& call : fake.log) {
        if (call.starts_with("Speak "))
            spoken.push_back(call);
    }
    EXPECT_EQ(spoken, (Lines{"Speak \\Pit=50\\ \\Spd=156\\One", "Speak \\Pit=50\\ \\Spd=156\\Two\\Pau=350\\"}));
    EXPECT_TRUE(fake.windows.boxes.empty());
    EXPECT_TRUE(form.IsShown());
}

TEST_F(OpeningTest, FilesOfTheCommandLineWaitForTheEndOfTheStart)
{
    CommandLine line;
    line.Call.Files = {"C:\\b.txt"};
    extras.Begin(line, [] {});
    TimerOf("tmrWaiting").Fire();
    EXPECT_FALSE(Logged("Speak \\Pit=50\\ \\Spd=156\\Three\\Pau=350\\"));
    StartMain();
    TimerOf("tmrWaiting").Fire();
    EXPECT_TRUE(Logged("Speak \\Pit=50\\ \\Spd=156\\Three\\Pau=350\\"));
    EXPECT_FALSE(TimerOf("tmrWaiting").Enabled);
}

TEST_F(OpeningTest, AFileThatComesWhileABoxIsUpWaitsForIt)
{
    Begin();
    int boxes = 0;
    fake.windows.whileBoxIsUp = [&](const auto&) {
        if (boxes++ == 0)
            Open({"C:\\b.txt"});
        EXPECT_FALSE(Logged("Speak \\Pit=50\\ \\Spd=156\\Three\\Pau=350\\"));
    };
    Open({"C:\\song.xyz", "C:\\nothing.txt"});
    EXPECT_EQ(Boxes(), (Lines{"Voxmate - File Error: \"song.xyz\" cannot be read: it is of no kind that Voxmate knows.",
                              "Voxmate - File Error: File not found:\r\nC:\\nothing.txt"}));
    EXPECT_TRUE(Logged("Speak \\Pit=50\\ \\Spd=156\\Three\\Pau=350\\"));
}

TEST_F(OpeningTest, AnAddressElsewhereIsToldOf)
{
    Begin();
    Open({"sftp://host/a.txt"});
    EXPECT_EQ(Boxes(),
              (Lines{"Voxmate - File Error: The following file is not on this computer:\r\nsftp://host/a.txt"}));
}

TEST_F(OpeningTest, AnEmptyTextFileIsToldOfAsByTheButton)
{
    Begin();
    fake.files.texts["C:\\empty.txt"] = "";
    Open({"C:\\empty.txt"});
    EXPECT_EQ(Boxes(), (Lines{"Voxmate - File Error: The below TEXT document you are trying to open is "
                              "empty:\r\nC:\\empty.txt"}));
    EXPECT_EQ(program.Messages.CurrentRoutineId, 4);
}

TEST_F(OpeningTest, ActionsNeedNoWindow)
{
    Begin();
    form.mnuSysTray.UserClick();
    fake.windows.clipboard = "Copied";
    desktop.Called({{}, "read-clipboard"});
    EXPECT_TRUE(Logged("Speak \\Pit=50\\ \\Spd=156\\Copied"));
    fake.log.clear();
    desktop.Called({{}, "stop"});
    EXPECT_EQ(fake.log, (Lines{"StopAll Move, Play, Speak", "Play RestPose"}));
    desktop.Called({{}, "show-reminders"});
    EXPECT_TRUE(Logged("Window frmReminder shown"));
    fake.log.clear();
    desktop.Called({{}, "no such action"});
    EXPECT_TRUE(fake.log.empty());
    EXPECT_FALSE(form.IsShown());
}

TEST_F(OpeningTest, ACharacterIsLookedAtInstalledAndShownAsTheUserSays)
{
    Begin();
    Answer({vbYes, vbYes});
    Open({"C:\\Bo.acs"});
    EXPECT_EQ(Boxes(), (Lines{question, seeIt}));
    EXPECT_EQ(fake.windows.boxes[0].style, vbYesNo + vbQuestion);
    EXPECT_TRUE(Logged("CopyFile C:\\Bo.acs to C:\\Chars\\Bo.acs"));
    EXPECT_TRUE(Logged("Load Bo C:\\Chars\\Bo.acs"));
    EXPECT_EQ(Settings.LastCharacter, "Bo");
    EXPECT_EQ(Settings.CharacterPath, "C:\\Chars\\");
    Lines menu;
    for (const Menu* item : form.mnuMainChar.Items())
        menu.push_back(item->Caption.get() + (item->Checked ? " checked" : ""));
    EXPECT_EQ(menu, (Lines{"Alfa", "Bo checked", "Bravo"}));
}

TEST_F(OpeningTest, NothingIsDoneWithoutAYes)
{
    Begin();
    Answer({vbNo});
    Open({"C:\\Bo.acs"});
    EXPECT_EQ(Boxes(), (Lines{question}));
    EXPECT_EQ(fake.log, (Lines{"Window frmMain shown", "Window frmMain activated", "Look C:\\Bo.acs",
                               "MsgBox Voxmate - Install Character"}));
}

TEST_F(OpeningTest, AnInstalledCharacterNeedNotBeShown)
{
    Begin();
    Answer({vbYes, vbNo});
    Open({"C:\\Bo.acs"});
    EXPECT_EQ(Boxes(), (Lines{question, seeIt}));
    EXPECT_EQ(Settings.LastCharacter, "Alfa");
    EXPECT_FALSE(Logged("Unload Alfa"));
    EXPECT_EQ(form.mnuMainChar.Items().size(), 3u);
}

TEST_F(OpeningTest, AnInstalledCharacterIsReplacedOnlyIfTheUserSaysSo)
{
    Begin();
    fake.files.texts["C:\\Chars\\Bo.acs"] = "old";
    Answer({vbYes, vbNo});
    Open({"C:\\Bo.acs"});
    EXPECT_EQ(Boxes(), (Lines{question, "Voxmate - Install Character: A character of this name is installed "
                                        "already:\r\nC:\\Chars\\Bo.acs\r\nDo you want to replace it?"}));
    EXPECT_EQ(fake.windows.boxes[1].style, vbYesNo + vbQuestion + vbDefaultButton2);
    EXPECT_EQ(fake.files.texts["C:\\Chars\\Bo.acs"], "old");
    fake.windows.boxes.clear();
    Answer({vbYes, vbYes, vbNo});
    Open({"C:\\Bo.acs"});
    EXPECT_EQ(fake.files.texts["C:\\Chars\\Bo.acs"], "bytes");
    EXPECT_EQ(Boxes().back(), seeIt);
}

TEST_F(OpeningTest, ACharacterThatIsInPlaceIsNotCopiedOntoItself)
{
    Begin();
    fake.files.texts["C:\\Chars\\Bo.acs"] = "bytes";
    Answer({vbYes, vbYes});
    Open({"C:\\Chars\\Bo.acs"});
    EXPECT_FALSE(Logged("CopyFile C:\\Chars\\Bo.acs to C:\\Chars\\Bo.acs"));
    EXPECT_EQ(Settings.LastCharacter, "Bo");
}

TEST_F(OpeningTest, WhereTheFolderIsReadOnlyAFolderOfTheUsersTakesItsPlaceWithAllCharacters)
{
    Begin();
    fake.files.readOnlyFolders.insert("C:\\Chars\\");
    Answer({vbYes, vbNo});
    Open({"C:\\Bo.acs"});
    const Lines expected{"CreateFolder C:\\Voxmate\\Character\\",
                         "LinkFile C:\\Chars\\Alfa.acs as C:\\Voxmate\\Character\\Alfa.acs",
                         "LinkFile C:\\Chars\\Bravo.acs as C:\\Voxmate\\Character\\Bravo.acs",
                         "CopyFile C:\\Bo.acs to C:\\Voxmate\\Character\\Bo.acs"};
    Lines changes;
    for (const std::string& call : fake.log) {
        if (call.starts_with("C") || call.starts_with("LinkFile"))
            changes.push_back(call);
    }
    EXPECT_EQ(changes, expected);
    EXPECT_EQ(Settings.CharacterPath, "C:\\Voxmate\\Character\\");
    EXPECT_EQ(fake.store.At("CharacterPath").data, "C:\\Voxmate\\Character\\");
    // The character on the desktop stays.
    EXPECT_EQ(Settings.LastCharacter, "Alfa");
    EXPECT_FALSE(Logged("Unload Alfa"));
    EXPECT_EQ(form.mnuMainChar.Items().size(), 3u);
}

TEST_F(OpeningTest, AFileThatIsNoCharacterIsToldOfBeforeAnythingIsAsked)
{
    Begin();
    lookFault = "The character file \"C:\\Bo.acs\" cannot be used: it is too short.";
    Open({"C:\\Bo.acs"});
    EXPECT_EQ(Boxes(), (Lines{"Voxmate - File Error: " + lookFault}));
    EXPECT_FALSE(Logged("CopyFile C:\\Bo.acs to C:\\Chars\\Bo.acs"));
}

TEST_F(OpeningTest, AFullDiskIsToldOf)
{
    Begin();
    fake.files.failures.emplace("CopyFile C:\\Bo.acs to C:\\Chars\\Bo.acs", DiskFull());
    Answer({vbYes});
    Open({"C:\\Bo.acs"});
    EXPECT_EQ(Boxes(), (Lines{question, "Voxmate - File Error: The following character cannot be installed (Disk "
                                        "full):\r\nC:\\Bo.acs"}));
    EXPECT_EQ(form.mnuMainChar.Items().size(), 2u);
}

TEST_F(OpeningTest, TextsOfAStrangersFileStayOnTheirLines)
{
    Begin();
    look = {"Bo\r\nSize: 1 byte", "\xE2\x80\xAE" + std::string(400, 'x'), 999};
    Answer({vbNo});
    Open({"C:\\Bo.acs"});
    EXPECT_EQ(Boxes(), (Lines{"Voxmate - Install Character: Do you want to install this character?\r\n\r\nName: Bo  "
                              "Size: 1 byte\r\nDescription: " +
                              std::string(300, 'x') + "...\r\nSize: 999 bytes\r\nFile: C:\\Bo.acs"}));
}

TEST_F(OpeningTest, SizesAreTextsForPeople)
{
    EXPECT_EQ(SizeText(0), "0 bytes");
    EXPECT_EQ(SizeText(1), "1 byte");
    EXPECT_EQ(SizeText(1000), "1 kB");
    EXPECT_EQ(SizeText(1499), "1 kB");
    EXPECT_EQ(SizeText(999499), "999 kB");
    EXPECT_EQ(SizeText(999500), "1.0 MB");
    EXPECT_EQ(SizeText(12345678), "12.3 MB");
}

} // namespace

} // namespace voxmate
