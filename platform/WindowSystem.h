// The window system as the program's logic sees it: forms, message boxes, pop-up menus, clipboard, pending events.
#pragma once

#include "platform/controls/Form.h"

#include <string>

namespace voxmate
{

// Message box styles and answers, with the numbers of the classic message box (winuser.h).
inline constexpr int vbOKOnly = 0;
inline constexpr int vbYesNo = 4;
inline constexpr int vbCritical = 16;
inline constexpr int vbExclamation = 48;
inline constexpr int vbOK = 1;
inline constexpr int vbYes = 6;
inline constexpr int vbNo = 7;

class WindowSystem : public FormHost
{
public:
    /// Shows a modal message box and returns the button pressed (vbOK, vbYes, vbNo). Closing a Yes/No box means No.
    /// Timers and speech go on while it is up.
    virtual int MsgBox(const std::string& text, int style, const std::string& title) = 0;
    /// Lets pending events run once, then returns.
    virtual void DoEvents() = 0;
    virtual void ClipboardClear() = 0;
    virtual void ClipboardSetText(const std::string& text) = 0;
};

} // namespace voxmate
