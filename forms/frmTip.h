// The tip of the day.
#pragma once

#include "controls/Pictures.h"
#include "modules/Windows.h"
#include "platform/Platform.h"

#include <string>

namespace voxmate
{

class Program;

class frmTip : public Form, public TipWindow
{
public:
    explicit frmTip(Program& program);

    Pane Picture1{this, "Picture1"};
    Image imgTip{this, "imgTip", "voxmate", 44};
    Label Label1{this, "Label1", "Did you know..."};
    Label lblTipText{this, "lblTipText"};
    CommandButton cmdNextTip{this, "cmdNextTip", "&Next Tip"};
    CommandButton cmdReadTip{this, "cmdReadTip", "&Read Tip"};
    CheckBox chkLoadTipsAtStartup{this, "chkLoadTipsAtStartup", "&Show Tips at Startup"};
    CheckBox chkAutoRead{this, "chkAutoRead", "&Auto Read Tip"};
    CommandButton cmdOK{this, "cmdOK", "OK"};

    // TipWindow.
    void ShowTip() override { Show(); }
    void SetChecks(int showAtStartUp, int autoRead) override;
    void SetTipText(const std::string& text) override { lblTipText.Caption = text; }
    std::string TipText() const override { return lblTipText.Caption; }
    void DisplayCurrentTip() override;

protected:
    void Form_Load() override;

private:
    Program& program_;

    void cmdNextTip_Click();
};

} // namespace voxmate
