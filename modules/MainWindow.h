// The main window as the modules see it; frmMain implements it.
#pragma once

#include <memory>
#include <string>
#include <vector>

namespace voxmate
{

class AlertWindow;
class NoticeWindow;
class ReminderEditor;
class TipWindow;

class MainWindow
{
public:
    virtual ~MainWindow() = default;
    virtual void Show() = 0;
    /// Set the text of the status bar's first panel (the activity) and of its second (the character's name).
    virtual void SetStatus(const std::string& text) = 0;
    virtual void SetCharacterPanel(const std::string& text) = 0;
    /// Replaces the items of the character menu by these names, none checked.
    virtual void ListCharacters(const std::vector<std::string>& names) = 0;
    /// Checks the item of this name in the character menu and unchecks all others.
    virtual void CheckCharacter(const std::string& name) = 0;
    /// The list of voices: adds an entry; chooses an entry (counted from 0), which raises no event; returns the chosen
    /// entry, -1 for none.
    virtual void AddSpeechEngine(const std::string& name) = 0;
    virtual void SelectSpeechEngine(int index) = 0;
    virtual int SelectedSpeechEngine() const = 0;
    /// Sets the pitch bar, the speed bar and the whisper check box, in this order. Each change runs that control's
    /// handler.
    virtual void SetVoiceControls(int pitch, int speed, int whisper) = 0;

    /// The reminder timer.
    virtual void EnableReminderTimer(bool enabled) = 0;
    virtual bool ReminderTimerEnabled() const = 0;
    /// Switches the timer that calls RetryReminders once a second. It runs only while something is to be tried again.
    virtual void EnableReminderRetry(bool enabled) = 0;
    /// Sets the check marks of the two menu items that switch reminders on and off.
    virtual void CheckReminderMenus(bool enable, bool disable) = 0;
    virtual bool EnableRemindersChecked() const = 0;

    /// The other windows: a new announcement window of each kind, and the reminder editor and the tip window, which are
    /// made when they are first needed.
    virtual std::unique_ptr<AlertWindow> NewAlertWindow() = 0;
    virtual std::unique_ptr<NoticeWindow> NewNoticeWindow() = 0;
    virtual ReminderEditor& Editor() = 0;
    virtual TipWindow& Tip() = 0;
};

} // namespace voxmate
