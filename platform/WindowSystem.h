// The window system as the program's logic sees it: forms, message boxes, pop-up menus, clipboard, pending events.
#pragma once

#include "controls/Form.h"
#include "platform/WindowCalls.h"

#include <array>
#include <cstdint>
#include <functional>
#include <string>

namespace voxmate
{

// Message box styles and answers, with the numbers of the classic message box (winuser.h).
inline constexpr int vbOKOnly = 0;
inline constexpr int vbYesNoCancel = 3;
inline constexpr int vbYesNo = 4;
inline constexpr int vbCritical = 16;
inline constexpr int vbQuestion = 32;
inline constexpr int vbExclamation = 48;
inline constexpr int vbInformation = 64;
inline constexpr int vbDefaultButton2 = 256;
inline constexpr int vbOK = 1;
inline constexpr int vbCancel = 2;
inline constexpr int vbYes = 6;
inline constexpr int vbNo = 7;

// Messages of Shell_NotifyIconA (shellapi.h) and mouse messages (winuser.h).
inline constexpr std::uint32_t NIM_ADD = 0;
inline constexpr std::uint32_t NIM_MODIFY = 1;
inline constexpr std::uint32_t NIM_DELETE = 2;
inline constexpr std::uint32_t NIF_TIP = 4;
inline constexpr std::uint32_t NIF_MESSAGE_ICON_TIP = 7;
inline constexpr std::uint32_t WM_MOUSEMOVE = 512;
inline constexpr int WM_LBUTTONDBLCLK = 515;
inline constexpr int WM_RBUTTONUP = 517;

/// The notify-icon record in its fixed layout of 88 bytes.
struct TrayIconData {
    std::uint32_t recordSize = 88;
    std::uint32_t window = 0;
    std::uint32_t iconId = 0;
    std::uint32_t flags = 0;
    std::uint32_t callbackMessage = 0;
    std::uint32_t icon = 0;
    std::array<char, 64> tip{}; ///< ends in a NUL
};
static_assert(sizeof(TrayIconData) == 88);

// Flag of SHBrowseForFolderA (shlobj.h): folders of the file system only.
inline constexpr std::uint32_t BIF_RETURNONLYFSDIRS = 1;

/// What SHBrowseForFolderA shows.
struct BrowseInfo {
    std::string title; ///< shown above the folders
    std::string start; ///< folder to begin in
    std::uint32_t flags = 0;
};

/// The common dialog's settings and its answer.
struct CommonDialog {
    std::string Filter; ///< pairs of description and pattern, separated by bars: "Text Files (*.txt)|*.txt"
    std::string DialogTitle;
    bool CancelError = false; ///< a cancelled dialog raises run-time error 32755
    std::string FileName;     ///< in: the proposed name; out: the full path chosen, unchanged when the user cancels
    /// While the dialog is up: called with the full path of each file that has been selected or typed for a moment.
    std::function<void(const std::string& file)> Selected;
};

/// Clipboard formats (winuser.h): plain text.
inline constexpr int vbCFText = 1;

/// Handle of an item list that names a folder; 0: none.
using ItemList = std::uint32_t;

class WindowSystem : public FormHost, public WindowCalls
{
public:
    /// Shows a modal message box and returns the button pressed (vbOK, vbCancel, vbYes, vbNo). Closing a Yes/No box
    /// means No, closing one with Cancel means Cancel. Timers and speech go on while it is up.
    virtual int MsgBox(const std::string& text, int style, const std::string& title) = 0;
    /// Lets pending events run once, then returns.
    virtual void DoEvents() = 0;
    /// Shows the modal folder picker. Returns an item list, to be freed with CoTaskMemFree, or 0 when the user cancels.
    virtual ItemList SHBrowseForFolderA(const BrowseInfo& info) = 0;
    /// The path of an item list, without a separator at its end; false when it has none.
    virtual bool SHGetPathFromIDListA(ItemList list, std::string& path) = 0;
    virtual void CoTaskMemFree(ItemList list) = 0;
    /// Shows the modal dialog for opening a file, in the folder it was last left in. Raises run-time error 32755
    /// "Cancel was selected." when the user cancels and `CancelError` is set.
    virtual void ShowOpen(CommonDialog& dialog) = 0;
    /// Shows the modal dialog for choosing a font, starting with `font`; sizes run from `minSize` to `maxSize` points.
    /// True when the user chose a font, which is then in `font`; false, with `font` unchanged, when the user cancels.
    virtual bool ShowFont(FontSpec& font, int minSize, int maxSize) = 0;
    /// ClipboardGetFormat: whether the clipboard holds data of that format. ClipboardGetText: its text; empty when it
    /// holds none.
    virtual bool ClipboardGetFormat(int format) = 0;
    virtual std::string ClipboardGetText() = 0;
    virtual void ClipboardClear() = 0;
    virtual void ClipboardSetText(const std::string& text) = 0;

    /// Adds or deletes the notification-area icon, or changes its tip (flag NIF_TIP); false when there is no such area,
    /// it refuses, or there is no icon to be changed. The icon's mouse
    /// messages go to the picture box that `window` stands for, as mouse moves whose x is the message in twips.
    virtual bool Shell_NotifyIconA(std::uint32_t message, const TrayIconData& data) = 0;
    /// Whether the desktop has a notification area now. At log-in it may come later than the program.
    virtual bool HasNotificationArea() = 0;
    /// Handles for the record: that of the window behind a picture box, and that of its picture.
    virtual std::uint32_t WindowHandle(PictureBox& box) = 0;
    virtual std::uint32_t PictureHandle(PictureBox& box) = 0;
    /// The width of a screen pixel in twips: 15 at 96 dots per inch.
    virtual double TwipsPerPixelX() = 0;
};

} // namespace voxmate
