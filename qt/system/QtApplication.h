// The application object: the event loop's last resort for errors, and what Qt must know before it starts.
#pragma once

#include "base/RuntimeError.h"
#include "qt/widgets/DesktopFonts.h"
#include "qt/widgets/IconSet.h"

#include <QApplication>

#include <functional>

namespace voxmate::qt
{

class QtApplication : public QApplication
{
public:
    /// Prefers X11 where a Wayland session offers both, because only there a program can say where its windows stand:
    /// the character moves by itself.
    QtApplication(int& argc, char** argv);

    /// Ends the program after an error that nobody caught has been shown. By default the process ends with status 1.
    std::function<void()> EndProgram;

    /// The desktop asks the program to end, as a session's manager does when the session is over. Closing windows is
    /// not asked for: what they would do is for the user who closes one.
    std::function<void()> EndRequested;
    /// The session may be about to end: what is on its way to the disk should get there.
    std::function<void()> SaveRequested;

    /// Has `act` called from the event loop; from any thread.
    void Post(std::function<void()> act);

    /// Where the box of an error takes its icon from; without it from the desktop.
    const IconSet* Icons = nullptr;

    /// Catches what an event handler throws and reports it.
    bool notify(QObject* receiver, QEvent* event) override;
    bool event(QEvent* event) override;

    /// Shows "Run-time error 'N':", an empty line and the description, then ends the program. From another thread the
    /// box comes up in the user interface's, soon after.
    void Report(const RuntimeError& error);

private:
    DesktopFonts fonts_;
    bool reporting_ = false;
};

} // namespace voxmate::qt
