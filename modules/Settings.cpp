#include "modules/Settings.h"

#include "base/Text.h"
#include "modules/Program.h"

#include <algorithm>

namespace voxmate
{

namespace
{

using S = SettingsRecord;

SettingRow Text(const char* name, const char* displayName, TextField field, const char* defaultText)
{
    return {name, displayName, field, 0, 0, 0, defaultText};
}

// "SizeBallonToText" is the value's name in the registry; its display name and that of ReadTextBoxTextAtLeftClick
// repeat another row's, as users have always seen them.
const SettingRow catalogue[] = {
    Text("BalloonFontName", "Balloon Font Name", &S::BalloonFontName, "MS Sans Serif"),
    {"BalloonFontSize", "Balloon Font Size", &S::BalloonFontSize, 4, 72, 10},
    Text("CharacterPath", "Character Path", &S::CharacterPath, ""),
    {"CharacterSize", "Character Size", &S::CharacterSize, 0, 2, 1},
    {"CloseToTray", "Put in System Tray on Close", &S::CloseToTray, 0, 1, 0},
    {"DateFormat", "System Date Format", &S::DateFormat, 1, 6, 2},
    {"GreetingEnabled", "Enable Greeting", &S::GreetingEnabled, 0, 1, 1},
    {"GreetingType", "Greeting Type", &S::GreetingType, GreetTime, GreetDateTimeAndOther, GreetDateAndTime},
    {"IntroAtStart", "Character Introduction At Start Up", &S::IntroAtStart, 0, 1, 0},
    Text("LastCharacter", "Last Loaded Character", &S::LastCharacter, ""),
    Text("OtherGreeting", "Other Greeting String", &S::OtherGreeting, "Welcome to Voxmate"),
    {"Pitch", "Pitch", &S::Pitch, 40, 400, 50},
    {"ReadMessages", "Read Messages While Showing", &S::ReadMessages, 0, 1, 1},
    {"ReadNameWithMessages", "Read Name With Messages", &S::ReadNameWithMessages, 0, 1, 1},
    {"ReadTextBoxTextAtLeftClick", "Read Name With Messages", &S::ReadTextBoxTextAtLeftClick, 0, 1, 1},
    {"ShowBalloon", "Show Balloon", &S::ShowBalloon, 0, 1, 1},
    {"ShowCharacterAtStart", "Show Character At Start Up", &S::ShowCharacterAtStart, 0, 1, 1},
    {"SizeBallonToText", "Show Character At Start Up", &S::SizeBallonToText, 0, 1, 0},
    {"Speed", "Speed", &S::Speed, 40, 400, 156},
    {"TimeIn24Hour", "Speak System Time in 24 hour format", &S::TimeIn24Hour, 0, 1, 0},
    Text("UserName", "Your Name", &S::UserName, "Buddy"),
    Text("LastSpeechEngine", "Voice Type Last Used", &S::LastSpeechEngine, ""),
    {"Whisper", "Whisper", &S::Whisper, 0, 1, 0},
    {"EnableSoundEffects", "Enable Sound Effects", &S::EnableSoundEffects, 0, 1, 1},
    {"SpeakTimeInterval", "Speak Time Every x Minute(s)", &S::SpeakTimeInterval, 0, 999, 5},
    {"BalloonAutoHide", "Balloon Auto Hide", &S::BalloonAutoHide, 0, 1, 1},
    {"BalloonAutoPace", "Balloon Auto Pace", &S::BalloonAutoPace, 0, 1, 1},
    {"BalloonCharactersPerLine", "Balloon Characters per Line", &S::BalloonCharactersPerLine, 10, 99, 32},
    {"BalloonTotalLines", "Balloon Total Number of Lines", &S::BalloonTotalLines, 1, 16, 2},
    {"ShowTipAtStartUp", "Show Tip at Startup", &S::ShowTipAtStartUp, 0, 1, 1},
    {"AutoReadTip", "Auto Read Tip at Startup", &S::AutoReadTip, 0, 1, 1},
    {"ReminderOnTop", "Show Reminder on Top", &S::ReminderOnTop, 0, 1, 1},
    {"ReminderSentenceSpeak", "Speak Alert for Reminder ", &S::ReminderSentenceSpeak, 0, 1, 1},
    Text("ReminderSentence", "Reminder Alert Sentence", &S::ReminderSentence, "You have a reminder"),
    {"ReminderTitleSpeak", "Speak Reminder Title", &S::ReminderTitleSpeak, 0, 1, 1},
    {"ReminderDateSpeak", "Speak Reminder Date", &S::ReminderDateSpeak, 0, 1, 1},
    {"ReminderTimeSpeak", "Speak Reminder Time", &S::ReminderTimeSpeak, 0, 1, 1},
    {"ReminderDescSpeak", "Speak Reminder Description", &S::ReminderDescSpeak, 0, 1, 1},
    {"ReminderNextSchSpeak", "Speak Next Reminder Schedule if Snoozed", &S::ReminderNextSchSpeak, 0, 1, 1},
    {"ReminderType", "Reminder Type", &S::ReminderType, RemindInAlert, RemindInNotice, RemindInAlert},
    {"RemAlertAction", "Alert Reminder Action", &S::RemAlertAction, AlertSlides, AlertFades, AlertSlides},
    {"RemAlertGradient", "Alert Reminder Gradient", &S::RemAlertGradient, CornerGradient, TubeGradient, TubeGradient},
    {"RemAlertShape", "Alert Reminder Shape", &S::RemAlertShape, AlertIsSquare, AlertIsRound, AlertIsRound},
    {"RemAlertColor", "Alert Reminder Color", &S::RemAlertColor, 0, 3, 3},
    {"RemAlertClose", "Alert Reminder Auto Close", &S::RemAlertClose, 0, 1, 0},
    {"RemAlertCloseTime", "Alert Reminder Auto Close Time", &S::RemAlertCloseTime, 4, 20, 4},
};

void ReadTextSetting(Program& program, const SettingRow& row, std::string& field)
{
    const Variant value = program.Registry.ReadRegString(SettingsKey, row.name);
    if (program.Registry.RegFailed == False && std::holds_alternative<std::string>(value)) {
        field = Trim(std::get<std::string>(value));
    } else {
        program.Settings.SettingsErrorList += std::string(row.displayName) + CrLf;
        field = &field == &program.Settings.CharacterPath ? program.ProgramPath("Character") : row.defaultText;
        if (*row.defaultText != '\0')
            program.Registry.WriteRegString(SettingsKey, row.name, row.defaultText);
    }
    program.Registry.RegFailed = False;
}

// Either start-up switch forces the character to be shown; with both on the greeting wins. In memory only.
void ReconcileStartUpSwitches(SettingsRecord& settings)
{
    if (settings.GreetingEnabled == 1) {
        settings.IntroAtStart = 0;
        settings.ShowCharacterAtStart = 1;
    }
    if (settings.IntroAtStart == 1) {
        settings.GreetingEnabled = 0;
        settings.ShowCharacterAtStart = 1;
    }
}

} // namespace

std::span<const SettingRow> SettingsCatalogue()
{
    return catalogue;
}

const SettingRow& SettingRowOf(SettingField field)
{
    return *std::ranges::find(catalogue, field, &SettingRow::field);
}

std::int16_t ReadIntSetting(Program& program, const std::string& valueName, const std::string& displayName,
                            std::int32_t min, std::int32_t max, std::int16_t defaultValue)
{
    program.Registry.RegFailed = False;
    const Variant value = program.Registry.ReadRegDword(SettingsKey, valueName);
    if (program.Registry.RegFailed == False && std::holds_alternative<std::int32_t>(value)) {
        const std::int32_t number = std::get<std::int32_t>(value);
        if (min <= number && number <= max)
            return ToInt16(number);
    }
    if (!displayName.empty())
        program.Settings.SettingsErrorList += displayName + CrLf;
    program.Registry.WriteRegDword(SettingsKey, valueName, defaultValue);
    program.Registry.RegFailed = False;
    return defaultValue;
}

void SaveSetting(Program& program, NumberField field, std::int16_t value)
{
    program.Registry.WriteRegDword(SettingsKey, SettingRowOf(field).name, value);
    program.Settings.*field = value;
}

void SaveSetting(Program& program, TextField field, const std::string& value)
{
    program.Registry.WriteRegString(SettingsKey, SettingRowOf(field).name, value);
    program.Settings.*field = value;
}

void LoadSettings(Program& program)
{
    for (const SettingRow& row : catalogue) {
        if (const auto* number = std::get_if<NumberField>(&row.field)) {
            program.Settings.*(*number) =
                ReadIntSetting(program, row.name, row.displayName, row.min, row.max, row.defaultNumber);
            if (*number == &S::BalloonTotalLines)
                ReconcileStartUpSwitches(program.Settings);
        } else {
            const auto text = std::get<TextField>(row.field);
            ReadTextSetting(program, row, program.Settings.*text);
            if (text == &S::CharacterPath && !program.Settings.CharacterPath.ends_with(program.PathSeparator()))
                program.Settings.CharacterPath += program.PathSeparator();
        }
    }
}

void ReportSettingsInError(Program& program)
{
    if (!program.Settings.SettingsErrorList.empty()) {
        const std::string text =
            std::string("Following option(s) not found (or inavlid values found) in your system registry:") + CrLf +
            CrLf + program.Settings.SettingsErrorList + CrLf + "Default value(s) will be used for all these option(s)";
        program.Messages.Announce(text, vbExclamation, "Voxmate - Options in Error", "GetAttention",
                                  "GetAttentionContinued", "GetAttentionReturn", "Suggest");
    }
    program.Settings.SettingsErrorList.clear();
}

} // namespace voxmate
