// Finds the character files, loads a character and applies the settings to it.
#include "base/Text.h"
#include "modules/Program.h"

#include <algorithm>
#include <utility>

namespace voxmate
{

namespace
{

constexpr const char* extension = ".acs";

bool Ask(WindowSystem& windows, std::span<const std::string> lines)
{
    return windows.MsgBox(JoinLines(lines), vbCritical + vbYesNo, "Voxmate - Path Error") == vbYes;
}

// The name among `names` that equals `name` without regard to case, as names of characters are compared; the first of
// them if there is none.
std::string InAnyCase(const std::string& name, const std::vector<std::string>& names)
{
    const auto found = std::find_if(names.begin(), names.end(),
                                    [&name](const std::string& candidate) { return EqualNoCase(candidate, name); });
    return found == names.end() ? names.front() : *found;
}

void AddCommands(AgentCommands& commands)
{
    commands.Add("mnuStop", "&Stop", "Stop", true, true);
    commands.Add("mnuTime", "Tell me &Time", "Tell me Time", true, true);
    commands.Add("mnuDate", "Tell me &Date", "Tell me Date", true, true);
    commands.Add("mnuIntro", "&Who Am I?", "Who Am I?", true, true);
}

std::uint32_t WithBit(std::uint32_t style, std::uint32_t bit, std::int16_t setting)
{
    return setting == 1 ? style | bit : style & ~bit;
}

void ApplyBalloonSettings(AgentBalloon& balloon, const SettingsRecord& settings)
{
    // Field by field, because the balloon takes each change as a new style.
    const auto lines = static_cast<std::uint32_t>(settings.BalloonTotalLines);
    const auto characters = static_cast<std::uint32_t>(settings.BalloonCharactersPerLine);
    balloon.SetStyle((balloon.Style() & ~BalloonLinesMask) + (lines << 24));
    balloon.SetStyle((balloon.Style() & ~BalloonCharactersMask) + (characters << 16));
    balloon.SetStyle(WithBit(balloon.Style(), BalloonOn, settings.ShowBalloon));
    balloon.SetStyle(WithBit(balloon.Style(), BalloonAutoHide, settings.BalloonAutoHide));
    balloon.SetStyle(WithBit(balloon.Style(), BalloonAutoPace, settings.BalloonAutoPace));
    balloon.SetStyle(WithBit(balloon.Style(), BalloonSizeToText, settings.SizeBallonToText));
    balloon.SetFontName(settings.BalloonFontName);
    balloon.SetFontSize(settings.BalloonFontSize);
}

void ApplySize(AgentCharacter& character, std::int16_t size)
{
    const int width = character.OriginalWidth();
    const int height = character.OriginalHeight();
    switch (size) {
    case 0:
        character.SetWidth(static_cast<int>(RoundHalfEven(width / 2.0)));
        character.SetHeight(static_cast<int>(RoundHalfEven(height / 2.0)));
        break;
    case 1:
        character.SetWidth(width);
        character.SetHeight(height);
        break;
    case 2:
        character.SetWidth(MultiplyInt16(ToInt16(width), 2));
        character.SetHeight(MultiplyInt16(ToInt16(height), 2));
        break;
    default:
        break;
    }
}

} // namespace

std::vector<std::string> Characters::CharacterFiles(const std::string& folder) const
{
    return program_.Host.Files.ListFiles(folder, std::string("*") + extension);
}

// What is wrong with a folder of characters, as the first line of the box; empty when nothing is.
std::string Characters::FolderProblem(const std::string& folder) const
{
    if (!program_.Host.Files.FolderExists(folder))
        return "Following folder containing the characters does not exist:";
    return CharacterFiles(folder).empty() ? "No characters found in the following path:" : "";
}

void Characters::EndWithoutCharacters(const std::string& problem)
{
    const std::string page = program_.HelpPage("characters");
    const std::string lines[] = {problem, SearchPath,
                                 "Please goto following MS Agents' download page and install MS Agent.", page,
                                 "Do you want to goto download site now ?"};
    if (Ask(program_.Host.Windows, lines))
        program_.OpenUrl(page);
    program_.Host.System.EndProgram();
}

// Makes SearchPath a folder with characters; false when the user keeps the folder in use.
bool Characters::SettleSearchPath(bool fromOptions)
{
    std::string problem = FolderProblem(SearchPath);
    if (problem.empty())
        return true;
    const std::string lines[] = {
        problem, SearchPath, "Do you want to let Voxmate load characters from windows system directory ?",
        fromOptions ? "If no then CharacterPath setting will not take effect." : "If no then Voxmate will end."};
    if (!Ask(program_.Host.Windows, lines)) {
        if (fromOptions && CharacterCount != 0)
            return false;
        program_.Host.System.EndProgram();
    }
    const std::string separator = program_.PathSeparator();
    SearchPath = program_.WindowsDir + separator + "msagent" + separator + "chars" + separator;
    problem = FolderProblem(SearchPath);
    if (!problem.empty())
        EndWithoutCharacters(problem);
    return true;
}

void Characters::FillAnimationNames()
{
    AnimationNames.fill({});
    std::size_t index = 0;
    for (const std::string& name : program_.Character->AnimationNames()) {
        if (index == AnimationNames.size())
            break;
        AnimationNames.at(index++) = name;
    }
    if (AnimationNamesChanged)
        AnimationNamesChanged();
}

void Characters::FindCharacters(bool fromOptions)
{
    program_.Messages.NumberedRoutine(1, [this, fromOptions] {
        if (!SettleSearchPath(fromOptions))
            return;
        program_.Settings.CharacterPath = SearchPath;
        std::vector<std::string> names;
        for (const std::string& file : CharacterFiles(SearchPath))
            names.push_back(program_.Host.Files.GetBaseName(file));
        program_.Main->ListCharacters(names);
        CharacterCount = ToInt16(static_cast<std::int64_t>(names.size()));
        program_.Registry.WriteRegString(SettingsKey, "CharacterPath", program_.Settings.CharacterPath);
        if (!program_.Host.Files.FileExists(program_.Settings.CharacterPath + program_.Settings.LastCharacter +
                                            extension))
            program_.Settings.LastCharacter = InAnyCase(program_.Settings.LastCharacter, names);
    });
}

void Characters::ChangeCharacterPath(const std::string& path)
{
    const std::string loaded = program_.Settings.LastCharacter;
    SearchPath = path;
    FindCharacters(true);
    SearchPath = program_.Settings.CharacterPath;
    const std::string next = std::exchange(program_.Settings.LastCharacter, loaded);
    if (!program_.Character || next != loaded)
        LoadCharacter(next, false);
    else
        program_.Main->CheckCharacter(loaded);
}

void Characters::LoadCharacter(const std::string& name, bool atStartUp)
{
    program_.Messages.NumberedRoutine(2, [&] {
        const std::string path = program_.Settings.CharacterPath + name + extension;
        if (!program_.Host.Files.FileExists(path)) {
            program_.Messages.Announce(
                std::string("Please make sure following file is available to load this charater:") + CrLf + path,
                vbExclamation, "Voxmate - File Error", "Decline");
            return;
        }
        if (!atStartUp) {
            program_.Character = nullptr;
            program_.Host.Agent.Unload(program_.Settings.LastCharacter);
        }
        program_.Host.Agent.Load(name, path);
        program_.Character = &program_.Host.Agent.Characters(name);
        if (program_.Settings.ShowCharacterAtStart == 1)
            program_.Character->Show(false);
        program_.Settings.LastCharacter = name;
        FillAnimationNames();
        program_.Main->SetCharacterPanel(UCase(name));
        program_.Registry.WriteRegString(SettingsKey, "LastCharacter", name);
        program_.Main->CheckCharacter(name);
        const int engine = program_.Main->SelectedSpeechEngine();
        if (engine >= 0)
            program_.Character->SetTTSModeID(program_.Voice.EngineIds.at(static_cast<std::size_t>(engine) + 1));
        AddCommands(program_.Character->Commands());
        ApplyCharacterSettings();
    });
}

bool Characters::TellDamagedCharacter(const std::string& message)
{
    if (!program_.StartedUp || program_.Messages.IsBusy)
        return false;
    program_.Messages.Announce(message, vbExclamation, "Voxmate - File Error", "Decline");
    return true;
}

void Characters::ApplyCharacterSettings()
{
    ApplyBalloonSettings(program_.Character->Balloon(), program_.Settings);
    ApplySize(*program_.Character, program_.Settings.CharacterSize);
    program_.Host.Agent.SetSoundEffectsOn(program_.Settings.EnableSoundEffects != 0);
}

} // namespace voxmate
