// The implementations that make up the program on Windows, and what only Windows asks of its start and its end.
#pragma once

#include "platform/windows/desktop/Absent.h"
#include "platform/windows/desktop/WindowsActivation.h"
#include "platform/windows/desktop/WindowsKeys.h"
#include "platform/windows/desktop/WindowsPresence.h"
#include "platform/windows/desktop/WindowsQuiet.h"
#include "platform/windows/files/Folders.h"
#include "platform/windows/files/SaveFile.h"
#include "platform/windows/files/WindowsFileSystem.h"
#include "platform/windows/process/Console.h"
#include "platform/windows/process/RunAtLogin.h"
#include "platform/windows/process/WindowsProcess.h"
#include "platform/windows/settings/RegistrySettingsStore.h"
#include "platform/windows/settings/RegistryStateStore.h"
#include "platform/windows/sound/WasapiDevice.h"
#include "platform/windows/system/DarkMode.h"
#include "platform/windows/system/WindowsPower.h"
#include "platform/windows/voices/SapiVoices.h"
#include "platform/windows/word/AutomatedWord.h"
#include "qt/system/QtApplication.h"
#include "speech/Engine.h"

#include <chrono>
#include <functional>
#include <memory>
#include <string>
#include <vector>

namespace voxmate::parts
{

using Activation = windows_platform::WindowsActivation;
using Clock = windows_platform::WindowsClock;
using FileSystem = windows_platform::WindowsFileSystem;
using Keys = windows_platform::WindowsKeys;
using MediaControls = windows_platform::NoMediaControls;
using Notifications = windows_platform::NoNotifications;
using Power = windows_platform::WindowsPower;
using Presence = windows_platform::WindowsPresence;
using Process = windows_platform::WindowsProcess;
using Quiet = windows_platform::WindowsQuiet;
using SettingsStore = windows_platform::RegistrySettingsStore;
using SoundDevice = speech::WasapiDevice;
using StateStore = windows_platform::RegistryStateStore;
using Word = windows_platform::AutomatedWord;

using windows_platform::ProgramFolder;
using windows_platform::SaveFile;
using windows_platform::SharedDataFolder;

/// Before anything is written for whoever started the program: one with windows has no console of its own, and takes
/// that of the program that started it.
inline void PrepareOutput()
{
    windows_platform::UseParentsConsole();
}

/// What comes before the application object: the look. Windows' own style has no dark colours in this toolkit, so where
/// the user has chosen them, the toolkit's own style takes its place.
class Beginning
{
public:
    Beginning()
    {
        if (!windows_platform::PrefersDark() || qEnvironmentVariableIsSet("QT_QPA_PLATFORM"))
            return;
        qputenv("QT_QPA_PLATFORM", "windows:darkmode=2");
        if (!qEnvironmentVariableIsSet("QT_STYLE_OVERRIDE"))
            qputenv("QT_STYLE_OVERRIDE", "fusion");
    }
};

/// Windows' own fonts need no preparation.
class FontsAhead
{
};

/// The system asks the toolkit's windows when the session ends; nothing else is needed.
class Ending
{
public:
    Ending(qt::QtApplication& /*application*/, Process& /*process*/, const std::function<void()>& /*whileWaiting*/) {}
};

/// The voices that only this system has: those of its speech interface.
inline std::vector<std::unique_ptr<speech::Engine>>
MakeOwnEngines(const std::function<void(const std::string&)>& /*leftOut*/,
               const std::function<void(const std::string&)>& /*failed*/)
{
    std::vector<std::unique_ptr<speech::Engine>> engines;
    engines.push_back(speech::CreateSystemEngine(std::make_unique<windows_platform::SapiVoices>()));
    return engines;
}

inline std::unique_ptr<SettingsStore> MakeSettingsStore()
{
    return windows_platform::MakeSettingsStore(SharedDataFolder());
}

inline std::unique_ptr<StateStore> MakeStateStore()
{
    return std::make_unique<StateStore>();
}

inline windows_platform::RunAtLogin MakeAutostart()
{
    return windows_platform::RunAtLogin(windows_platform::RunningProgram());
}

/// The registry has what was set at once.
inline void Save(SettingsStore& /*settings*/, StateStore& /*state*/, std::chrono::milliseconds /*patience*/) {}

/// Where the settings are, for messages.
inline std::string PlaceOf(const SettingsStore& /*settings*/)
{
    return "HKEY_CURRENT_USER\\Software\\Voxmate";
}

} // namespace voxmate::parts
