#include "extras/ReminderEntry.h"

#include "base/Text.h"
#include "extras/Arranging.h"
#include "extras/Moments.h"
#include "forms/Digits.h"
#include "modules/Command.h"

#include <string>
#include <utility>

namespace voxmate
{

ReminderEntry::ReminderEntry(Program& program, frmReminder& editor)
    : program_(program), editor_(editor), lblUnderstood_(&editor, "lblUnderstood")
{
    editor_.FirstFocus = &editor_.txtTitle;
    editor_.txtTitle.PlaceholderText = "for example: tea in 15 minutes";
    editor_.lstvReminders.PlaceholderText =
        "There are no reminders in the list. To add one, write its title, choose the day "
        "and the time, describe it, and press Add.";
    Arrange();

    editor_.FieldsSet = [this] { FieldsSet(); };
    editor_.txtTitle.Edited = [this] { TitleEdited(); };
    editor_.txtTime.Edited = editor_.mvDate.Edited = [this] { MomentEdited(); };
    editor_.cmdAdd.Click = [this, add = editor_.cmdAdd.Click] { Add(add); };
    editor_.txtTitle.KeyPress = [this](int& keyAscii) {
        if (keyAscii == KeyEnter && std::holds_alternative<QuickReminder>(read_))
            editor_.cmdAdd.UserClick();
    };
}

void ReminderEntry::Arrange()
{
    lblUnderstood_.Wraps = true;
    PutBehind(editor_.Arrangement, editor_.txtTitle, Item(lblUnderstood_));
    Layout add = TakeOut(editor_.Arrangement, editor_.cmdAdd);
    Layout update = TakeOut(editor_.Arrangement, editor_.cmdUpdate);
    // Three lines, its own least height, make up for the new rows: the window still fits a small screen.
    if (Layout* const description = ItemOf(editor_.Arrangement, editor_.txtDesc))
        description->minHeight = 0;
    PutAtEnd(editor_.Arrangement, editor_.Frame1, Row({std::move(add), std::move(update), Space()}));
}

void ReminderEntry::FieldsSet()
{
    byHand_ = false;
    Understand(NoTimeSaid{});
}

void ReminderEntry::TitleEdited()
{
    if (byHand_)
        return;
    Understand(ReadQuickReminder(editor_.txtTitle.Text.get(), program_.Host.Time.Now()));
    if (editor_.lstvReminders.ListItems().empty())
        Suggest();
}

void ReminderEntry::MomentEdited()
{
    byHand_ = true;
    Understand(NoTimeSaid{});
}

void ReminderEntry::Add(const Event& add)
{
    const Command command(working_);
    if (!command.Begun())
        return;
    if (const auto* refusal = std::get_if<QuickRefusal>(&read_)) {
        const std::string way = "To keep the title as it is, choose the day or the time yourself.";
        program_.Reminders.ReminderMessage(refusal->Reason + CrLf + CrLf + way, vbOKOnly + vbExclamation, "Confused");
        editor_.txtTitle.SetFocus();
        return;
    }
    if (const auto* understood = std::get_if<QuickReminder>(&read_)) {
        const QuickReminder reminder = *understood;
        Understand(NoTimeSaid{});
        editor_.txtTitle.Text = reminder.Title;
        ShowMoment(reminder.At);
        if (Trim(editor_.txtDesc.Text.get()).empty())
            editor_.txtDesc.Text = reminder.Title;
    }
    add();
}

void ReminderEntry::Understand(std::variant<NoTimeSaid, QuickReminder, QuickRefusal> read)
{
    read_ = std::move(read);
    std::string line;
    if (const auto* understood = std::get_if<QuickReminder>(&read_))
        line = SpokenMoment(ToMoment(understood->At), ToMoment(program_.Host.Time.Now())) + ": " + understood->Title;
    else if (const auto* refusal = std::get_if<QuickRefusal>(&read_))
        line = refusal->Reason;
    lblUnderstood_.Caption = line;
    editor_.txtTitle.AccessibleDescription = line;
}

void ReminderEntry::ShowMoment(const DateTime& at)
{
    editor_.mvDate.SetValue({at.year, at.month, at.day});
    editor_.txtTime.Text = Padded(at.hour, 2) + ":" + Padded(at.minute, 2);
}

void ReminderEntry::Suggest()
{
    const DateTime now = program_.Host.Time.Now();
    const DateTime quarter = ToDateTime(NextQuarter(ToMoment(now)));
    if (const auto* understood = std::get_if<QuickReminder>(&read_))
        ShowMoment(understood->At);
    else if (quarter.day == now.day)
        ShowMoment(quarter);
}

} // namespace voxmate
