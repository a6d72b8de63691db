// The program: the state that its parts share, and its version.
#pragma once

#include "modules/Functions.h"
#include "modules/MainWindow.h"
#include "modules/Messages.h"
#include "modules/Registry.h"
#include "modules/ReminderScheduler.h"
#include "modules/Reminders.h"
#include "modules/Settings.h"
#include "modules/Tips.h"
#include "platform/Platform.h"

#include <cstdint>
#include <functional>
#include <string>

namespace voxmate
{

/// The project's version from CMakeLists.txt as windows and the error report show it: "1.1 - Build 5".
std::string VersionText();

inline constexpr const char* StatusIdle = "I am Idle now !";
inline constexpr const char* StatusBusy = "Busy...";

/// Owns all state that forms and modules share. main() makes one over its platform, a test makes one over fakes. The
/// platform must outlive it.
class Program
{
public:
    explicit Program(Platform& platform) : Host(platform) {}
    Program(const Program&) = delete;
    Program& operator=(const Program&) = delete;

    Platform& Host;
    /// The main window; it sets this pointer itself.
    MainWindow* Main = nullptr;

    SettingsRecord Settings;
    /// The one loaded character; nullptr before the first load.
    AgentCharacter* Character = nullptr;
    /// Whether the start-up sequence has ended.
    bool StartedUp = false;
    /// Called in the start-up sequence as soon as the settings have been read; may be empty.
    std::function<void()> SettingsLoaded;
    /// Set by "Stop Everything !!!" and polled by long reading jobs.
    Boolean StopRequested = False;
    /// How often that was pressed. Code that lets events through compares it before and after.
    std::uint32_t StopCount = 0;
    /// Ticks of the clock timer since the last time announcement.
    std::int32_t SpeakTimeCounter = 0;
    /// Task id of the last program started by OpenUrl.
    double ShellTaskId = 0;
    std::string WindowsDir;
    /// The places that alert windows occupy: bit 0 is place 1, bit 7 is place 8. The places are stacked from the lower
    /// edge of the work area upwards.
    std::uint8_t AlertSlotMask = 0;

    voxmate::Registry Registry{Host.Settings};
    voxmate::Messages Messages{*this};
    voxmate::Characters Characters{*this};
    voxmate::Voice Voice{*this};
    voxmate::Reading Reading{*this};
    voxmate::Tips Tips{*this};
    voxmate::Reminders Reminders{*this};
    voxmate::ReminderScheduler Scheduler{*this};

    std::string PathSeparator() const { return Host.Files.PathSeparator(); }
    /// Path of a file or folder in the program's directory.
    std::string ProgramPath(const std::string& name) const;

    /// Shows the main window and runs the start-up sequence.
    void StartMain();
    /// Runs the start-up steps in their fixed order and shows each in the status bar.
    void RunStartUp();
    /// Opens a page in the browser. When that fails, the address is put on the clipboard and a box says so.
    void OpenUrl(const std::string& url);
    /// Address of a help page that ships with the program ("characters", "voices").
    std::string HelpPage(const std::string& name) const;
};

} // namespace voxmate
