#include "extras/MissedReminders.h"

#include "extras/Window.h"

#include <algorithm>
#include <chrono>
#include <optional>
#include <utility>

namespace voxmate
{

namespace
{

constexpr const char* ListName = "reminders.missed";
constexpr int LookInterval = 1000; // milliseconds
/// Who has not touched anything for so long may be reading; longer, and he is more likely to be away.
constexpr std::chrono::minutes Away{3};
/// Seconds after an announcement within which an input means that it was seen.
constexpr int WatchTime = 60;
/// An input that is not longer ago means that somebody is there.
constexpr std::chrono::seconds Back{5};
/// The most reminders kept; the oldest go first.
constexpr std::size_t MostMissed = 200;

} // namespace

MissedWindow::MissedWindow(FormHost& host, StateStore& state, const std::vector<MissedReminder>& missed, Event closed)
    : Form(host, "frmMissed"), missed_(missed), closed_(std::move(closed))
{
    Caption = "Voxmate - Missed Reminders";
    Border = BorderStyle::Sizable;
    FirstFocus = &lstMissed;
    lstMissed.AccessibleName = "Missed reminders";
    lstMissed.FullRowSelect = true;
    cmdClose.IsDefault = cmdClose.IsCancel = true;
    cmdClose.ToolTipText = "Closes the list and empties it. The reminders themselves stay as they are.";
    Arrangement = Column({
        Item(lblMissed),
        Item(lstMissed).Stretch(1).Min(420, 160),
        Row({Space(), Item(cmdClose)}),
    });
    KeepGeometry(*this, state, "missed.geometry");
    cmdClose.Click = [this] { UserClose(); };
}

void MissedWindow::ShowList()
{
    lstMissed.ClearItems();
    for (const MissedReminder& reminder : missed_)
        lstMissed.AddItem({reminder.Date, 0, {reminder.Time, reminder.Title}});
}

void MissedWindow::Form_QueryUnload(bool& /*cancel*/)
{
    closed_();
}

MissedReminders::MissedReminders(ExtrasMenu& menu, Program& program, frmMain& main, Presence& user, StateStore& state)
    : program_(program), user_(user), state_(state), window_(program.Host.Windows, state, missed_,
                                                             [this] {
                                                                 missed_.clear();
                                                                 Changed();
                                                             }),
      item_(&menu.Add("mnuMissed", "Missed Re&minders...",
                      [this] {
                          window_.ShowActivated = true;
                          window_.Show();
                          window_.Activate();
                          Wait();
                      })),
      tmrMissed_(&main, "tmrMissed", LookInterval, false)
{
    Read();
    item_->Enabled = !missed_.empty();
    tmrMissed_.Tick = [this] { Look(); };
    program_.Scheduler.Announced = [this](const NoticeText& text) { Note(text); };
    Wait();
}

MissedReminders::~MissedReminders()
{
    program_.Scheduler.Announced = nullptr;
}

// One line each: date, time and title, with tabs between them.
void MissedReminders::Read()
{
    const std::string kept = state_.Get(ListName);
    for (std::size_t begin = 0; begin < kept.size();) {
        const std::size_t end = std::min(kept.find('\n', begin), kept.size());
        const std::string line = kept.substr(begin, end - begin);
        begin = end + 1;
        const std::size_t time = line.find('\t');
        const std::size_t title = time == std::string::npos ? time : line.find('\t', time + 1);
        if (title != std::string::npos)
            missed_.push_back({line.substr(0, time), line.substr(time + 1, title - time - 1), line.substr(title + 1)});
    }
}

void MissedReminders::Note(const NoticeText& text)
{
    const std::optional<std::chrono::milliseconds> idle = user_.Idle();
    if (!idle || *idle < Away)
        return;
    std::string title = text.Title;
    for (const char end : {'\r', '\n'})
        std::ranges::replace(title, end, ' ');
    // An alert that leaves unanswered comes again and again.
    const bool known = std::ranges::any_of(missed_, [&](const MissedReminder& reminder) {
        return reminder.Date == text.Date && reminder.Time == text.Time && reminder.Title == title;
    });
    if (known)
        return;
    missed_.push_back({text.Date, text.Time, std::move(title), WatchTime});
    if (missed_.size() > MostMissed)
        missed_.erase(missed_.begin());
    Changed();
}

void MissedReminders::Look()
{
    if (!program_.StartedUp)
        return;
    const std::optional<std::chrono::milliseconds> idle = user_.Idle();
    const bool back = !idle || *idle < Back;
    if (back && std::erase_if(missed_, [](const MissedReminder& reminder) { return reminder.Watch > 0; }) > 0)
        Changed();
    for (MissedReminder& reminder : missed_)
        reminder.Watch = std::max(0, reminder.Watch - 1);
    // The keyboard stays where it is.
    if (back && !missed_.empty() && !window_.IsShown()) {
        window_.ShowActivated = false;
        window_.Show();
    }
    Wait();
}

void MissedReminders::Changed()
{
    std::string kept;
    for (const MissedReminder& reminder : missed_)
        kept += reminder.Date + '\t' + reminder.Time + '\t' + reminder.Title + '\n';
    state_.Set(ListName, kept);
    item_->Enabled = !missed_.empty();
    if (window_.IsLoaded())
        window_.ShowList();
    Wait();
}

void MissedReminders::Wait()
{
    const bool watches = std::ranges::any_of(missed_, [](const auto& reminder) { return reminder.Watch > 0; });
    const bool wanted = watches || (!missed_.empty() && !window_.IsShown());
    // Not set again: that would begin its interval anew.
    if (tmrMissed_.Enabled != wanted)
        tmrMissed_.Enabled = wanted;
}

} // namespace voxmate
