#include "extras/StartAtLogin.h"

#include "base/Text.h"

#include <utility>

namespace voxmate
{

namespace
{

constexpr const char* GreetingName = "login.greeting";

} // namespace

bool GreetsAtLogin(StateStore& state)
{
    return state.Get(GreetingName) == "1";
}

StartAtLogin::StartAtLogin(ExtrasMenu& menu, Program& program, Autostart& autostart, StateStore& state)
    : program_(program), autostart_(autostart)
{
    menu.BeginGroup();
    menu.AddSwitch(
        "mnuAtLogin", "Start at &Log-in", [&autostart] { return autostart.IsOn(); }, [this](bool on) { Turn(on); });
    Menu& greet = menu.AddSwitch(
        "mnuGreetAtLogin", "&Greet Me at Log-in", [&state] { return GreetsAtLogin(state); },
        [&state](bool on) { state.Set(GreetingName, on ? "1" : "0"); });
    menu.WhenOpened([&greet, &autostart] { greet.Enabled = autostart.IsOn(); });
}

void StartAtLogin::Turn(bool on)
{
    if (!autostart_.Turn(on))
        program_.Messages.Announce("The following file, which starts programs at log-in, cannot be changed:" +
                                       std::string(CrLf) + autostart_.Path(),
                                   vbExclamation, "Voxmate - File Error", "Decline");
}

QuietStart::QuietStart(Program& program, Form& main, Event hide)
    : program_(program), main_(main), hide_(std::move(hide)), tmrTray_(&main, "tmrTray", LookInterval, false)
{
    tmrTray_.Tick = [this] { LookForTray(); };
}

void QuietStart::Begin(bool greets)
{
    main_.Load();
    program_.Host.Windows.DoEvents();
    // The user's setting decides between character and greeting, or neither. It counts again once all is loaded.
    std::int16_t usersOwn = 0;
    const auto others = program_.SettingsLoaded;
    program_.SettingsLoaded = [this, &usersOwn, greets, others] {
        if (others)
            others();
        usersOwn = program_.Settings.ShowCharacterAtStart;
        if (!greets)
            program_.Settings.ShowCharacterAtStart = 0;
    };
    program_.RunStartUp();
    program_.SettingsLoaded = others;
    program_.Settings.ShowCharacterAtStart = usersOwn;
    if (main_.IsShown())
        return;
    tmrTray_.Enabled = true;
    LookForTray();
}

void QuietStart::LookForTray()
{
    if (!program_.Host.Windows.HasNotificationArea() && ++looks_ < MostLooks)
        return;
    tmrTray_.Enabled = false;
    hide_();
}

} // namespace voxmate
