// Beside an alert or a notice window a notification of the desktop, with Done and Snooze. Where windows cannot be
// placed it stands in for the alert.
#pragma once

#include "extras/ExtrasMenu.h"
#include "forms/frmMain.h"
#include "modules/Program.h"
#include "platform/DesktopNotifications.h"
#include "platform/StateStore.h"
#include "platform/WindowPlaces.h"

#include <cstdint>
#include <functional>
#include <map>
#include <memory>
#include <string>

namespace voxmate
{

class AlertNotifications
{
public:
    /// Adds the item to the menu. To be made after all others that listen to announcements.
    AlertNotifications(ExtrasMenu& menu, Program& program, frmMain& main, DesktopNotifications& desktop,
                       WindowPlaces& places, StateStore& state);
    ~AlertNotifications();
    AlertNotifications(const AlertNotifications&) = delete;
    AlertNotifications& operator=(const AlertNotifications&) = delete;

    /// Looks for the desktop's notifications if they are wanted. To be called once, when the program begins.
    void Begin();

    /// Minutes by which Snooze puts a reminder off that has no window with another number.
    static constexpr std::int16_t SnoozeMinutes = 10;

private:
    class StandIn;

    Program& program_;
    frmMain& main_;
    DesktopNotifications& desktop_;
    WindowPlaces& places_;
    StateStore& state_;
    std::function<void(const NoticeText& text)> others_; ///< that listened to announcements before
    std::map<std::int16_t, NoticeText> waiting_;         ///< what was announced and not answered yet
    Timer tmrStandIns_;                                  ///< counts the seconds of stand-ins that close by themselves

    bool IsOn() const;
    bool Serves() const { return desktop_.Serves(); }
    void Turn(bool on);
    void Note(const NoticeText& text);
    void Show(const NoticeText& text);
    void Answer(std::int16_t id, bool snooze);
    void Ended(std::int16_t id, DesktopNotifications::End why);
    void ServerChanged();
    void Count();
    StandIn* StandInOf(std::int16_t id) const;
};

} // namespace voxmate
