// What was announced while nobody was at the computer: a list that stands until the user has looked at it.
#pragma once

#include "controls/Form.h"
#include "controls/ListView.h"
#include "extras/ExtrasMenu.h"
#include "forms/frmMain.h"
#include "modules/Program.h"
#include "platform/Presence.h"
#include "platform/StateStore.h"

#include <string>
#include <vector>

namespace voxmate
{

/// A reminder that was announced.
struct MissedReminder {
    std::string Date; ///< as its announcement showed it
    std::string Time; ///< HH:MM
    std::string Title;
    int Watch = 0; ///< seconds for which an input would still mean that somebody saw it
};

/// The window with the list.
class MissedWindow : public Form
{
public:
    /// `closed` runs when the user closes the window.
    MissedWindow(FormHost& host, StateStore& state, const std::vector<MissedReminder>& missed, Event closed);

    Label lblMissed{this, "lblMissed", "Announced while nobody was at the computer:"};
    ListView lstMissed{this, "lstMissed", {{"Date", 12}, {"Time", 8}, {"Title", 0}}};
    CommandButton cmdClose{this, "cmdClose", "&Close"};

    /// Shows the list as it is now.
    void ShowList();

protected:
    void Form_Load() override { ShowList(); }
    void Form_QueryUnload(bool& cancel) override;

private:
    const std::vector<MissedReminder>& missed_;
    Event closed_;
};

/// Nobody is at the computer when there was no input for some minutes before an announcement and none until a minute
/// after it. Where the desktop does not tell of input, the user counts as present.
class MissedReminders
{
public:
    MissedReminders(ExtrasMenu& menu, Program& program, frmMain& main, Presence& user, StateStore& state);
    ~MissedReminders();
    MissedReminders(const MissedReminders&) = delete;
    MissedReminders& operator=(const MissedReminders&) = delete;

    MissedWindow& Window() { return window_; }

private:
    Program& program_;
    Presence& user_;
    StateStore& state_;
    std::vector<MissedReminder> missed_;
    MissedWindow window_;
    Menu* item_ = nullptr;
    Timer tmrMissed_; ///< runs while a return of the user would change something

    void Read();
    void Note(const NoticeText& text);
    void Look();
    void Changed();
    void Wait();
};

} // namespace voxmate
