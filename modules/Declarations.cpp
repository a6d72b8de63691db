#include "modules/Declarations.h"

#include "modules/AlertSlots.h"
#include "modules/Registry.h"
#include "modules/Reminders.h"
#include "modules/Tips.h"

namespace voxmate
{

SettingsRecord Settings;
std::string MessageText;
Boolean IsBusy = False;
std::int16_t CurrentRoutineId = 0;
Boolean StopRequested = False;
std::uint32_t StopCount = 0;
bool StartedUp = false;
std::string WindowsDir;
std::string SearchPath;
std::string ReminderFilePath;
std::string ReminderTempPath;
AgentCharacter* Character = nullptr;
std::array<std::string, AnimationNameCount> AnimationNames;
std::int16_t CharacterCount = 0;
std::array<std::string, EngineLimit + 1> EngineNames;
std::array<std::string, EngineLimit + 1> EngineIds;
AgentRequestPtr LastSpeakRequest;
AgentRequestPtr LastPlayRequest;
AgentRequestPtr CurrentRequest;
std::unique_ptr<WordApplication> WordApp;
AgentRequestPtr AnimateRequest;
std::function<void()> AnimateEnded;
std::function<void()> AnimationNamesChanged;
std::int32_t SpeakTimeCounter = 0;
double ShellTaskId = 0;

namespace
{

Platform* host = nullptr;
MainWindow* mainWindow = nullptr;
std::string separator;

} // namespace

std::string VersionText()
{
    return VOXMATE_VERSION_TEXT;
}

Platform& Host()
{
    return *host;
}

MainWindow& Main()
{
    return *mainWindow;
}

std::string PathSeparator()
{
    return separator;
}

std::string ProgramPath(const std::string& name)
{
    return Host().System.ProgramDirectory() + PathSeparator() + name;
}

void BeginProgram(Platform& platform, MainWindow& window)
{
    host = &platform;
    separator = platform.Files.PathSeparator();
    mainWindow = &window;
    ResetRegistry();
    Settings = {};
    MessageText.clear();
    IsBusy = False;
    CurrentRoutineId = 0;
    StopRequested = False;
    StopCount = 0;
    StartedUp = false;
    WindowsDir.clear();
    SearchPath.clear();
    ReminderFilePath.clear();
    ReminderTempPath.clear();
    Character = nullptr;
    AnimationNames.fill({});
    CharacterCount = 0;
    EngineNames.fill({});
    EngineIds.fill({});
    LastSpeakRequest.reset();
    LastPlayRequest.reset();
    CurrentRequest.reset();
    WordApp.reset();
    AnimateRequest.reset();
    AnimateEnded = nullptr;
    AnimationNamesChanged = nullptr;
    SpeakTimeCounter = 0;
    ShellTaskId = 0;
    // First: an alert window that goes gives its place back.
    ResetReminders();
    AlertSlotMask = 0;
    ResetTips();
}

} // namespace voxmate
