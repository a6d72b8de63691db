#include "forms/frmTip.h"

#include "modules/Program.h"

#include <utility>

namespace voxmate
{

frmTip::frmTip(Program& program) : Form(program.Host.Windows, "frmTip"), program_(program)
{
    Caption = "Tip of the Day";
    cmdOK.IsDefault = true;
    cmdOK.IsCancel = true;
    Label1.Font = {{}, 14, true};
    lblTipText.Font = {{}, 11};
    Layout tip = Column({Item(Label1), Item(lblTipText).Min(360, 100).Stretch(1)});
    Arrangement = Column({
        Framed(Picture1, Row({Column({Item(imgTip), Space()}), std::move(tip).Stretch(1)}).Spacing(14))
            .Min(470, 170)
            .Stretch(1),
        Row({Item(chkLoadTipsAtStartup), Item(chkAutoRead), Space()}),
        Row({Item(cmdNextTip), Item(cmdReadTip), Space(), Item(cmdOK)}),
    });
    chkAutoRead.Click = [this] { chkAutoRead_Click(); };
    chkLoadTipsAtStartup.Click = [this] { chkLoadTipsAtStartup_Click(); };
    cmdReadTip.Click = [this] { cmdReadTip_Click(); };
    cmdNextTip.Click = [this] { cmdNextTip_Click(); };
    cmdOK.Click = [this] { cmdOK_Click(); };
}

void frmTip::Form_Load()
{
    // What a file without any tip leaves standing.
    lblTipText.Caption = "There is no tip for today.";
}

void frmTip::SetChecks(int showAtStartUp, int autoRead)
{
    chkLoadTipsAtStartup.Value = showAtStartUp;
    chkAutoRead.Value = autoRead;
}

void frmTip::DisplayCurrentTip()
{
    if (!program_.Tips.All.empty())
        lblTipText.Caption = program_.Tips.All.at(static_cast<std::size_t>(program_.Tips.CurrentTip) - 1);
}

void frmTip::chkAutoRead_Click()
{
    program_.Registry.WriteRegDword(SettingsKey, "AutoReadTip", chkAutoRead.Value);
    program_.Settings.AutoReadTip = static_cast<std::int16_t>(chkAutoRead.Value.get());
}

void frmTip::chkLoadTipsAtStartup_Click()
{
    program_.Registry.WriteRegDword(SettingsKey, "ShowTipAtStartUp", chkLoadTipsAtStartup.Value);
    program_.Settings.ShowTipAtStartUp = static_cast<std::int16_t>(chkLoadTipsAtStartup.Value.get());
}

void frmTip::cmdReadTip_Click()
{
    program_.Tips.ReadTipAloud();
}

void frmTip::cmdNextTip_Click()
{
    program_.Tips.PickRandomTip();
    if (program_.Settings.AutoReadTip == 1)
        program_.Tips.ReadTipAloud();
}

void frmTip::cmdOK_Click()
{
    Unload();
}

} // namespace voxmate
