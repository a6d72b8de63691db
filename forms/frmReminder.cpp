#include "forms/frmReminder.h"

#include "base/Text.h"
#include "forms/Digits.h"
#include "modules/Command.h"
#include "modules/Program.h"

#include <tuple>
#include <utility>

namespace voxmate
{

namespace
{

constexpr std::size_t TitleLength = 50;
constexpr std::size_t TimeLength = 5;
constexpr std::size_t DescriptionLength = 250;

CalendarDate DayOf(const DateTime& date)
{
    return {date.year, date.month, date.day};
}

} // namespace

frmReminder::frmReminder(Program& program) : Form(program.Host.Windows, "frmReminder"), program_(program)
{
    Caption = "Voxmate Reminders";
    Border = BorderStyle::Sizable;
    lstvReminders.SmallIcons = &RemImgList;
    lstvReminders.AccessibleName = "Reminders";
    mvDate.AccessibleName = "Date";
    Label1.Buddy = &txtTitle;
    Label2.Buddy = &txtDesc;
    Label3.Buddy = &txtTime;
    Label1.AccessKey = 't';
    Label3.AccessKey = 'm';
    Label2.AccessKey = 'd';
    chkDone.AccessKey = 'k';
    cmdAdd.AccessKey = 'a';
    cmdUpdate.AccessKey = 'u';
    cmdDelete.AccessKey = 'l';
    cmdClose.AccessKey = 'c';
    txtTitle.MaxLength = TitleLength;
    txtTime.MaxLength = TimeLength;
    txtDesc.MaxLength = DescriptionLength;
    txtDesc.MultiLine = true;
    cmdClose.IsCancel = true;
    Arrange();

    lstvReminders.ItemClick = [this](std::size_t number) {
        program_.Reminders.ShowReminderInEditor(ToInt16(static_cast<std::int64_t>(number)));
    };
    lstvReminders.ColumnClick = [this](int column) { lstvReminders_ColumnClick(column); };
    txtTitle.Change = [this] { MarkChanged(); };
    txtDesc.Change = [this] { MarkChanged(); };
    chkDone.Click = [this] { MarkChanged(); };
    mvDate.SelChange = [this] { MarkChanged(); };
    txtTime.KeyPress = [](int& keyAscii) { KeepDigits(keyAscii, ':'); };
    // A time that was typed, deleted or pasted is a change, too: closing must ask before it is lost.
    txtTime.Change = [this] {
        if (!timeByCode_)
            MarkChanged();
    };
    cmdAdd.Click = [this] { cmdAdd_Click(); };
    cmdUpdate.Click = [this] { cmdUpdate_Click(); };
    cmdDelete.Click = [this] { cmdDelete_Click(); };
    cmdClose.Click = [this] { cmdClose_Click(); };
}

// Asks before the file is changed; Enter answers No.
bool frmReminder::Confirmed(const std::string& question)
{
    return program_.Reminders.ReminderMessage(question, vbYesNo + vbQuestion + vbDefaultButton2, "Suggest") == vbYes;
}

void frmReminder::Arrange()
{
    constexpr int tight = 4;
    Layout when = Row({
        Item(mvDate),
        Column({Column({Item(Label3), Row({Item(txtTime), Item(Label4), Space()})}).Spacing(tight), Item(chkDone),
                Space()}),
    });
    Layout fields = Column({
        Column({Item(Label1), Item(txtTitle)}).Spacing(tight),
        std::move(when),
        Column({Item(Label2), Item(txtDesc).Stretch(1).Min(0, 84)}).Spacing(tight).Stretch(1),
    });
    Arrangement = Column({
        Row({Item(lstvReminders).Stretch(1).Min(430, 380), Framed(Frame1, std::move(fields))}).Stretch(1),
        Row({Item(cmdAdd), Item(cmdUpdate), Item(cmdDelete), Space(), Item(cmdClose)}),
    });
}

void frmReminder::Form_Load()
{
    Caption = std::string("Voxmate Reminders") +
              (program_.Main->ReminderTimerEnabled() ? " - CURRENTLY ENABLED" : " - CURRENTLY DISABLED");
    lstvReminders.ClearItems();
    lstvReminders.FullRowSelect = false;
    lstvReminders.Sorted = false;
    lstvReminders.SortKey = 0;
    lstvReminders.Order = SortOrder::Ascending;
    ClearFields();
}

void frmReminder::Form_QueryUnload(bool& cancel)
{
    const Command command(working_);
    cancel = !command.Begun() || !MayClose();
}

void frmReminder::AddListItem(std::int16_t id, ReminderImage image, const std::string& title, const std::string& date,
                              const std::string& time)
{
    lstvReminders.AddItem({std::to_string(id), image, {title, date, time}});
}

void frmReminder::SelectListItem(std::int16_t index)
{
    cmdUpdate.Enabled = true;
    cmdDelete.Enabled = true;
    lstvReminders.FullRowSelect = true;
    if (index > 0)
        lstvReminders.SelectItem(static_cast<std::size_t>(index));
}

void frmReminder::ShowFields(const Reminder& reminder)
{
    shown_ = reminder;
    txtTitle.Text = reminder.Title;
    mvDate.SetValue({reminder.Year, reminder.Month, reminder.Day});
    timeByCode_ = true;
    txtTime.Text = Padded(reminder.Hour, 2) + ":" + Padded(reminder.Minute, 2);
    timeByCode_ = false;
    txtDesc.Text = reminder.Description;
    chkDone.Value = reminder.Done ? 1 : 0;
    // The fields show a reminder that exists already. Once the user changes one of them, they can be added as another.
    cmdAdd.Enabled = false;
    Raise(FieldsSet);
}

void frmReminder::ClearFields()
{
    txtTitle.Text = "";
    txtDesc.Text = "";
    timeByCode_ = true;
    txtTime.Text = "";
    timeByCode_ = false;
    chkDone.Value = 0;
    mvDate.SetValue(DayOf(program_.Host.Time.Now()));
    cmdUpdate.Enabled = false;
    cmdDelete.Enabled = false;
    cmdAdd.Enabled = true;
    Raise(FieldsSet);
}

void frmReminder::MarkChanged()
{
    cmdAdd.Enabled = true;
    if (program_.Reminders.List.RemCount > 0)
        cmdUpdate.Enabled = true;
}

void frmReminder::lstvReminders_ColumnClick(int column)
{
    const int key = column - 1;
    if (lstvReminders.SortKey == key)
        lstvReminders.Order =
            lstvReminders.Order == SortOrder::Ascending ? SortOrder::Descending : SortOrder::Ascending;
    else
        lstvReminders.Order = SortOrder::Ascending;
    lstvReminders.SortKey = key;
    // Until the first click the list is in the order of the file.
    lstvReminders.Sorted = true;
}

void frmReminder::cmdAdd_Click()
{
    const Command command(working_);
    if (!command.Begun() || !ValidateReminderInput(true) || !program_.Reminders.TryAppendReminder(Fields()))
        return;
    program_.Reminders.LoadReminders(true, ToInt16(program_.Reminders.List.RemCount + 1));
}

void frmReminder::cmdUpdate_Click()
{
    const Command command(working_);
    if (command.Begun())
        UpdateSelected();
}

// Returns false if a change that the user wants to keep could not be saved; true also if the user declines, or the
// input is refused.
bool frmReminder::UpdateSelected()
{
    if (!Confirmed("Are you sure you want to update the selected reminder ?") || !ValidateReminderInput(false))
        return true;
    const std::int16_t id = PlaceOfShown();
    if (id == 0) {
        program_.Reminders.TellOfListReadAnew();
        return false;
    }
    program_.Reminders.List.Set(id, Fields());
    if (!program_.Reminders.TrySaveReminders(0))
        return false;
    program_.Reminders.LoadReminders(true, id);
    cmdUpdate.Enabled = false;
    return true;
}

void frmReminder::cmdDelete_Click()
{
    const Command command(working_);
    if (!command.Begun() || !Confirmed("Are you sure you want to delete the selected reminder ?"))
        return;
    const std::int16_t id = PlaceOfShown();
    if (id == 0)
        program_.Reminders.TellOfListReadAnew();
    else if (program_.Reminders.TrySaveReminders(id))
        program_.Reminders.LoadReminders(true, 0);
}

void frmReminder::cmdClose_Click()
{
    const Command command(working_);
    if (command.Begun() && MayClose())
        Unload();
}

bool frmReminder::MayClose()
{
    if (!cmdUpdate.Enabled)
        return true;
    switch (
        program_.Reminders.ReminderMessage("Do you want to save changes ?", vbYesNoCancel + vbQuestion, "Suggest")) {
    case vbYes:
        return UpdateSelected();
    case vbNo:
        return true;
    default:
        return false;
    }
}

// The place in the list of the reminder that is shown; 0 if it is not there any more. The list may have been read anew
// since then, with changes by another program.
std::int16_t frmReminder::PlaceOfShown() const
{
    const std::int16_t selected = ToInt16(static_cast<std::int64_t>(lstvReminders.SelectedItem()));
    if (program_.Reminders.List.RemindersValid == False || selected == 0)
        return selected;
    if (const std::int32_t id = program_.Reminders.List.Find(shown_, selected); id != 0)
        return static_cast<std::int16_t>(id);
    // An answer to its announcement changes its date or mark. It is then found by its texts, if no other reminder has
    // the same ones.
    std::int16_t place = 0;
    for (std::int32_t id = 1; id <= program_.Reminders.List.RemCount; ++id) {
        const auto at = static_cast<std::size_t>(id);
        if (program_.Reminders.List.RemTitles[at] != shown_.Title ||
            program_.Reminders.List.RemDescs[at] != shown_.Description)
            continue;
        if (place != 0)
            return 0;
        place = static_cast<std::int16_t>(id);
    }
    return place;
}

Reminder frmReminder::Fields() const
{
    const TimeOfDay time = ParseTime(txtTime.Text.get()).value_or(TimeOfDay{});
    return {txtTitle.Text, ToInt16(mvDate.Day()), ToInt16(mvDate.Month()), ToInt16(mvDate.Year()), time.Hour,
            time.Minute,   txtDesc.Text,          chkDone.Value != 0};
}

bool frmReminder::ValidateReminderInput(bool adding)
{
    if (Trim(txtTitle.Text.get()).empty())
        return Refuse("Please input a title to your reminder.", txtTitle);
    if (!IsValidTime(txtTime.Text))
        return Refuse("Time format you have entered is incorrect. It should be 'HH:MM'", txtTime);
    if (Trim(txtDesc.Text.get()).empty())
        return Refuse("Please put description for your reminder.", txtDesc);
    const std::string doing = adding ? "You are adding a " : "You are updating a ";
    if (IsBackDated() && !Confirmed(doing + "back dated reminder. Proceed anyway ?"))
        return false;
    return chkDone.Value == 0 || Confirmed(doing + "'Mark as Done' reminder. Proceed anyway ?");
}

bool frmReminder::Refuse(const char* text, Control& field)
{
    program_.Reminders.ReminderMessage(text, vbOKOnly + vbExclamation, "Confused");
    field.SetFocus();
    return false;
}

bool frmReminder::IsBackDated() const
{
    const Reminder due = Fields();
    const DateTime now = program_.Host.Time.Now();
    return std::tuple<int, int, int, int, int>(due.Year, due.Month, due.Day, due.Hour, due.Minute) <
           std::tuple(now.year, now.month, now.day, now.hour, now.minute);
}

} // namespace voxmate
