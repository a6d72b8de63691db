// The reminder editor: the list of all reminders, and fields to add, change, delete or mark one.
#pragma once

#include "controls/ListView.h"
#include "controls/MonthView.h"
#include "modules/ReminderRecord.h"
#include "modules/Windows.h"
#include "platform/Platform.h"

#include <string>

namespace voxmate
{

class Program;

class frmReminder : public Form, public ReminderEditor
{
public:
    explicit frmReminder(Program& program);

    ImageList RemImgList{this, "RemImgList", {{"done", "Done"}, {"pending", "Pending"}}};
    ListView lstvReminders{this, "lstvReminders", {{"Id", 5}, {"Title", 0}, {"Date", 10}, {"Time", 5}}};
    Frame Frame1{this, "Frame1", "Reminder"};
    Label Label1{this, "Label1", "Title"};
    TextBox txtTitle{this, "txtTitle"};
    MonthView mvDate{this, "mvDate"};
    Label Label3{this, "Label3", "Time"};
    TextBox txtTime{this, "txtTime"};
    Label Label4{this, "Label4", "HH:MM"};
    CheckBox chkDone{this, "chkDone", "Marked as done"};
    Label Label2{this, "Label2", "Description:"};
    TextBox txtDesc{this, "txtDesc"};
    CommandButton cmdAdd{this, "cmdAdd", "Add"};
    CommandButton cmdUpdate{this, "cmdUpdate", "Update"};
    CommandButton cmdDelete{this, "cmdDelete", "Delete"};
    CommandButton cmdClose{this, "cmdClose", "Close"};

    /// The program, not the user, has filled or emptied the fields.
    Event FieldsSet;

    // ReminderEditor.
    void ShowEditor() override { Show(); }
    void UnloadEditor() override { Unload(); }
    void ClearList() override { lstvReminders.ClearItems(); }
    void AddListItem(std::int16_t id, ReminderImage image, const std::string& title, const std::string& date,
                     const std::string& time) override;
    void SelectListItem(std::int16_t index) override;
    void ShowFields(const Reminder& reminder) override;
    void ClearFields() override;

protected:
    void Form_Load() override;
    void Form_QueryUnload(bool& cancel) override;

private:
    Program& program_;
    bool working_ = false;    ///< a command runs
    bool timeByCode_ = false; ///< the program fills txtTime, not the user
    Reminder shown_;          ///< the reminder that was put into the fields last

    void Arrange();
    void MarkChanged();
    void lstvReminders_ColumnClick(int column);
    void cmdAdd_Click();
    void cmdUpdate_Click();
    void cmdDelete_Click();
    void cmdClose_Click();

    std::int16_t PlaceOfShown() const;
    Reminder Fields() const;
    bool ValidateReminderInput(bool adding);
    bool Confirmed(const std::string& question);
    bool Refuse(const char* text, Control& field);
    bool IsBackDated() const;
    bool UpdateSelected();
    bool MayClose();
};

} // namespace voxmate
