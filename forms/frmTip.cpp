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
    chkAutoRead.Click = [this] { SaveSetting(program_, &SettingsRecord::AutoReadTip, ToInt16(chkAutoRead.Value)); };
    chkLoadTipsAtStartup.Click = [this] {
        SaveSetting(program_, &SettingsRecord::ShowTipAtStartUp, ToInt16(chkLoadTipsAtStartup.Value));
    };
    cmdReadTip.Click = [this] { program_.Tips.ReadTipAloud(); };
    cmdNextTip.Click = [this] { cmdNextTip_Click(); };
    cmdOK.Click = [this] { Unload(); };
}

void frmTip::Form_Load()
{
    // Stays if the file holds no tip.
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
        lblTipText.Caption = std::string(program_.Tips.All.at(static_cast<std::size_t>(program_.Tips.CurrentTip) - 1));
}

void frmTip::cmdNextTip_Click()
{
    program_.Tips.PickRandomTip();
    if (program_.Settings.AutoReadTip == 1)
        program_.Tips.ReadTipAloud();
}

} // namespace voxmate
