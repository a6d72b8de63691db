// The main window's fake.
#pragma once

#include "base/Text.h"
#include "modules/MainWindow.h"
#include "tests/fakes/FakeAlertWindow.h"
#include "tests/fakes/FakeEditor.h"
#include "tests/fakes/FakeNoticeWindow.h"
#include "tests/fakes/FakeTipWindow.h"
#include "tests/fakes/Log.h"

#include <memory>
#include <string>
#include <vector>

namespace voxmate::fakes
{

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
