#include "modules/Settings.h"

#include "base/Text.h"
#include "modules/Program.h"

#include <string_view>

namespace voxmate
{

namespace
{

using S = SettingsRecord;

SettingRow Number(const char* name, const char* displayName, std::int16_t S::*field, std::int16_t min, std::int16_t max,
                  std::int16_t defaultValue)
{
    return {name, displayName, field, min, max, defaultValue};
}

SettingRow Switch(const char* name, const char* displayName, std::int16_t S::*field, std::int16_t defaultValue)
{
    return Number(name, displayName, field, 0, 1, defaultValue);
}

SettingRow TextRow(const char* name, const char* displayName, std::string S::*field, const char* defaultText,
                   bool writeBack)
{
    return {name, displayName, field, 0, 0, 0, defaultText, writeBack};
}

// "SizeBallonToText" is the value's name in the registry; its display name and that of ReadTextBoxTextAtLeftClick
// repeat another row's, as users have always seen them.
const SettingRow catalogue[] = {
    TextRow("BalloonFontName", "Balloon Font Name", &S::BalloonFontName, "MS Sans Serif", true),
    Number("BalloonFontSize", "Balloon Font Size", &S::BalloonFontSize, 4, 72, 10),
    TextRow("CharacterPath", "Character Path", &S::CharacterPath, "", false),
    Number("CharacterSize", "Character Size", &S::CharacterSize, 0, 2, 1),
    Switch("CloseToTray", "Put in System Tray on Close", &S::CloseToTray, 0),
    Number("DateFormat", "System Date Format", &S::DateFormat, 1, 6, 2),
    Switch("GreetingEnabled", "Enable Greeting", &S::GreetingEnabled, 1),
    Number("GreetingType", "Greeting Type", &S::GreetingType, 0, 4, 3),
    Switch("IntroAtStart", "Character Introduction At Start Up", &S::IntroAtStart, 0),
    TextRow("LastCharacter", "Last Loaded Character", &S::LastCharacter, "", false),
    TextRow("OtherGreeting", "Other Greeting String", &S::OtherGreeting, "Welcome to Voxmate", true),
    Number("Pitch", "Pitch", &S::Pitch, 40, 400, 50),
    Switch("ReadMessages", "Read Messages While Showing", &S::ReadMessages, 1),
    Switch("ReadNameWithMessages", "Read Name With Messages", &S::ReadNameWithMessages, 1),
    Switch("ReadTextBoxTextAtLeftClick", "Read Name With Messages", &S::ReadTextBoxTextAtLeftClick, 1),
    Switch("ShowBalloon", "Show Balloon", &S::ShowBalloon, 1),
    Switch("ShowCharacterAtStart", "Show Character At Start Up", &S::ShowCharacterAtStart, 1),
    Switch("SizeBallonToText", "Show Character At Start Up", &S::SizeBallonToText, 0),
    Number("Speed", "Speed", &S::Speed, 40, 400, 156),
    Switch("TimeIn24Hour", "Speak System Time in 24 hour format", &S::TimeIn24Hour, 0),
    TextRow("UserName", "Your Name", &S::UserName, "Buddy", true),
    TextRow("LastSpeechEngine", "Voice Type Last Used", &S::LastSpeechEngine, "", false),
    Switch("Whisper", "Whisper", &S::Whisper, 0),
    Switch("EnableSoundEffects", "Enable Sound Effects", &S::EnableSoundEffects, 1),
    Number("SpeakTimeInterval", "Speak Time Every x Minute(s)", &S::SpeakTimeInterval, 0, 999, 5),
    Switch("BalloonAutoHide", "Balloon Auto Hide", &S::BalloonAutoHide, 1),
    Switch("BalloonAutoPace", "Balloon Auto Pace", &S::BalloonAutoPace, 1),
    Number("BalloonCharactersPerLine", "Balloon Characters per Line", &S::BalloonCharactersPerLine, 10, 99, 32),
    Number("BalloonTotalLines", "Balloon Total Number of Lines", &S::BalloonTotalLines, 1, 16, 2),
    Switch("ShowTipAtStartUp", "Show Tip at Startup", &S::ShowTipAtStartUp, 1),
    Switch("AutoReadTip", "Auto Read Tip at Startup", &S::AutoReadTip, 1),
    Switch("ReminderOnTop", "Show Reminder on Top", &S::ReminderOnTop, 1),
    Switch("ReminderSentenceSpeak", "Speak Alert for Reminder ", &S::ReminderSentenceSpeak, 1),
    TextRow("ReminderSentence", "Reminder Alert Sentence", &S::ReminderSentence, "You have a reminder", true),
    Switch("ReminderTitleSpeak", "Speak Reminder Title", &S::ReminderTitleSpeak, 1),
    Switch("ReminderDateSpeak", "Speak Reminder Date", &S::ReminderDateSpeak, 1),
    Switch("ReminderTimeSpeak", "Speak Reminder Time", &S::ReminderTimeSpeak, 1),
    Switch("ReminderDescSpeak", "Speak Reminder Description", &S::ReminderDescSpeak, 1),
    Switch("ReminderNextSchSpeak", "Speak Next Reminder Schedule if Snoozed", &S::ReminderNextSchSpeak, 1),
    Switch("ReminderType", "Reminder Type", &S::ReminderType, 0),
    Switch("RemAlertAction", "Alert Reminder Action", &S::RemAlertAction, 0),
    Switch("RemAlertGradient", "Alert Reminder Gradient", &S::RemAlertGradient, 1),
    Switch("RemAlertShape", "Alert Reminder Shape", &S::RemAlertShape, 1),
    Number("RemAlertColor", "Alert Reminder Color", &S::RemAlertColor, 0, 3, 3),
    Switch("RemAlertClose", "Alert Reminder Auto Close", &S::RemAlertClose, 0),
    Number("RemAlertCloseTime", "Alert Reminder Auto Close Time", &S::RemAlertCloseTime, 4, 20, 4),
};

void ReadTextSetting(Program& program, const SettingRow& row, std::string& field)
{
    program.Registry.RegFailed = False;
    const Variant value = program.Registry.ReadRegString(SettingsKey, row.name);
    if (program.Registry.RegFailed == False && std::holds_alternative<std::string>(value)) {
        field = Trim(std::get<std::string>(value));
    } else {
        program.Settings.SettingsErrorList += std::string(row.displayName) + CrLf;
        const bool isPath = std::string_view(row.name) == "CharacterPath";
        field = isPath ? program.ProgramPath("Character") + program.PathSeparator() : row.defaultText;
        if (row.writeBack)
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

void LoadSettings(Program& program)
{
    program.Registry.RegFailed = False;
    for (const SettingRow& row : catalogue) {
        if (const auto* number = std::get_if<std::int16_t S::*>(&row.field)) {
            program.Settings.*(*number) =
                ReadIntSetting(program, row.name, row.displayName, row.min, row.max, row.defaultNumber);
            if (*number == &S::BalloonTotalLines)
                ReconcileStartUpSwitches(program.Settings);
        } else {
            const auto text = std::get<std::string S::*>(row.field);
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
