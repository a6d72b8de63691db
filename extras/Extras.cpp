#include "extras/Extras.h"

#include "extras/Window.h"
#include "forms/frmReminder.h"

#include <utility>

namespace voxmate
{

namespace
{

constexpr int WaitingInterval = 250; // milliseconds

} // namespace

Extras::Extras(Program& program, frmMain& main, const ExtrasHost& host)
    : program_(program), main_(main), host_(host), menu_(main),
      speaking_(menu_, program, main, [this] { return documents_.Going(); }),
      documents_(menu_, program, main, host.ReadDocument, host.Fingerprint, host.State),
      login_(menu_, program, host.Login, host.State), quiet_(program, main, [&main] { main.mnuSysTray.UserClick(); }),
      install_(program, host.LookAtCharacter),
      opening_(program, [this](const std::string& file) { documents_.Put(file); }),
      entry_(program, dynamic_cast<frmReminder&>(main.Editor())),
      tmrWaiting_(&main, "tmrWaiting", WaitingInterval, false)
{
    main_.FirstFocus = &main_.txtText;
    MakeSizable(main_, main_.txtText);
    KeepGeometry(main_, host_.State, "main.geometry");

    opening_.Add("acs", [this](const std::string& file) { install_.Ask(file); });
    menu_.BeginGroup();
    menu_.Add("mnuExtrasHelp", "&Help on Extras", [&program] { program.OpenUrl(program.HelpPage("extras")); });
    // Named in the desktop entry.
    actions_ = {{"read-clipboard", [this] { main_.cmdClip.UserClick(); }},
                {"show-reminders", [this] { main_.mnuShowAll.UserClick(); }},
                {"stop", [this] { main_.cmdStop.UserClick(); }}};
    tmrWaiting_.Tick = [this] { GoOn(); };
    host_.Desktop.Called = [this](const Call& call) { Called(call); };
    // What is dropped comes from where the user looks, so no window is brought to the front.
    main_.FilesDropped =
        program.Host.Agent.FilesDropped = [this](const std::vector<std::string>& files) { Open(files); };
}

Extras::~Extras()
{
    host_.Desktop.Called = nullptr;
    main_.FilesDropped = program_.Host.Agent.FilesDropped = nullptr;
}

void Extras::Begin(const CommandLine& line, const Event& showSplash)
{
    startsQuietly_ = line.Quiet;
    opening_.Put(line.Call.Files);
    action_ = line.Call.Action;
    tmrWaiting_.Enabled = true;
    host_.Desktop.Listen();
    if (line.Quiet)
        quiet_.Begin(GreetsAtLogin(host_.State));
    else
        showSplash();
}

void Extras::Called(const Call& call)
{
    // An action needs no window, and a start with a window shows it anyway.
    if (!call.Action.empty())
        action_ = call.Action;
    else
        wanted_ = program_.StartedUp || startsQuietly_;
    Open(call.Files);
}

void Extras::Open(const std::vector<std::string>& files)
{
    opening_.Put(files);
    tmrWaiting_.Enabled = true;
    GoOn();
}

// A window that was called for while the program started is shown only when that has ended.
void Extras::GoOn()
{
    if (!program_.StartedUp)
        return;
    if (std::exchange(wanted_, false)) {
        quiet_.Cancel();
        main_.Show();
        main_.Activate();
    }
    if (const auto action = actions_.find(std::exchange(action_, "")); action != actions_.end())
        Event(action->second)();
    if (opening_.GoOn())
        tmrWaiting_.Enabled = false;
}

} // namespace voxmate
