// The program's shared state, and its version.
#pragma once

#include "base/Checked.h"
#include "modules/MainWindow.h"
#include "modules/Settings.h"
#include "platform/Platform.h"

#include <array>
#include <cstdint>
#include <functional>
#include <memory>
#include <string>

namespace voxmate
{

/// The version of the project in CMakeLists.txt as the program's windows and the error report show it: "1.1 - Build 5".
std::string VersionText();

inline constexpr const char* SupportName = "Voxmate Support";
inline constexpr const char* SupportAddress = "support@voxmate.example";

inline constexpr const char* StatusIdle = "I am Idle now !";
inline constexpr const char* StatusBusy = "Busy...";

extern SettingsRecord Settings;

/// The one shared message text: what ShowMessage reads and the caller's message box shows.
extern std::string MessageText;
/// True while an announcement or a problem box is up.
extern Boolean IsBusy;
/// Number of the numbered routine that runs or ran last.
extern std::int16_t CurrentRoutineId;
/// The start-up sequence has come to its end.
extern bool StartedUp;
/// Set by "Stop Everything !!!", polled by long reading jobs.
extern Boolean StopRequested;
/// How often it was pressed: tells whoever lets events through whether it was meanwhile.
extern std::uint32_t StopCount;

extern std::string WindowsDir;
extern std::string SearchPath;
extern std::string ReminderFilePath;
extern std::string ReminderTempPath;

/// The one loaded character; nullptr before the first load.
extern AgentCharacter* Character;
inline constexpr std::size_t AnimationNameCount = 1001;
/// Names of the loaded character's animations, the first empty entry ends them.
extern std::array<std::string, AnimationNameCount> AnimationNames;
extern std::int16_t CharacterCount;

inline constexpr int EngineLimit = 100;
/// Name and mode identifier in braces of each speech engine, counted from 1.
extern std::array<std::string, EngineLimit + 1> EngineNames;
extern std::array<std::string, EngineLimit + 1> EngineIds;

extern AgentRequestPtr LastSpeakRequest;
extern AgentRequestPtr LastPlayRequest;

/// The last wave file's request.
extern AgentRequestPtr CurrentRequest;
/// The word processor that reads or has read a document last.
extern std::unique_ptr<WordApplication> WordApp;

/// The animation that the options dialog has asked for last, until it ends, and what the dialog does then.
extern AgentRequestPtr AnimateRequest;
extern std::function<void()> AnimateEnded;
/// What the options dialog does when AnimationNames have become those of another character.
extern std::function<void()> AnimationNamesChanged;

/// Ticks of the clock timer since the last time announcement.
extern std::int32_t SpeakTimeCounter;
/// Task id of the last program started by OpenUrl.
extern double ShellTaskId;

/// The platform and the main window in use.
Platform& Host();
MainWindow& Main();
std::string PathSeparator();
/// Path of a file or folder in the program's directory.
std::string ProgramPath(const std::string& name);

/// Puts all shared state to its initial values and works on this platform and main window from now on.
void BeginProgram(Platform& platform, MainWindow& mainWindow);

} // namespace voxmate
