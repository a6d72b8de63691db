#include "extras/Extras.h"

#include "base/Text.h"
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
      piecesMenu_(menu_, "mnuPieces", "&Pieces of Text"), pieces_(piecesMenu_, program, main, host.Keys, host.State),
      documentMenu_(menu_, "mnuDocument", "&Document"),
      documents_(documentMenu_, program, main, host.ReadDocument, host.Fingerprint, host.State),
      reading_(documentMenu_, program.Host.Windows, documents_, host.State, [&main] { main.cmdStop.UserClick(); }),
      sound_(menu_, program, main, documents_, host.Sounds),
      mediaKeys_(
          main, documents_, host.Media, [&main] { main.cmdStop.UserClick(); }, [this] { Called({}); }),
      trayTip_(program, main, documents_), pronunciations_(menu_, program, host.Wording, host.SaveText, host.State),
      aside_(menu_, program, main, host.Windows, host.State),
      lively_(menu_, program, main, host.User, host.LeftAloneByCharacter, host.Supply, host.State),
      login_(menu_, program, host.Login, host.State), quiet_(program, main, [&main] { main.mnuSysTray.UserClick(); }),
      install_(program, host.LookAtCharacter),
      opening_(program, [this](const std::string& file) { documents_.Put(file); }),
      entry_(program, dynamic_cast<frmReminder&>(main.Editor())),
      calendars_(menu_, program, main, host.ReadDocument, host.Sounds.AskForFile, host.SaveText),
      missed_(menu_, program, main, host.User, host.State), alertsMenu_(menu_, "mnuAlerts", "&Alerts"),
      notifications_(alertsMenu_, program, main, host.Notifications, host.Windows, host.State),
      waitingAlerts_(alertsMenu_, program, main, host.LeftAlone, host.State), keptVoice_(program, main, host.State),
      tmrWaiting_(&main, "tmrWaiting", WaitingInterval, false)
{
    main_.FirstFocus = &main_.txtText;
    MakeSizable(main_, main_.txtText);
    KeepGeometry(main_, host_.State, "main.geometry");

    // Not before those that do no harm: what is chosen when the menu opens is the first item that is not grey.
    documents_.AddForgetItem(documentMenu_);
    opening_.Add("acs", [this](const std::string& file) { install_.Ask(file); });
    for (const char* extension : {"ics", "ical"})
        opening_.Add(extension, [this](const std::string& file) { calendars_.Put(file); });
    menu_.BeginGroup();
    menu_.Add("mnuExtrasHelp", "&Help on Extras", [&program] { program.OpenUrl(program.HelpPage("extras")); });
    // Named in the desktop entry.
    actions_ = {{"read-clipboard", [this] { main_.cmdClip.UserClick(); }},
                {"show-reminders", [this] { main_.mnuShowAll.UserClick(); }},
                {"stop", [this] { main_.cmdStop.UserClick(); }}};
    tmrWaiting_.Tick = [this] { GoOn(); };
    host_.Desktop.Called = [this](const Call& call) { Called(call); };
    // What is dropped comes from where the user looks, so no window is brought to the front.
    main_.FilesDropped = reading_.Window().FilesDropped =
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
    pieces_.Begin();
    pronunciations_.Begin();
    notifications_.Begin();
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

void Extras::SettingsNotSaved(const std::string& file)
{
    if (std::exchange(toldUnsaved_, true))
        return;
    unsaved_ = file;
    tmrWaiting_.Enabled = true;
}

void Extras::VoiceFailed(const std::string& why)
{
    if (!toldVoices_.insert(why).second)
        return;
    failedVoice_ = why;
    tmrWaiting_.Enabled = true;
}

// A window that was called for while the program started is shown only when that has ended.
void Extras::GoOn()
{
    if (!program_.StartedUp)
        return;
    keptVoice_.Remember();
    if (std::exchange(wanted_, false)) {
        quiet_.Cancel();
        main_.Show();
        main_.Activate();
    }
    if (const auto action = actions_.find(std::exchange(action_, "")); action != actions_.end())
        Event(action->second)();
    if (const std::string file = std::exchange(unsaved_, ""); !file.empty())
        program_.Messages.Announce("Settings cannot be saved in the following file:" + std::string(CrLf) + file + CrLf +
                                       "What you change holds until Voxmate ends.",
                                   vbExclamation, "Voxmate - File Error", "Decline");
    if (const std::string why = std::exchange(failedVoice_, ""); !why.empty())
        program_.Messages.Announce("The voice that is chosen cannot speak, and another speaks in its place." +
                                       std::string(CrLf) + why,
                                   vbExclamation, "Voxmate - Voice Error", "Decline");
    if (opening_.GoOn())
        tmrWaiting_.Enabled = false;
}

} // namespace voxmate
