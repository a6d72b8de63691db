// The window system on a Qt desktop.
#pragma once

#include "platform/WindowSystem.h"
#include "qt/alerts/QtWindowCalls.h"
#include "qt/dialogs/RecentFolders.h"
#include "qt/system/QtTray.h"
#include "qt/widgets/IconSet.h"

#include <QPointer>
#include <QWidget>

#include <map>
#include <string>

namespace voxmate::qt
{

class FormWindow;

class QtWindowSystem : public QtWindowCalls
{
public:
    /// `shareDirectory` is the folder of the shared data; it contains icons/.
    explicit QtWindowSystem(const std::string& shareDirectory);

    const IconSet& Icons() const { return icons_; }
    RecentFolders Recent; ///< of the dialog for opening a file

    /// Shows the modal dialog for saving a file under a name of one of the filter's kinds, in the folder it was last
    /// left in. Returns the full path, which the user has agreed to replace if it exists; empty when the user cancels.
    std::string ShowSave(const CommonDialog& dialog);

    std::unique_ptr<FormPeer> CreateFormPeer(Form& form) override;
    int MsgBox(const std::string& text, int style, const std::string& title) override;
    void DoEvents() override;
    ItemList SHBrowseForFolderA(const BrowseInfo& info) override;
    bool SHGetPathFromIDListA(ItemList list, std::string& path) override;
    void CoTaskMemFree(ItemList list) override;
    void ShowOpen(CommonDialog& dialog) override;
    bool ShowFont(FontSpec& font, int minSize, int maxSize) override;
    bool ClipboardGetFormat(int format) override;
    std::string ClipboardGetText() override;
    void ClipboardClear() override;
    void ClipboardSetText(const std::string& text) override;
    bool Shell_NotifyIconA(std::uint32_t message, const TrayIconData& data) override;
    bool HasNotificationArea() override;
    std::uint32_t WindowHandle(PictureBox& box) override { return tray_.HandleOf(box); }
    std::uint32_t PictureHandle(PictureBox& box) override { return tray_.HandleOf(box); }
    double TwipsPerPixelX() override { return TwipsPerPixel(); }

private:
    /// The owner for a box or a dialog: the form in use, or else the one last used, or else the main window.
    QWidget* Owner() const;

    IconSet icons_;
    QtTray tray_{icons_};
    std::map<ItemList, std::string> itemLists_; ///< paths of the item lists not yet freed
    ItemList lastItemList_ = 0;
    std::string openFolder_; ///< the folder in which the open dialog was last left; empty before the first use
    std::string saveFolder_; ///< the same of the dialog for saving
    QPointer<QWidget> main_; ///< the main window: the form with a menu bar
    QPointer<FormWindow> lastForm_;
    QObject context_; ///< receives the application's signals, which are disconnected when it is destroyed
};

} // namespace voxmate::qt
