#include "forms/frmOptions.h"

#include "base/Text.h"
#include "modules/BrowseFolder.h"
#include "modules/Command.h"
#include "modules/Program.h"

#include <array>

namespace voxmate
{

namespace
{

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

// A disabled field is greyed.
void EnableBox(TextBox& box, bool enabled)
{
    box.Enabled = enabled;
    box.BackColor = enabled ? vbWindowBackground : vbButtonFace;
}

} // namespace

frmOptions::~frmOptions()
{
    program_.Characters.AnimateEnded = nullptr;
    program_.Characters.AnimationNamesChanged = nullptr;
}

frmOptions::frmOptions(Program& program) : Form(program.Host.Windows, "frmOptions"), program_(program)
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
    program_.Characters.AnimationNamesChanged = [this] { FillAnimations(); };
    ShowSettings();
    chkBalloon_Click();
    EnableGreeting(chkGreeting.Value == 1);
    chkSpkSentence_Click();
    comRemType_Click();
    cmdApply.Enabled = false;
    SSTab1.Tab = CharacterTab;
}

void frmOptions::FillAnimations()
{
    constexpr std::size_t most = 1000;
    comAnimation.Clear();
    for (std::size_t i = 0; i < most && !program_.Characters.AnimationNames.at(i).empty(); ++i)
        comAnimation.AddItem(program_.Characters.AnimationNames.at(i));
    if (!comAnimation.Items().empty())
        comAnimation.ListIndex = 0;
}

void frmOptions::cmdApply_Click()
{
    // A complaint lets pending events run: a second press must not come in between.
    const Command command(applying_);
    if (!command.Begun() || !Valid())
        return;
    SaveOptions();
    if (program_.Character)
        program_.Characters.ApplyCharacterSettings();
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
    if (cmdAnimate.Caption.get() == stop && program_.Character)
        program_.Character->StopAll("Play");
    program_.Characters.AnimateEnded = nullptr;
    program_.Characters.AnimationNamesChanged = nullptr;
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
    std::string folder =
        BrowseForFolder(program_.Host.Windows, "Select Characters' Location :", program_.Settings.CharacterPath);
    if (folder.empty())
        return;
    // A root has its separator already.
    if (!folder.ends_with(program_.PathSeparator()))
        folder += program_.PathSeparator();
    txtCharPath.Text = folder;
}

void frmOptions::cmdAnimate_Click()
{
    if (cmdAnimate.Caption.get() == animate) {
        if (!program_.Character || comAnimation.ListIndex < 0)
            return;
        cmdAnimate.Caption = stop;
        // Nothing here watches for the end: the main window, which the character tells of it, runs this.
        program_.Characters.AnimateEnded = [this] { cmdAnimate.Caption = animate; };
        program_.Characters.AnimateRequest =
            program_.Character->Play(comAnimation.Items().at(static_cast<std::size_t>(comAnimation.ListIndex)));
        program_.Reading.CurrentRequest = program_.Characters.AnimateRequest;
    } else {
        cmdAnimate.Caption = animate;
        if (program_.Character)
            program_.Character->StopAll("Play");
    }
}

void frmOptions::cmdFont_Click()
{
    // The sizes that a setting may have when it is read back.
    constexpr int least = 4;
    constexpr int most = 72;
    FontSpec font = lblFont.Font;
    if (!program_.Host.Windows.ShowFont(font, least, most))
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
    previews_.push_back(program_.Main->NewAlertWindow());
    previews_.back()->DisplayMessage(message, previewId, true, closes ? NumberIn(txtAutoClose) : 0, optAction(1).Value,
                                     true, optShape(0).Value, SelectedAlertColor, optGradiantType(1).Value);
}

void frmOptions::Play(const std::string& animation)
{
    try {
        if (program_.Character)
            program_.Character->Play(animation);
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
