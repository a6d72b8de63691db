#include "extras/WaitingAlerts.h"

#include <cstdint>
#include <utility>

namespace voxmate
{

namespace
{

constexpr const char* SwitchName = "alerts.wait";

} // namespace

WaitingAlerts::WaitingAlerts(ExtrasMenu& menu, Program& program, frmMain& main, Quiet& quiet, StateStore& state)
    : program_(program), main_(main), quiet_(quiet), state_(state), announce_(main.RemTimer.Tick),
      tellTime_(main.SysTime.Tick)
{
    menu.AddSwitch(
        "mnuAlertsWait", "&Wait during Full Screen and Do Not Disturb", [this] { return IsOn(); },
        [this](bool on) { state_.Set(SwitchName, on ? "1" : ""); });
    main_.RemTimer.Tick = [this] { ReminderTick(); };
    main_.SysTime.Tick = [this] { ClockTick(); };
    quiet_.Answered = [this](bool quiet) { Answered(quiet); };
}

WaitingAlerts::~WaitingAlerts()
{
    quiet_.Answered = nullptr;
    main_.RemTimer.Tick = std::move(announce_);
    main_.SysTime.Tick = std::move(tellTime_);
}

bool WaitingAlerts::IsOn() const
{
    return state_.Get(SwitchName) == "1";
}

// What may be announced is so by the next tick of the timer, which never runs within itself.
void WaitingAlerts::ReminderTick()
{
    if (!IsOn() || std::exchange(free_, false)) {
        rest_ = 0;
        announce_();
    } else if (rest_ > 0) {
        --rest_;
    } else if (program_.Scheduler.AnyToAnnounce()) {
        forAlerts_ = true;
        Ask();
    }
}

// The question is asked a second before the time would be told.
void WaitingAlerts::ClockTick()
{
    const std::int32_t interval = std::int32_t{program_.Settings.SpeakTimeInterval} * 60;
    const std::int32_t left = interval - program_.SpeakTimeCounter;
    if (!IsOn() || interval <= 0) {
        silent_ = false;
    } else if (left == 2) {
        silent_ = false;
        Ask();
    } else if (left <= 1 && silent_) {
        program_.SpeakTimeCounter = -1; // the timer's own step adds one: the interval begins anew
    }
    tellTime_();
}

void WaitingAlerts::Ask()
{
    if (!std::exchange(asking_, true))
        quiet_.Ask();
}

void WaitingAlerts::Answered(bool quiet)
{
    asking_ = false;
    silent_ = quiet;
    if (!std::exchange(forAlerts_, false))
        return;
    free_ = !quiet;
    rest_ = quiet ? TicksToAsk : 0;
}

} // namespace voxmate
