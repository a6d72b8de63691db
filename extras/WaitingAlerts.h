// Reminders that fall due while the user wants to be left alone are announced afterwards.
#pragma once

#include "extras/ExtrasMenu.h"
#include "forms/frmMain.h"
#include "modules/Program.h"
#include "platform/Quiet.h"
#include "platform/StateStore.h"

namespace voxmate
{

/// Puts a step before the main window's two timers: before reminders are announced, and before the time is. Both are
/// held while the desktop says so. A reminder that waits is still pending in the list and its file, so that nothing of
/// it is lost when the program ends. The time is not told later, because it would be another one.
class WaitingAlerts
{
public:
    /// Adds the item to the menu.
    WaitingAlerts(ExtrasMenu& menu, Program& program, frmMain& main, Quiet& quiet, StateStore& state);
    ~WaitingAlerts();
    WaitingAlerts(const WaitingAlerts&) = delete;
    WaitingAlerts& operator=(const WaitingAlerts&) = delete;

    /// Ticks of the reminders' timer between two questions while reminders wait: four seconds.
    static constexpr int TicksToAsk = 5;

private:
    Program& program_;
    frmMain& main_;
    Quiet& quiet_;
    StateStore& state_;
    Event announce_; ///< the timers' own steps
    Event tellTime_;
    bool asking_ = false;
    bool forAlerts_ = false; ///< the question is also for reminders
    bool free_ = false;      ///< the next tick may announce them
    bool silent_ = false;    ///< at the last answer, for the time
    int rest_ = 0;           ///< ticks until the next question

    bool IsOn() const;
    void ReminderTick();
    void ClockTick();
    void Ask();
    void Answered(bool quiet);
};

} // namespace voxmate
