// The main window: what the character says, its voice, and the menus.
#pragma once

#include "modules/MainWindow.h"
#include "modules/Windows.h"
#include "platform/Platform.h"

#include <deque>
#include <memory>
#include <string>
#include <vector>

namespace voxmate
{

class Program;
class frmAbout;
class frmOptions;
class frmReminder;
class frmTip;

class frmMain : public Form, public MainWindow
{
public:
    explicit frmMain(Program& program);
    ~frmMain() override;

    Timer SysTime{this, "SysTime", 1000, true};
    Timer RemTimer{this, "RemTimer", 800, false};
    Timer RemRetryTimer{this, "RemRetryTimer", 1000, false};
    /// Shows the reports of damaged characters once the program has started and no other message is up; off
    /// while there are none.
    Timer DamageTimer{this, "DamageTimer", 250, false};
    PictureBox TrayPict{this, "TrayPict", "voxmate"};
    CommandButton cmdDate{this, "cmdDate"};
    CommandButton cmdTime{this, "cmdTime"};
    CommandButton cmdClip{this, "cmdClip"};
    CommandButton cmdCharIntro{this, "cmdCharIntro"};
    CommandButton cmdText{this, "cmdText"};
    CommandButton cmdWord{this, "cmdWord"};
    CommandButton cmdOptions{this, "cmdOptions"};
    CommandButton cmdCharacter{this, "cmdCharacter"};
    TextBox txtText{this, "txtText"};
    CommandButton cmdSpeak{this, "cmdSpeak"};
    CommandButton cmdStop{this, "cmdStop"};
    Frame Frame2{this, "Frame2", "Voice Settings"};
    Label lblVoice{this, "lblVoice", "Voice &Types"};
    ComboBox comSpEng{this, "comSpEng"};
    Label lblSpeedName{this, "lblSpeedName", "Spee&d"};
    HScrollBar scrSpeed{this, "scrSpeed", 40, 400};
    Label lblSpeed{this, "lblSpeed", "= 40"};
    Label lblPitchName{this, "lblPitchName", "&Pitch"};
    HScrollBar scrPitch{this, "scrPitch", 40, 400};
    Label lblPitch{this, "lblPitch", "= 40"};
    Label lblVoiceName{this, "lblVoiceName", "Voice"};
    CheckBox chkWhisper{this, "chkWhisper", "&Whisper"};
    StatusBar stsBar{this, "stsBar", {{"", 0, "Activity"}, {"", 10, "Character"}, {"", 12, "Clock"}}};

    Menu mnuFile{this, nullptr, "mnuFile", "&File"};
    Menu mnuMainChar{this, &mnuFile, "mnuMainChar", "&Characters"};
    Menu mnuPlayWav{this, &mnuFile, "mnuPlayWav", "&Play a WAV File"};
    Menu mnuTip{this, &mnuFile, "mnuTip", "&Tip of the Day"};
    Menu mnuSep2{this, &mnuFile, "mnuSep2", "-"};
    Menu mnuOptions{this, &mnuFile, "mnuOptions", "&Options"};
    Menu mnuSep1{this, &mnuFile, "mnuSep1", "-"};
    Menu mnuSysTray{this, &mnuFile, "mnuSysTray", "Put in &System Tray"};
    Menu mnuExit{this, &mnuFile, "mnuExit", "&Exit"};

    Menu mnuSpeak{this, nullptr, "mnuSpeak", "&Speak"};
    Menu mnuWho{this, &mnuSpeak, "mnuWho", "&Who Am I?"};
    Menu mnuDate{this, &mnuSpeak, "mnuDate", "Tell Me the &Date"};
    Menu mnuTime{this, &mnuSpeak, "mnuTime", "Tell Me the &Time"};
    Menu mnuReadClip{this, &mnuSpeak, "mnuReadClip", "Read &Clipboard"};
    Menu mnuSep3{this, &mnuSpeak, "mnuSep3", "-"};
    Menu mnuWord{this, &mnuSpeak, "mnuWord", "Open &Word Document to Read"};
    Menu mnuText{this, &mnuSpeak, "mnuText", "Open &Text Document to Read"};

    Menu mnuReminder{this, nullptr, "mnuReminder", "&Reminders"};
    Menu mnuShowAll{this, &mnuReminder, "mnuShowAll", "&Show All Reminders"};
    Menu mnuEDRem{this, &mnuReminder, "mnuEDRem", "Enable/Disable &Reminders"};
    Menu mnuEReminders{this, &mnuEDRem, "mnuEReminders", "&Enable Reminders"};
    Menu mnuDReminders{this, &mnuEDRem, "mnuDReminders", "&Disable Reminders"};

    Menu mnuHelpMain{this, nullptr, "mnuHelpMain", "&Help"};
    Menu mnuHelp{this, &mnuHelpMain, "mnuHelp", "&Help"};
    Menu mnuSep4{this, &mnuHelpMain, "mnuSep4", "-"};
    Menu mnuDownChar{this, &mnuHelpMain, "mnuDownChar", "Download More &Characters"};
    Menu mnuDownChar1{this, &mnuDownChar, "mnuDownChar1", "site1"};
    Menu mnuDownChar2{this, &mnuDownChar, "mnuDownChar2", "site2"};
    Menu mnuDownChar3{this, &mnuDownChar, "mnuDownChar3", "site3"};
    Menu mnuSpEng{this, &mnuHelpMain, "mnuSpEng", "Download More &Voice Types"};
    Menu mnuSpEng1{this, &mnuSpEng, "mnuSpEng1", "site1"};
    Menu mnuSpEng2{this, &mnuSpEng, "mnuSpEng2", "site2"};
    Menu mnuSep5{this, &mnuHelpMain, "mnuSep5", "-"};
    Menu mnuAbout{this, &mnuHelpMain, "mnuAbout", "&About Voxmate"};

    Menu mnuTray{this, nullptr, "mnuTray", "Tray"};
    Menu mnuTrayExit{this, &mnuTray, "mnuTrayExit", "&Exit"};

    Menu mnuCharRC{this, nullptr, "mnuCharRC", "Char Right Click"};
    Menu mnuStop{this, &mnuCharRC, "mnuStop", "&Stop"};

    // MainWindow.
    void Show() override { Form::Show(); }
    void SetStatus(const std::string& text) override { stsBar.SetPanel(1, text); }
    void SetCharacterPanel(const std::string& text) override { stsBar.SetPanel(2, text); }
    void ListCharacters(const std::vector<std::string>& names) override;
    void CheckCharacter(const std::string& name) override;
    void AddSpeechEngine(const std::string& name) override { comSpEng.AddItem(name); }
    void SelectSpeechEngine(int index) override { comSpEng.ListIndex = index; }
    int SelectedSpeechEngine() const override { return comSpEng.ListIndex; }
    void SetVoiceControls(int pitch, int speed, int whisper) override;
    void EnableReminderTimer(bool enabled) override { RemTimer.Enabled = enabled; }
    bool ReminderTimerEnabled() const override { return RemTimer.Enabled; }
    void EnableReminderRetry(bool enabled) override { RemRetryTimer.Enabled = enabled; }
    void CheckReminderMenus(bool enable, bool disable) override;
    bool EnableRemindersChecked() const override { return mnuEReminders.Checked; }
    std::unique_ptr<AlertWindow> NewAlertWindow() override;
    std::unique_ptr<NoticeWindow> NewNoticeWindow() override;
    ReminderEditor& Editor() override;
    TipWindow& Tip() override;

protected:
    void Form_Load() override;
    void Form_QueryUnload(bool& cancel) override;
    void Form_MouseMove(double x) override;

private:
    Program& program_;
    bool readingWord_ = false; ///< a Word document is being opened or read in

    TrayIconData trayIconData_;
    std::deque<std::string> damages_; ///< reports of damaged characters, still to be shown
    // Each is made when it is first needed.
    std::unique_ptr<frmReminder> reminderForm_;
    std::unique_ptr<frmOptions> optionsForm_;
    std::unique_ptr<frmTip> tipForm_;
    std::unique_ptr<frmAbout> aboutForm_;

    /// Returns the form; makes it first if there is none yet.
    template <class F>
    F& Made(std::unique_ptr<F>& form);
    void AddTrayIcon();
    int MouseMessage(double x) const;
    void TrayPict_MouseMove(double x);
    void mnuTrayExit_Click();
    void ConnectAgent();
    void ConnectHandlers();
    void Arrange();
    void cmdSpeak_Click();
    void cmdStop_Click();
    void cmdTime_Click();
    void cmdDate_Click();
    void cmdClip_Click();
    void cmdWord_Click();
    void mnuTip_Click();
    void mnuHelp_Click();
    void cmdCharacter_Click();
    void cmdCharacter_MouseUp(int button);
    void chkWhisper_Click();
    void SysTime_Timer();
    void AgentX_Click(int button);
    void AgentX_RequestComplete(const AgentRequestPtr& request);
    void AgentX_Command(const std::string& name);
    void AgentX_Damaged(const std::string& message);
    void DamageTimer_Timer();
};

} // namespace voxmate
