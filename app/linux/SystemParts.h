// The implementations that make up the program on Linux, and what only Linux asks of its start and its end.
#pragma once

#include "platform/linux/desktop/DBusActivation.h"
#include "platform/linux/desktop/DesktopKeys.h"
#include "platform/linux/desktop/DesktopQuiet.h"
#include "platform/linux/desktop/LinuxNotifications.h"
#include "platform/linux/desktop/MprisPlayer.h"
#include "platform/linux/desktop/X11Presence.h"
#include "platform/linux/files/FileSaver.h"
#include "platform/linux/files/Folders.h"
#include "platform/linux/files/LinuxFileSystem.h"
#include "platform/linux/process/EndSignals.h"
#include "platform/linux/process/LinuxProcess.h"
#include "platform/linux/process/QuietErrors.h"
#include "platform/linux/process/SessionBus.h"
#include "platform/linux/process/XdgAutostart.h"
#include "platform/linux/settings/FileSettingsStore.h"
#include "platform/linux/settings/FileStateStore.h"
#include "platform/linux/sound/PulseDevice.h"
#include "platform/linux/system/FontsAhead.h"
#include "platform/linux/system/LinuxPower.h"
#include "platform/linux/word/LibreOfficeWord.h"
#include "qt/system/QtApplication.h"
#include "speech/Engine.h"

#include <chrono>
#include <functional>
#include <iostream>
#include <memory>
#include <string>
#include <vector>

namespace voxmate::parts
{

using Activation = linux_platform::DBusActivation;
using Clock = linux_platform::LinuxClock;
using FileSystem = linux_platform::LinuxFileSystem;
using FontsAhead = linux_platform::FontsAhead;
using Keys = linux_platform::DesktopKeys;
using MediaControls = linux_platform::MprisPlayer;
using Notifications = linux_platform::LinuxNotifications;
using Power = linux_platform::LinuxPower;
using Presence = linux_platform::X11Presence;
using Process = linux_platform::LinuxProcess;
using Quiet = linux_platform::DesktopQuiet;
using SettingsStore = linux_platform::FileSettingsStore;
using SoundDevice = speech::PulseDevice;
using StateStore = linux_platform::FileStateStore;
using Word = linux_platform::LibreOfficeWord;

using linux_platform::MakeAutostart;
using linux_platform::MakeSettingsStore;
using linux_platform::MakeStateStore;
using linux_platform::ProgramFolder;
using linux_platform::SaveFile;
using linux_platform::SharedDataFolder;

/// Before anything is written for whoever started the program. A program has its outputs here as it starts.
inline void PrepareOutput() {}

/// What comes before the application object, and stays to the end.
class Beginning
{
public:
    Beginning() { linux_platform::AvoidHangingBus(BusPatience); }

private:
    /// How long the session's bus may take to answer the first word; it is milliseconds even at a busy log-in. Without
    /// the bus there is no accessibility, so it is not given up lightly.
    static constexpr std::chrono::seconds BusPatience{5};

    // Debian's ONNX Runtime tells of its own parts twice, in more than a thousand lines.
    linux_platform::QuietErrors quiet_{std::cerr, "Schema error: "};
};

/// The system's ways of ending the program, from now on.
class Ending
{
public:
    /// `whileWaiting` keeps the windows alive while the process waits for another program.
    Ending(qt::QtApplication& application, Process& process, std::function<void()> whileWaiting)
        : signals_([&application, &process] { application.Post([&process] { process.EndRequested(); }); },
                   [&process] { process.EndWithin(LastSavePatience); }, Patience)
    {
        process.WhileWaiting = std::move(whileWaiting);
        process.EndAtExit();
    }

private:
    /// How long a signal that asks the program to end waits for the event loop; after that the program ends whatever
    /// the loop does. Session managers wait for some ten seconds before they kill.
    static constexpr std::chrono::seconds Patience{4};
    /// How long the settings may then take to be saved. Short, because the event loop may hang on the very disk they go
    /// to.
    static constexpr std::chrono::seconds LastSavePatience{1};

    linux_platform::EndSignals signals_;
};

/// The voices that only this system has: neural ones. `leftOut` and `failed` are told why a voice is not listed, or
/// cannot speak, on any thread.
inline std::vector<std::unique_ptr<speech::Engine>> MakeOwnEngines(std::function<void(const std::string&)> leftOut,
                                                                   std::function<void(const std::string&)> failed)
{
    std::vector<std::unique_ptr<speech::Engine>> engines;
    engines.push_back(speech::CreatePiperEngine(ProgramFolder() + "/voices", linux_platform::DataFolder(),
                                                linux_platform::HomeFolder(), std::move(leftOut), std::move(failed)));
    return engines;
}

/// Waits at most `patience` until all that was set is on the disk.
inline void Save(SettingsStore& settings, StateStore& state, std::chrono::milliseconds patience)
{
    const auto last = std::chrono::steady_clock::now() + patience;
    settings.Flush(patience);
    state.Flush(std::chrono::duration_cast<std::chrono::milliseconds>(last - std::chrono::steady_clock::now()));
}

/// Where the settings are, for messages.
inline std::string PlaceOf(const SettingsStore& settings)
{
    return settings.UserFile();
}

} // namespace voxmate::parts
