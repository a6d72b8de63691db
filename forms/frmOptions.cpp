#include "forms/frmOptions.h"

#include "base/Text.h"
#include "modules/BrowseFolder.h"
#include "modules/Command.h"
#include "modules/Program.h"

namespace voxmate
{

namespace
{

constexpr const char* animate = "Animate";
constexpr const char* stop = "Stop";

/// The number of previews; it stands for no reminder.
constexpr std::int16_t previewId = 9999;

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
    NameControls();
    Arrange();
    ConnectHandlers();
    ConnectOptions();
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
    Raise(chkSpkSentence.Click);
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
    // Pending events run while Valid() reports a wrong number: a second press must not start another apply.
    const Command command(applying_);
    if (!command.Begun() || !Valid())
        return;
    SaveOptions();
    if (program_.Character)
        program_.Characters.ApplyCharacterSettings();
    // Once disabled, Apply loses the keyboard focus. It is to go to OK, which Enter presses, not to Default beside it.
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

void frmOptions::cmdBrowse_Click()
{
    std::string folder =
        BrowseForFolder(program_.Host.Windows, "Select Characters' Location :", program_.Settings.CharacterPath);
    if (folder.empty())
        return;
    // The path of a root directory ends in a separator already.
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
        // The character reports the end of the animation to the main window, which then calls this.
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
    // At the next start, any other size would be replaced by the default.
    const SettingRow& size = SettingRowOf(&SettingsRecord::BalloonFontSize);
    FontSpec font = lblFont.Font;
    if (!program_.Host.Windows.ShowFont(font, size.min, size.max))
        return;
    ShowFont(font);
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
    previews_.back()->DisplayMessage(message, previewId, true, closes ? NumberIn(txtAutoClose) : 0,
                                     optAction(AlertFades).Value, true, optShape(AlertIsSquare).Value,
                                     SelectedAlertColor, optGradiantType(TubeGradient).Value);
}

void frmOptions::Play(const std::string& animation)
{
    try {
        if (program_.Character)
            program_.Character->Play(animation);
    } catch (const RuntimeError&) {
        // A character need not have this animation.
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
}

void frmOptions::chkIntroAtStart_Click()
{
    if (chkIntroAtStart.Value == 1) {
        chkShowStart.Value = 1;
        chkGreeting.Value = 0;
    }
}

void frmOptions::chkShowStart_Click()
{
    if (chkShowStart.Value == 0) {
        chkIntroAtStart.Value = 0;
        chkGreeting.Value = 0;
    }
}

void frmOptions::comRemType_Click()
{
    const bool alert = comRemType.ListIndex == RemindInAlert;
    for (Frame* frame : {&fraAction, &fraGrad, &fraShape, &fraColorOption})
        frame->Enabled = alert;
    for (OptionGroup* group : {&optAction, &optGradiantType, &optShape, &optColor})
        group->Enable(alert);
    chkAutoClose.Enabled = alert;
    EnableBox(txtAutoClose, alert && chkAutoClose.Value == 1);
    cmdPreview.Enabled = alert;
    chkOnTop.Enabled = !alert;
}

void frmOptions::ConnectHandlers()
{
    cmdOK.Click = [this] { cmdOK_Click(); };
    cmdCancel.Click = [this] {
        if (!applying_)
            Unload();
    };
    cmdApply.Click = [this] { cmdApply_Click(); };
    cmdDefault.Click = [this] { cmdDefault_Click(); };
    cmdBrowse.Click = [this] { cmdBrowse_Click(); };
    cmdAnimate.Click = [this] { cmdAnimate_Click(); };
    cmdFont.Click = [this] { cmdFont_Click(); };
    cmdPreview.Click = [this] { cmdPreview_Click(); };
    chkBalloon.Click = [this] { chkBalloon_Click(); };
    chkSizeToText.Click = [this] { EnableBox(txtTotalLines, chkSizeToText.Value == 0); };
    chkGreeting.Click = [this] { chkGreeting_Click(); };
    chkIntroAtStart.Click = [this] { chkIntroAtStart_Click(); };
    chkShowStart.Click = [this] { chkShowStart_Click(); };
    chkSpkSentence.Click = [this] { EnableBox(txtRemText, chkSpkSentence.Value == 1); };
    chkAutoClose.Click = [this] { EnableBox(txtAutoClose, chkAutoClose.Value == 1); };
    comRemType.Click = [this] { comRemType_Click(); };
    optColor.Click = [this](int index) { SelectedAlertColor = AlertColors.at(static_cast<std::size_t>(index)); };
    txtCharPath.Change = [this] { cmdApply.Enabled = true; };
}

} // namespace voxmate
