// Start-up, and opening pages in the browser.
#include "base/Text.h"
#include "modules/Declarations.h"
#include "modules/Functions.h"
#include "modules/Reminders.h"
#include "modules/Tips.h"
#include "modules/Windows.h"

#include <algorithm>
#include <string_view>

namespace voxmate
{

namespace
{

constexpr std::uint32_t WindowsDirLength = 200;

std::string FindWindowsDir()
{
    std::string buffer(WindowsDirLength, '\0');
    std::uint32_t length = Host().System.GetWindowsDirectoryA(buffer, WindowsDirLength);
    if (length > WindowsDirLength) {
        buffer.assign(length, '\0');
        length = Host().System.GetWindowsDirectoryA(buffer, length);
    }
    return buffer.substr(0, length);
}

// A path within an address: all but unreserved characters, "/" and ":" as %XX of its bytes (RFC 3986).
std::string PercentEncoded(const std::string& path)
{
    std::string encoded;
    for (const char c : path) {
        const auto byte = static_cast<unsigned char>(c);
        const bool plain = (byte >= 'A' && byte <= 'Z') || (byte >= 'a' && byte <= 'z') ||
                           (byte >= '0' && byte <= '9') || std::string_view("-._~/:").find(c) != std::string_view::npos;
        if (plain) {
            encoded += c;
        } else {
            encoded += '%';
            encoded += "0123456789ABCDEF"[byte >> 4];
            encoded += "0123456789ABCDEF"[byte & 0xFu];
        }
    }
    return encoded;
}

} // namespace

void StartMain()
{
    Main().Show();
    Host().Windows.DoEvents();
    RunStartUp();
    if (Settings.ShowTipAtStartUp == 1) {
        Main().Tip().ShowTip();
        ShowTipOfTheDay(true);
    }
}

void RunStartUp()
{
    Main().SetStatus("Loading your personal settings. Please wait...");
    WindowsDir = FindWindowsDir();
    ReminderFilePath = ProgramPath("VoxmateReminders.txt");
    ReminderTempPath = ProgramPath("VoxmateReminders.tmp");
    LoadSettings();
    Main().SetStatus("Searching for characters. Please wait...");
    SearchPath = Settings.CharacterPath;
    FindCharacters(false);
    Main().SetStatus("Loading character. Please wait...");
    LoadCharacter(Settings.LastCharacter, true);
    Main().SetStatus("Loading installed speech engines. Please wait...");
    Host().Windows.DoEvents();
    LoadSpeechEngines();
    Host().Windows.DoEvents();
    Main().SetStatus(StatusIdle);
    Main().SetVoiceControls(Settings.Pitch, Settings.Speed, Settings.Whisper);
    ReportSettingsInError();
    ResetReminders();
    Main().CheckReminderMenus(true, false);
    LoadReminders(false, 0);
    if (Settings.ShowCharacterAtStart == 1)
        GreetAndIntroduce(true);
    StartedUp = true;
}

void OpenUrl(const std::string& url)
{
    try {
        ShellTaskId = Host().System.Shell("explorer.exe " + url, 3);
    } catch (const RuntimeError&) {
        Host().Windows.ClipboardClear();
        Host().Windows.ClipboardSetText(url);
        const std::string lines[] = {
            "Voxmate is unable to open the following URL:", url, "", "This URL has been copied to your Clipboard.",
            "Open Internet Explorer and paste in the Address Bar and click 'GO' or press 'Enter'"};
        Host().Windows.MsgBox(JoinLines(lines), vbExclamation, "Voxmate - URL Open Error");
    }
}

std::string HelpPage(const std::string& name)
{
    std::string folder = WindowsDir;
    std::replace(folder.begin(), folder.end(), '\\', '/');
    return (folder.starts_with('/') ? "file://" : "file:///") + PercentEncoded(folder) + "/web/" + name + ".html";
}

} // namespace voxmate
