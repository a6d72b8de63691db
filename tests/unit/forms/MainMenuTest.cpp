// The main window's menus and what their simple items do.
#include "forms/frmMain.h"
#include "tests/fakes/ProgramTest.h"

#include <gtest/gtest.h>

namespace voxmate
{

namespace
{

using Lines = std::vector<std::string>;

class MainMenuTest : public ProgramTest
{
protected:
    frmMain form{program};

    void Start()
    {
        fake.StoreDefaults();
        fake.store.SetDword("GreetingEnabled", 0);
        StartMain();
        fake.log.clear();
    }

    /// Each item with its name and caption, two blanks deeper a level; rules by their caption alone.
    static void Describe(const Menu& menu, const std::string& indent, Lines& lines)
    {
        lines.push_back(indent + menu.Name + " " + menu.Caption.get());
        for (const Menu* item : menu.Items())
            Describe(*item, indent + "  ", lines);
    }
};

TEST_F(MainMenuTest, TheTreeHasEveryItemInItsOrderWithItsCaption)
{
    Lines lines;
    for (const Menu* menu : form.MenuBar)
        Describe(*menu, "", lines);
    EXPECT_EQ(lines, (Lines{"mnuFile &File",
                            "  mnuMainChar &Characters",
                            "    mnuChar Character1",
                            "  mnuPlayWav &Play a WAV File",
                            "  mnuTip &Tip of the Day",
                            "  mnuSep2 -",
                            "  mnuOptions &Options",
                            "  mnuSep1 -",
                            "  mnuSysTray Put in &System Tray",
                            "  mnuExit &Exit",
                            "mnuSpeak &Speak",
                            "  mnuWho &Who Am I?",
                            "  mnuDate Tell Me the &Date",
                            "  mnuTime Tell Me the &Time",
                            "  mnuReadClip Read &Clipboard",
                            "  mnuSep3 -",
                            "  mnuWord Open &Word Document to Read",
                            "  mnuText Open &Text Document to Read",
                            "mnuReminder &Reminders",
                            "  mnuShowAll &Show All Reminders",
                            "  mnuEDRem Enable/Disable &Reminders",
                            "    mnuEReminders &Enable Reminders",
                            "    mnuDReminders &Disable Reminders",
                            "mnuHelpMain &Help",
                            "  mnuHelp &Help",
                            "  mnuSep4 -",
                            "  mnuDownChar Download More &Characters",
                            "    mnuDownChar1 site1",
                            "    mnuDownChar2 site2",
                            "    mnuDownChar3 site3",
                            "  mnuSpEng Download More &Voice Types",
                            "    mnuSpEng1 site1",
                            "    mnuSpEng2 site2",
                            "  mnuSep5 -",
                            "  mnuAbout &About Voxmate"}));
    lines.clear();
    Describe(form.mnuTray, "", lines);
    EXPECT_EQ(lines, (Lines{"mnuTray Tray", "  mnuTrayExit &Exit"}));
    lines.clear();
    Describe(form.mnuCharRC, "", lines);
    EXPECT_EQ(lines, (Lines{"mnuCharRC Char Right Click", "  mnuStop &Stop"}));
}

TEST_F(MainMenuTest, StopOfTheCharactersPopUpStopsEverything)
{
    Start();
    form.mnuStop.UserClick();
    EXPECT_EQ(StopRequested, True);
    EXPECT_EQ(fake.log, (Lines{"StopAll Move, Play, Speak", "Play RestPose"}));
}

TEST_F(MainMenuTest, OptionsTipAndAboutOpenTheirWindows)
{
    Start();
    form.mnuOptions.UserClick();
    form.cmdOptions.UserClick();
    form.mnuTip.UserClick();
    form.mnuAbout.UserClick();
    Lines shown;
    for (const std::string& call : fake.log) {
        if (call.starts_with("Window "))
            shown.push_back(call);
    }
    EXPECT_EQ(shown, (Lines{"Window frmOptions shown", "Window frmOptions shown", "Window frmTip shown",
                            "Window frmAbout shown"}));
}

TEST_F(MainMenuTest, EveryButtonHasItsToolTip)
{
    const std::vector<std::pair<CommandButton*, std::string>> buttons = {
        {&form.cmdDate, "What's today's date?"},
        {&form.cmdTime, "What time is it?"},
        {&form.cmdClip, "Speak Clipboard Text"},
        {&form.cmdCharIntro, "Do you know who am I ?"},
        {&form.cmdText, "Open and Read a Text Document"},
        {&form.cmdWord, "Open and Read a Word Document"},
        {&form.cmdOptions, "User Options"},
        {&form.cmdCharacter, "Choose Character by Right Click. Show Character on Left Click"},
        {&form.cmdStop, "Stop Everything !!!"},
        {&form.cmdSpeak, "Speak the textbox text"},
    };
    for (const auto& [button, tip] : buttons) {
        EXPECT_EQ(button->ToolTipText.get(), tip) << button->Name;
        EXPECT_FALSE(button->Picture.empty()) << button->Name;
    }
}

TEST_F(MainMenuTest, HelpIsAnnouncedAndShown)
{
    Start();
    fake.windows.whileBoxIsUp = [this](const auto&) { EXPECT_EQ(IsBusy, True); };
    form.mnuHelp.UserClick();
    ASSERT_EQ(fake.windows.boxes.size(), 1u);
    EXPECT_EQ(fake.windows.boxes[0].text, "Help will be available very soon. Author is preparing the help.");
    EXPECT_EQ(fake.windows.boxes[0].title, "Voxmate - Help");
    EXPECT_EQ(fake.windows.boxes[0].style, 64);
    EXPECT_EQ(IsBusy, False);
    EXPECT_EQ(fake.log,
              (Lines{"Play Suggest", "Show", "DoEvents",
                     "Speak \\Pit=50\\ \\Spd=156\\Dear Buddy, \r\nHelp will be available very soon. Author is "
                     "preparing the help.",
                     "Play RestPose", "MsgBox Voxmate - Help"}));
    EXPECT_EQ(form.stsBar.Panels()[0].text, "Busy...");
}

TEST_F(MainMenuTest, HelpShowsItsOwnTextWhenAnotherMessageComesMeanwhile)
{
    Start();
    fake.LetAnotherMessageCome();
    form.mnuHelp.UserClick();
    ASSERT_EQ(fake.windows.boxes.size(), 2U);
    EXPECT_EQ(fake.windows.boxes[1].text, "Help will be available very soon. Author is preparing the help.");
}

TEST_F(MainMenuTest, EachDownloadItemOpensItsPageMaximised)
{
    Start();
    for (Menu* item : {&form.mnuDownChar1, &form.mnuDownChar2, &form.mnuDownChar3, &form.mnuSpEng1, &form.mnuSpEng2})
        item->UserClick();
    EXPECT_EQ(fake.process.commands, (Lines{"explorer.exe file:///C:/WINDOWS/web/characters.html style 3",
                                            "explorer.exe file:///C:/WINDOWS/web/installing.html style 3",
                                            "explorer.exe file:///C:/WINDOWS/web/making.html style 3",
                                            "explorer.exe file:///C:/WINDOWS/web/installing.html style 3",
                                            "explorer.exe file:///C:/WINDOWS/web/voices.html style 3"}));
    EXPECT_EQ(ShellTaskId, 4711);
}

TEST_F(MainMenuTest, APageThatCannotBeOpenedIsLeftOnTheClipboard)
{
    Start();
    fake.process.shellFails = true;
    form.mnuSpEng2.UserClick();
    EXPECT_EQ(fake.windows.clipboardClears, 1);
    EXPECT_EQ(fake.windows.clipboard, "file:///C:/WINDOWS/web/voices.html");
    ASSERT_EQ(fake.windows.boxes.size(), 1u);
    EXPECT_EQ(fake.windows.boxes[0].title, "Voxmate - URL Open Error");
    EXPECT_EQ(fake.windows.boxes[0].style, 48);
    EXPECT_EQ(fake.windows.boxes[0].text,
              "Voxmate is unable to open the following URL:\r\n"
              "file:///C:/WINDOWS/web/voices.html\r\n\r\n"
              "This URL has been copied to your Clipboard.\r\n"
              "Open Internet Explorer and paste in the Address Bar and click 'GO' or press 'Enter'");
}

TEST_F(MainMenuTest, PuttingItInTheTrayTwiceAddsTheSameIconTwice)
{
    Start();
    form.mnuSysTray.UserClick();
    EXPECT_FALSE(form.IsShown());
    form.TrayPict.UserMouseMove(515 * 15);
    EXPECT_TRUE(form.IsShown());
    form.mnuSysTray.UserClick();
    EXPECT_FALSE(form.IsShown());
    EXPECT_EQ(fake.log, (Lines{"Shell_NotifyIconA 0", "Window frmMain hidden", "Window frmMain shown",
                               "Shell_NotifyIconA 0", "Window frmMain hidden"}));
    ASSERT_EQ(fake.windows.trayCalls.size(), 2u);
    for (const auto& [message, data] : fake.windows.trayCalls) {
        EXPECT_EQ(data.recordSize, 88u);
        EXPECT_EQ(data.window, 0x1234u);
        EXPECT_EQ(data.iconId, 1u);
        EXPECT_EQ(data.flags, 7u);
        EXPECT_EQ(data.callbackMessage, 512u);
        EXPECT_EQ(data.icon, 0x5678u);
        EXPECT_STREQ(data.tip.data(), "Voxmate");
    }
}

TEST_F(MainMenuTest, OtherMouseMessagesOfTheIconAreIgnored)
{
    Start();
    form.mnuSysTray.UserClick();
    fake.log.clear();
    for (int message = 512; message < 526; ++message) {
        if (message != 515 && message != 517)
            form.TrayPict.UserMouseMove(message * 15);
    }
    EXPECT_EQ(fake.log, Lines{});
}

TEST_F(MainMenuTest, MovesOverTheWindowAreReadLikeTheIconsMessages)
{
    Start();
    for (int column = 0; column < 600; ++column) {
        if (column != 515 && column != 517)
            form.UserMouseMove(column * 15);
    }
    EXPECT_EQ(fake.log, Lines{});
    form.UserMouseMove(515 * 15);
    form.UserMouseMove(517 * 15);
    EXPECT_EQ(fake.log, (Lines{"Window frmMain shown", "PopupMenu mnuTrayExit"}));
}

// A whole number of pixels is the nearest one, not the one below.
TEST_F(MainMenuTest, MouseMessagesAreRoundedToWholeNumbers)
{
    Start();
    form.mnuSysTray.UserClick();
    const Lines expected{"Window frmMain shown", "Window frmMain activated", "PopupMenu mnuTray"};
    fake.log.clear();
    for (const double message : {514.4, 514.6, 515.6, 516.4, 517.4, 517.6})
        form.TrayPict.UserMouseMove(message * 15);
    EXPECT_EQ(fake.log, expected);
    fake.log.clear();
    for (const double column : {514.4, 514.6, 515.6, 516.4, 517.4, 517.6})
        form.UserMouseMove(column * 15);
    EXPECT_EQ(fake.log, (Lines{"Window frmMain shown", "PopupMenu mnuTrayExit"}));
}

TEST_F(MainMenuTest, TheTipsMenuItemFillsItsWindow)
{
    fake.files.texts["C:\\Voxmate\\VoxmateTips.txt"] = "Only one";
    Start();
    form.mnuTip.UserClick();
    EXPECT_EQ(form.Tip().TipText(), "Only one");
}

TEST_F(MainMenuTest, TheTimersTheIconAndTheFrameAreAsLaidOut)
{
    EXPECT_EQ(form.SysTime.Interval, 1000);
    EXPECT_TRUE(form.SysTime.Enabled);
    EXPECT_EQ(form.RemTimer.Interval, 800);
    EXPECT_FALSE(form.RemTimer.Enabled);
    EXPECT_EQ(form.TrayPict.Picture, "voxmate");
    EXPECT_EQ(form.TrayPict.IconMenu, &form.mnuTray);
    const auto plain = [](std::string caption) {
        std::erase(caption, '&');
        return caption;
    };
    EXPECT_EQ(plain(form.Frame2.Caption), "Voice Settings");
    EXPECT_EQ(plain(form.chkWhisper.Caption), "Whisper");
    EXPECT_EQ(plain(form.lblVoice.Caption), "Voice Types");
    EXPECT_EQ(plain(form.lblSpeedName.Caption), "Speed");
    EXPECT_EQ(plain(form.lblPitchName.Caption), "Pitch");
    EXPECT_EQ(plain(form.lblVoiceName.Caption), "Voice");
}

} // namespace

} // namespace voxmate
