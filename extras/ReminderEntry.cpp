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
    editor_.txtTitle.SelectsNewText = true;
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
        if (keyAscii == KeyEnter && !std::holds_alternative<NoTimeSaid>(read_))
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
    set_ = true;
    description_ = editor_.txtDesc.Text;
    done_ = editor_.chkDone.Value;
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
        AddUnderstood(*understood, add);
        return;
    }
    add();
}

void ReminderEntry::AddUnderstood(QuickReminder reminder, const Event& add)
{
    const std::string title = editor_.txtTitle.Text;
    const std::string description = editor_.txtDesc.Text;
    const int done = editor_.chkDone.Value;
    const CalendarDate date = editor_.mvDate.Value();
    const std::string time = editor_.txtTime.Text;

    Understand(NoTimeSaid{});
    editor_.txtTitle.Text = reminder.Title;
    ShowMoment(reminder.At);
    // What still stands there of the reminder that was shown before is not meant for this one.
    if (Trim(description).empty() || description == description_)
        editor_.txtDesc.Text = reminder.Title;
    if (done == done_)
        editor_.chkDone.Value = 0;
    set_ = false;
    add();
    if (set_)
        return;
    // It was not added: the fields are as the user left them.
    editor_.txtTitle.Text = title;
    editor_.txtDesc.Text = description;
    editor_.chkDone.Value = done;
    editor_.mvDate.SetValue(date);
    editor_.txtTime.Text = time;
    Understand(std::move(reminder));
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
    else {
        editor_.mvDate.SetValue({now.year, now.month, now.day});
        editor_.txtTime.Text = "";
    }
}

} // namespace voxmate
