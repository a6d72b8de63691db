// The settings in the options dialog: shown, checked and saved.
#include "base/Text.h"
#include "forms/Digits.h"
#include "forms/frmOptions.h"
#include "modules/Program.h"

#include <algorithm>
#include <array>
#include <limits>
#include <optional>
#include <string_view>
#include <type_traits>
#include <variant>

namespace voxmate
{

namespace
{

// One date in each of the formats 1 to 6.
constexpr std::array dateSamples{"31-DECEMBER-25", "31-DECEMBER-2025", "31-DECEMBER",
                                 "DECEMBER-31-25", "DECEMBER-31-2025", "DECEMBER-31"};

/// Cuts the field's text to the length that can be read back at the next start, and returns it.
std::string KeptText(TextBox& box)
{
    const std::string& text = box.Text.get();
    if (text.size() > LongestRegString)
        box.Text = text.substr(0, WholeUtf8(std::string_view(text).substr(0, LongestRegString)));
    return box.Text;
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

/// The first entry of a list stands for the smallest value of its setting.
struct frmOptions::Option {
    SettingField field;
    std::variant<CheckBox*, ComboBox*, OptionGroup*, TextBox*> control;
    std::optional<int> reset = {}; ///< what Default sets a number to, if not to the default of the catalogue

    const SettingRow& Row() const { return SettingRowOf(field); }
    bool IsText() const { return std::holds_alternative<TextField>(field); }
    TextBox& Box() const { return *std::get<TextBox*>(control); }

    void Show(int number) const
    {
        std::visit([&](auto* shownBy) { Put(*shownBy, number); }, control);
    }
    int Number() const
    {
        return std::visit([&](const auto* shownBy) { return NumberOf(*shownBy); }, control);
    }

private:
    void Put(CheckBox& box, int number) const { box.Value = number; }
    void Put(ComboBox& list, int number) const { list.ListIndex = number - Row().min; }
    void Put(OptionGroup& group, int number) const { group.Select(number); }
    void Put(TextBox& box, int number) const { box.Text = std::to_string(number); }
    int NumberOf(const CheckBox& box) const { return box.Value; }
    int NumberOf(const ComboBox& list) const { return list.ListIndex + Row().min; }
    int NumberOf(const OptionGroup& group) const { return group.Selected(); }
    int NumberOf(const TextBox& box) const { return NumberIn(box); }
};

// In the order of saving. SaveOptions saves the font and the characters' folder before these, in ways of their own.
std::vector<frmOptions::Option> frmOptions::Options()
{
    using S = SettingsRecord;
    return {
        {&S::CharacterSize, &comCharSize},
        {&S::CloseToTray, &chkCloseInTray, 1},
        {&S::DateFormat, &comDateFMT},
        {&S::EnableSoundEffects, &chkSoundEffects, 0},
        {&S::GreetingType, &OptGreet},
        {&S::GreetingEnabled, &chkGreeting, 0},
        {&S::IntroAtStart, &chkIntroAtStart, 1},
        {&S::OtherGreeting, &txtGreeting},
        {&S::ReadMessages, &chkMsgRead},
        {&S::ReadNameWithMessages, &chkMyName},
        {&S::ReadTextBoxTextAtLeftClick, &chkReadOnLeftClick},
        {&S::ShowBalloon, &chkBalloon},
        {&S::SizeBallonToText, &chkSizeToText},
        {&S::BalloonAutoHide, &chkAutoHide},
        {&S::BalloonAutoPace, &chkAutoPace},
        {&S::BalloonCharactersPerLine, &txtCharPerLine},
        {&S::BalloonTotalLines, &txtTotalLines},
        {&S::ShowCharacterAtStart, &chkShowStart},
        {&S::TimeIn24Hour, &chk24Time, 1},
        {&S::UserName, &txtUserName},
        {&S::SpeakTimeInterval, &txtTimeInterval},
        {&S::ReminderOnTop, &chkOnTop},
        {&S::ReminderSentenceSpeak, &chkSpkSentence},
        {&S::ReminderSentence, &txtRemText},
        {&S::ReminderTitleSpeak, &chkSpkTitle},
        {&S::ReminderDateSpeak, &chkSpkDate},
        {&S::ReminderTimeSpeak, &chkSpkTime},
        {&S::ReminderDescSpeak, &chkSpkDesc},
        {&S::ReminderNextSchSpeak, &chkSpkSnooze},
        {&S::ReminderType, &comRemType},
        {&S::RemAlertAction, &optAction},
        {&S::RemAlertGradient, &optGradiantType},
        {&S::RemAlertShape, &optShape},
        {&S::RemAlertColor, &optColor},
        {&S::RemAlertClose, &chkAutoClose},
        {&S::RemAlertCloseTime, &txtAutoClose},
    };
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

// Makes every change enable Apply, after what the control's own handler does; ConnectHandlers must have run before.
void frmOptions::ConnectOptions()
{
    const auto mark = [this](auto& event) {
        event = [this, own = event](auto... index) {
            if (own)
                own(index...);
            cmdApply.Enabled = true;
        };
    };
    for (const Option& option : Options()) {
        const auto connect = [&](auto* control) {
            if constexpr (std::is_same_v<decltype(control), TextBox*>) {
                mark(control->Change);
                control->MaxLength = option.IsText() ? LongestRegString : std::to_string(option.Row().max).size();
                if (!option.IsText())
                    control->KeyPress = [](int& keyAscii) { KeepDigits(keyAscii); };
            } else {
                mark(control->Click);
            }
        };
        std::visit(connect, option.control);
    }
}

void frmOptions::ShowFont(const FontSpec& font)
{
    lblFont.Font = font;
    lblFont.Caption = font.Name;
}

void frmOptions::ShowSettings()
{
    const SettingsRecord& settings = program_.Settings;
    ShowFont({settings.BalloonFontName, static_cast<double>(settings.BalloonFontSize)});
    txtCharPath.Text = settings.CharacterPath;
    const std::vector<Option> options = Options();
    // From the last to the first: the three start-up switches change each other, and the greeting has to be set last.
    for (auto option = options.rbegin(); option != options.rend(); ++option) {
        if (option->IsText())
            option->Box().Text = settings.*std::get<TextField>(option->field);
        else
            option->Show(settings.*std::get<NumberField>(option->field));
    }
}

// The text fields keep what they hold.
void frmOptions::cmdDefault_Click()
{
    ShowFont({SettingRowOf(&SettingsRecord::BalloonFontName).defaultText,
              static_cast<double>(SettingRowOf(&SettingsRecord::BalloonFontSize).defaultNumber)});
    for (const Option& option : Options()) {
        if (!option.IsText())
            option.Show(option.reset.value_or(option.Row().defaultNumber));
    }
    comRemType_Click();
    cmdApply.Enabled = true;
}

// Afterwards each field shows what was saved: the number alone, even if more was pasted in, or the part of the text
// that can be read back at the next start.
void frmOptions::SaveOptions()
{
    SaveSetting(program_, &SettingsRecord::BalloonFontName, lblFont.Font.get().Name);
    SaveSetting(program_, &SettingsRecord::BalloonFontSize, ToInt16(RoundHalfEven(lblFont.Font.get().Size)));
    SaveCharacterPath();
    for (const Option& option : Options()) {
        if (option.IsText()) {
            SaveSetting(program_, std::get<TextField>(option.field), KeptText(option.Box()));
        } else {
            const int number = option.Number();
            option.Show(number);
            SaveSetting(program_, std::get<NumberField>(option.field), ToInt16(number));
        }
    }
}

// Afterwards the box shows the folder that is in use, which may not be the one that was entered.
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
    SaveSetting(program_, &SettingsRecord::CharacterPath, program_.Settings.CharacterPath);
    txtCharPath.Text = program_.Settings.CharacterPath;
}

bool frmOptions::Valid()
{
    const auto within = [this](TextBox& box, int least, int most, int tab, const char* complaint) {
        if (!Trim(box.Text.get()).empty() && NumberIn(box) >= least && NumberIn(box) <= most)
            return true;
        program_.Messages.Announce(complaint, vbExclamation, "Voxmate - Options in Error", "Confused");
        SSTab1.Tab = tab;
        box.SetFocus();
        return false;
    };
    const auto fill = [](TextBox& box, const char* text) {
        if (box.Text.get().empty())
            box.Text = text;
    };
    // The ranges for characters and lines are wider than those in the catalogue; what lies between is replaced by the
    // default at the next start.
    if (!within(txtCharPerLine, 8, 255, CharacterTab, "No. of characters per line must be between 8 and 255") ||
        !within(txtTotalLines, 1, 128, CharacterTab, "Total number of lines must be between 1 and 128"))
        return false;
    fill(txtAutoClose, "0");
    if (!within(txtAutoClose, 4, 20, RemindersTab, "Auto close time should be between 4 and 20."))
        return false;
    fill(txtTimeInterval, "0");
    fill(txtUserName, "Buddy");
    return true;
}

} // namespace voxmate
