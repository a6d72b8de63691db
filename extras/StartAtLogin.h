// Starting the program when the user logs in, and what it then does.
#pragma once

#include "extras/ExtrasMenu.h"
#include "modules/Program.h"
#include "platform/Autostart.h"
#include "platform/StateStore.h"

#include <functional>

namespace voxmate
{

/// The two items of the menu: whether the program is started at log-in, and whether it then greets as at any other
/// start.
class StartAtLogin
{
public:
    StartAtLogin(ExtrasMenu& menu, Program& program, Autostart& autostart, StateStore& state);

private:
    Program& program_;
    Autostart& autostart_;

    void Turn(bool on);
};

/// Whether the user wants to be greeted at log-in.
bool GreetsAtLogin(StateStore& state);

/// The quiet start: everything is loaded as at any start, but without splash, window and tip, and without character and
/// greeting unless `greets`. What must be reported is reported, and reminders are announced. The program then waits in
/// the notification area.
class QuietStart
{
public:
    /// `main` is the main window, not loaded yet; `hide` puts it into the notification area, or minimises it where
    /// there is none.
    QuietStart(Program& program, Form& main, Event hide);

    void Begin(bool greets);
    /// The user has asked for the window: it is not put away any more.
    void Cancel() { tmrTray_.Enabled = false; }

    /// At log-in a panel may come up after the program: so many milliseconds pass from one look for it to the next, and
    /// so many looks are taken before the window is minimised instead.
    static constexpr int LookInterval = 500;
    static constexpr int MostLooks = 60;

private:
    Program& program_;
    Form& main_;
    Event hide_;
    Timer tmrTray_;
    int looks_ = 0;

    void LookForTray();
};

} // namespace voxmate
