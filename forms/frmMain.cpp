#include "forms/frmMain.h"

#include "base/Text.h"
#include "forms/frmAbout.h"
#include "forms/frmAlertWindow.h"
#include "forms/frmOptions.h"
#include "forms/frmReminder.h"
#include "forms/frmShowRem.h"
#include "forms/frmTip.h"
#include "modules/Command.h"
#include "modules/Format.h"
#include "modules/Program.h"

#include <algorithm>
#include <string_view>
#include <tuple>
#include <utility>

namespace voxmate
{

namespace
{

constexpr const char* everything = "Move, Play, Speak";

// A name as a menu caption. Ampersands are doubled, because a single one would mark an access key.
std::string MenuCaption(const std::string& name)
{
    std::string caption;
    for (const char c : name)
        caption += c == '&' ? "&&" : std::string(1, c);
    return caption;
}

} // namespace

frmMain::frmMain(Program& program) : Form(program.Host.Windows, "frmMain"), program_(program)
{
    Caption = "Voxmate";
    Border = BorderStyle::FixedSingle;
    Status = &stsBar;
    MenuBar = {&mnuFile, &mnuSpeak, &mnuReminder, &mnuHelpMain};

    txtText.MultiLine = true;
    txtText.AccessibleName = "Text to read";
    txtText.PlaceholderText = "Type something for me to read";
    const std::tuple<CommandButton*, const char*, const char*> faces[] = {
        {&cmdDate, "date", "What's today's date?"},
        {&cmdTime, "time", "What time is it?"},
        {&cmdClip, "clipboard", "Speak Clipboard Text"},
        {&cmdCharIntro, "introduction", "Do you know who am I ?"},
        {&cmdText, "text", "Open and Read a Text Document"},
        {&cmdWord, "word", "Open and Read a Word Document"},
        {&cmdOptions, "options", "User Options"},
        {&cmdSpeak, "speak", "Speak the textbox text"},
        {&cmdStop, "stop", "Stop Everything !!!"},
        {&cmdCharacter, "character", "Choose Character by Right Click. Show Character on Left Click"},
    };
    for (const auto& [button, picture, toolTip] : faces) {
        button->Picture = picture;
        button->ToolTipText = toolTip;
    }
    cmdSpeak.Stands = CommandButton::Role::Act;
    cmdStop.Stands = CommandButton::Role::Halt;
    lblVoice.Buddy = &comSpEng;
    lblSpeedName.Buddy = &scrSpeed;
    lblPitchName.Buddy = &scrPitch;
    comSpEng.AccessibleName = "Voice Types";
    scrSpeed.AccessibleName = "Speed";
    scrPitch.AccessibleName = "Pitch";
    stsBar.AccessibleName = "Status";
    // The submenu's only item until characters are found.
    mnuMainChar.Load("mnuChar", "Character1");
    Arrange();
    ConnectHandlers();
    // Closing the window may put it into the tray, which is meant for the user; the end of a session must not be held
    // up by that.
    program_.Host.System.EndRequested = [this] { mnuTrayExit_Click(); };
    ConnectAgent();
    program_.Main = this;
}

frmMain::~frmMain()
{
    program_.Host.System.EndRequested = nullptr;
    program_.Main = nullptr;
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

void frmMain::ConnectHandlers()
{
    SysTime.Tick = [this] { SysTime_Timer(); };
    cmdDate.Click = mnuDate.Click = [this] { cmdDate_Click(); };
    cmdTime.Click = mnuTime.Click = [this] { cmdTime_Click(); };
    cmdClip.Click = mnuReadClip.Click = [this] { cmdClip_Click(); };
    cmdCharIntro.Click = mnuWho.Click = [this] { GreetAndIntroduce(program_, false); };
    cmdText.Click = mnuText.Click = [this] { program_.Reading.OpenAndReadText(); };
    cmdWord.Click = mnuWord.Click = [this] { cmdWord_Click(); };
    mnuPlayWav.Click = [this] { program_.Reading.OpenAndPlayWave(); };
    cmdSpeak.Click = [this] { cmdSpeak_Click(); };
    cmdStop.Click = mnuStop.Click = [this] { cmdStop_Click(); };
    cmdCharacter.Click = [this] { cmdCharacter_Click(); };
    cmdCharacter.MouseUp = [this](int button) { cmdCharacter_MouseUp(button); };
    comSpEng.Click = [this] { program_.Voice.ChooseSpeechEngine(comSpEng.ListIndex + 1); };
    const auto connectBar = [this](HScrollBar& bar, Label& label, NumberField setting) {
        bar.Change = [this, &bar, &label, setting] {
            label.Caption = "= " + std::to_string(bar.Value);
            SaveSetting(program_, setting, ToInt16(bar.Value));
        };
    };
    connectBar(scrPitch, lblPitch, &SettingsRecord::Pitch);
    connectBar(scrSpeed, lblSpeed, &SettingsRecord::Speed);
    chkWhisper.Click = [this] { chkWhisper_Click(); };
    cmdOptions.Click = mnuOptions.Click = [this] { Made(optionsForm_).Show(); };
    mnuTip.Click = [this] { mnuTip_Click(); };
    mnuSysTray.Click = [this] { AddTrayIcon(); };
    RemTimer.Tick = [this] { program_.Scheduler.RemTimer_Timer(); };
    RemRetryTimer.Tick = [this] { program_.Reminders.RetryReminders(); };
    DamageTimer.Tick = [this] { DamageTimer_Timer(); };
    mnuShowAll.Click = [this] { program_.Reminders.ShowAllReminders(); };
    mnuEReminders.Click = [this] { program_.Reminders.EnableReminders(); };
    mnuDReminders.Click = [this] { program_.Reminders.DisableReminders(); };
    mnuHelp.Click = [this] { mnuHelp_Click(); };
    // The pages say where character files come from, how to install them and voices, how to make a character file, and
    // which voices there are.
    mnuDownChar1.Click = [this] { program_.OpenUrl(program_.HelpPage("characters")); };
    mnuDownChar2.Click = mnuSpEng1.Click = [this] { program_.OpenUrl(program_.HelpPage("installing")); };
    mnuDownChar3.Click = [this] { program_.OpenUrl(program_.HelpPage("making")); };
    mnuSpEng2.Click = [this] { program_.OpenUrl(program_.HelpPage("voices")); };
    mnuAbout.Click = [this] { Made(aboutForm_).Show(); };
    mnuExit.Click = mnuTrayExit.Click = [this] { mnuTrayExit_Click(); };
    TrayPict.IconMenu = &mnuTray;
    TrayPict.MouseMove = [this](double x) { TrayPict_MouseMove(x); };
}

void frmMain::ConnectAgent()
{
    AgentControl& agent = program_.Host.Agent;
    agent.Click = [this](const std::string&, int button, int, int, int) { AgentX_Click(button); };
    agent.Command = [this](const std::string& name) { AgentX_Command(name); };
    agent.RequestStart = [this](const AgentRequestPtr&) { SetStatus(StatusBusy); };
    agent.RequestComplete = [this](const AgentRequestPtr& request) { AgentX_RequestComplete(request); };
    agent.Damaged = [this](const std::string&, const std::string& message) { AgentX_Damaged(message); };
    agent.Hidden = [this](const std::string&, VisibilityCause) {
        if (program_.Character)
            program_.Character->StopAll(everything);
    };
}

void frmMain::Form_Load()
{
    if (program_.Host.System.PreviousInstance()) {
        program_.Host.Windows.MsgBox("Another copy of Voxmate is already running.", vbCritical, "Voxmate - Running");
        program_.Host.System.EndProgram();
    }
}

void frmMain::Form_QueryUnload(bool& cancel)
{
    if (program_.Settings.CloseToTray == 1) {
        AddTrayIcon();
        cancel = true;
    } else {
        mnuTrayExit_Click();
    }
}

void frmMain::AddTrayIcon()
{
    trayIconData_ = {};
    trayIconData_.window = program_.Host.Windows.WindowHandle(TrayPict);
    trayIconData_.iconId = 1;
    trayIconData_.flags = NIF_MESSAGE_ICON_TIP;
    trayIconData_.callbackMessage = WM_MOUSEMOVE;
    trayIconData_.icon = program_.Host.Windows.PictureHandle(TrayPict);
    constexpr std::string_view tip = "Voxmate";
    std::copy(tip.begin(), tip.end(), trayIconData_.tip.begin());
    program_.Host.Windows.Shell_NotifyIconA(NIM_ADD, trayIconData_);
    Hide();
}

int frmMain::MouseMessage(double x) const
{
    return static_cast<int>(RoundHalfEven(x / program_.Host.Windows.TwipsPerPixelX()));
}

// The tray icon's mouse messages arrive as mouse moves over the picture box, whose x is the message.
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

// Mouse moves reported for the form itself carry a message in the same way.
void frmMain::Form_MouseMove(double x)
{
    const int message = MouseMessage(x);
    if (message == WM_LBUTTONDBLCLK)
        Form::Show();
    else if (message == WM_RBUTTONUP)
        PopupMenu(mnuTrayExit);
}

void frmMain::mnuTrayExit_Click()
{
    program_.Host.Windows.Shell_NotifyIconA(NIM_DELETE, trayIconData_);
    program_.Reminders.SaveLastAnswers();
    program_.Host.System.EndProgram();
}

void frmMain::ListCharacters(const std::vector<std::string>& names)
{
    mnuMainChar.UnloadAll();
    for (const std::string& name : names) {
        Menu& item = mnuMainChar.Load("mnuChar", MenuCaption(name));
        item.Click = [this, name] { program_.Characters.LoadCharacter(name, false); };
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
    return std::make_unique<frmAlertWindow>(program_);
}

std::unique_ptr<NoticeWindow> frmMain::NewNoticeWindow()
{
    return std::make_unique<frmShowRem>(program_);
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
        form = std::make_unique<F>(program_);
    return *form;
}

void frmMain::cmdSpeak_Click()
{
    std::string text = Trim(txtText.Text.get());
    if (text.empty()) {
        const BusyScope busy(program_.Messages.IsBusy);
        program_.Messages.ShowMessage("There is nothing to read from the textbox.", "Confused");
        return;
    }
    program_.Voice.SpeakText(std::move(text), "");
}

void frmMain::cmdStop_Click()
{
    program_.StopRequested = True;
    ++program_.StopCount;
    if (program_.Character) {
        program_.Character->StopAll(everything);
        program_.Character->Play("RestPose");
    }
    SetStatus(StatusIdle);
}

void frmMain::cmdTime_Click()
{
    program_.Voice.SpeakText(FormatSpokenTime(program_.Host.Time.Now(), program_.Settings.TimeIn24Hour, false),
                             "Announce");
}

void frmMain::cmdDate_Click()
{
    program_.Voice.SpeakText("Today is " + FormatSpokenDate(program_.Settings.DateFormat, program_.Host.Time.Now()),
                             "Announce");
}

void frmMain::cmdClip_Click()
{
    if (!program_.Host.Windows.ClipboardGetFormat(vbCFText))
        return;
    txtText.Text = program_.Host.Windows.ClipboardGetText();
    program_.Voice.SpeakText(program_.Host.Windows.ClipboardGetText(), "");
}

// Reads one document at a time: events run while the word processor is at work, so the button can be pressed again. It
// is not disabled meanwhile, because a disabled button loses the keyboard focus.
void frmMain::cmdWord_Click()
{
    const Command command(readingWord_);
    if (command.Begun())
        program_.Reading.OpenAndReadWord();
}

void frmMain::mnuTip_Click()
{
    Tip().ShowTip();
    program_.Tips.ShowTipOfTheDay(false);
}

void frmMain::mnuHelp_Click()
{
    program_.Messages.Announce("Help will be available very soon. Author is preparing the help.", vbInformation,
                               "Voxmate - Help", "Suggest");
}

void frmMain::cmdCharacter_Click()
{
    if (program_.Character)
        program_.Character->Show(false);
}

void frmMain::cmdCharacter_MouseUp(int button)
{
    constexpr int rightButton = 2;
    if (button == rightButton && program_.Characters.CharacterCount > 0)
        PopupMenu(mnuMainChar, &cmdCharacter);
}

void frmMain::chkWhisper_Click()
{
    program_.Settings.Whisper = chkWhisper.Value == 1 ? True : False;
    program_.Registry.WriteRegDword(SettingsKey, "Whisper", chkWhisper.Value);
}

void frmMain::SysTime_Timer()
{
    stsBar.SetPanel(3, Format(program_.Host.Time.Now(), "h:nn:ss AM/PM"));
    if (program_.Settings.SpeakTimeInterval == 0)
        return;
    const std::int32_t counter = AddInt32(program_.SpeakTimeCounter, 1);
    const std::int16_t limit = MultiplyInt16(program_.Settings.SpeakTimeInterval, 60);
    program_.SpeakTimeCounter = counter;
    if (program_.SpeakTimeCounter >= limit) {
        program_.SpeakTimeCounter = 0;
        cmdTime_Click();
    }
}

void frmMain::AgentX_Click(int button)
{
    constexpr int leftButton = 1;
    if (button == leftButton && program_.Settings.ReadTextBoxTextAtLeftClick == 1)
        cmdSpeak_Click();
}

void frmMain::AgentX_RequestComplete(const AgentRequestPtr& request)
{
    if (request && request == program_.Characters.AnimateRequest) {
        program_.Characters.AnimateRequest.reset();
        if (program_.Characters.AnimateEnded)
            program_.Characters.AnimateEnded();
        if (program_.Character)
            program_.Character->Play("RestPose");
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
    if (!program_.Characters.TellDamagedCharacter(damages_.front()))
        return;
    damages_.pop_front(); // more may have been added while the box was up
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
        GreetAndIntroduce(program_, false);
}

} // namespace voxmate
