// The settings in the options dialog: shown, checked and saved.
#include "base/Text.h"
#include "forms/frmOptions.h"
#include "modules/Program.h"

#include <algorithm>
#include <array>
#include <limits>
#include <string_view>

namespace voxmate
{

namespace
{

// One date in each of the formats 1 to 6.
constexpr std::array dateSamples{"31-DECEMBER-25", "31-DECEMBER-2025", "31-DECEMBER",
                                 "DECEMBER-31-25", "DECEMBER-31-2025", "DECEMBER-31"};

/// The field's text as far as it comes back at the next start; the field then shows that.
std::string KeptText(TextBox& box)
{
    const std::string& text = box.Text.get();
    if (text.size() > LongestRegString)
        box.Text = text.substr(0, WholeUtf8(std::string_view(text).substr(0, LongestRegString)));
    return box.Text;
}

std::int16_t Ticked(const CheckBox& box)
{
    return static_cast<std::int16_t>(box.Value.get());
}

std::int16_t Chosen(const ComboBox& box)
{
    return static_cast<std::int16_t>(box.ListIndex.get());
}

std::int16_t Chosen(const OptionGroup& group)
{
    return static_cast<std::int16_t>(group.Selected());
}

} // namespace

std::int16_t frmOptions::NumberIn(const TextBox& box)
{
    constexpr std::int32_t most = std::numeric_limits<std::int16_t>::max();
    std::int32_t number = 0;
    for (const char c : Trim(box.Text.get())) {
        if (c < '0' || c > '9')
            break;
        number = std::min(number * 10 + (c - '0'), most);
    }
    return static_cast<std::int16_t>(number);
}

// The field's number; the field then shows it, whatever was pasted into it.
std::int16_t frmOptions::KeptNumber(TextBox& box)
{
    const std::int16_t number = NumberIn(box);
    box.Text = std::to_string(number);
    return number;
}

void frmOptions::FillLists()
{
    const auto fill = [](ComboBox& box, auto entries) {
        box.Clear();
        for (const char* entry : entries)
            box.AddItem(entry);
    };
    fill(comCharSize, std::array{"Small", "Normal", "Big"});
    fill(comDateFMT, dateSamples);
    fill(comRemType, std::array{"Alert Window", "Normal Window"});
}

void frmOptions::ShowSettings()
{
    const SettingsRecord& settings = program_.Settings;
    txtCharPath.Text = settings.CharacterPath;
    comCharSize.ListIndex = settings.CharacterSize;
    chkSoundEffects.Value = settings.EnableSoundEffects;
    chkBalloon.Value = settings.ShowBalloon;
    lblFont.Caption = settings.BalloonFontName;
    lblFont.Font = {settings.BalloonFontName, static_cast<double>(settings.BalloonFontSize)};
    chkSizeToText.Value = settings.SizeBallonToText;
    chkAutoHide.Value = settings.BalloonAutoHide;
    chkAutoPace.Value = settings.BalloonAutoPace;
    txtTotalLines.Text = std::to_string(settings.BalloonTotalLines);
    txtCharPerLine.Text = std::to_string(settings.BalloonCharactersPerLine);

    txtTimeInterval.Text = std::to_string(settings.SpeakTimeInterval);
    chk24Time.Value = settings.TimeIn24Hour;
    comDateFMT.ListIndex = settings.DateFormat - 1;
    chkReadOnLeftClick.Value = settings.ReadTextBoxTextAtLeftClick;
    txtUserName.Text = settings.UserName;
    chkMyName.Value = settings.ReadNameWithMessages;
    chkMsgRead.Value = settings.ReadMessages;

    // Each of these may change those before it: the greeting counts last.
    chkShowStart.Value = settings.ShowCharacterAtStart;
    chkIntroAtStart.Value = settings.IntroAtStart;
    chkGreeting.Value = settings.GreetingEnabled;
    OptGreet.Select(settings.GreetingType);
    txtGreeting.Text = settings.OtherGreeting;
    chkCloseInTray.Value = settings.CloseToTray;

    comRemType.ListIndex = settings.ReminderType;
    chkOnTop.Value = settings.ReminderOnTop;
    chkSpkSentence.Value = settings.ReminderSentenceSpeak;
    txtRemText.Text = settings.ReminderSentence;
    chkSpkTitle.Value = settings.ReminderTitleSpeak;
    chkSpkDate.Value = settings.ReminderDateSpeak;
    chkSpkTime.Value = settings.ReminderTimeSpeak;
    chkSpkDesc.Value = settings.ReminderDescSpeak;
    chkSpkSnooze.Value = settings.ReminderNextSchSpeak;
    optAction.Select(settings.RemAlertAction);
    optGradiantType.Select(settings.RemAlertGradient);
    optShape.Select(settings.RemAlertShape);
    optColor.Select(settings.RemAlertColor);
    optColor_Click(settings.RemAlertColor);
    chkAutoClose.Value = settings.RemAlertClose;
    txtAutoClose.Text = std::to_string(settings.RemAlertCloseTime);
}

void frmOptions::SaveNumber(const char* name, std::int16_t SettingsRecord::*field, std::int16_t value)
{
    program_.Registry.WriteRegDword(SettingsKey, name, value);
    program_.Settings.*field = value;
}

void frmOptions::SaveText(const char* name, std::string SettingsRecord::*field, const std::string& value)
{
    program_.Registry.WriteRegString(SettingsKey, name, value);
    program_.Settings.*field = value;
}

void frmOptions::SaveOptions()
{
    using S = SettingsRecord;
    SaveText("BalloonFontName", &S::BalloonFontName, lblFont.Font.get().Name);
    SaveNumber("BalloonFontSize", &S::BalloonFontSize, ToInt16(RoundHalfEven(lblFont.Font.get().Size)));
    SaveCharacterPath();
    SaveNumber("CharacterSize", &S::CharacterSize, Chosen(comCharSize));
    SaveNumber("CloseToTray", &S::CloseToTray, Ticked(chkCloseInTray));
    SaveNumber("DateFormat", &S::DateFormat, ToInt16(Chosen(comDateFMT) + 1));
    SaveNumber("EnableSoundEffects", &S::EnableSoundEffects, Ticked(chkSoundEffects));
    SaveNumber("GreetingType", &S::GreetingType, Chosen(OptGreet));
    SaveNumber("GreetingEnabled", &S::GreetingEnabled, Ticked(chkGreeting));
    SaveNumber("IntroAtStart", &S::IntroAtStart, Ticked(chkIntroAtStart));
    SaveText("OtherGreeting", &S::OtherGreeting, KeptText(txtGreeting));
    SaveNumber("ReadMessages", &S::ReadMessages, Ticked(chkMsgRead));
    SaveNumber("ReadNameWithMessages", &S::ReadNameWithMessages, Ticked(chkMyName));
    SaveNumber("ReadTextBoxTextAtLeftClick", &S::ReadTextBoxTextAtLeftClick, Ticked(chkReadOnLeftClick));
    SaveNumber("ShowBalloon", &S::ShowBalloon, Ticked(chkBalloon));
    SaveNumber("SizeBallonToText", &S::SizeBallonToText, Ticked(chkSizeToText));
    SaveNumber("BalloonAutoHide", &S::BalloonAutoHide, Ticked(chkAutoHide));
    SaveNumber("BalloonAutoPace", &S::BalloonAutoPace, Ticked(chkAutoPace));
    SaveNumber("BalloonCharactersPerLine", &S::BalloonCharactersPerLine, KeptNumber(txtCharPerLine));
    SaveNumber("BalloonTotalLines", &S::BalloonTotalLines, KeptNumber(txtTotalLines));
    SaveNumber("ShowCharacterAtStart", &S::ShowCharacterAtStart, Ticked(chkShowStart));
    SaveNumber("TimeIn24Hour", &S::TimeIn24Hour, Ticked(chk24Time));
    SaveText("UserName", &S::UserName, KeptText(txtUserName));
    SaveNumber("SpeakTimeInterval", &S::SpeakTimeInterval, KeptNumber(txtTimeInterval));
    SaveNumber("ReminderOnTop", &S::ReminderOnTop, Ticked(chkOnTop));
    SaveNumber("ReminderSentenceSpeak", &S::ReminderSentenceSpeak, Ticked(chkSpkSentence));
    SaveText("ReminderSentence", &S::ReminderSentence, KeptText(txtRemText));
    SaveNumber("ReminderTitleSpeak", &S::ReminderTitleSpeak, Ticked(chkSpkTitle));
    SaveNumber("ReminderDateSpeak", &S::ReminderDateSpeak, Ticked(chkSpkDate));
    SaveNumber("ReminderTimeSpeak", &S::ReminderTimeSpeak, Ticked(chkSpkTime));
    SaveNumber("ReminderDescSpeak", &S::ReminderDescSpeak, Ticked(chkSpkDesc));
    SaveNumber("ReminderNextSchSpeak", &S::ReminderNextSchSpeak, Ticked(chkSpkSnooze));
    SaveNumber("ReminderType", &S::ReminderType, Chosen(comRemType));
    SaveNumber("RemAlertAction", &S::RemAlertAction, Chosen(optAction));
    SaveNumber("RemAlertGradient", &S::RemAlertGradient, Chosen(optGradiantType));
    SaveNumber("RemAlertShape", &S::RemAlertShape, Chosen(optShape));
    SaveNumber("RemAlertColor", &S::RemAlertColor, Chosen(optColor));
    SaveNumber("RemAlertClose", &S::RemAlertClose, Ticked(chkAutoClose));
    SaveNumber("RemAlertCloseTime", &S::RemAlertCloseTime, KeptNumber(txtAutoClose));
}

// The box then shows the folder that is in use, which need not be the one that was asked for.
void frmOptions::SaveCharacterPath()
{
    std::string path = Trim(txtCharPath.Text.get());
    if (!path.ends_with(program_.PathSeparator()))
        path += program_.PathSeparator();
    if (path.size() > LongestRegString) {
        const std::string lines[] = {"The path of the following folder is too long to be kept:", path,
                                     "CharacterPath setting will not take effect."};
        program_.Host.Windows.MsgBox(JoinLines(lines), vbExclamation, "Voxmate - Path Error");
    } else {
        program_.Characters.ChangeCharacterPath(path);
    }
    SaveText("CharacterPath", &SettingsRecord::CharacterPath, std::string(program_.Settings.CharacterPath));
    txtCharPath.Text = program_.Settings.CharacterPath;
}

void frmOptions::Complain(const char* message, int tab, TextBox& box)
{
    program_.Messages.Announce(message, vbExclamation, "Voxmate - Options in Error", "Confused");
    SSTab1.Tab = tab;
    box.SetFocus();
}

bool frmOptions::Valid()
{
    const auto outside = [](const TextBox& box, int least, int most) {
        return Trim(box.Text.get()).empty() || NumberIn(box) < least || NumberIn(box) > most;
    };
    if (outside(txtCharPerLine, 8, 255)) {
        Complain("No. of characters per line must be between 8 and 255", CharacterTab, txtCharPerLine);
        return false;
    }
    if (outside(txtTotalLines, 1, 128)) {
        Complain("Total number of lines must be between 1 and 128", CharacterTab, txtTotalLines);
        return false;
    }
    if (txtAutoClose.Text.get().empty())
        txtAutoClose.Text = "0";
    if (outside(txtAutoClose, 4, 20)) {
        Complain("Auto close time should be between 4 and 20.", RemindersTab, txtAutoClose);
        return false;
    }
    if (txtTimeInterval.Text.get().empty())
        txtTimeInterval.Text = "0";
    if (txtUserName.Text.get().empty())
        txtUserName.Text = "Buddy";
    return true;
}

} // namespace voxmate
