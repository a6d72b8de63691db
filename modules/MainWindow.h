// What the modules need of the main window; frmMain implements it.
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
    /// Text of the status bar's first panel (activity) and of its second (the character's name).
    virtual void SetStatus(const std::string& text) = 0;
    virtual void SetCharacterPanel(const std::string& text) = 0;
    /// Replaces the items of the character menu by these names, none checked.
    virtual void ListCharacters(const std::vector<std::string>& names) = 0;
    /// Puts the check mark on the item of this name and clears all others.
    virtual void CheckCharacter(const std::string& name) = 0;
    /// The list of voices: adds an entry, chooses one (0-based, raises no event), tells the chosen one (-1: none).
    virtual void AddSpeechEngine(const std::string& name) = 0;
    virtual void SelectSpeechEngine(int index) = 0;
    virtual int SelectedSpeechEngine() const = 0;
    /// Sets the two bars and the check box, in this order; each change runs that control's handler.
    virtual void SetVoiceControls(int pitch, int speed, int whisper) = 0;

    /// The reminder timer.
    virtual void EnableReminderTimer(bool enabled) = 0;
    virtual bool ReminderTimerEnabled() const = 0;
    /// The timer that calls RetryReminders once a second; it is off unless something is to be tried again.
    virtual void EnableReminderRetry(bool enabled) = 0;
    /// The check marks of the two menu items that switch reminders on and off.
    virtual void CheckReminderMenus(bool enable, bool disable) = 0;
    virtual bool EnableRemindersChecked() const = 0;

    /// The other windows: a new announcement window; the reminder editor and the tip window, made when first asked for.
    virtual std::unique_ptr<AlertWindow> NewAlertWindow() = 0;
    virtual std::unique_ptr<NoticeWindow> NewNoticeWindow() = 0;
    virtual ReminderEditor& Editor() = 0;
    virtual TipWindow& Tip() = 0;
};

} // namespace voxmate
