// The main window's fake.
#pragma once

#include "base/Text.h"
#include "modules/MainWindow.h"
#include "modules/Windows.h"
#include "tests/fakes/FakeLog.h"

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

namespace voxmate::fakes
{

/// Logs what it is asked to announce; visible until a test says otherwise.
class FakeAlertWindow : public AlertWindow
{
public:
    explicit FakeAlertWindow(Log& log) : log_(log) {}
    bool visible = false;

    bool Visible() const override { return visible; }
    void DisplayMessage(const std::string& SMessage, std::int16_t bFormId, bool bPreview, std::int32_t DisplaySeconds,
                        bool bFade, bool bAutoFit, bool bSquare, std::int32_t iBackColor, bool bTubeFill) override
    {
        visible = true;
        log_.push_back("Alert " + std::to_string(bFormId) + (bPreview ? " preview " : " ") +
                       std::to_string(DisplaySeconds) + " s" + (bFade ? " fade" : " scroll") +
                       (bAutoFit ? " fit" : "") + (bSquare ? " square " : " round ") + std::to_string(iBackColor) +
                       (bTubeFill ? " tube: " : " corner: ") + SMessage);
    }
    void SetCloseActivate(bool vNewValue) override
    {
        log_.push_back(std::string("CloseActivate ") + (vNewValue ? "True" : "False"));
    }
    bool CloseActivate() const override { return false; }

private:
    Log& log_;
};

class FakeNoticeWindow : public NoticeWindow
{
public:
    explicit FakeNoticeWindow(Log& log) : log_(log) {}
    bool visible = false;

    bool Visible() const override { return visible; }
    void ShowNotice(const NoticeText& text) override
    {
        visible = true;
        log_.push_back("Notice " + std::to_string(text.Id) + " " + text.Heading + "|" + text.Title + "|" + text.Date +
                       "|" + text.Time + "|" + text.Description);
    }

private:
    Log& log_;
};

class FakeEditor : public ReminderEditor
{
public:
    explicit FakeEditor(Log& log) : log_(log) {}
    std::vector<std::string> rows; ///< what the list holds

    void ShowEditor() override { log_.push_back("Editor shown"); }
    void UnloadEditor() override { log_.push_back("Editor unloaded"); }
    void ClearList() override { rows.clear(); }
    void AddListItem(std::int16_t id, int image, const std::string& title, const std::string& date,
                     const std::string& time) override
    {
        rows.push_back(std::to_string(id) + "|" + std::to_string(image) + "|" + title + "|" + date + "|" + time);
    }
    void SelectListItem(std::int16_t index) override { log_.push_back("Select item " + std::to_string(index)); }
    void ShowFields(const Reminder& reminder) override
    {
        log_.push_back("Fields " + reminder.Title + "|" + std::to_string(reminder.Day) + "|" +
                       std::to_string(reminder.Month) + "|" + std::to_string(reminder.Year) + "|" +
                       Padded(reminder.Hour, 2) + ":" + Padded(reminder.Minute, 2) + "|" + reminder.Description +
                       (reminder.Done ? "|done" : "|pending"));
    }
    void ClearFields() override { log_.push_back("Fields empty"); }

private:
    Log& log_;
};

class FakeTipWindow : public TipWindow
{
public:
    explicit FakeTipWindow(Log& log) : log_(log) {}
    std::string text;

    void ShowTip() override { log_.push_back("Tip shown"); }
    void SetChecks(int showAtStartUp, int autoRead) override
    {
        log_.push_back("Tip checks " + std::to_string(showAtStartUp) + " " + std::to_string(autoRead));
    }
    void SetTipText(const std::string& newText) override { text = newText; }
    std::string TipText() const override { return text; }
    void DisplayCurrentTip() override { log_.push_back("DisplayCurrentTip"); }

private:
    Log& log_;
};

/// A main window without a window, for tests of the modules alone.
class FakeMainWindow : public MainWindow
{
    Log& log_;

public:
    explicit FakeMainWindow(Log& log) : log_(log) {}
    std::vector<std::string> statuses;
    std::string characterPanel;
    std::vector<std::string> characters;
    std::string checked;
    std::vector<std::string> engines;
    int selectedEngine = -1;

    void Show() override { log_.push_back("MainWindow shown"); }
    void SetStatus(const std::string& text) override
    {
        statuses.push_back(text);
        log_.push_back("Status " + text);
    }
    void SetCharacterPanel(const std::string& text) override { characterPanel = text; }
    void ListCharacters(const std::vector<std::string>& names) override { characters = names; }
    void CheckCharacter(const std::string& name) override { checked = name; }
    void AddSpeechEngine(const std::string& name) override { engines.push_back(name); }
    void SelectSpeechEngine(int index) override { selectedEngine = index; }
    int SelectedSpeechEngine() const override { return selectedEngine; }
    void SetVoiceControls(int pitch, int speed, int whisper) override
    {
        log_.push_back("VoiceControls " + std::to_string(pitch) + " " + std::to_string(speed) + " " +
                       std::to_string(whisper));
    }

    bool reminderTimer = false;
    bool reminderRetry = false;
    bool enableChecked = false;
    bool disableChecked = false;
    std::vector<FakeAlertWindow*> alerts; ///< every alert window made, and notice window
    std::vector<FakeNoticeWindow*> notices;
    FakeEditor editor{log_};
    FakeTipWindow tip{log_};

    void EnableReminderTimer(bool enabled) override { reminderTimer = enabled; }
    bool ReminderTimerEnabled() const override { return reminderTimer; }
    void EnableReminderRetry(bool enabled) override { reminderRetry = enabled; }
    void CheckReminderMenus(bool enable, bool disable) override
    {
        enableChecked = enable;
        disableChecked = disable;
    }
    bool EnableRemindersChecked() const override { return enableChecked; }
    std::unique_ptr<AlertWindow> NewAlertWindow() override
    {
        auto window = std::make_unique<FakeAlertWindow>(log_);
        alerts.push_back(window.get());
        return window;
    }
    std::unique_ptr<NoticeWindow> NewNoticeWindow() override
    {
        auto window = std::make_unique<FakeNoticeWindow>(log_);
        notices.push_back(window.get());
        return window;
    }
    ReminderEditor& Editor() override { return editor; }
    TipWindow& Tip() override { return tip; }
};

} // namespace voxmate::fakes
