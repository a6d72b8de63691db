// The speech engines, and the one routine that speaks everything.
#include "base/Text.h"
#include "modules/Program.h"

#include <algorithm>
#include <string_view>
#include <utility>

namespace voxmate
{

void Voice::GiveCharacterEngine(int number)
{
    if (program_.Character)
        program_.Character->SetTTSModeID(EngineIds.at(static_cast<std::size_t>(number)));
}

void Voice::EndWithoutEngine()
{
    const std::string page = program_.HelpPage("voices");
    const std::string lines[] = {
        "No speech engine is loaded on this machine. Please load a speech engine and then try again.",
        "Voxmate will end now.",
        "Please goto following MS Agents' download page and install atleast one Speech Engine.",
        page,
        "Do you want to goto download site now ?",
    };
    if (program_.Host.Windows.MsgBox(JoinLines(lines), vbCritical + vbYesNo, "Voxmate - Unhandled Error") == vbYes)
        program_.OpenUrl(page);
    program_.Host.System.EndProgram();
}

void Voice::AudioProblem(const char* text)
{
    const BusyScope busy(program_.Messages.IsBusy);
    program_.Host.Windows.MsgBox(text, vbCritical, "Voxmate - Audio Output Problem");
}

void Voice::LoadSpeechEngines()
{
    program_.Messages.NumberedRoutine(1, [this] {
        const int count = std::min(program_.Host.Speech.CountEngines(), EngineLimit);
        if (count == 0)
            EndWithoutEngine();
        int selected = 0;
        for (int i = 1; i <= count; ++i) {
            const auto at = static_cast<std::size_t>(i);
            EngineNames.at(at) = program_.Host.Speech.ModeName(i);
            EngineIds.at(at) = "{" + program_.Host.Speech.ModeID(i) + "}";
            program_.Main->AddSpeechEngine(EngineNames.at(at));
            if (EngineNames.at(at) == program_.Settings.LastSpeechEngine)
                selected = i;
        }
        if (selected == 0) {
            static constexpr const char* displayName = "Voice Type Last Used";
            selected = 1;
            program_.Registry.WriteRegString(SettingsKey, "LastSpeechEngine", EngineNames[1]);
            if (!ContainsNoCase(program_.Settings.SettingsErrorList, displayName))
                program_.Settings.SettingsErrorList += std::string(displayName) + CrLf;
        }
        program_.Main->SelectSpeechEngine(selected - 1);
        GiveCharacterEngine(selected);
    });
}

void Voice::ChooseSpeechEngine(int number)
{
    GiveCharacterEngine(number);
    program_.Registry.WriteRegString(SettingsKey, "LastSpeechEngine", EngineNames.at(static_cast<std::size_t>(number)));
}

std::string EscapeMarkup(std::string text)
{
    std::size_t backslash = text.find('\\');
    if (backslash == std::string::npos)
        return text;
    const std::size_t end = Len(text);
    std::string escaped;
    escaped.reserve(text.size() + static_cast<std::size_t>(std::count(text.begin(), text.end(), '\\')));
    std::size_t copied = 0;
    std::size_t position = 1; // of the next character within the escaped text
    for (; backslash != std::string::npos; backslash = text.find('\\', copied)) {
        position += Len(std::string_view(text).substr(copied, backslash - copied));
        if (position > end)
            break;
        escaped.append(text, copied, backslash + 1 - copied).append(1, '\\');
        copied = backslash + 1;
        position += 2;
    }
    return escaped.append(text, copied);
}

std::string VoicePrefix(int pitch, int speed, bool whisper)
{
    return (whisper ? "\\Chr=\"WHISPER\"\\ " : "") + ("\\Pit=" + std::to_string(pitch)) +
           "\\ \\Spd=" + std::to_string(speed) + "\\";
}

bool Voice::HasSound()
{
    switch (program_.Host.Agent.AudioOutputStatus()) {
    case AudioStatus::NoSupport:
        AudioProblem("There is no support for audio output.");
        return false;
    case AudioStatus::Unknown:
        AudioProblem("There was some other (unknown) problem in attempting to access the audio output channel.");
        return false;
    default:
        return true;
    }
}

bool Voice::SpeakText(std::string text, const std::string& animation)
{
    if (!HasSound())
        return false;
    text = Trim(std::move(text));
    if (text.empty() || !program_.Character)
        return false;
    // The text is moved, never copied, because it may be as long as a library.
    text = EscapeMarkup(std::move(text));
    text.insert(0, VoicePrefix(program_.Settings.Pitch, program_.Settings.Speed, program_.Settings.Whisper == True));
    const std::uint32_t stops = program_.StopCount;
    program_.Character->Show(false);
    program_.Host.Windows.DoEvents();
    // A Stop among these events also cancels this text, which was not yet in the queue.
    if (program_.StopCount != stops)
        return false;
    const std::string gesture = Trim(animation);
    if (!gesture.empty())
        LastPlayRequest = program_.Character->Play(gesture);
    LastSpeakRequest = program_.Character->Speak(std::move(text), "");
    program_.Character->Play("RestPose");
    return true;
}

} // namespace voxmate
