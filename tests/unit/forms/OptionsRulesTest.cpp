// What the options dialog checks, enables, resets and starts.
#include "tests/unit/forms/OptionsForm.h"

#include <algorithm>
#include <set>

namespace voxmate
{

namespace
{

using Names = std::set<std::string>;

class OptionsRulesTest : public OptionsFormTest
{
protected:
    Names Disabled() const
    {
        Names names;
        for (const Control* control : form.Controls()) {
            if (!control->Enabled)
                names.insert(control->Name);
        }
        names.erase("cmdApply");
        return names;
    }
    /// Disabled fields are greyed, all others are not.
    void ExpectGreyWhereDisabled() const
    {
        for (const Control* control : form.Controls()) {
            const auto* box = dynamic_cast<const TextBox*>(control);
            if (!box)
                continue;
            EXPECT_EQ(box->BackColor.get(), box->Enabled ? 0x80000005u : 0x8000000Fu) << box->Name;
        }
    }
    void ExpectComplaint(const std::string& message)
    {
        ASSERT_EQ(fake.windows.boxes.size(), 1u);
        EXPECT_EQ(fake.windows.boxes[0].text, message);
        EXPECT_EQ(fake.windows.boxes[0].style, 48);
        EXPECT_EQ(fake.windows.boxes[0].title, "Voxmate - Options in Error");
        EXPECT_EQ(fake.log, (Lines{"Status Busy...", "Play Confused", "Show", "DoEvents",
                                   "Speak \\Pit=50\\ \\Spd=156\\Dear Buddy, \r\n" + message, "Play RestPose",
                                   "MsgBox Voxmate - Options in Error"}));
        EXPECT_EQ(MessageText, message);
        EXPECT_EQ(IsBusy, False);
        fake.windows.boxes.clear();
        fake.log.clear();
    }
};

const Names alertControls{"fraAction",          "optAction(0)", "optAction(1)", "fraGrad",     "optGradiantType(0)",
                          "optGradiantType(1)", "fraShape",     "optShape(0)",  "optShape(1)", "fraColorOption",
                          "optColor(0)",        "optColor(1)",  "optColor(2)",  "optColor(3)", "chkAutoClose",
                          "txtAutoClose",       "cmdPreview"};
const Names greetingControls{"Frame1",      "OptGreet(0)", "OptGreet(1)", "OptGreet(2)",
                             "OptGreet(3)", "OptGreet(4)", "txtGreeting"};
const Names balloonControls{"Frame2",      "cmdFont",        "chkSizeToText", "chkAutoPace",
                            "chkAutoHide", "txtCharPerLine", "txtTotalLines"};

Names operator+(Names all, const Names& more)
{
    all.insert(more.begin(), more.end());
    return all;
}

TEST_F(OptionsRulesTest, TheRulesHoldForTheSettingsThatTheDialogOpensOn)
{
    Open();
    EXPECT_EQ(Disabled(), (Names{"chkOnTop", "txtAutoClose"}));
    ExpectGreyWhereDisabled();
    form.Unload();
    Settings.ShowBalloon = 0;
    Settings.GreetingEnabled = 0;
    Settings.ReminderType = 1;
    Settings.ReminderSentenceSpeak = 0;
    Open();
    EXPECT_EQ(Disabled(), balloonControls + greetingControls + alertControls + Names{"txtRemText"});
    ExpectGreyWhereDisabled();
    form.Unload();
    Settings.ShowBalloon = 1;
    Settings.SizeBallonToText = 1;
    Settings.GreetingEnabled = 1;
    Settings.ReminderType = 0;
    Settings.ReminderSentenceSpeak = 1;
    Settings.RemAlertClose = 1;
    Open();
    EXPECT_EQ(Disabled(), (Names{"chkOnTop", "txtTotalLines"}));
    ExpectGreyWhereDisabled();
}

TEST_F(OptionsRulesTest, TheBalloonsSettingsNeedTheBalloon)
{
    Open();
    form.chkBalloon.UserClick(false);
    EXPECT_EQ(Disabled(), (balloonControls + Names{"chkOnTop", "txtAutoClose"}));
    ExpectGreyWhereDisabled();
    form.chkBalloon.UserClick(true);
    EXPECT_EQ(Disabled(), (Names{"chkOnTop", "txtAutoClose"}));
    form.chkSizeToText.UserClick(true);
    EXPECT_FALSE(form.txtTotalLines.Enabled);
    ExpectGreyWhereDisabled();
    form.chkBalloon.UserClick(false);
    form.chkBalloon.UserClick(true);
    EXPECT_FALSE(form.txtTotalLines.Enabled);
    EXPECT_TRUE(form.txtCharPerLine.Enabled);
    form.chkSizeToText.UserClick(false);
    EXPECT_TRUE(form.txtTotalLines.Enabled);
    ExpectGreyWhereDisabled();
}

TEST_F(OptionsRulesTest, GreetingAndIntroductionExcludeEachOtherAndBothShowTheCharacter)
{
    Settings.GreetingEnabled = 0;
    Settings.ShowCharacterAtStart = 0;
    Open();
    form.chkIntroAtStart.UserClick(true);
    EXPECT_EQ(form.chkShowStart.Value, 1);
    EXPECT_EQ(form.chkGreeting.Value, 0);
    EXPECT_EQ(Disabled(), (greetingControls + Names{"chkOnTop", "txtAutoClose"}));
    form.chkGreeting.UserClick(true);
    EXPECT_EQ(form.chkIntroAtStart.Value, 0);
    EXPECT_EQ(form.chkShowStart.Value, 1);
    EXPECT_EQ(Disabled(), (Names{"chkOnTop", "txtAutoClose"}));
    ExpectGreyWhereDisabled();
    form.chkIntroAtStart.UserClick(true);
    EXPECT_EQ(form.chkGreeting.Value, 0);
    EXPECT_EQ(Disabled(), (greetingControls + Names{"chkOnTop", "txtAutoClose"}));
    form.chkIntroAtStart.UserClick(false);
    EXPECT_EQ(form.chkShowStart.Value, 1);
    form.chkGreeting.UserClick(true);
    form.chkGreeting.UserClick(false);
    EXPECT_EQ(Disabled(), (greetingControls + Names{"chkOnTop", "txtAutoClose"}));
}

TEST_F(OptionsRulesTest, WithoutTheCharacterAtStartupThereIsNeitherGreetingNorIntroduction)
{
    Open();
    form.chkShowStart.UserClick(false);
    EXPECT_EQ(form.chkGreeting.Value, 0);
    EXPECT_EQ(form.chkIntroAtStart.Value, 0);
    EXPECT_EQ(Disabled(), (greetingControls + Names{"chkOnTop", "txtAutoClose"}));
    form.chkIntroAtStart.UserClick(true);
    form.chkShowStart.UserClick(false);
    EXPECT_EQ(form.chkIntroAtStart.Value, 0);
    form.chkShowStart.UserClick(true);
    EXPECT_EQ(form.chkGreeting.Value, 0);
}

TEST_F(OptionsRulesTest, TheSentenceNeedsItsBox)
{
    Open();
    form.chkSpkSentence.UserClick(false);
    EXPECT_FALSE(form.txtRemText.Enabled);
    form.chkSpkSentence.UserClick(true);
    EXPECT_TRUE(form.txtRemText.Enabled);
}

TEST_F(OptionsRulesTest, AutoCloseNeedsItsBox)
{
    Open();
    form.chkAutoClose.UserClick(true);
    EXPECT_TRUE(form.txtAutoClose.Enabled);
    EXPECT_EQ(form.txtAutoClose.BackColor, 0x80000005u);
    form.chkAutoClose.UserClick(false);
    EXPECT_FALSE(form.txtAutoClose.Enabled);
    EXPECT_EQ(form.txtAutoClose.BackColor, 0x8000000Fu);
}

TEST_F(OptionsRulesTest, TheKindOfReminderDecidesWhichOfItsControlsCount)
{
    Open();
    form.chkAutoClose.UserClick(true);
    form.comRemType.UserSelect(1);
    EXPECT_EQ(Disabled(), alertControls);
    ExpectGreyWhereDisabled();
    form.comRemType.UserSelect(0);
    EXPECT_EQ(Disabled(), Names{"chkOnTop"});
    form.chkAutoClose.UserClick(false);
    form.comRemType.UserSelect(1);
    form.comRemType.UserSelect(0);
    EXPECT_EQ(Disabled(), (Names{"chkOnTop", "txtAutoClose"}));
    ExpectGreyWhereDisabled();
}

TEST_F(OptionsRulesTest, TheColourGoesWithItsButton)
{
    Open();
    EXPECT_EQ(form.SelectedAlertColor, 200 | 255 << 8 | 200 << 16);
    form.optColor(0).UserClick();
    EXPECT_EQ(form.SelectedAlertColor, 255 | 255 << 8 | 192 << 16);
    form.optColor(1).UserClick();
    EXPECT_EQ(form.SelectedAlertColor, 160 | 195 << 8 | 255 << 16);
    form.optColor(2).UserClick();
    EXPECT_EQ(form.SelectedAlertColor, 255 | 200 << 8 | 200 << 16);
    EXPECT_TRUE(form.cmdApply.Enabled);
    form.cmdCancel.UserClick();
    Open();
    EXPECT_EQ(form.SelectedAlertColor, 200 | 255 << 8 | 200 << 16);
}

TEST_F(OptionsRulesTest, TheNumberFieldsTakeDigitsBackspaceAndEnterOnly)
{
    Open();
    for (TextBox* box : {&form.txtAutoClose, &form.txtCharPerLine, &form.txtTimeInterval, &form.txtTotalLines}) {
        for (const int key : std::initializer_list<int>{'0', '5', '9', 8, 13})
            EXPECT_TRUE(box->UserKeyPress(key)) << box->Name << key;
        for (const int key : std::initializer_list<int>{'/', ':', 'a', '-', '.', ' ', 9, 27, 0x0663})
            EXPECT_FALSE(box->UserKeyPress(key)) << box->Name << key;
    }
    EXPECT_TRUE(form.txtUserName.UserKeyPress('a'));
}

TEST_F(OptionsRulesTest, CharactersPerLineMustBeBetween8And255)
{
    for (const char* wrong : {"", "  ", "7", "0", "256", "9999999999999"}) {
        Open();
        FocusPeer peer;
        form.txtCharPerLine.SetPeer(&peer);
        form.SSTab1.Tab = 3;
        form.txtCharPerLine.UserEdit(wrong);
        form.cmdApply.UserClick();
        ExpectComplaint("No. of characters per line must be between 8 and 255");
        EXPECT_EQ(form.SSTab1.Tab, 0);
        EXPECT_EQ(peer.focused, 1);
        EXPECT_TRUE(form.cmdApply.Enabled);
        EXPECT_EQ(Settings.BalloonCharactersPerLine, 32);
        form.Unload();
    }
    for (const char* right : {"8", "99", "255"}) {
        Open();
        form.txtCharPerLine.UserEdit(right);
        form.cmdApply.UserClick();
        EXPECT_TRUE(fake.windows.boxes.empty()) << right;
        EXPECT_EQ(fake.store.Dword("BalloonCharactersPerLine"), std::stoi(right));
        form.Unload();
    }
}

TEST_F(OptionsRulesTest, TotalLinesMustBeBetween1And128)
{
    for (const char* wrong : {"", "0", "129"}) {
        Open();
        FocusPeer peer;
        form.txtTotalLines.SetPeer(&peer);
        form.txtTotalLines.UserEdit(wrong);
        form.cmdApply.UserClick();
        ExpectComplaint("Total number of lines must be between 1 and 128");
        EXPECT_EQ(peer.focused, 1);
        form.Unload();
    }
    for (const char* right : {"1", "17", "99"}) {
        Open();
        form.txtTotalLines.UserEdit(right);
        form.cmdApply.UserClick();
        EXPECT_TRUE(fake.windows.boxes.empty()) << right;
        EXPECT_EQ(fake.store.Dword("BalloonTotalLines"), std::stoi(right));
        form.Unload();
    }
}

TEST_F(OptionsRulesTest, AutoCloseTimeMustBeBetween4And20EvenWhenItIsOff)
{
    for (const char* wrong : {"", "3", "21"}) {
        Open();
        EXPECT_EQ(form.chkAutoClose.Value, 0);
        FocusPeer peer;
        form.txtAutoClose.SetPeer(&peer);
        form.txtAutoClose.UserEdit(wrong);
        form.cmdApply.UserClick();
        ExpectComplaint("Auto close time should be between 4 and 20.");
        EXPECT_EQ(form.txtAutoClose.Text.get(), wrong[0] == '\0' ? "0" : wrong);
        EXPECT_EQ(form.SSTab1.Tab, 3);
        EXPECT_EQ(peer.focused, 1);
        form.Unload();
    }
}

TEST_F(OptionsRulesTest, AComplaintShowsItsOwnTextWhenAnotherMessageComesMeanwhile)
{
    Open();
    form.txtAutoClose.UserEdit("3");
    fake.LetAnotherMessageCome();
    form.cmdApply.UserClick();
    ASSERT_EQ(fake.windows.boxes.size(), 2U);
    EXPECT_EQ(fake.windows.boxes[1].text, "Auto close time should be between 4 and 20.");
}

TEST_F(OptionsRulesTest, TheFirstFailureStopsTheChecksAndNothingIsSaved)
{
    const auto before = fake.store.keys;
    Open();
    form.txtCharPerLine.UserEdit("7");
    form.txtTotalLines.UserEdit("0");
    form.txtAutoClose.UserEdit("");
    form.txtTimeInterval.UserEdit("");
    form.txtUserName.UserEdit("");
    form.cmdApply.UserClick();
    ExpectComplaint("No. of characters per line must be between 8 and 255");
    form.txtCharPerLine.UserEdit("8");
    form.cmdApply.UserClick();
    ExpectComplaint("Total number of lines must be between 1 and 128");
    EXPECT_EQ(form.txtAutoClose.Text.get(), "");
    form.txtTotalLines.UserEdit("1");
    form.cmdApply.UserClick();
    ExpectComplaint("Auto close time should be between 4 and 20.");
    EXPECT_EQ(form.txtTimeInterval.Text.get(), "");
    EXPECT_EQ(form.txtUserName.Text.get(), "");
    EXPECT_EQ(fake.store.keys, before);
    form.txtAutoClose.UserEdit("20");
    form.cmdApply.UserClick();
    EXPECT_TRUE(fake.windows.boxes.empty());
    EXPECT_FALSE(form.cmdApply.Enabled);
}

TEST_F(OptionsRulesTest, AnEmptyNameIsBuddyAndAnEmptyIntervalIsNever)
{
    Open();
    form.txtUserName.UserEdit("");
    form.txtTimeInterval.UserEdit("");
    form.cmdApply.UserClick();
    EXPECT_EQ(form.txtUserName.Text.get(), "Buddy");
    EXPECT_EQ(fake.store.At("UserName").data, "Buddy");
    EXPECT_EQ(form.txtTimeInterval.Text.get(), "0");
    EXPECT_EQ(fake.store.Dword("SpeakTimeInterval"), 0);
    form.txtTimeInterval.UserEdit("999");
    form.cmdApply.UserClick();
    EXPECT_EQ(fake.store.Dword("SpeakTimeInterval"), 999);
}

TEST_F(OptionsRulesTest, OkClosesAfterAFailedApplyWithoutSaving)
{
    const auto before = fake.store.keys;
    Open();
    form.txtTotalLines.UserEdit("0");
    form.cmdOK.UserClick();
    EXPECT_EQ(fake.windows.boxes.size(), 1u);
    EXPECT_FALSE(form.IsLoaded());
    EXPECT_EQ(fake.store.keys, before);
    EXPECT_EQ(Settings.BalloonTotalLines, 2);
}

TEST_F(OptionsRulesTest, PressesWhileAComplaintIsOnItsWayDoNothing)
{
    Open();
    form.txtTotalLines.UserEdit("0");
    fake.windows.whilePending = [this] {
        form.cmdApply.UserClick();
        form.cmdOK.UserClick();
        form.cmdCancel.UserClick();
        form.UserClose();
    };
    form.cmdApply.UserClick();
    EXPECT_EQ(fake.windows.boxes.size(), 1u);
    EXPECT_TRUE(form.IsLoaded());
    fake.windows.whilePending = nullptr;
    form.UserClose();
    EXPECT_FALSE(form.IsLoaded());
}

TEST_F(OptionsRulesTest, DefaultSetsEveryControlAndKeepsTheTexts)
{
    Settings.CharacterSize = 2;
    Settings.ShowBalloon = 0;
    Settings.SizeBallonToText = 1;
    Settings.BalloonFontName = "Courier";
    Settings.BalloonFontSize = 20;
    Settings.BalloonAutoHide = Settings.BalloonAutoPace = 0;
    Settings.BalloonCharactersPerLine = 50;
    Settings.BalloonTotalLines = 9;
    Settings.SpeakTimeInterval = 30;
    Settings.DateFormat = 6;
    Settings.ReadMessages = Settings.ReadNameWithMessages = Settings.ReadTextBoxTextAtLeftClick = 0;
    Settings.GreetingType = 0;
    Settings.ReminderOnTop = Settings.ReminderSentenceSpeak = Settings.ReminderTitleSpeak = 0;
    Settings.ReminderDateSpeak = Settings.ReminderTimeSpeak = Settings.ReminderDescSpeak = 0;
    Settings.ReminderNextSchSpeak = 0;
    Settings.ReminderType = 1;
    Settings.RemAlertAction = 1;
    Settings.RemAlertGradient = Settings.RemAlertShape = Settings.RemAlertColor = 0;
    Settings.RemAlertClose = 1;
    Settings.RemAlertCloseTime = 9;
    Settings.UserName = "Ada";
    Settings.OtherGreeting = "Ahoy";
    Settings.ReminderSentence = "Listen";
    Open();
    form.cmdDefault.UserClick();
    EXPECT_EQ(form.comCharSize.ListIndex, 1);
    EXPECT_EQ(form.chkSoundEffects.Value, 0);
    EXPECT_EQ(form.chkBalloon.Value, 1);
    EXPECT_EQ(form.chkSizeToText.Value, 0);
    EXPECT_EQ(form.chk24Time.Value, 1);
    EXPECT_EQ(form.lblFont.Font.get(), (FontSpec{"MS Sans Serif", 10}));
    EXPECT_EQ(form.lblFont.Caption.get(), "MS Sans Serif");
    for (const CheckBox* box :
         {&form.chkMsgRead, &form.chkMyName, &form.chkReadOnLeftClick, &form.chkShowStart, &form.chkIntroAtStart,
          &form.chkCloseInTray, &form.chkAutoPace, &form.chkAutoHide, &form.chkOnTop, &form.chkSpkSentence,
          &form.chkSpkTitle, &form.chkSpkDate, &form.chkSpkTime, &form.chkSpkDesc, &form.chkSpkSnooze})
        EXPECT_EQ(box->Value, 1) << box->Name;
    EXPECT_EQ(form.comDateFMT.ListIndex, 1);
    EXPECT_EQ(form.chkGreeting.Value, 0);
    EXPECT_EQ(form.OptGreet.Selected(), 3);
    EXPECT_EQ(form.txtCharPerLine.Text.get(), "32");
    EXPECT_EQ(form.txtTotalLines.Text.get(), "2");
    EXPECT_EQ(form.txtTimeInterval.Text.get(), "5");
    EXPECT_EQ(form.comRemType.ListIndex, 0);
    EXPECT_EQ(form.optAction.Selected(), 0);
    EXPECT_EQ(form.optGradiantType.Selected(), 1);
    EXPECT_EQ(form.optShape.Selected(), 1);
    EXPECT_EQ(form.optColor.Selected(), 3);
    EXPECT_EQ(form.SelectedAlertColor, 200 | 255 << 8 | 200 << 16);
    EXPECT_EQ(form.chkAutoClose.Value, 0);
    EXPECT_EQ(form.txtAutoClose.Text.get(), "4");
    EXPECT_EQ(Disabled(), (greetingControls + Names{"chkOnTop", "txtAutoClose"}));
    ExpectGreyWhereDisabled();
    EXPECT_EQ(form.txtUserName.Text.get(), "Ada");
    EXPECT_EQ(form.txtGreeting.Text.get(), "Ahoy");
    EXPECT_EQ(form.txtRemText.Text.get(), "Listen");
    EXPECT_EQ(form.txtCharPath.Text.get(), "C:\\Chars\\");
    EXPECT_TRUE(form.cmdApply.Enabled);
    EXPECT_EQ(fake.log, Lines{});
}

TEST_F(OptionsRulesTest, DefaultAndThenCancelChangesNothing)
{
    const auto before = fake.store.keys;
    Open();
    form.cmdDefault.UserClick();
    form.cmdCancel.UserClick();
    EXPECT_EQ(fake.store.keys, before);
    EXPECT_EQ(Settings.TimeIn24Hour, 0);
    Open();
    EXPECT_EQ(form.chk24Time.Value, 0);
    EXPECT_EQ(form.chkGreeting.Value, 1);
}

TEST_F(OptionsRulesTest, PreviewShowsAnAlertWindowOfWhatIsChosen)
{
    Open();
    form.cmdPreview.UserClick();
    EXPECT_EQ(fake.log, (Lines{"Alert 9999 preview 0 s scroll fit round 13172680 tube: Test reminder window.\r\n"}));
    fake.log.clear();
    form.optAction(1).UserClick();
    form.optShape(0).UserClick();
    form.optGradiantType(0).UserClick();
    form.optColor(0).UserClick();
    form.chkAutoClose.UserClick(true);
    form.txtAutoClose.UserEdit("12");
    form.cmdPreview.UserClick();
    EXPECT_EQ(fake.log, (Lines{"Alert 9999 preview 12 s fade fit square 12648447 corner: "
                               "Test reminder window to be closed in 12  second(s).\r\n"}));
    fake.log.clear();
    form.txtAutoClose.UserEdit("");
    form.cmdPreview.UserClick();
    EXPECT_EQ(form.txtAutoClose.Text.get(), "4");
    EXPECT_EQ(fake.log, (Lines{"Alert 9999 preview 4 s fade fit square 12648447 corner: "
                               "Test reminder window to be closed in 4  second(s).\r\n"}));
    ASSERT_EQ(window.alerts.size(), 3u);
    // They stay while the dialog goes.
    form.Unload();
    for (const fakes::FakeAlertWindow* alert : window.alerts)
        EXPECT_TRUE(alert->Visible());
}

TEST_F(OptionsRulesTest, TheFontThatIsChosenIsShownAndSaved)
{
    Open();
    form.cmdFont.UserClick();
    EXPECT_EQ(form.lblFont.Caption.get(), "MS Sans Serif");
    EXPECT_FALSE(form.cmdApply.Enabled);
    fake.windows.fontsToChoose = {FontSpec{"Vera Serif", 14}};
    form.cmdFont.UserClick();
    EXPECT_EQ(fake.log, (Lines{"ShowFont MS Sans Serif 10 of 4 to 72", "ShowFont MS Sans Serif 10 of 4 to 72"}));
    EXPECT_EQ(form.lblFont.Caption.get(), "Vera Serif");
    EXPECT_EQ(form.lblFont.Font.get(), (FontSpec{"Vera Serif", 14}));
    EXPECT_TRUE(form.cmdApply.Enabled);
    form.cmdApply.UserClick();
    EXPECT_EQ(fake.store.At("BalloonFontName").data, "Vera Serif");
    EXPECT_EQ(fake.store.Dword("BalloonFontSize"), 14);
    EXPECT_EQ(Alfa().fontName, "Vera Serif");
    EXPECT_EQ(Alfa().fontSize, 14);
}

TEST_F(OptionsRulesTest, AnimateAndStopTakeTurns)
{
    Open();
    form.comAnimation.UserSelect(3);
    EXPECT_FALSE(form.cmdApply.Enabled);
    form.cmdAnimate.UserClick();
    EXPECT_EQ(form.cmdAnimate.Caption.get(), "Stop");
    EXPECT_EQ(AnimateRequest, Alfa().last);
    EXPECT_EQ(CurrentRequest, Alfa().last);
    form.cmdAnimate.UserClick();
    EXPECT_EQ(form.cmdAnimate.Caption.get(), "Animate");
    EXPECT_EQ(fake.log, (Lines{"Play Greet", "StopAll Play"}));
}

TEST_F(OptionsRulesTest, TheMainWindowPutsTheCaptionBackWhenTheAnimationHasEnded)
{
    Open();
    form.cmdAnimate.UserClick();
    ASSERT_TRUE(AnimateEnded);
    AnimateEnded();
    EXPECT_EQ(form.cmdAnimate.Caption.get(), "Animate");
    EXPECT_EQ(fake.log, (Lines{"Play RestPose"}));
}

TEST_F(OptionsRulesTest, ClosingStopsAnAnimationThatPlays)
{
    Open();
    form.cmdAnimate.UserClick();
    form.cmdCancel.UserClick();
    EXPECT_EQ(fake.log, (Lines{"Play RestPose", "StopAll Play", "Window frmOptions hidden"}));
    EXPECT_FALSE(AnimateEnded);
    Open();
    EXPECT_EQ(form.cmdAnimate.Caption.get(), "Animate");
    form.cmdCancel.UserClick();
    EXPECT_EQ(fake.log, (Lines{"Window frmOptions hidden"}));
}

TEST_F(OptionsRulesTest, BrowseTakesAFolderWithItsSeparatorAndCancelLeavesTheBox)
{
    Open();
    form.cmdBrowse.UserClick();
    EXPECT_EQ(form.txtCharPath.Text.get(), "C:\\Chars\\");
    EXPECT_FALSE(form.cmdApply.Enabled);
    fake.windows.chosenFolder = "C:\\More";
    form.cmdBrowse.UserClick();
    EXPECT_EQ(form.txtCharPath.Text.get(), "C:\\More\\");
    EXPECT_TRUE(form.cmdApply.Enabled);
    EXPECT_EQ(Logged("SHBrowseForFolderA "), (Lines{"Select Characters' Location :", "Select Characters' Location :"}));
    fake.windows.chosenFolder = "D:\\";
    form.cmdBrowse.UserClick();
    EXPECT_EQ(form.txtCharPath.Text.get(), "D:\\");
}

TEST_F(OptionsRulesTest, AnotherFolderWithTheSameCharacterKeepsItAndListsTheNewOnes)
{
    fake.AddCharacters("C:\\More\\", {"Alfa", "Delta"});
    Open();
    form.txtCharPath.UserEdit("C:\\More");
    form.cmdApply.UserClick();
    EXPECT_EQ(fake.store.At("CharacterPath").data, "C:\\More\\");
    EXPECT_EQ(Settings.CharacterPath, "C:\\More\\");
    EXPECT_EQ(SearchPath, "C:\\More\\");
    EXPECT_EQ(form.txtCharPath.Text.get(), "C:\\More\\");
    EXPECT_EQ(window.characters, (Lines{"Alfa", "Delta"}));
    EXPECT_EQ(window.checked, "Alfa");
    EXPECT_EQ(fake.log, (Lines{"Play DoMagic2"}));
    EXPECT_FALSE(form.cmdApply.Enabled);
}

TEST_F(OptionsRulesTest, AFolderWithoutTheCharacterGivesItsPlaceToTheFirstOneThere)
{
    fake.AddCharacters("C:\\More\\", {"Delta", "Echo"});
    fake.agent.prepare = [](fakes::FakeCharacter& character) { character.animations = {"Bow", "Nod"}; };
    Open();
    form.txtCharPath.UserEdit("C:\\More\\");
    form.cmdApply.UserClick();
    EXPECT_EQ(fake.log, (Lines{"Unload Alfa", "Load Delta C:\\More\\Delta.acs", "Show", "Play DoMagic2"}));
    EXPECT_EQ(fake.store.At("LastCharacter").data, "Delta");
    EXPECT_EQ(window.checked, "Delta");
    EXPECT_EQ(form.comAnimation.Items(), (Lines{"Bow", "Nod"}));
}

TEST_F(OptionsRulesTest, OnNoThePreviousFolderStaysInTheBoxToo)
{
    const std::string missing = "C:\\Nowhere\\";
    fake.windows.answers = {vbNo};
    Open();
    form.txtCharPath.UserEdit(missing);
    form.chk24Time.UserClick(true);
    form.cmdApply.UserClick();
    ASSERT_EQ(fake.windows.boxes.size(), 1u);
    EXPECT_EQ(fake.windows.boxes[0].text,
              "Following folder containing the characters does not exist:\r\n" + missing +
                  "\r\nDo you want to let Voxmate load characters from windows system directory ?\r\n"
                  "If no then CharacterPath setting will not take effect.");
    EXPECT_EQ(fake.windows.boxes[0].style, 20);
    EXPECT_EQ(fake.windows.boxes[0].title, "Voxmate - Path Error");
    EXPECT_EQ(form.txtCharPath.Text.get(), "C:\\Chars\\");
    EXPECT_EQ(SearchPath, "C:\\Chars\\");
    EXPECT_EQ(fake.store.At("CharacterPath").data, "C:\\Chars\\");
    EXPECT_EQ(window.characters, (Lines{"Alfa", "Bravo"}));
    EXPECT_EQ(fake.store.Dword("TimeIn24Hour"), 1);
    EXPECT_FALSE(form.cmdApply.Enabled);
    EXPECT_EQ(fake.log, (Lines{"MsgBox Voxmate - Path Error", "Play DoMagic2"}));
}

TEST_F(OptionsRulesTest, OnYesTheShippedCharactersAreTakenAndTheirFolderShown)
{
    WindowsDir = "C:\\WINDOWS";
    fake.AddCharacters("C:\\WINDOWS\\msagent\\chars\\", {"Alfa"});
    fake.files.folders.insert("C:\\Empty\\");
    fake.windows.answers = {vbYes};
    Open();
    form.txtCharPath.UserEdit("C:\\Empty\\");
    form.cmdApply.UserClick();
    ASSERT_EQ(fake.windows.boxes.size(), 1u);
    EXPECT_TRUE(fake.windows.boxes[0].text.starts_with("No characters found in the following path:\r\nC:\\Empty\\"));
    EXPECT_EQ(form.txtCharPath.Text.get(), "C:\\WINDOWS\\msagent\\chars\\");
    EXPECT_EQ(fake.store.At("CharacterPath").data, "C:\\WINDOWS\\msagent\\chars\\");
}

} // namespace

} // namespace voxmate
