#include "forms/frmOptions.h"

#include "base/Text.h"
#include "forms/Command.h"
#include "modules/BrowseFolder.h"
#include "modules/Declarations.h"
#include "modules/Functions.h"
#include "modules/Messages.h"
#include "modules/Registry.h"

#include <algorithm>
#include <array>
#include <limits>
#include <string_view>

namespace voxmate
{

namespace
{

constexpr int characterTab = 0;
constexpr int remindersTab = 3;

constexpr const char* animate = "Animate";
constexpr const char* stop = "Stop";

/// Number of a preview, which is no reminder's.
constexpr std::int16_t previewId = 9999;

// Entries of comRemType.
constexpr int alertWindow = 0;

constexpr std::int32_t Rgb(int red, int green, int blue)
{
    return red | green << 8 | blue << 16;
}
// In the order of optColor: Yellow, Blue, Red, Green.
constexpr std::array<std::int32_t, 4> alertColors{Rgb(255, 255, 192), Rgb(160, 195, 255), Rgb(255, 200, 200),
                                                  Rgb(200, 255, 200)};

// One date in each of the formats 1 to 6.
constexpr std::array dateSamples{"31-DECEMBER-25", "31-DECEMBER-2025", "31-DECEMBER",
                                 "DECEMBER-31-25", "DECEMBER-31-2025", "DECEMBER-31"};

/// The number at the beginning of a field; 0 where it has no digits.
std::int16_t NumberIn(const TextBox& box)
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

/// The field's number; the field then shows it, whatever was pasted into it.
std::int16_t KeptNumber(TextBox& box)
{
    const std::int16_t number = NumberIn(box);
    box.Text = std::to_string(number);
    return number;
}

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

// A disabled field is greyed.
void EnableBox(TextBox& box, bool enabled)
{
    box.Enabled = enabled;
    box.BackColor = enabled ? vbWindowBackground : vbButtonFace;
}

void SaveNumber(const char* name, std::int16_t SettingsRecord::*field, std::int16_t value)
{
    WriteRegDword(SettingsKey, name, value);
    Settings.*field = value;
}

void SaveText(const char* name, std::string SettingsRecord::*field, const std::string& value)
{
    WriteRegString(SettingsKey, name, value);
    Settings.*field = value;
}

} // namespace

frmOptions::~frmOptions()
{
    AnimateEnded = nullptr;
    AnimationNamesChanged = nullptr;
}

frmOptions::frmOptions(Platform& platform) : Form(platform.Windows, "frmOptions"), platform_(platform)
{
    Caption = "Voxmate Options";
    FontName = "Tahoma";
    cmdOK.IsDefault = true;
    cmdCancel.IsCancel = true;
    txtCharPerLine.MaxLength = 2;
    txtTotalLines.MaxLength = 2;
    txtAutoClose.MaxLength = 2;
    txtTimeInterval.MaxLength = 3;
    for (TextBox* box : {&txtUserName, &txtGreeting, &txtRemText})
        box->MaxLength = LongestRegString;
    NameControls();
    Arrange();
    ConnectHandlers();
}

void frmOptions::Form_Load()
{
    FillLists();
    FillAnimations();
    cmdAnimate.Caption = animate;
    AnimationNamesChanged = [this] { FillAnimations(); };
    ShowSettings();
    chkBalloon_Click();
    EnableGreeting(chkGreeting.Value == 1);
    chkSpkSentence_Click();
    comRemType_Click();
    cmdApply.Enabled = false;
    SSTab1.Tab = characterTab;
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

void frmOptions::FillAnimations()
{
    constexpr std::size_t most = 1000;
    comAnimation.Clear();
    for (std::size_t i = 0; i < most && !AnimationNames.at(i).empty(); ++i)
        comAnimation.AddItem(AnimationNames.at(i));
    if (!comAnimation.Items().empty())
        comAnimation.ListIndex = 0;
}

void frmOptions::ShowSettings()
{
    txtCharPath.Text = Settings.CharacterPath;
    comCharSize.ListIndex = Settings.CharacterSize;
    chkSoundEffects.Value = Settings.EnableSoundEffects;
    chkBalloon.Value = Settings.ShowBalloon;
    lblFont.Caption = Settings.BalloonFontName;
    lblFont.Font = {Settings.BalloonFontName, static_cast<double>(Settings.BalloonFontSize)};
    chkSizeToText.Value = Settings.SizeBallonToText;
    chkAutoHide.Value = Settings.BalloonAutoHide;
    chkAutoPace.Value = Settings.BalloonAutoPace;
    txtTotalLines.Text = std::to_string(Settings.BalloonTotalLines);
    txtCharPerLine.Text = std::to_string(Settings.BalloonCharactersPerLine);

    txtTimeInterval.Text = std::to_string(Settings.SpeakTimeInterval);
    chk24Time.Value = Settings.TimeIn24Hour;
    comDateFMT.ListIndex = Settings.DateFormat - 1;
    chkReadOnLeftClick.Value = Settings.ReadTextBoxTextAtLeftClick;
    txtUserName.Text = Settings.UserName;
    chkMyName.Value = Settings.ReadNameWithMessages;
    chkMsgRead.Value = Settings.ReadMessages;

    // Each of these may change those before it: the greeting counts last.
    chkShowStart.Value = Settings.ShowCharacterAtStart;
    chkIntroAtStart.Value = Settings.IntroAtStart;
    chkGreeting.Value = Settings.GreetingEnabled;
    OptGreet.Select(Settings.GreetingType);
    txtGreeting.Text = Settings.OtherGreeting;
    chkCloseInTray.Value = Settings.CloseToTray;

    comRemType.ListIndex = Settings.ReminderType;
    chkOnTop.Value = Settings.ReminderOnTop;
    chkSpkSentence.Value = Settings.ReminderSentenceSpeak;
    txtRemText.Text = Settings.ReminderSentence;
    chkSpkTitle.Value = Settings.ReminderTitleSpeak;
    chkSpkDate.Value = Settings.ReminderDateSpeak;
    chkSpkTime.Value = Settings.ReminderTimeSpeak;
    chkSpkDesc.Value = Settings.ReminderDescSpeak;
    chkSpkSnooze.Value = Settings.ReminderNextSchSpeak;
    optAction.Select(Settings.RemAlertAction);
    optGradiantType.Select(Settings.RemAlertGradient);
    optShape.Select(Settings.RemAlertShape);
    optColor.Select(Settings.RemAlertColor);
    optColor_Click(Settings.RemAlertColor);
    chkAutoClose.Value = Settings.RemAlertClose;
    txtAutoClose.Text = std::to_string(Settings.RemAlertCloseTime);
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
    if (!path.ends_with(PathSeparator()))
        path += PathSeparator();
    if (path.size() > LongestRegString) {
        const std::string lines[] = {"The path of the following folder is too long to be kept:", path,
                                     "CharacterPath setting will not take effect."};
        platform_.Windows.MsgBox(JoinLines(lines), vbExclamation, "Voxmate - Path Error");
    } else {
        ChangeCharacterPath(path);
    }
    SaveText("CharacterPath", &SettingsRecord::CharacterPath, std::string(Settings.CharacterPath));
    txtCharPath.Text = Settings.CharacterPath;
}

void frmOptions::Complain(const char* message, int tab, TextBox& box)
{
    Announce(message, vbExclamation, "Voxmate - Options in Error", "Confused");
    SSTab1.Tab = tab;
    box.SetFocus();
}

bool frmOptions::Valid()
{
    const auto outside = [](const TextBox& box, int least, int most) {
        return Trim(box.Text.get()).empty() || NumberIn(box) < least || NumberIn(box) > most;
    };
    if (outside(txtCharPerLine, 8, 255)) {
        Complain("No. of characters per line must be between 8 and 255", characterTab, txtCharPerLine);
        return false;
    }
    if (outside(txtTotalLines, 1, 128)) {
        Complain("Total number of lines must be between 1 and 128", characterTab, txtTotalLines);
        return false;
    }
    if (txtAutoClose.Text.get().empty())
        txtAutoClose.Text = "0";
    if (outside(txtAutoClose, 4, 20)) {
        Complain("Auto close time should be between 4 and 20.", remindersTab, txtAutoClose);
        return false;
    }
    if (txtTimeInterval.Text.get().empty())
        txtTimeInterval.Text = "0";
    if (txtUserName.Text.get().empty())
        txtUserName.Text = "Buddy";
    return true;
}

void frmOptions::cmdApply_Click()
{
    // A complaint lets pending events run: a second press must not come in between.
    const Command command(applying_);
    if (!command.Begun() || !Valid())
        return;
    SaveOptions();
    if (Character)
        ApplyCharacterSettings();
    // Where Apply was pressed it gives the keyboard away: to what Enter stands for, not to Default beside it.
    cmdOK.SetFocus();
    cmdApply.Enabled = false;
    Play("DoMagic2");
}

void frmOptions::cmdOK_Click()
{
    if (applying_)
        return;
    if (cmdApply.Enabled)
        cmdApply_Click();
    Unload();
}

void frmOptions::cmdCancel_Click()
{
    if (!applying_)
        Unload();
}

void frmOptions::Form_QueryUnload(bool& cancel)
{
    cancel = applying_;
}

void frmOptions::Form_Unload()
{
    if (cmdAnimate.Caption.get() == stop && Character)
        Character->StopAll("Play");
    AnimateEnded = nullptr;
    AnimationNamesChanged = nullptr;
}

void frmOptions::cmdDefault_Click()
{
    comCharSize.ListIndex = 1;
    chkSoundEffects.Value = 0;
    chkBalloon.Value = 1;
    chkSizeToText.Value = 0;
    chk24Time.Value = 1;
    lblFont.Font = {"MS Sans Serif", 10};
    lblFont.Caption = "MS Sans Serif";
    chkMsgRead.Value = 1;
    chkMyName.Value = 1;
    chkReadOnLeftClick.Value = 1;
    chkShowStart.Value = 1;
    chkIntroAtStart.Value = 1;
    chkCloseInTray.Value = 1;
    comDateFMT.ListIndex = 1;
    chkGreeting.Value = 0;
    OptGreet.Select(3);
    chkAutoPace.Value = 1;
    chkAutoHide.Value = 1;
    txtCharPerLine.Text = "32";
    txtTotalLines.Text = "2";
    txtTimeInterval.Text = "5";
    for (CheckBox* box :
         {&chkOnTop, &chkSpkSentence, &chkSpkTitle, &chkSpkDate, &chkSpkTime, &chkSpkDesc, &chkSpkSnooze})
        box->Value = 1;
    comRemType.ListIndex = alertWindow;
    optAction.Select(0);
    optGradiantType.Select(1);
    optShape.Select(1);
    optColor.Select(3);
    chkAutoClose.Value = 0;
    txtAutoClose.Text = "4";
    comRemType_Click();
}

void frmOptions::cmdBrowse_Click()
{
    std::string folder = BrowseForFolder("Select Characters' Location :");
    if (folder.empty())
        return;
    // A root has its separator already.
    if (!folder.ends_with(PathSeparator()))
        folder += PathSeparator();
    txtCharPath.Text = folder;
}

void frmOptions::cmdAnimate_Click()
{
    if (cmdAnimate.Caption.get() == animate) {
        if (!Character || comAnimation.ListIndex < 0)
            return;
        cmdAnimate.Caption = stop;
        // Nothing here watches for the end: the main window, which the character tells of it, runs this.
        AnimateEnded = [this] { cmdAnimate.Caption = animate; };
        AnimateRequest = Character->Play(comAnimation.Items().at(static_cast<std::size_t>(comAnimation.ListIndex)));
        CurrentRequest = AnimateRequest;
    } else {
        cmdAnimate.Caption = animate;
        if (Character)
            Character->StopAll("Play");
    }
}

void frmOptions::cmdFont_Click()
{
    // The sizes that a setting may have when it is read back.
    constexpr int least = 4;
    constexpr int most = 72;
    FontSpec font = lblFont.Font;
    if (!platform_.Windows.ShowFont(font, least, most))
        return;
    lblFont.Font = font;
    lblFont.Caption = font.Name;
    cmdApply.Enabled = true;
}

void frmOptions::cmdPreview_Click()
{
    std::erase_if(previews_, [](const auto& window) { return !window->Visible(); });
    if (txtAutoClose.Text.get().empty())
        txtAutoClose.Text = "4";
    const bool closes = chkAutoClose.Value == 1;
    const std::string message =
        (closes ? "Test reminder window to be closed in " + txtAutoClose.Text.get() + "  second(s)."
                : "Test reminder window.") +
        CrLf;
    previews_.push_back(Main().NewAlertWindow());
    previews_.back()->DisplayMessage(message, previewId, true, closes ? NumberIn(txtAutoClose) : 0, optAction(1).Value,
                                     true, optShape(0).Value, SelectedAlertColor, optGradiantType(1).Value);
}

void frmOptions::Play(const std::string& animation)
{
    try {
        if (Character)
            Character->Play(animation);
    } catch (const RuntimeError&) {
        // Not every character can do everything.
    }
}

void frmOptions::chkBalloon_Click()
{
    const bool enabled = chkBalloon.Value == 1;
    Frame2.Enabled = enabled;
    cmdFont.Enabled = enabled;
    chkSizeToText.Enabled = enabled;
    chkAutoPace.Enabled = enabled;
    chkAutoHide.Enabled = enabled;
    EnableBox(txtCharPerLine, enabled);
    EnableBox(txtTotalLines, enabled && chkSizeToText.Value == 0);
    cmdApply.Enabled = true;
}

void frmOptions::chkSizeToText_Click()
{
    EnableBox(txtTotalLines, chkSizeToText.Value == 0);
    cmdApply.Enabled = true;
}

void frmOptions::EnableGreeting(bool enabled)
{
    Frame1.Enabled = enabled;
    OptGreet.Enable(enabled);
    EnableBox(txtGreeting, enabled);
}

void frmOptions::chkGreeting_Click()
{
    if (chkGreeting.Value == 1) {
        chkShowStart.Value = 1;
        chkIntroAtStart.Value = 0;
    }
    EnableGreeting(chkGreeting.Value == 1);
    cmdApply.Enabled = true;
}

void frmOptions::chkIntroAtStart_Click()
{
    if (chkIntroAtStart.Value == 1) {
        chkShowStart.Value = 1;
        chkGreeting.Value = 0;
        EnableGreeting(false);
    }
    cmdApply.Enabled = true;
}

void frmOptions::chkShowStart_Click()
{
    if (chkShowStart.Value == 0) {
        chkIntroAtStart.Value = 0;
        chkGreeting.Value = 0;
        EnableGreeting(false);
    }
    cmdApply.Enabled = true;
}

void frmOptions::chkSpkSentence_Click()
{
    EnableBox(txtRemText, chkSpkSentence.Value == 1);
    cmdApply.Enabled = true;
}

void frmOptions::chkAutoClose_Click()
{
    EnableBox(txtAutoClose, chkAutoClose.Value == 1);
    cmdApply.Enabled = true;
}

void frmOptions::comRemType_Click()
{
    const bool alert = comRemType.ListIndex == alertWindow;
    for (Frame* frame : {&fraAction, &fraGrad, &fraShape, &fraColorOption})
        frame->Enabled = alert;
    for (OptionGroup* group : {&optAction, &optGradiantType, &optShape, &optColor})
        group->Enable(alert);
    chkAutoClose.Enabled = alert;
    EnableBox(txtAutoClose, alert && chkAutoClose.Value == 1);
    cmdPreview.Enabled = alert;
    chkOnTop.Enabled = !alert;
    cmdApply.Enabled = true;
}

void frmOptions::optColor_Click(int index)
{
    SelectedAlertColor = alertColors.at(static_cast<std::size_t>(index));
    cmdApply.Enabled = true;
}

void frmOptions::ConnectHandlers()
{
    cmdOK.Click = [this] { cmdOK_Click(); };
    cmdCancel.Click = [this] { cmdCancel_Click(); };
    cmdApply.Click = [this] { cmdApply_Click(); };
    cmdDefault.Click = [this] { cmdDefault_Click(); };
    cmdBrowse.Click = [this] { cmdBrowse_Click(); };
    cmdAnimate.Click = [this] { cmdAnimate_Click(); };
    cmdFont.Click = [this] { cmdFont_Click(); };
    cmdPreview.Click = [this] { cmdPreview_Click(); };
    chkBalloon.Click = [this] { chkBalloon_Click(); };
    chkSizeToText.Click = [this] { chkSizeToText_Click(); };
    chkGreeting.Click = [this] { chkGreeting_Click(); };
    chkIntroAtStart.Click = [this] { chkIntroAtStart_Click(); };
    chkShowStart.Click = [this] { chkShowStart_Click(); };
    chkSpkSentence.Click = [this] { chkSpkSentence_Click(); };
    chkAutoClose.Click = [this] { chkAutoClose_Click(); };
    comRemType.Click = [this] { comRemType_Click(); };
    optColor.Click = [this](int index) { optColor_Click(index); };

    // What only tells that something was changed.
    const Event changed = [this] { cmdApply.Enabled = true; };
    for (CheckBox* box :
         {&chk24Time, &chkAutoHide, &chkAutoPace, &chkCloseInTray, &chkMsgRead, &chkMyName, &chkOnTop,
          &chkReadOnLeftClick, &chkSoundEffects, &chkSpkDate, &chkSpkDesc, &chkSpkSnooze, &chkSpkTime, &chkSpkTitle})
        box->Click = changed;
    for (ComboBox* box : {&comCharSize, &comDateFMT})
        box->Click = changed;
    for (OptionGroup* group : {&optAction, &optGradiantType, &OptGreet, &optShape})
        group->Click = [this](int) { cmdApply.Enabled = true; };
    for (TextBox* box : {&txtAutoClose, &txtCharPath, &txtCharPerLine, &txtGreeting, &txtRemText, &txtTimeInterval,
                         &txtTotalLines, &txtUserName})
        box->Change = changed;

    for (TextBox* box : {&txtAutoClose, &txtCharPerLine, &txtTimeInterval, &txtTotalLines}) {
        box->KeyPress = [](int& keyAscii) {
            constexpr int backspace = 8;
            constexpr int enter = 13;
            if ((keyAscii < '0' || keyAscii > '9') && keyAscii != backspace && keyAscii != enter)
                keyAscii = 0;
        };
    }
}

} // namespace voxmate
