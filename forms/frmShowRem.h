// The notice window: announces one reminder, which the user marks as done or puts off.
#pragma once

#include "modules/Windows.h"
#include "platform/Platform.h"

namespace voxmate
{

class Program;

class frmShowRem : public Form, public NoticeWindow
{
public:
    explicit frmShowRem(Program& program);

    TextBox txtSnooze{this, "txtSnooze"};
    CommandButton cmdSnooze{this, "cmdSnooze", "Snooze"};
    CommandButton cmdOK{this, "cmdOK", "OK"};
    TextBox txtDesc{this, "txtDesc"};
    Label Label7{this, "Label7", "min(s)"};
    Label Label1{this, "Label1"};
    Label lblId{this, "lblId"};
    Label Label5{this, "Label5", "Id:"};
    Label lblDate{this, "lblDate", "Date"};
    Label Label4{this, "Label4", "Date:"};
    Label lblTitle{this, "lblTitle", "Title"};
    Label Label6{this, "Label6", "Description:"};
    Label lblTime{this, "lblTime", "Time"};
    Label Label3{this, "Label3", "Title:"};
    Label Label2{this, "Label2", "Time:"};
    Label lblHeading{this, "lblHeading", "Heading"};

    // NoticeWindow.
    bool Visible() const override { return IsShown(); }
    void ShowNotice(const NoticeText& text) override;

protected:
    void Form_Load() override;

private:
    Program& program_;
    bool working_ = false; ///< a command runs
    std::int16_t id_ = 0;  ///< of the reminder that is shown
    int shows_ = 0;        ///< how often a reminder was shown

    void Arrange();
    void txtSnooze_KeyPress(int& keyAscii);
    void cmdOK_Click();
    void cmdSnooze_Click();
    void Finish(bool snooze, std::int16_t minutes);
};

} // namespace voxmate
