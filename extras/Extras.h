// All that the program can do beyond its original windows. The program's forms and modules do not know of it.
#pragma once

#include "extras/AlertNotifications.h"
#include "extras/Calendars.h"
#include "extras/CommandLine.h"
#include "extras/Documents.h"
#include "extras/ExtrasMenu.h"
#include "extras/InstallCharacter.h"
#include "extras/KeptVoice.h"
#include "extras/LivelyCharacter.h"
#include "extras/MediaKeys.h"
#include "extras/MissedReminders.h"
#include "extras/Opening.h"
#include "extras/Pieces.h"
#include "extras/Pronunciations.h"
#include "extras/ReadingWindow.h"
#include "extras/ReminderEntry.h"
#include "extras/SaveSound.h"
#include "extras/Speaking.h"
#include "extras/StandAside.h"
#include "extras/StartAtLogin.h"
#include "extras/TrayTip.h"
#include "extras/WaitingAlerts.h"
#include "platform/Activation.h"
#include "platform/Autostart.h"
#include "platform/DesktopNotifications.h"
#include "platform/GlobalKeys.h"
#include "platform/MediaControls.h"
#include "platform/Power.h"
#include "platform/Presence.h"
#include "platform/Quiet.h"
#include "platform/StateStore.h"
#include "platform/WindowPlaces.h"

#include <map>
#include <set>
#include <string>
#include <vector>

namespace voxmate
{

/// What the extras need beside the program's platform.
struct ExtrasHost {
    StateStore& State;
    Autostart& Login;
    Activation& Desktop;
    MediaControls& Media;
    GlobalKeys& Keys;
    InstallCharacter::Look LookAtCharacter;
    Documents::Reader ReadDocument;
    Documents::Identify Fingerprint;
    WindowPlaces& Windows;
    WordingControl& Wording;
    Pronunciations::SaveText SaveText;
    SoundHost Sounds;
    Presence& User;
    DesktopNotifications& Notifications;
    Quiet& LeftAlone;
    Quiet& LeftAloneByCharacter; ///< another one, because each question is asked alone
    Power& Supply;
};

class Extras
{
public:
    /// `main` must not have been loaded yet, and must outlive this object.
    Extras(Program& program, frmMain& main, const ExtrasHost& host);
    ~Extras();
    Extras(const Extras&) = delete;
    Extras& operator=(const Extras&) = delete;

    /// Starts the program: quietly, or with `showSplash`. Returns when it has been begun.
    void Begin(const CommandLine& line, const Event& showSplash);
    /// Tells the user, the first time, that settings cannot be saved in that file; while the program starts, when that
    /// has ended.
    void SettingsNotSaved(const std::string& file);
    /// Tells the user, once for each reason, that a voice could not speak and another has taken its place; while the
    /// program starts, when that has ended. `why` is a sentence that names the voice.
    void VoiceFailed(const std::string& why);
    /// See Speaking::Escape.
    bool Escape() { return speaking_.Escape(); }
    ReadingWindow& TextWindow() { return reading_.Window(); }
    PronunciationWindow& WordsWindow() { return pronunciations_.Window(); }
    SaveSoundWindow& SoundWindow() { return sound_.Window(); }
    MissedWindow& MissedList() { return missed_.Window(); }

private:
    Program& program_;
    frmMain& main_;
    ExtrasHost host_;

    ExtrasMenu menu_;
    Speaking speaking_;
    ExtrasMenu piecesMenu_;
    Pieces pieces_;
    ExtrasMenu documentMenu_;
    Documents documents_;
    ReadingWindows reading_;
    SaveSound sound_;
    MediaKeys mediaKeys_;
    TrayTip trayTip_;
    Pronunciations pronunciations_;
    StandAside aside_;
    LivelyCharacter lively_;
    StartAtLogin login_;
    QuietStart quiet_;
    InstallCharacter install_;
    Opening opening_;
    ReminderEntry entry_;
    Calendars calendars_;
    MissedReminders missed_;
    ExtrasMenu alertsMenu_;
    AlertNotifications notifications_;
    WaitingAlerts waitingAlerts_;
    KeptVoice keptVoice_;
    Timer tmrWaiting_; ///< runs while a call waits for the end of the start-up
    bool startsQuietly_ = false;
    bool wanted_ = false; ///< the window is to be shown as soon as the program has started up
    std::string action_;  ///< to be done then
    std::map<std::string, Event> actions_;
    std::string unsaved_; ///< the file in which settings cannot be saved, until the user knows
    bool toldUnsaved_ = false;
    std::string failedVoice_; ///< why a voice could not speak, until the user knows
    std::set<std::string> toldVoices_;

    void Called(const Call& call);
    void Open(const std::vector<std::string>& files);
    void GoOn();
};

} // namespace voxmate
