#include "forms/frmMain.h"
#include "forms/frmSplash.h"
#include "tests/fakes/ProgramTest.h"

#include <cstring>
#include <limits>

#include <gtest/gtest.h>

namespace voxmate
{

namespace
{

using Lines = std::vector<std::string>;

class MainFormTest : public ProgramTest
{
protected:
    frmMain form{program};

    fakes::FakeCharacter& Start()
    {
        fake.StoreDefaults();
        fake.store.SetDword("GreetingEnabled", 0);
        StartMain();
        fake.log.clear();
        return fake.Loaded("Alfa");
    }
    std::string Status() const { return form.stsBar.Panels()[0].text; }
};

TEST_F(MainFormTest, ASecondCopyIsRefusedBeforeAnySettingIsRead)
{
    fake.process.previousInstance = true;
    fake.store.logCalls = true;
    EXPECT_TRUE(fake.Ends([this] { StartMain(); }));
    ASSERT_EQ(fake.windows.boxes.size(), 1u);
    EXPECT_EQ(fake.windows.boxes[0].text, "Another copy of Voxmate is already running.");
    EXPECT_EQ(fake.windows.boxes[0].style, 16);
    EXPECT_EQ(fake.windows.boxes[0].title, "Voxmate - Running");
    EXPECT_EQ(fake.log, (Lines{"MsgBox Voxmate - Running", "EndProgram"}));
}

TEST_F(MainFormTest, TheSplashTimerStartsTheProgramOnceAndUnloadsTheSplash)
{
    fake.StoreDefaults();
    frmSplash splash(program);
    splash.Show();
    EXPECT_EQ(splash.splashTimer.Interval.get(), 2000);
    EXPECT_TRUE(splash.splashTimer.Enabled.get());
    EXPECT_EQ(splash.lblVersion.Caption.get(), "Version 1.1 - Build 5");
    EXPECT_EQ(splash.lblOS.Caption.get(), "Windows 98/NT and above");
    EXPECT_FALSE(splash.lblDesc.Caption.get().empty());
    EXPECT_FALSE(splash.lblAuthor.Caption.get().empty());
    // A box that stays up for longer than the timer's interval does not start the program again.
    fake.store.SetDword("Pitch", 1);
    fake.windows.whileBoxIsUp = [&](const auto&) { splash.splashTimer.Fire(); };
    splash.splashTimer.Fire();
    EXPECT_EQ(std::count(fake.log.begin(), fake.log.end(), "Load Alfa C:\\Chars\\Alfa.acs"), 1);
    EXPECT_FALSE(splash.splashTimer.Enabled.get());
    EXPECT_FALSE(splash.IsShown());
    EXPECT_TRUE(form.IsShown());
    EXPECT_EQ(fake.log.back(), "Window frmSplash hidden");
}

TEST_F(MainFormTest, TheVoiceControlsAreRestoredAndRewritten)
{
    fake.StoreDefaults();
    fake.store.SetDword("Pitch", 120);
    fake.store.SetDword("Speed", 200);
    fake.store.SetDword("Whisper", 1);
    fake.store.logCalls = true;
    fake.store.SetDword("ShowTipAtStartUp", 0);
    StartMain();
    EXPECT_EQ(form.scrPitch.Value.get(), 120);
    EXPECT_EQ(form.lblPitch.Caption.get(), "= 120");
    EXPECT_EQ(form.scrSpeed.Value.get(), 200);
    EXPECT_EQ(form.lblSpeed.Caption.get(), "= 200");
    EXPECT_EQ(form.chkWhisper.Value.get(), 1);
    EXPECT_EQ(Settings.Whisper, True);
    Lines written;
    for (const std::string& call : fake.log) {
        if (call.starts_with("RegSetValueExA"))
            written.push_back(call);
    }
    ASSERT_GE(written.size(), 3u);
    EXPECT_EQ(Lines(written.end() - 3, written.end()),
              (Lines{"RegSetValueExA Pitch 0 4 4 bytes", "RegSetValueExA Speed 0 4 4 bytes",
                     "RegSetValueExA Whisper 0 4 4 bytes"}));
}

TEST_F(MainFormTest, TheLowestPitchAndSpeedAreShownToo)
{
    fake.StoreDefaults();
    fake.store.SetDword("Pitch", 40);
    fake.store.SetDword("Speed", 40);
    StartMain();
    EXPECT_EQ(form.lblPitch.Caption.get(), "= 40");
    EXPECT_EQ(form.lblSpeed.Caption.get(), "= 40");
    EXPECT_EQ(Settings.Pitch, 40);
}

TEST_F(MainFormTest, EveryStepOfADraggedBarIsShownStoredAndWritten)
{
    Start();
    for (const int value : {51, 52, 399}) {
        form.scrPitch.UserScroll(value);
        EXPECT_EQ(Settings.Pitch, value);
        EXPECT_EQ(form.lblPitch.Caption.get(), "= " + std::to_string(value));
        EXPECT_EQ(fake.store.Dword("Pitch"), value);
    }
    form.scrSpeed.UserScroll(400);
    EXPECT_EQ(Settings.Speed, 400);
    EXPECT_EQ(form.lblSpeed.Caption.get(), "= 400");
    EXPECT_EQ(fake.store.Dword("Speed"), 400);
}

TEST_F(MainFormTest, TheWhisperBoxHoldsTrueInMemoryAndOneInTheRegistry)
{
    Start();
    form.chkWhisper.UserClick(true);
    EXPECT_EQ(Settings.Whisper, -1);
    EXPECT_EQ(fake.store.Dword("Whisper"), 1);
    form.chkWhisper.UserClick(false);
    EXPECT_EQ(Settings.Whisper, 0);
    EXPECT_EQ(fake.store.Dword("Whisper"), 0);
}

TEST_F(MainFormTest, TheUsersVoiceIsGivenToTheCharacterAndStored)
{
    fakes::FakeCharacter& character = Start();
    form.comSpEng.UserSelect(1);
    EXPECT_EQ(character.ttsModeId, "{22222222-0000-8000-8000-000000000002}");
    EXPECT_EQ(fake.store.At("LastSpeechEngine").data, "Second Voice");
}

TEST_F(MainFormTest, SpeakReadsTheTextWithoutBlanksRoundIt)
{
    Start();
    form.txtText.UserEdit("  read me  ");
    form.cmdSpeak.UserClick();
    EXPECT_EQ(fake.log, (Lines{"Show", "DoEvents", "Speak \\Pit=50\\ \\Spd=156\\read me", "Play RestPose"}));
}

TEST_F(MainFormTest, ATextBoxOfOnlyBlanksIsComplainedAbout)
{
    Start();
    form.txtText.UserEdit("    ");
    form.cmdSpeak.UserClick();
    EXPECT_EQ(fake.log, (Lines{"Play Confused", "Show", "DoEvents",
                               "Speak \\Pit=50\\ \\Spd=156\\Dear Buddy, \r\nThere is nothing to read from the textbox.",
                               "Play RestPose"}));
    EXPECT_TRUE(fake.windows.boxes.empty());
    EXPECT_EQ(IsBusy, False);
}

TEST_F(MainFormTest, StopStopsEverythingAndRests)
{
    Start();
    form.SetStatus("Busy...");
    form.cmdStop.UserClick();
    EXPECT_EQ(fake.log, (Lines{"StopAll Move, Play, Speak", "Play RestPose"}));
    EXPECT_EQ(StopRequested, True);
    EXPECT_EQ(Status(), "I am Idle now !");
}

TEST_F(MainFormTest, RequestsMarkTheProgramBusyAndIdle)
{
    Start();
    fake.agent.RequestStart(nullptr);
    EXPECT_EQ(Status(), "Busy...");
    fake.agent.RequestComplete(nullptr);
    EXPECT_EQ(Status(), "I am Idle now !");
}

TEST_F(MainFormTest, TheClipboardsTextIsPutIntoTheTextBoxAndSpokenAsItIs)
{
    Start();
    fake.windows.clipboard = "  from elsewhere ";
    form.cmdClip.UserClick();
    EXPECT_EQ(form.txtText.Text.get(), "  from elsewhere ");
    EXPECT_EQ(fake.log, (Lines{"Show", "DoEvents", "Speak \\Pit=50\\ \\Spd=156\\from elsewhere", "Play RestPose"}));
}

TEST_F(MainFormTest, TheClipboardIsReadOnceForTheTextBoxAndOnceMoreForTheVoice)
{
    Start();
    int asked = 0;
    fake.windows.whenClipboardIsRead = [&] { fake.windows.clipboard = ++asked == 1 ? "first" : "second"; };
    form.cmdClip.UserClick();
    EXPECT_EQ(asked, 2);
    EXPECT_EQ(form.txtText.Text.get(), "first");
    EXPECT_EQ(fake.log.at(2), "Speak \\Pit=50\\ \\Spd=156\\second");
}

TEST_F(MainFormTest, AClipboardWithoutTextIsPassedOver)
{
    Start();
    form.txtText.UserEdit("mine");
    fake.windows.clipboardHasText = false;
    form.cmdClip.UserClick();
    EXPECT_EQ(form.txtText.Text.get(), "mine");
    EXPECT_TRUE(fake.log.empty());
    EXPECT_EQ(Status(), "I am Idle now !");
}

TEST_F(MainFormTest, EachButtonAndItsMenuItemDoTheSame)
{
    Start();
    fake.windows.clipboard = "clip";
    const std::pair<CommandButton*, Menu*> pairs[] = {
        {&form.cmdDate, &form.mnuDate},     {&form.cmdTime, &form.mnuTime}, {&form.cmdCharIntro, &form.mnuWho},
        {&form.cmdClip, &form.mnuReadClip}, {&form.cmdText, &form.mnuText}, {&form.cmdWord, &form.mnuWord},
    };
    for (const auto& [button, item] : pairs) {
        fake.log.clear();
        button->UserClick();
        const Lines byButton = fake.log;
        fake.log.clear();
        item->Click();
        EXPECT_EQ(fake.log, byButton) << button->Name;
        EXPECT_FALSE(byButton.empty()) << button->Name;
    }
}

TEST_F(MainFormTest, WhileADocumentIsReadAnotherCannotBeAndTheButtonKeepsTheKeyboard)
{
    Start();
    fake.windows.filesToOpen = {"C:\\letter.doc", "C:\\letter.doc"};
    fake.files.texts["C:\\letter.doc"] = "a document";
    fake.word.documents["C:\\letter.doc"] = "hello";
    bool looked = false;
    fake.word.whileOpening = [&] {
        looked = true;
        // A button that is disabled loses the keyboard to another one.
        EXPECT_TRUE(form.cmdWord.Enabled.get());
        EXPECT_TRUE(form.mnuWord.Enabled.get());
        form.cmdWord.UserClick();
        form.mnuWord.Click();
    };
    form.cmdWord.UserClick();
    EXPECT_TRUE(looked);
    EXPECT_EQ(std::count(fake.log.begin(), fake.log.end(), "Word Create"), 1);
    fake.word.whileOpening = nullptr;
    form.mnuWord.Click();
    EXPECT_EQ(std::count(fake.log.begin(), fake.log.end(), "Word Create"), 2);
}

TEST_F(MainFormTest, AnotherDocumentCanBeReadWhenTheFirstOneEndedInAnError)
{
    Start();
    fake.windows.filesToOpen = {"C:\\letter.doc", "C:\\letter.doc"};
    fake.files.texts["C:\\letter.doc"] = "a document";
    fake.word.openErrors.emplace("C:\\letter.doc", PermissionDenied());
    for (int i = 0; i < 2; ++i)
        EXPECT_TRUE(fake.Ends([this] { form.cmdWord.UserClick(); }));
    EXPECT_EQ(std::count(fake.log.begin(), fake.log.end(), "Word Create"), 2);
}

TEST_F(MainFormTest, AStopPressedWhileATextIsAboutToBeSpokenMeansThatTextToo)
{
    Start();
    fake.windows.filesToOpen = {"C:\\notes.txt"};
    fake.files.texts["C:\\notes.txt"] = "hello";
    fake.windows.whilePending = [this] {
        fake.windows.whilePending = nullptr;
        form.cmdStop.UserClick();
    };
    form.cmdText.UserClick();
    EXPECT_EQ(fake.log.back(), "Play RestPose");
    EXPECT_EQ(
        std::count_if(fake.log.begin(), fake.log.end(), [](const auto& call) { return call.starts_with("Speak "); }),
        0);
}

TEST_F(MainFormTest, AStopPressedDuringTheSecondPartSilencesThatPartToo)
{
    Start();
    fake.windows.filesToOpen = {"C:\\letter.doc"};
    fake.files.texts["C:\\letter.doc"] = "a document";
    fake.word.documents["C:\\letter.doc"] =
        std::string(1000, 'a') + " " + std::string(1000, 'b') + " " + std::string(1000, 'c');
    fake.windows.whilePending = [this] {
        if (Status().starts_with("Reading part 2 "))
            form.cmdStop.UserClick();
    };
    form.cmdWord.UserClick();
    const auto stop = std::find(fake.log.begin(), fake.log.end(), "StopAll Move, Play, Speak");
    ASSERT_NE(stop, fake.log.end());
    EXPECT_EQ(std::count_if(stop, fake.log.end(), [](const auto& call) { return call.starts_with("Speak "); }), 0);
    EXPECT_EQ(StopRequested, False);
}

TEST_F(MainFormTest, ACounterPastANewLimitAnnouncesAtTheNextTick)
{
    Start();
    Settings.SpeakTimeInterval = 1;
    Settings.TimeIn24Hour = 1;
    SpeakTimeCounter = 1000;
    form.SysTime.Fire();
    EXPECT_EQ(fake.log.at(3), "Speak \\Pit=50\\ \\Spd=156\\Good Afternoon, Time now is 14:05");
    EXPECT_EQ(SpeakTimeCounter, 0);
}

TEST_F(MainFormTest, AWaveFileIsPlayedFromTheFileMenu)
{
    Start();
    fake.windows.filesToOpen = {"C:\\song.wav"};
    fake.files.texts["C:\\song.wav"] = "RIFF";
    form.mnuPlayWav.Click();
    EXPECT_EQ(fake.log.back(), "Speak . from C:\\song.wav");
    EXPECT_EQ(Status(), "Playing wave file...");
}

TEST_F(MainFormTest, TheAnimationOfTheOptionsDialogEndsInTheRestPoseOnce)
{
    Start();
    AnimateEnded = [this] { fake.log.push_back("ended with " + Status()); };
    AnimateRequest = Character->Play("Greet");
    const AgentRequestPtr request = AnimateRequest;
    const AgentRequestPtr other = Character->Play("Hide");
    fake.log.clear();
    fake.agent.RequestStart(request);
    fake.agent.RequestComplete(other);
    EXPECT_TRUE(fake.log.empty());
    fake.agent.RequestStart(request);
    fake.agent.RequestComplete(request);
    EXPECT_EQ(fake.log, (Lines{"ended with Busy...", "Play RestPose"}));
    EXPECT_EQ(Status(), "I am Idle now !");
    fake.agent.RequestComplete(request);
    EXPECT_EQ(fake.log.size(), 2u);
}

TEST_F(MainFormTest, HidingTheCharacterStopsIt)
{
    Start();
    fake.agent.Hidden("Alfa", VisibilityCause::UserHid);
    EXPECT_EQ(fake.log, (Lines{"StopAll Move, Play, Speak"}));
}

TEST_F(MainFormTest, DamagedCharactersAreToldOfOneAfterTheOtherWhenTheMomentComes)
{
    Start();
    Settings.ReadMessages = 0;
    EXPECT_FALSE(form.DamageTimer.Enabled);
    IsBusy = True;
    fake.agent.Damaged("Alfa", "first");
    EXPECT_TRUE(form.DamageTimer.Enabled);
    form.DamageTimer.Fire();
    EXPECT_TRUE(fake.windows.boxes.empty());
    IsBusy = False;
    fake.agent.Damaged("Bravo", "second");
    form.DamageTimer.Fire();
    ASSERT_EQ(fake.windows.boxes.size(), 1u);
    EXPECT_EQ(fake.windows.boxes[0].text, "first");
    EXPECT_EQ(fake.windows.boxes[0].title, "Voxmate - File Error");
    form.DamageTimer.Fire();
    ASSERT_EQ(fake.windows.boxes.size(), 2u);
    EXPECT_EQ(fake.windows.boxes[1].text, "second");
    EXPECT_FALSE(form.DamageTimer.Enabled);
}

TEST_F(MainFormTest, ALeftClickOnTheCharacterReadsTheTextBoxWhenTheSettingIsOn)
{
    Start();
    form.txtText.UserEdit("read me");
    fake.agent.Click("Alfa", 2, 0, 1, 1);
    EXPECT_TRUE(fake.log.empty());
    fake.agent.Click("Alfa", 1, 0, 1, 1);
    EXPECT_EQ(fake.log.at(2), "Speak \\Pit=50\\ \\Spd=156\\read me");
    fake.log.clear();
    Settings.ReadTextBoxTextAtLeftClick = 0;
    fake.agent.Click("Alfa", 1, 0, 1, 1);
    EXPECT_TRUE(fake.log.empty());
}

TEST_F(MainFormTest, EachCommandOfTheCharactersMenuRunsItsHandler)
{
    Start();
    fake.agent.Command("mnuStop");
    EXPECT_EQ(fake.log.front(), "StopAll Move, Play, Speak");
    fake.log.clear();
    fake.agent.Command("mnuTime");
    EXPECT_EQ(fake.log.at(2), "Play Announce");
    EXPECT_EQ(fake.log.at(3), "Speak \\Pit=50\\ \\Spd=156\\Good Afternoon, Time now is 2:05 PM");
    fake.log.clear();
    fake.agent.Command("mnuDate");
    EXPECT_EQ(fake.log.at(3), "Speak \\Pit=50\\ \\Spd=156\\Today is Monday, 17th of March, 1975");
    fake.log.clear();
    fake.agent.Command("mnuIntro");
    EXPECT_EQ(fake.log.at(3), "Speak \\Pit=50\\ \\Spd=156\\Hello Buddy. My name is Alfa");
    fake.log.clear();
    fake.agent.Command("mnuElse");
    EXPECT_TRUE(fake.log.empty());
}

TEST_F(MainFormTest, TheCharacterButtonShowsOnLeftClickAndOffersTheCastOnRight)
{
    Start();
    form.cmdCharacter.UserClick();
    EXPECT_EQ(fake.log, (Lines{"Show"}));
    fake.log.clear();
    form.cmdCharacter.UserMouseUp(1);
    EXPECT_TRUE(fake.log.empty());
    form.cmdCharacter.UserMouseUp(2);
    EXPECT_EQ(fake.log, (Lines{"PopupMenu mnuMainChar"}));
    fake.log.clear();
    CharacterCount = 0;
    form.cmdCharacter.UserMouseUp(2);
    EXPECT_TRUE(fake.log.empty());
}

TEST_F(MainFormTest, TheCharacterMenuHasOneItemAFileAndChecksTheLoadedOne)
{
    EXPECT_EQ(form.mnuMainChar.Items().at(0)->Caption.get(), "Character1");
    Start();
    const auto& items = form.mnuMainChar.Items();
    ASSERT_EQ(items.size(), 2u);
    EXPECT_EQ(items[0]->Caption.get(), "Alfa");
    EXPECT_EQ(items[1]->Caption.get(), "Bravo");
    EXPECT_TRUE(items[0]->Checked.get());
    EXPECT_FALSE(items[1]->Checked.get());
    items[1]->UserClick();
    EXPECT_EQ(fake.log, (Lines{"Unload Alfa", "Load Bravo C:\\Chars\\Bravo.acs", "Show", "TTSModeID " + EngineIds[1]}));
    EXPECT_FALSE(items[0]->Checked.get());
    EXPECT_TRUE(items[1]->Checked.get());
    EXPECT_EQ(form.stsBar.Panels()[1].text, "BRAVO");
}

TEST_F(MainFormTest, AnAmpersandInACharactersNameIsNoAccessKey)
{
    fake.AddCharacters("C:\\Chars\\", {"Tom & Jo"});
    Start();
    Menu& item = *form.mnuMainChar.Items().back();
    EXPECT_EQ(item.Caption.get(), "Tom && Jo");
    item.UserClick();
    EXPECT_EQ(Settings.LastCharacter, "Tom & Jo");
    EXPECT_TRUE(item.Checked.get());
}

TEST_F(MainFormTest, ExitAndTheCloseBoxRemoveTheTrayIconAndEndTheProgramAtOnce)
{
    Start();
    EXPECT_TRUE(fake.Ends([this] { form.mnuExit.UserClick(); }));
    EXPECT_EQ(fake.log, (Lines{"Shell_NotifyIconA 2", "EndProgram"}));
    fake.log.clear();
    EXPECT_TRUE(fake.Ends([this] { form.UserClose(); }));
    EXPECT_EQ(fake.log, (Lines{"Shell_NotifyIconA 2", "EndProgram"}));
}

TEST_F(MainFormTest, ClosingToTheTrayHidesTheWindowAndKeepsTheProgramRunning)
{
    Start();
    Settings.CloseToTray = 1;
    form.UserClose();
    EXPECT_EQ(fake.log, (Lines{"Shell_NotifyIconA 0", "Window frmMain hidden"}));
    ASSERT_EQ(fake.windows.trayCalls.size(), 1u);
    const TrayIconData data = fake.windows.trayCalls[0].second;
    EXPECT_EQ(data.recordSize, 88u);
    EXPECT_EQ(data.window, 0x1234u);
    EXPECT_EQ(data.iconId, 1u);
    EXPECT_EQ(data.flags, 7u);
    EXPECT_EQ(data.callbackMessage, 512u);
    EXPECT_EQ(data.icon, 0x5678u);
    EXPECT_EQ(std::string(data.tip.data()), "Voxmate");
    // Exit ends it even then, with the same record.
    EXPECT_TRUE(fake.Ends([this] { form.mnuTrayExit.UserClick(); }));
    EXPECT_EQ(fake.windows.trayCalls[1].first, 2u);
    EXPECT_EQ(std::memcmp(&fake.windows.trayCalls[1].second, &data, 88), 0);
}

TEST_F(MainFormTest, TheEndOfTheSessionEndsTheProgramEvenWhenClosingWouldPutItIntoTheTray)
{
    Start();
    Settings.CloseToTray = 1;
    EXPECT_TRUE(fake.Ends([this] { fake.process.EndRequested(); }));
    EXPECT_EQ(fake.log, (Lines{"Shell_NotifyIconA 2", "EndProgram"}));
}

TEST_F(MainFormTest, TheTrayIconsMouseMessagesShowTheWindowOrOfferExit)
{
    Start();
    Settings.CloseToTray = 1;
    form.UserClose();
    fake.log.clear();
    for (const double message : {512.0, 513.0, 514.0, 516.0})
        form.TrayPict.UserMouseMove(message * 15);
    EXPECT_TRUE(fake.log.empty());
    form.TrayPict.UserMouseMove(515 * 15 + 3);
    EXPECT_EQ(fake.log, (Lines{"Window frmMain shown"}));
    fake.log.clear();
    fake.windows.twipsPerPixel = 7.5;
    form.TrayPict.UserMouseMove(517 * 7.5);
    EXPECT_EQ(fake.log, (Lines{"Window frmMain activated", "PopupMenu mnuTray"}));
}

TEST_F(MainFormTest, TheClockRunsAndTimeIsAnnouncedEverySoManyTicks)
{
    Start();
    Settings.SpeakTimeInterval = 1;
    for (int tick = 1; tick <= 59; ++tick)
        form.SysTime.Fire();
    EXPECT_EQ(form.stsBar.Panels()[2].text, "2:05:09 PM");
    EXPECT_TRUE(fake.log.empty());
    form.SysTime.Fire();
    EXPECT_EQ(fake.log.at(3), "Speak \\Pit=50\\ \\Spd=156\\Good Afternoon, Time now is 2:05 PM");
    EXPECT_EQ(SpeakTimeCounter, 0);
}

TEST_F(MainFormTest, AnIntervalOf546IsTheLastThatFits)
{
    Start();
    Settings.SpeakTimeInterval = 546;
    SpeakTimeCounter = 32758;
    form.SysTime.Fire();
    EXPECT_TRUE(fake.log.empty());
    form.SysTime.Fire();
    EXPECT_FALSE(fake.log.empty());
    Settings.SpeakTimeInterval = 547;
    SpeakTimeCounter = 3;
    try {
        form.SysTime.Fire();
        FAIL() << "no overflow";
    } catch (const RuntimeError& error) {
        EXPECT_EQ(error.Number, 6);
        EXPECT_EQ(error.Description, "Overflow");
    }
    EXPECT_EQ(SpeakTimeCounter, 3);
}

TEST_F(MainFormTest, ACounterThatCannotBeRaisedOverflows)
{
    Start();
    Settings.SpeakTimeInterval = 1;
    SpeakTimeCounter = std::numeric_limits<std::int32_t>::max();
    try {
        form.SysTime.Fire();
        FAIL() << "no overflow";
    } catch (const RuntimeError& error) {
        EXPECT_EQ(error.Number, 6);
    }
    EXPECT_EQ(SpeakTimeCounter, std::numeric_limits<std::int32_t>::max());
}

TEST_F(MainFormTest, TheDateAndTheTimeAreToldAsTheSettingsSay)
{
    Start();
    Settings.TimeIn24Hour = 1;
    form.cmdTime.UserClick();
    EXPECT_EQ(fake.log.at(3), "Speak \\Pit=50\\ \\Spd=156\\Good Afternoon, Time now is 14:05");
    const std::pair<std::int16_t, std::string> dates[] = {
        {0, "Today is"}, {7, "Today is"}, {4, "Today is Monday, March 17th, 75"}};
    for (const auto& [format, today] : dates) {
        fake.log.clear();
        Settings.DateFormat = format;
        form.cmdDate.UserClick();
        EXPECT_EQ(fake.log.at(3), "Speak \\Pit=50\\ \\Spd=156\\" + today);
    }
}

TEST_F(MainFormTest, AnIntervalOfZeroAnnouncesNothingAndTheClockStillRuns)
{
    Start();
    Settings.SpeakTimeInterval = 0;
    SpeakTimeCounter = 1000;
    form.SysTime.Fire();
    EXPECT_EQ(form.stsBar.Panels()[2].text, "2:05:09 PM");
    EXPECT_TRUE(fake.log.empty());
    EXPECT_EQ(SpeakTimeCounter, 1000);
}

TEST_F(MainFormTest, EveryControlHasAnAccessKeyALabelOrAName)
{
    for (Control* control : form.Controls()) {
        const auto* button = dynamic_cast<CommandButton*>(control);
        const bool needsName = button || dynamic_cast<TextBox*>(control) || dynamic_cast<ComboBox*>(control) ||
                               dynamic_cast<HScrollBar*>(control);
        if (needsName) {
            EXPECT_FALSE(control->ToolTipText.get().empty() && control->AccessibleName.empty()) << control->Name;
        }
    }
    EXPECT_EQ(form.cmdSpeak.ToolTipText.get(), "Speak the textbox text");
    EXPECT_EQ(form.cmdStop.ToolTipText.get(), "Stop Everything !!!");
    EXPECT_EQ(form.cmdCharacter.ToolTipText.get(), "Choose Character by Right Click. Show Character on Left Click");
    EXPECT_EQ(form.Frame2.Caption.get(), "Voice Settings");
}

} // namespace

} // namespace voxmate
