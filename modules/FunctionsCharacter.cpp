// The character: finding the files, loading one, applying the settings to it.
#include "base/Text.h"
#include "modules/Declarations.h"
#include "modules/Functions.h"
#include "modules/Messages.h"
#include "modules/Registry.h"

#include <algorithm>
#include <utility>

namespace voxmate
{

namespace
{

constexpr const char* extension = ".acs";

std::vector<std::string> CharacterFiles(const std::string& folder)
{
    return Host().Files.ListFiles(folder, std::string("*") + extension);
}

// What is wrong with a characters folder: the first line of the box, or empty.
std::string FolderProblem(const std::string& folder)
{
    if (!Host().Files.FolderExists(folder))
        return "Following folder containing the characters does not exist:";
    return CharacterFiles(folder).empty() ? "No characters found in the following path:" : "";
}

bool Ask(std::span<const std::string> lines)
{
    return Host().Windows.MsgBox(JoinLines(lines), vbCritical + vbYesNo, "Voxmate - Path Error") == vbYes;
}

[[noreturn]] void EndWithoutCharacters(const std::string& problem)
{
    const std::string page = HelpPage("characters");
    const std::string lines[] = {problem, SearchPath,
                                 "Please goto following MS Agents' download page and install MS Agent.", page,
                                 "Do you want to goto download site now ?"};
    if (Ask(lines))
        OpenUrl(page);
    Host().System.EndProgram();
}

// Settles SearchPath on a folder with characters; false when the user keeps the folder in use.
bool SettleSearchPath(bool fromOptions)
{
    std::string problem = FolderProblem(SearchPath);
    if (problem.empty())
        return true;
    const std::string lines[] = {
        problem, SearchPath, "Do you want to let Voxmate load characters from windows system directory ?",
        fromOptions ? "If no then CharacterPath setting will not take effect." : "If no then Voxmate will end."};
    if (!Ask(lines)) {
        if (fromOptions && CharacterCount != 0)
            return false;
        Host().System.EndProgram();
    }
    const std::string separator = PathSeparator();
    SearchPath = WindowsDir + separator + "msagent" + separator + "chars" + separator;
    problem = FolderProblem(SearchPath);
    if (!problem.empty())
        EndWithoutCharacters(problem);
    return true;
}

// The name as its file has it, for names of characters compare without case; the first of all where there is none.
std::string InAnyCase(const std::string& name, const std::vector<std::string>& names)
{
    const auto found = std::find_if(names.begin(), names.end(),
                                    [&name](const std::string& candidate) { return EqualNoCase(candidate, name); });
    return found == names.end() ? names.front() : *found;
}

void FillAnimationNames()
{
    AnimationNames.fill({});
    std::size_t index = 0;
    for (const std::string& name : Character->AnimationNames()) {
        if (index == AnimationNames.size())
            break;
        AnimationNames.at(index++) = name;
    }
    if (AnimationNamesChanged)
        AnimationNamesChanged();
}

void AddCommands()
{
    AgentCommands& commands = Character->Commands();
    commands.Add("mnuStop", "&Stop", "Stop", true, true);
    commands.Add("mnuTime", "Tell me &Time", "Tell me Time", true, true);
    commands.Add("mnuDate", "Tell me &Date", "Tell me Date", true, true);
    commands.Add("mnuIntro", "&Who Am I?", "Who Am I?", true, true);
}

std::uint32_t WithBit(std::uint32_t style, std::uint32_t bit, std::int16_t setting)
{
    return setting == 1 ? style | bit : style & ~bit;
}

void ApplyBalloonSettings()
{
    AgentBalloon& balloon = Character->Balloon();
    // Field by field, as each change is a style of its own to the balloon.
    const auto lines = static_cast<std::uint32_t>(Settings.BalloonTotalLines);
    const auto characters = static_cast<std::uint32_t>(Settings.BalloonCharactersPerLine);
    balloon.SetStyle((balloon.Style() & 0x00FFFFFFu) + (lines << 24));
    balloon.SetStyle((balloon.Style() & ~BalloonCharactersMask) + (characters << 16));
    balloon.SetStyle(WithBit(balloon.Style(), BalloonOn, Settings.ShowBalloon));
    balloon.SetStyle(WithBit(balloon.Style(), BalloonAutoHide, Settings.BalloonAutoHide));
    balloon.SetStyle(WithBit(balloon.Style(), BalloonAutoPace, Settings.BalloonAutoPace));
    balloon.SetStyle(WithBit(balloon.Style(), BalloonSizeToText, Settings.SizeBallonToText));
    balloon.SetFontName(Settings.BalloonFontName);
    balloon.SetFontSize(Settings.BalloonFontSize);
}

void ApplySize()
{
    const int width = Character->OriginalWidth();
    const int height = Character->OriginalHeight();
    switch (Settings.CharacterSize) {
    case 0:
        Character->SetWidth(static_cast<int>(RoundHalfEven(width / 2.0)));
        Character->SetHeight(static_cast<int>(RoundHalfEven(height / 2.0)));
        break;
    case 1:
        Character->SetWidth(width);
        Character->SetHeight(height);
        break;
    case 2:
        Character->SetWidth(MultiplyInt16(ToInt16(width), 2));
        Character->SetHeight(MultiplyInt16(ToInt16(height), 2));
        break;
    default:
        break;
    }
}

} // namespace

void FindCharacters(bool fromOptions)
{
    NumberedRoutine(1, [fromOptions] {
        if (!SettleSearchPath(fromOptions))
            return;
        Settings.CharacterPath = SearchPath;
        std::vector<std::string> names;
        for (const std::string& file : CharacterFiles(SearchPath))
            names.push_back(Host().Files.GetBaseName(file));
        Main().ListCharacters(names);
        CharacterCount = ToInt16(static_cast<std::int64_t>(names.size()));
        WriteRegString(SettingsKey, "CharacterPath", Settings.CharacterPath);
        if (!Host().Files.FileExists(Settings.CharacterPath + Settings.LastCharacter + extension))
            Settings.LastCharacter = InAnyCase(Settings.LastCharacter, names);
    });
}

void ChangeCharacterPath(const std::string& path)
{
    const std::string loaded = Settings.LastCharacter;
    SearchPath = path;
    FindCharacters(true);
    SearchPath = Settings.CharacterPath;
    const std::string next = std::exchange(Settings.LastCharacter, loaded);
    if (!Character || next != loaded)
        LoadCharacter(next, false);
    else
        Main().CheckCharacter(loaded);
}

void LoadCharacter(const std::string& name, bool atStartUp)
{
    NumberedRoutine(2, [&name, atStartUp] {
        const std::string path = Settings.CharacterPath + name + extension;
        if (!Host().Files.FileExists(path)) {
            Announce(std::string("Please make sure following file is available to load this charater:") + CrLf + path,
                     vbExclamation, "Voxmate - File Error", "Decline");
            return;
        }
        if (!atStartUp) {
            Character = nullptr;
            Host().Agent.Unload(Settings.LastCharacter);
        }
        Host().Agent.Load(name, path);
        Character = &Host().Agent.Characters(name);
        if (Settings.ShowCharacterAtStart == 1)
            Character->Show(false);
        Settings.LastCharacter = name;
        FillAnimationNames();
        Main().SetCharacterPanel(UCase(name));
        WriteRegString(SettingsKey, "LastCharacter", name);
        Main().CheckCharacter(name);
        const int engine = Main().SelectedSpeechEngine();
        if (engine >= 0)
            Character->SetTTSModeID(EngineIds.at(static_cast<std::size_t>(engine) + 1));
        AddCommands();
        ApplyCharacterSettings();
    });
}

bool TellDamagedCharacter(const std::string& message)
{
    if (!StartedUp || IsBusy)
        return false;
    Announce(message, vbExclamation, "Voxmate - File Error", "Decline");
    return true;
}

void ApplyCharacterSettings()
{
    ApplyBalloonSettings();
    ApplySize();
    Host().Agent.SetSoundEffectsOn(Settings.EnableSoundEffects != 0);
}

} // namespace voxmate
