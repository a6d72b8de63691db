#include "extras/AlertNotifications.h"

#include "forms/frmShowRem.h"

#include <utility>

namespace voxmate
{

namespace
{

constexpr const char* SwitchName = "alerts.notifications";
constexpr const char* Caption = "Desktop &Notification with Each";
constexpr const char* DoneButton = "done";
constexpr const char* SnoozeButton = "snooze";
constexpr int CountInterval = 1000; // milliseconds

template <class Window>
Window* VisibleWindow(const std::vector<std::unique_ptr<Window>>& windows, std::int16_t id)
{
    const auto at = static_cast<std::size_t>(id);
    return at < windows.size() && windows[at] && windows[at]->Visible() ? windows[at].get() : nullptr;
}

} // namespace

/// An alert whose window cannot be placed: the notification is the alert. A window comes where there is none, or where
/// it is lost.
class AlertNotifications::StandIn : public AlertWindow
{
public:
    explicit StandIn(AlertNotifications& owner) : owner_(owner), window_(owner.main_.NewAlertWindow()) {}

    bool Visible() const override { return active_ || window_->Visible(); }
    void DisplayMessage(const std::string& message, std::int16_t formId, bool preview, std::int32_t seconds, bool fade,
                        bool autoFit, bool square, std::int32_t color, bool tube) override
    {
        id_ = formId;
        seconds_ = seconds;
        show_ = [=, this] {
            window_->DisplayMessage(message, formId, preview, seconds, fade, autoFit, square, color, tube);
        };
        active_ = owner_.Serves();
        if (!active_)
            show_();
    }
    void SetCloseActivate(bool close) override
    {
        if (!active_)
            window_->SetCloseActivate(close);
        else if (close)
            Finish();
    }
    bool CloseActivate() const override { return false; }
    void Withdraw() override
    {
        if (!std::exchange(active_, false))
            window_->Withdraw();
    }

    bool IsActive() const { return active_; }
    bool Counts() const { return active_ && seconds_ > 0; }
    /// Closed by the user, or by its time: an alert's reminder is then done.
    void Finish()
    {
        active_ = false;
        owner_.program_.Scheduler.FinishReminder(id_, false, 0);
    }
    void ShowWindow()
    {
        active_ = false;
        show_();
    }
    /// A second has passed.
    void Count()
    {
        if (Counts() && --seconds_ == 0)
            Finish();
    }

private:
    AlertNotifications& owner_;
    std::unique_ptr<AlertWindow> window_;
    std::function<void()> show_;
    std::int16_t id_ = 0;
    std::int32_t seconds_ = 0; ///< until it closes by itself; 0 or less: it does not
    bool active_ = false;      ///< the notification is the alert
};

AlertNotifications::AlertNotifications(ExtrasMenu& menu, Program& program, frmMain& main, DesktopNotifications& desktop,
                                       WindowPlaces& places, StateStore& state)
    : program_(program), main_(main), desktop_(desktop), places_(places), state_(state),
      others_(program.Scheduler.Announced), tmrStandIns_(&main, "tmrStandIns", CountInterval, false)
{
    Menu& item = menu.AddSwitch(
        "mnuAlertNotifications", Caption, [this] { return IsOn(); }, [this](bool on) { Turn(on); });
    menu.WhenOpened([this, &item] {
        item.Caption = std::string(Caption) + (IsOn() && !Serves() ? " (none on this desktop)" : "");
    });
    tmrStandIns_.Tick = [this] { Count(); };
    desktop_.Pressed = [this](int number, const std::string& button) {
        // Some desktops tell a press beside the buttons, too, unasked.
        if (button == DoneButton || button == SnoozeButton)
            Answer(static_cast<std::int16_t>(number), button == SnoozeButton);
    };
    desktop_.Ended = [this](int number, DesktopNotifications::End why) {
        Ended(static_cast<std::int16_t>(number), why);
    };
    desktop_.ServerChanged = [this] { ServerChanged(); };
    program_.Scheduler.Announced = [this](const NoticeText& text) {
        if (others_)
            others_(text);
        Note(text);
    };
    program_.Scheduler.Answered = [this](std::int16_t id) {
        waiting_.erase(id);
        desktop_.Close(id);
    };
    program_.Scheduler.MakeAlert = [this]() -> std::unique_ptr<AlertWindow> {
        return places_.Known() ? main_.NewAlertWindow() : std::make_unique<StandIn>(*this);
    };
}

AlertNotifications::~AlertNotifications()
{
    program_.Scheduler.Announced = std::move(others_);
    program_.Scheduler.Answered = nullptr;
    program_.Scheduler.MakeAlert = nullptr;
    desktop_.Pressed = nullptr;
    desktop_.Ended = nullptr;
    desktop_.ServerChanged = nullptr;
}

void AlertNotifications::Begin()
{
    if (IsOn() || !places_.Known())
        desktop_.Begin();
}

bool AlertNotifications::IsOn() const
{
    return state_.Get(SwitchName) == "1";
}

void AlertNotifications::Turn(bool on)
{
    state_.Set(SwitchName, on ? "1" : "");
    if (on) {
        desktop_.Begin();
        ServerChanged();
        return;
    }
    for (const auto& [id, text] : waiting_) {
        const StandIn* alert = StandInOf(id);
        if (!alert || !alert->IsActive())
            desktop_.Close(id);
    }
}

void AlertNotifications::Note(const NoticeText& text)
{
    waiting_[text.Id] = text;
    Show(text);
    // Not set again: that would begin its interval anew.
    if (const StandIn* alert = StandInOf(text.Id); alert && alert->Counts() && !tmrStandIns_.Enabled)
        tmrStandIns_.Enabled = true;
}

void AlertNotifications::Show(const NoticeText& text)
{
    const StandIn* alert = StandInOf(text.Id);
    if (!IsOn() && !(alert && alert->IsActive()))
        return;
    std::string body = text.Heading + ": " + text.Date + " " + text.Time;
    if (!text.Description.empty())
        body += "\n" + text.Description;
    desktop_.Show(text.Id, {text.Title, body, {{DoneButton, "Done"}, {SnoozeButton, "Snooze"}}});
}

// What the notice window's own buttons do, or a click on the alert.
void AlertNotifications::Answer(std::int16_t id, bool snooze)
{
    if (!waiting_.contains(id))
        return;
    ReminderScheduler& scheduler = program_.Scheduler;
    if (auto* notice = dynamic_cast<frmShowRem*>(VisibleWindow(scheduler.RemNoticeWindows, id))) {
        (snooze ? notice->cmdSnooze : notice->cmdOK).UserClick();
        return;
    }
    AlertWindow* alert = VisibleWindow(scheduler.RemAlertWindows, id);
    if (alert && !snooze) {
        alert->SetCloseActivate(true);
        return;
    }
    // An alert has no Snooze. It leaves first, because events run while the answer is spoken.
    if (alert)
        alert->Withdraw();
    scheduler.FinishReminder(id, snooze, SnoozeMinutes);
}

void AlertNotifications::Ended(std::int16_t id, DesktopNotifications::End why)
{
    StandIn* alert = StandInOf(id);
    if (!alert || !alert->IsActive())
        return;
    if (why == DesktopNotifications::End::Dismissed)
        alert->Finish();
    else
        alert->ShowWindow();
}

// A server that comes, or has been started anew, is told of what has come before it. One that goes may never have shown
// an alert that it was to stand in for.
void AlertNotifications::ServerChanged()
{
    for (const auto& [id, text] : waiting_) {
        if (Serves())
            Show(text);
        else if (StandIn* alert = StandInOf(id); alert && alert->IsActive())
            alert->ShowWindow();
    }
}

void AlertNotifications::Count()
{
    const auto count = [this] { return static_cast<std::int16_t>(program_.Scheduler.RemAlertWindows.size()); };
    // Each that closes lets events run, in which others come.
    for (std::int16_t id = 0; id < count(); ++id) {
        if (StandIn* alert = StandInOf(id))
            alert->Count();
    }
    for (std::int16_t id = 0; id < count(); ++id) {
        if (const StandIn* alert = StandInOf(id); alert && alert->Counts())
            return;
    }
    tmrStandIns_.Enabled = false;
}

AlertNotifications::StandIn* AlertNotifications::StandInOf(std::int16_t id) const
{
    const auto& windows = program_.Scheduler.RemAlertWindows;
    const auto at = static_cast<std::size_t>(id);
    return at < windows.size() ? dynamic_cast<StandIn*>(windows[at].get()) : nullptr;
}

} // namespace voxmate
