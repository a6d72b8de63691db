#include "forms/frmMain.h"

#include "base/Text.h"
#include "forms/Command.h"
#include "forms/frmAbout.h"
#include "forms/frmAlertWindow.h"
#include "forms/frmOptions.h"
#include "forms/frmReminder.h"
#include "forms/frmShowRem.h"
#include "forms/frmTip.h"
#include "modules/Declarations.h"
#include "modules/Format.h"
#include "modules/Functions.h"
#include "modules/Messages.h"
#include "modules/Registry.h"
#include "modules/Reminders.h"
#include "modules/Tips.h"

#include <algorithm>
#include <string_view>
#include <utility>

namespace voxmate
{

namespace
{

constexpr const char* everything = "Move, Play, Speak";

// A name as a menu caption, in which a single ampersand would mark an access key.
std::string MenuCaption(const std::string& name)
{
    std::string caption;
    for (const char c : name)
        caption += c == '&' ? "&&" : std::string(1, c);
    return caption;
}

} // namespace

frmMain::frmMain(Platform& platform) : Form(platform.Windows, "frmMain"), platform_(platform)
{
    Caption = "Voxmate";
    Border = BorderStyle::FixedSingle;
    Status = &stsBar;
    MenuBar = {&mnuFile, &mnuSpeak, &mnuReminder, &mnuHelpMain};

    txtText.MultiLine = true;
    txtText.AccessibleName = "Text to read";
    txtText.PlaceholderText = "Type something for me to read";
    cmdDate.Picture = "date";
    cmdDate.ToolTipText = "What's today's date?";
    cmdTime.Picture = "time";
    cmdTime.ToolTipText = "What time is it?";
    cmdClip.Picture = "clipboard";
    cmdClip.ToolTipText = "Speak Clipboard Text";
    cmdCharIntro.Picture = "introduction";
    cmdCharIntro.ToolTipText = "Do you know who am I ?";
    cmdText.Picture = "text";
    cmdText.ToolTipText = "Open and Read a Text Document";
    cmdWord.Picture = "word";
    cmdWord.ToolTipText = "Open and Read a Word Document";
    cmdOptions.Picture = "options";
    cmdOptions.ToolTipText = "User Options";
    cmdSpeak.Picture = "speak";
    cmdSpeak.ToolTipText = "Speak the textbox text";
    cmdStop.Picture = "stop";
    cmdStop.ToolTipText = "Stop Everything !!!";
    cmdCharacter.Picture = "character";
    cmdCharacter.ToolTipText = "Choose Character by Right Click. Show Character on Left Click";
    lblVoice.Buddy = &comSpEng;
    lblSpeedName.Buddy = &scrSpeed;
    lblPitchName.Buddy = &scrPitch;
    comSpEng.AccessibleName = "Voice Types";
    scrSpeed.AccessibleName = "Speed";
    scrPitch.AccessibleName = "Pitch";
    stsBar.AccessibleName = "Status";
    // The item that exists before any character is found.
    mnuMainChar.Load("mnuChar", "Character1");
    Arrange();

    SysTime.Tick = [this] { SysTime_Timer(); };
    cmdDate.Click = [this] { cmdDate_Click(); };
    cmdTime.Click = [this] { cmdTime_Click(); };
    cmdClip.Click = [this] { cmdClip_Click(); };
    cmdCharIntro.Click = [this] { cmdCharIntro_Click(); };
    cmdText.Click = [this] { cmdText_Click(); };
    cmdWord.Click = [this] { cmdWord_Click(); };
    mnuWho.Click = [this] { mnuWho_Click(); };
    mnuDate.Click = [this] { mnuDate_Click(); };
    mnuTime.Click = [this] { mnuTime_Click(); };
    mnuReadClip.Click = [this] { mnuReadClip_Click(); };
    mnuWord.Click = [this] { mnuWord_Click(); };
    mnuText.Click = [this] { mnuText_Click(); };
    mnuPlayWav.Click = [this] { mnuPlayWav_Click(); };
    cmdSpeak.Click = [this] { cmdSpeak_Click(); };
    cmdStop.Click = [this] { cmdStop_Click(); };
    cmdCharacter.Click = [this] { cmdCharacter_Click(); };
    cmdCharacter.MouseUp = [this](int button) { cmdCharacter_MouseUp(button); };
    comSpEng.Click = [this] { comSpEng_Click(); };
    scrPitch.Change = [this] { scrPitch_Change(); };
    scrSpeed.Change = [this] { scrSpeed_Change(); };
    chkWhisper.Click = [this] { chkWhisper_Click(); };
    cmdOptions.Click = [this] { cmdOptions_Click(); };
    mnuTip.Click = [this] { mnuTip_Click(); };
    mnuOptions.Click = [this] { mnuOptions_Click(); };
    mnuSysTray.Click = [this] { mnuSysTray_Click(); };
    RemTimer.Tick = [] { RemTimer_Timer(); };
    RemRetryTimer.Tick = [] { RetryReminders(); };
    DamageTimer.Tick = [this] { DamageTimer_Timer(); };
    mnuShowAll.Click = [this] { mnuShowAll_Click(); };
    mnuEReminders.Click = [this] { mnuEReminders_Click(); };
    mnuDReminders.Click = [this] { mnuDReminders_Click(); };
    mnuHelp.Click = [this] { mnuHelp_Click(); };
    // Where character files come from, how to install them, how to make one; how to install voices, and which.
    mnuDownChar1.Click = [] { OpenUrl(HelpPage("characters")); };
    mnuDownChar2.Click = [] { OpenUrl(HelpPage("installing")); };
    mnuDownChar3.Click = [] { OpenUrl(HelpPage("making")); };
    mnuSpEng1.Click = [] { OpenUrl(HelpPage("installing")); };
    mnuSpEng2.Click = [] { OpenUrl(HelpPage("voices")); };
    mnuAbout.Click = [this] { mnuAbout_Click(); };
    mnuExit.Click = [this] { mnuExit_Click(); };
    mnuStop.Click = [this] { cmdStop_Click(); };
    mnuTrayExit.Click = [this] { mnuTrayExit_Click(); };
    TrayPict.IconMenu = &mnuTray;
    TrayPict.MouseMove = [this](double x) { TrayPict_MouseMove(x); };
    // Closing to the tray is for the user who closes the window; at the end of a session it would hold that up.
    platform_.System.EndRequested = [this] { mnuTrayExit_Click(); };
    ConnectAgent();
}

// The announcement windows are this platform's, too.
frmMain::~frmMain()
{
    platform_.System.EndRequested = nullptr;
    ResetReminders();
}

void frmMain::Arrange()
{
    Layout voice =
        Grid(3, {Item(lblVoice), Item(comSpEng).Stretch(1), Space(0), Item(lblSpeedName), Item(scrSpeed).Min(220, 0),
                 Item(lblSpeed).Min(56, 0), Item(lblPitchName), Item(scrPitch).Min(220, 0), Item(lblPitch).Min(56, 0),
                 Item(lblVoiceName), Item(chkWhisper)});
    Arrangement = Column({
        Row({Item(cmdDate), Item(cmdTime), Item(cmdClip), Item(cmdCharIntro), Item(cmdText), Item(cmdWord), Space(),
             Item(cmdOptions), Item(cmdCharacter)}),
        Row({Item(txtText).Stretch(1).Min(420, 120), Column({Item(cmdSpeak), Item(cmdStop), Space()})}),
        Framed(Frame2, std::move(voice)),
    });
}

void frmMain::ConnectAgent()
{
    AgentControl& agent = platform_.Agent;
    agent.Click = [this](const std::string&, int button, int, int, int) { AgentX_Click(button); };
    agent.Command = [this](const std::string& name) { AgentX_Command(name); };
    agent.RequestStart = [this](const AgentRequestPtr&) { SetStatus(StatusBusy); };
    agent.RequestComplete = [this](const AgentRequestPtr& request) { AgentX_RequestComplete(request); };
    agent.Damaged = [this](const std::string&, const std::string& message) { AgentX_Damaged(message); };
    agent.Hidden = [](const std::string&, VisibilityCause) {
        if (Character)
            Character->StopAll(everything);
    };
}

void frmMain::Form_Load()
{
    if (platform_.System.PreviousInstance()) {
        platform_.Windows.MsgBox("Another copy of Voxmate is already running.", vbCritical, "Voxmate - Running");
        platform_.System.EndProgram();
    }
}

void frmMain::Form_QueryUnload(bool& cancel)
{
    if (Settings.CloseToTray == 1) {
        AddTrayIcon();
        cancel = true;
    } else {
        mnuTrayExit_Click();
    }
}

void frmMain::AddTrayIcon()
{
    trayIconData_ = {};
    trayIconData_.window = platform_.Windows.WindowHandle(TrayPict);
    trayIconData_.iconId = 1;
    trayIconData_.flags = NIF_MESSAGE_ICON_TIP;
    trayIconData_.callbackMessage = WM_MOUSEMOVE;
    trayIconData_.icon = platform_.Windows.PictureHandle(TrayPict);
    constexpr std::string_view tip = "Voxmate";
    std::copy(tip.begin(), tip.end(), trayIconData_.tip.begin());
    platform_.Windows.Shell_NotifyIconA(NIM_ADD, trayIconData_);
    Hide();
}

int frmMain::MouseMessage(double x) const
{
    return static_cast<int>(RoundHalfEven(x / platform_.Windows.TwipsPerPixelX()));
}

// The icon's mouse messages arrive as moves over the picture box, the message in place of x.
void frmMain::TrayPict_MouseMove(double x)
{
    const int message = MouseMessage(x);
    if (message == WM_LBUTTONDBLCLK) {
        Form::Show();
    } else if (message == WM_RBUTTONUP) {
        Activate();
        PopupMenu(mnuTray);
    }
}

// Moves that are told of the form itself are read the same way.
void frmMain::Form_MouseMove(double x)
{
    const int message = MouseMessage(x);
    if (message == WM_LBUTTONDBLCLK)
        Form::Show();
    else if (message == WM_RBUTTONUP)
        PopupMenu(mnuTrayExit);
}

void frmMain::mnuSysTray_Click()
{
    AddTrayIcon();
}

void frmMain::mnuTrayExit_Click()
{
    platform_.Windows.Shell_NotifyIconA(NIM_DELETE, trayIconData_);
    SaveLastAnswers();
    platform_.System.EndProgram();
}

void frmMain::ListCharacters(const std::vector<std::string>& names)
{
    mnuMainChar.UnloadAll();
    for (const std::string& name : names) {
        Menu& item = mnuMainChar.Load("mnuChar", MenuCaption(name));
        item.Click = [this, name] { mnuChar_Click(name); };
    }
}

void frmMain::CheckCharacter(const std::string& name)
{
    for (Menu* item : mnuMainChar.Items())
        item->Checked = item->Caption.get() == MenuCaption(name);
}

void frmMain::SetVoiceControls(int pitch, int speed, int whisper)
{
    scrPitch.Value = pitch;
    scrSpeed.Value = speed;
    chkWhisper.Value = whisper;
}

void frmMain::CheckReminderMenus(bool enable, bool disable)
{
    mnuEReminders.Checked = enable;
    mnuDReminders.Checked = disable;
}

std::unique_ptr<AlertWindow> frmMain::NewAlertWindow()
{
    return std::make_unique<frmAlertWindow>(platform_);
}

std::unique_ptr<NoticeWindow> frmMain::NewNoticeWindow()
{
    return std::make_unique<frmShowRem>(platform_);
}

ReminderEditor& frmMain::Editor()
{
    return Made(reminderForm_);
}

TipWindow& frmMain::Tip()
{
    return Made(tipForm_);
}

template <class F>
F& frmMain::Made(std::unique_ptr<F>& form)
{
    if (!form)
        form = std::make_unique<F>(platform_);
    return *form;
}

void frmMain::cmdSpeak_Click()
{
    std::string text = Trim(txtText.Text.get());
    if (text.empty()) {
        const BusyScope busy;
        ShowMessage("There is nothing to read from the textbox.", "Confused");
        return;
    }
    SpeakText(std::move(text), "");
}

void frmMain::cmdStop_Click()
{
    StopRequested = True;
    ++StopCount;
    if (Character) {
        Character->StopAll(everything);
        Character->Play("RestPose");
    }
    SetStatus(StatusIdle);
}

void frmMain::cmdTime_Click()
{
    SpeakText(FormatSpokenTime(Settings.TimeIn24Hour, false), "Announce");
}

void frmMain::cmdDate_Click()
{
    SpeakText("Today is " + FormatSpokenDate(Settings.DateFormat, platform_.Time.Now()), "Announce");
}

void frmMain::cmdCharIntro_Click()
{
    GreetAndIntroduce(false);
}

void frmMain::cmdClip_Click()
{
    if (!platform_.Windows.ClipboardGetFormat(vbCFText))
        return;
    txtText.Text = platform_.Windows.ClipboardGetText();
    SpeakText(platform_.Windows.ClipboardGetText(), "");
}

void frmMain::cmdText_Click()
{
    OpenAndReadText();
}

// Only one document at a time: what is pressed while the word processor is at work would come in between. The button
// stays as it is, as a disabled one would lose the keyboard.
void frmMain::cmdWord_Click()
{
    const Command command(readingWord_);
    if (command.Begun())
        OpenAndReadWord();
}

void frmMain::mnuWho_Click()
{
    cmdCharIntro_Click();
}

void frmMain::mnuDate_Click()
{
    cmdDate_Click();
}

void frmMain::mnuTime_Click()
{
    cmdTime_Click();
}

void frmMain::mnuReadClip_Click()
{
    cmdClip_Click();
}

void frmMain::mnuWord_Click()
{
    cmdWord_Click();
}

void frmMain::mnuText_Click()
{
    cmdText_Click();
}

void frmMain::mnuPlayWav_Click()
{
    OpenAndPlayWave();
}

void frmMain::cmdOptions_Click()
{
    Made(optionsForm_).Show();
}

void frmMain::mnuOptions_Click()
{
    cmdOptions_Click();
}

void frmMain::mnuTip_Click()
{
    Tip().ShowTip();
    ShowTipOfTheDay(false);
}

void frmMain::mnuAbout_Click()
{
    Made(aboutForm_).Show();
}

void frmMain::mnuHelp_Click()
{
    Announce("Help will be available very soon. Author is preparing the help.", vbInformation, "Voxmate - Help",
             "Suggest");
}

void frmMain::cmdCharacter_Click()
{
    if (Character)
        Character->Show(false);
}

void frmMain::cmdCharacter_MouseUp(int button)
{
    constexpr int rightButton = 2;
    if (button == rightButton && CharacterCount > 0)
        PopupMenu(mnuMainChar, &cmdCharacter);
}

void frmMain::comSpEng_Click()
{
    ChooseSpeechEngine(comSpEng.ListIndex + 1);
}

void frmMain::scrPitch_Change()
{
    Settings.Pitch = ToInt16(scrPitch.Value);
    lblPitch.Caption = "= " + std::to_string(Settings.Pitch);
    WriteRegDword(SettingsKey, "Pitch", Settings.Pitch);
}

void frmMain::scrSpeed_Change()
{
    Settings.Speed = ToInt16(scrSpeed.Value);
    lblSpeed.Caption = "= " + std::to_string(Settings.Speed);
    WriteRegDword(SettingsKey, "Speed", Settings.Speed);
}

void frmMain::chkWhisper_Click()
{
    Settings.Whisper = chkWhisper.Value == 1 ? True : False;
    WriteRegDword(SettingsKey, "Whisper", chkWhisper.Value);
}

void frmMain::mnuChar_Click(const std::string& caption)
{
    LoadCharacter(caption, false);
}

void frmMain::mnuExit_Click()
{
    mnuTrayExit_Click();
}

void frmMain::SysTime_Timer()
{
    stsBar.SetPanel(3, Format(platform_.Time.Now(), "h:nn:ss AM/PM"));
    if (Settings.SpeakTimeInterval == 0)
        return;
    const std::int32_t counter = AddInt32(SpeakTimeCounter, 1);
    const std::int16_t limit = MultiplyInt16(Settings.SpeakTimeInterval, 60);
    SpeakTimeCounter = counter;
    if (SpeakTimeCounter >= limit) {
        SpeakTimeCounter = 0;
        cmdTime_Click();
    }
}

void frmMain::mnuShowAll_Click()
{
    ShowAllReminders();
}

void frmMain::mnuEReminders_Click()
{
    EnableReminders();
}

void frmMain::mnuDReminders_Click()
{
    DisableReminders();
}

void frmMain::AgentX_Click(int button)
{
    constexpr int leftButton = 1;
    if (button == leftButton && Settings.ReadTextBoxTextAtLeftClick == 1)
        cmdSpeak_Click();
}

void frmMain::AgentX_RequestComplete(const AgentRequestPtr& request)
{
    if (request && request == AnimateRequest) {
        AnimateRequest.reset();
        if (AnimateEnded)
            AnimateEnded();
        if (Character)
            Character->Play("RestPose");
    }
    SetStatus(StatusIdle);
}

void frmMain::AgentX_Damaged(const std::string& message)
{
    damages_.push_back(message);
    DamageTimer.Enabled = true;
}

void frmMain::DamageTimer_Timer()
{
    if (!TellDamagedCharacter(damages_.front()))
        return;
    damages_.pop_front(); // others may have come while the box was up
    DamageTimer.Enabled = !damages_.empty();
}

void frmMain::AgentX_Command(const std::string& name)
{
    if (name == "mnuStop")
        cmdStop_Click();
    else if (name == "mnuTime")
        cmdTime_Click();
    else if (name == "mnuDate")
        cmdDate_Click();
    else if (name == "mnuIntro")
        cmdCharIntro_Click();
}

} // namespace voxmate
