// Start-up, and opening pages in the browser.
#include "modules/Program.h"

#include "base/FileName.h"
#include "base/Text.h"
#include "modules/Windows.h"

#include <algorithm>

namespace voxmate
{

namespace
{

constexpr std::uint32_t WindowsDirLength = 200;

std::string FindWindowsDir(Process& system)
{
    std::string buffer(WindowsDirLength, '\0');
    std::uint32_t length = system.GetWindowsDirectoryA(buffer, WindowsDirLength);
    if (length > WindowsDirLength) {
        buffer.assign(length, '\0');
        length = system.GetWindowsDirectoryA(buffer, length);
    }
    return buffer.substr(0, length);
}

} // namespace

std::string VersionText()
{
    return VOXMATE_VERSION_TEXT;
}

std::string Program::ProgramPath(const std::string& name) const
{
    return Host.System.ProgramDirectory() + PathSeparator() + name;
}

void Program::StartMain()
{
    Main->Show();
    Host.Windows.DoEvents();
    RunStartUp();
    if (Settings.ShowTipAtStartUp == 1) {
        Main->Tip().ShowTip();
        Tips.ShowTipOfTheDay(true);
    }
}

void Program::RunStartUp()
{
    Main->SetStatus("Loading your personal settings. Please wait...");
    WindowsDir = FindWindowsDir(Host.System);
    Reminders.File.ReminderFilePath = ProgramPath("VoxmateReminders.txt");
    Reminders.File.ReminderTempPath = ProgramPath("VoxmateReminders.tmp");
    LoadSettings(*this);
    if (SettingsLoaded)
        SettingsLoaded();
    Main->SetStatus("Searching for characters. Please wait...");
    Characters.SearchPath = Settings.CharacterPath;
    Characters.FindCharacters(false);
    Main->SetStatus("Loading character. Please wait...");
    Characters.LoadCharacter(Settings.LastCharacter, true);
    Main->SetStatus("Loading installed speech engines. Please wait...");
    Host.Windows.DoEvents();
    Voice.LoadSpeechEngines();
    Host.Windows.DoEvents();
    Main->SetStatus(StatusIdle);
    Main->SetVoiceControls(Settings.Pitch, Settings.Speed, Settings.Whisper);
    ReportSettingsInError(*this);
    Main->CheckReminderMenus(true, false);
    // This also holds if a load that was requested meanwhile could not read the file.
    Reminders.WantReminders(true);
    Reminders.LoadReminders(false, 0);
    if (Settings.ShowCharacterAtStart == 1)
        GreetAndIntroduce(*this, true);
    StartedUp = true;
}

void Program::OpenUrl(const std::string& url)
{
    try {
        ShellTaskId = Host.System.Shell("explorer.exe " + url, 3);
    } catch (const RuntimeError&) {
        Host.Windows.ClipboardClear();
        Host.Windows.ClipboardSetText(url);
        const std::string lines[] = {
            "Voxmate is unable to open the following URL:", url, "", "This URL has been copied to your Clipboard.",
            "Open Internet Explorer and paste in the Address Bar and click 'GO' or press 'Enter'"};
        Host.Windows.MsgBox(JoinLines(lines), vbExclamation, "Voxmate - URL Open Error");
    }
}

std::string Program::HelpPage(const std::string& name) const
{
    std::string folder = WindowsDir;
    std::replace(folder.begin(), folder.end(), '\\', '/');
    return AddressOfPath(folder) + "/web/" + name + ".html";
}

} // namespace voxmate
