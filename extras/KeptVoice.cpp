#include "extras/KeptVoice.h"

#include "base/RuntimeError.h"

#include <algorithm>
#include <functional>

namespace voxmate
{

namespace
{

constexpr const char* Missing = "voice.missing"; // the name of the voice that was chosen
constexpr const char* Instead = "voice.instead"; // and of the one that was taken in its place

// Whether the voice is on the list. A list that cannot be had is told of in its turn.
bool IsThere(SpeechControl& speech, const std::string& name)
{
    try {
        const int count = speech.CountEngines();
        for (int i = 1; i <= count; ++i)
            if (speech.ModeName(i) == name)
                return true;
    } catch (const RuntimeError&) {
        return false;
    }
    return false;
}

} // namespace

KeptVoice::KeptVoice(Program& program, frmMain& main, StateStore& state) : program_(program), state_(state)
{
    program_.SettingsLoaded = [this] { BringBack(); };
    main.comSpEng.Click = [this, own = Event(main.comSpEng.Click)] {
        own();
        // The list is also filled by the start, which chooses for the user.
        if (!program_.StartedUp)
            return;
        chosen_ = true;
        Set("", "");
    };
}

void KeptVoice::BringBack()
{
    const std::string missing = state_.Get(Missing);
    if (missing.empty())
        return;
    std::string& chosen = program_.Settings.LastSpeechEngine;
    const std::string instead = chosen;
    if (instead != state_.Get(Instead))
        return Set("", "");
    // A list that is too long for all voices always has the chosen one.
    chosen = missing;
    if (IsThere(program_.Host.Speech, missing)) {
        SaveSetting(program_, &SettingsRecord::LastSpeechEngine, missing);
        Set("", "");
    } else {
        chosen = instead;
    }
}

void KeptVoice::Remember()
{
    const std::string& name = program_.Settings.LastSpeechEngine;
    const auto& names = program_.Voice.EngineNames;
    if (chosen_ || name.empty() || std::find(names.begin(), names.end(), name) != names.end())
        return;
    const std::string missing = state_.Get(Missing);
    Set(missing.empty() ? name : missing, names[1]);
}

void KeptVoice::Set(const std::string& missing, const std::string& instead)
{
    if (state_.Get(Missing) != missing)
        state_.Set(Missing, missing);
    if (state_.Get(Instead) != instead)
        state_.Set(Instead, instead);
}

} // namespace voxmate
