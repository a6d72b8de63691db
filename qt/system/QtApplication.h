// The application object: the last handler for errors in the event loop, and the settings Qt needs before it starts.
#pragma once

#include "base/RuntimeError.h"
#include "qt/system/AccessibleCells.h"
#include "qt/system/CaretRest.h"
#include "qt/widgets/DesktopFonts.h"
#include "qt/widgets/IconSet.h"

#include <QApplication>
#include <QTimer>

#include <functional>

namespace voxmate::qt
{

/// Prefers X11 where a Wayland session offers both: only under X11 can a program set its windows' positions, and the
/// character moves on its own. It is there while the application object is made, not for programs that are started
/// later. It changes the environment, so no thread of the program's may run when it comes and goes.
class PlatformChoice
{
public:
    PlatformChoice();
    ~PlatformChoice();
    PlatformChoice(const PlatformChoice&) = delete;
    PlatformChoice& operator=(const PlatformChoice&) = delete;

private:
    bool made_;
};

class QtApplication : public QApplication
{
public:
    QtApplication(int& argc, char** argv);

    /// Ends the program after an uncaught error has been shown. By default the process ends with status 1.
    std::function<void()> EndProgram;

    /// The desktop asks the program to end, for example the session manager at log-out. The program's windows are not
    /// asked to close, because what a form does when it is closed is meant for the user's own closing.
    std::function<void()> EndRequested;
    /// The session may be about to end: pending writes should reach the disk.
    std::function<void()> SaveRequested;

    /// Escape was pressed in one of the program's windows while no menu or list was open. True: that was its meaning,
    /// and the window is not told of the key.
    std::function<bool()> EscapePressed;

    /// Called three seconds after a window, menu or list has gone, once for all that go in that time: time to give
    /// memory back. Other windows may be there, and the character may speak.
    std::function<void()> AtRest;

    /// Calls `act` from the event loop. May be called on any thread.
    void Post(std::function<void()> act);

    /// Icons for the error box; nullptr: the desktop's.
    const IconSet* Icons = nullptr;

    /// Catches exceptions of event handlers and reports them.
    bool notify(QObject* receiver, QEvent* event) override;
    bool event(QEvent* event) override;

    /// Shows "Run-time error 'N':", an empty line and the description, then ends the program. Called on another thread,
    /// it returns and the box appears soon after in the user-interface thread.
    void Report(const RuntimeError& error);

private:
    bool IsForEscape(QObject* receiver, QEvent* event);

    DesktopFonts fonts_;
    AccessibleCells cells_;
    CaretRest caret_;
    bool reporting_ = false;
    QTimer rest_;
};

} // namespace voxmate::qt
