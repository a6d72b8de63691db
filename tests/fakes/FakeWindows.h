// The window system's fake: boxes and dialogs answered from queues, windows that only log.
#pragma once

#include "base/RuntimeError.h"
#include "platform/WindowSystem.h"
#include "tests/fakes/FakeWindowCalls.h"
#include "tests/fakes/Log.h"

#include <algorithm>
#include <cstdint>
#include <deque>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace voxmate::fakes
{

class FakeWindows : public FakeWindowCalls
{
public:
    explicit FakeWindows(Log& log) : FakeWindowCalls(log), log_(log) {}

    struct Box {
        std::string text;
        int style;
        std::string title;
    };
    std::vector<Box> boxes;
    std::deque<int> answers; ///< of the next boxes; vbOK, or vbNo for a question, when there are none left
    std::function<void(const Box&)> whileBoxIsUp;
    std::function<void()> whilePending; ///< what DoEvents lets happen
    std::string clipboard;

    int MsgBox(const std::string& text, int style, const std::string& title) override
    {
        boxes.push_back({text, style, title});
        log_.push_back("MsgBox " + title);
        if (whileBoxIsUp)
            whileBoxIsUp(boxes.back());
        if (answers.empty())
            return (style & vbYesNo) != 0 ? vbNo : vbOK;
        const int answer = answers.front();
        answers.pop_front();
        return answer;
    }
    void DoEvents() override
    {
        log_.push_back("DoEvents");
        if (whilePending)
            whilePending();
    }
    std::string chosenFolder;        ///< what the user picks; empty: cancels
    bool folderHasPath = true;       ///< false for an item list that stands for no folder on a disk
    std::vector<BrowseInfo> browsed; ///< what the folder picker was asked to show
    ItemList SHBrowseForFolderA(const BrowseInfo& info) override
    {
        log_.push_back("SHBrowseForFolderA " + info.title);
        browsed.push_back(info);
        return chosenFolder.empty() ? 0 : 77;
    }
    bool SHGetPathFromIDListA(ItemList list, std::string& path) override
    {
        log_.push_back("SHGetPathFromIDListA " + std::to_string(list));
        path = chosenFolder;
        return folderHasPath;
    }
    void CoTaskMemFree(ItemList list) override { log_.push_back("CoTaskMemFree " + std::to_string(list)); }
    std::deque<std::optional<std::string>>
        filesToOpen;                        ///< what the user chooses in the next open dialogs; none: cancels
    std::vector<std::string> filesSelected; ///< what the user selects in an open dialog before that
    std::function<void()> whileOpenDialogIsUp;
    void ShowOpen(CommonDialog& dialog) override
    {
        log_.push_back("ShowOpen " + dialog.DialogTitle + " " + dialog.Filter);
        if (whileOpenDialogIsUp)
            whileOpenDialogIsUp();
        if (dialog.Selected)
            std::for_each(filesSelected.begin(), filesSelected.end(), dialog.Selected);
        std::optional<std::string> chosen;
        if (!filesToOpen.empty()) {
            chosen = filesToOpen.front();
            filesToOpen.pop_front();
        }
        if (chosen)
            dialog.FileName = *chosen;
        else if (dialog.CancelError)
            throw CancelSelected();
    }
    std::deque<std::optional<FontSpec>> fontsToChoose; ///< in the next font dialogs; none: cancels
    bool ShowFont(FontSpec& font, int minSize, int maxSize) override
    {
        log_.push_back("ShowFont " + font.Name + " " + std::to_string(static_cast<int>(font.Size)) + " of " +
                       std::to_string(minSize) + " to " + std::to_string(maxSize));
        std::optional<FontSpec> chosen;
        if (!fontsToChoose.empty()) {
            chosen = fontsToChoose.front();
            fontsToChoose.pop_front();
        }
        if (chosen)
            font = *chosen;
        return chosen.has_value();
    }
    bool clipboardHasText = true; ///< false: empty, or a picture only
    bool ClipboardGetFormat(int format) override { return format == vbCFText && clipboardHasText; }
    std::function<void()> whenClipboardIsRead; ///< comes before the text is taken
    std::string ClipboardGetText() override
    {
        if (whenClipboardIsRead)
            whenClipboardIsRead();
        return clipboardHasText ? clipboard : "";
    }
    int clipboardClears = 0;
    void ClipboardClear() override
    {
        ++clipboardClears;
        clipboard.clear();
        clipboardHasText = false;
    }
    void ClipboardSetText(const std::string& text) override
    {
        clipboard = text;
        clipboardHasText = true;
    }
    std::vector<std::pair<std::uint32_t, TrayIconData>> trayCalls;
    bool Shell_NotifyIconA(std::uint32_t message, const TrayIconData& data) override
    {
        log_.push_back("Shell_NotifyIconA " + std::to_string(message));
        trayCalls.emplace_back(message, data);
        return trayAnswer;
    }
    bool trayAnswer = false; ///< whether there is an icon
    bool notificationArea = true;
    bool HasNotificationArea() override { return notificationArea; }
    std::uint32_t WindowHandle(PictureBox&) override { return 0x1234; }
    std::uint32_t PictureHandle(PictureBox&) override { return 0x5678; }
    double TwipsPerPixelX() override { return twipsPerPixel; }
    double twipsPerPixel = 15;

    std::unique_ptr<FormPeer> CreateFormPeer(Form& form) override
    {
        return std::make_unique<WindowPeer>(form.Name, log_);
    }

private:
    class WindowPeer : public FormPeer
    {
    public:
        WindowPeer(std::string name, Log& log) : name_(std::move(name)), log_(log) {}
        void Show() override { log_.push_back("Window " + name_ + " shown"); }
        void Hide() override { log_.push_back("Window " + name_ + " hidden"); }
        void Update(Property) override {}
        void Activate() override { log_.push_back("Window " + name_ + " activated"); }
        void PopupMenu(Menu& menu, Control*) override { log_.push_back("PopupMenu " + menu.Name); }

    private:
        std::string name_;
        Log& log_;
    };
    Log& log_;
};

} // namespace voxmate::fakes
