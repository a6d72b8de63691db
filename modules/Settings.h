// The settings: one record, filled once from the registry, and the catalogue of names, ranges and defaults.
#pragma once

#include <cstdint>
#include <span>
#include <string>
#include <variant>

namespace voxmate
{

class Program;

/// The registry key that holds all settings.
inline constexpr const char* SettingsKey = "HKEY_LOCAL_MACHINE\\SOFTWARE\\Voxmate";

/// Values of GreetingType.
enum GreetingTypes : std::int16_t { GreetTime, GreetDate, GreetOther, GreetDateAndTime, GreetDateTimeAndOther };

/// Values of ReminderType.
enum ReminderTypes : std::int16_t { RemindInAlert, RemindInNotice };

/// Values of RemAlertAction, RemAlertShape and RemAlertGradient.
enum AlertActions : std::int16_t { AlertSlides, AlertFades };
enum AlertShapes : std::int16_t { AlertIsSquare, AlertIsRound };
enum AlertGradients : std::int16_t { CornerGradient, TubeGradient };

/// One field a setting, named as its registry value. Switches hold 0 or 1 and are on only when equal to 1.
struct SettingsRecord {
    std::string BalloonFontName;
    std::int16_t BalloonFontSize = 0;
    std::string CharacterPath;
    std::int16_t CharacterSize = 0;
    std::int16_t CloseToTray = 0;
    std::int16_t DateFormat = 0;
    std::int16_t GreetingEnabled = 0;
    std::int16_t GreetingType = 0;
    std::int16_t IntroAtStart = 0;
    std::string LastCharacter;
    std::string OtherGreeting;
    std::int16_t Pitch = 0;
    std::int16_t ReadMessages = 0;
    std::int16_t ReadNameWithMessages = 0;
    std::int16_t ReadTextBoxTextAtLeftClick = 0;
    std::int16_t ShowBalloon = 0;
    std::int16_t ShowCharacterAtStart = 0;
    std::int16_t SizeBallonToText = 0;
    std::int16_t Speed = 0;
    std::int16_t TimeIn24Hour = 0;
    std::string UserName;
    std::string LastSpeechEngine;
    std::int16_t Whisper = 0; ///< on only when it holds True (-1); the registry keeps 0 or 1
    std::int16_t EnableSoundEffects = 0;
    std::int16_t SpeakTimeInterval = 0;
    std::int16_t BalloonAutoHide = 0;
    std::int16_t BalloonAutoPace = 0;
    std::int16_t BalloonCharactersPerLine = 0;
    std::int16_t BalloonTotalLines = 0;
    std::int16_t ShowTipAtStartUp = 0;
    std::int16_t AutoReadTip = 0;
    std::int16_t ReminderOnTop = 0;
    std::int16_t ReminderSentenceSpeak = 0;
    std::string ReminderSentence;
    std::int16_t ReminderTitleSpeak = 0;
    std::int16_t ReminderDateSpeak = 0;
    std::int16_t ReminderTimeSpeak = 0;
    std::int16_t ReminderDescSpeak = 0;
    std::int16_t ReminderNextSchSpeak = 0;
    std::int16_t ReminderType = 0;
    std::int16_t RemAlertAction = 0;
    std::int16_t RemAlertGradient = 0;
    std::int16_t RemAlertShape = 0;
    std::int16_t RemAlertColor = 0;
    std::int16_t RemAlertClose = 0;
    std::int16_t RemAlertCloseTime = 0;

    /// Display name and CR LF of each setting found missing or invalid, in catalogue order.
    std::string SettingsErrorList;
};

using NumberField = std::int16_t SettingsRecord::*;
using TextField = std::string SettingsRecord::*;
using SettingField = std::variant<NumberField, TextField>;

/// One row of the catalogue. When a value is missing or invalid its default is written to the registry, except for a
/// text without a default.
struct SettingRow {
    const char* name;
    const char* displayName;
    SettingField field;
    std::int16_t min = 0; ///< integer settings only, as are the next two
    std::int16_t max = 0;
    std::int16_t defaultNumber = 0;
    const char* defaultText = ""; ///< text settings only
};

/// All settings in the order in which they are read.
std::span<const SettingRow> SettingsCatalogue();
/// The row of a field. Every field has one but SettingsErrorList, which is no setting.
const SettingRow& SettingRowOf(SettingField field);

/// Reads an integer setting. A value that is missing or outside min..max is replaced by the default, which is written
/// back, and displayName is added to SettingsErrorList unless it is empty.
std::int16_t ReadIntSetting(Program& program, const std::string& valueName, const std::string& displayName,
                            std::int32_t min, std::int32_t max, std::int16_t defaultValue);

/// Writes a value to the registry and puts it into the program's settings.
void SaveSetting(Program& program, NumberField field, std::int16_t value);
void SaveSetting(Program& program, TextField field, const std::string& value);

/// Fills the program's settings and SettingsErrorList from the registry.
void LoadSettings(Program& program);

/// Shows and speaks the "Options in Error" report when SettingsErrorList is not empty, then empties it.
void ReportSettingsInError(Program& program);

} // namespace voxmate
