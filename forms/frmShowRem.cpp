#include "forms/frmShowRem.h"

#include "base/Text.h"
#include "forms/Digits.h"
#include "modules/Command.h"
#include "modules/Program.h"

namespace voxmate
{

namespace
{

constexpr const char* SnoozeText = "10";
constexpr std::size_t SnoozeLength = 3;

} // namespace

frmShowRem::frmShowRem(Program& program) : Form(program.Host.Windows, "frmShowRem"), program_(program)
{
    Caption = "Voxmate Reminder";
    FontName = "Tahoma";
    // The window comes by itself and must not take the keyboard from where the user is typing.
    ShowActivated = false;
    lblHeading.Font = FontSpec{"Comic Sans MS", 16, true};
    for (Label* value : {&lblId, &lblTitle, &lblDate, &lblTime})
        value->Font = FontSpec{"Tahoma", 0, true};
    Label6.Buddy = &txtDesc;
    Label7.Buddy = &txtSnooze;
    Label6.AccessKey = 'd';
    Label7.AccessKey = 'm';
    cmdSnooze.AccessKey = 's';
    cmdOK.AccessKey = 'o';
    txtSnooze.AccessibleName = "Snooze minutes";
    txtSnooze.MaxLength = SnoozeLength;
    txtDesc.MultiLine = true;
    Arrange();

    txtSnooze.KeyPress = [this](int& keyAscii) { txtSnooze_KeyPress(keyAscii); };
    cmdOK.Click = [this] { cmdOK_Click(); };
    cmdSnooze.Click = [this] { cmdSnooze_Click(); };
}

void frmShowRem::Arrange()
{
    constexpr int tight = 4;
    Arrangement = Column({
        Item(lblHeading),
        Grid(2, {Item(Label5).Min(68, 0), Item(lblId).Stretch(1), Item(Label3), Item(lblTitle), Item(Label4),
                 Item(lblDate), Item(Label2), Item(lblTime)})
            .Spacing(tight),
        Column({Item(Label6), Item(txtDesc).Stretch(1).Min(400, 104)}).Spacing(tight),
        Row({Item(txtSnooze), Item(Label7), Item(cmdSnooze), Item(Label1), Space(), Item(cmdOK)}),
    });
}

// A window that is shown again after it was unloaded starts afresh.
void frmShowRem::Form_Load()
{
    txtSnooze.Text = SnoozeText;
    txtDesc.Text = "";
}

void frmShowRem::ShowNotice(const NoticeText& text)
{
    Load();
    ++shows_;
    lblHeading.Caption = text.Heading;
    id_ = text.Id;
    lblId.Caption = std::to_string(id_);
    lblTitle.Caption = text.Title;
    lblDate.Caption = text.Date;
    lblTime.Caption = text.Time;
    txtDesc.Text = text.Description;
    txtDesc.Locked = true;
    // The setting does the opposite of what its name says; users are used to that.
    const std::int32_t insertAfter = program_.Settings.ReminderOnTop == 1 ? HWND_NOTOPMOST : HWND_TOPMOST;
    program_.Host.Windows.SetWindowPos(hWnd(), insertAfter, 0, 0, 0, 0, SWP_NOMOVE | SWP_NOSIZE);
    Show();
}

void frmShowRem::txtSnooze_KeyPress(int& keyAscii)
{
    KeepDigits(keyAscii);
    // Enter after a number of minutes means Snooze, not OK.
    if (keyAscii == KeyEnter)
        cmdSnooze_Click();
}

void frmShowRem::cmdOK_Click()
{
    const Command command(working_);
    if (!command.Begun())
        return;
    Finish(false, 0);
}

void frmShowRem::cmdSnooze_Click()
{
    const Command command(working_);
    if (!command.Begun())
        return;
    txtSnooze.Text = Trim(txtSnooze.Text.get());
    if (!IsWholeNumber(txtSnooze.Text, false)) {
        program_.Reminders.ReminderMessage("Snooze time should be greater than zero.", vbOKOnly + vbExclamation);
        txtSnooze.SetFocus();
        return;
    }
    // The field takes three digits at most.
    Finish(true, ToInt16(WholeNumber(txtSnooze.Text.get()).value_or(0)));
}

// Events run while the answer is saved and spoken. The user may close the window meanwhile, and it may show another
// reminder by then.
void frmShowRem::Finish(bool snooze, std::int16_t minutes)
{
    const int shown = shows_;
    program_.Scheduler.FinishReminder(id_, snooze, minutes);
    if (shown == shows_)
        Unload();
}

} // namespace voxmate
