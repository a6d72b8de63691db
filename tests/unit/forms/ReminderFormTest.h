// What the tests of the reminder editor start from: the real list of reminders, its file in memory.
#pragma once

#include "forms/frmReminder.h"
#include "tests/fakes/EditorsMain.h"
#include "tests/fakes/FocusPeer.h"
#include "tests/fakes/ProgramTest.h"
#include "tests/fakes/ReminderSlot.h"

#include <algorithm>

#include <gtest/gtest.h>

namespace voxmate
{

namespace editor_test
{

inline constexpr int Question = 4 + 32 + 256; // Yes and No, No the default, question mark
inline constexpr int SaveQuestion = 3 + 32;   // Yes, No and Cancel
inline constexpr int Refusal = 48;

using Lines = std::vector<std::string>;

class ReminderFormTest : public ProgramTest
{
protected:
    const std::string file = "C:\\Voxmate\\VoxmateReminders.txt";
    fakes::EditorsMain main{fake.log};
    frmReminder form{program};
    std::string focused;

    ReminderFormTest()
    {
        main.form = &form;
        program.Main = &main;
        ReminderFilePath = file;
        ReminderTempPath = "C:\\Voxmate\\VoxmateReminders.tmp";
        main.CheckReminderMenus(true, false);
        main.reminderTimer = true;
        fake.clock.now = {2004, 3, 7, 9, 5, 30};
    }

    static std::string Slots(const std::vector<ReminderFields>& records)
    {
        std::string bytes;
        for (const ReminderFields& record : records)
            bytes += Slot(record);
        return bytes;
    }
    static std::vector<ReminderFields> Three()
    {
        return {{"Call", "07", "03", "2005", "09", "05", "Bank", "N"},
                {"Swim", "31", "12", "2004", "00", "00", "Pool", "Y"},
                {"apple", "01", "01", "2006", "23", "59", "Tree", "N"}};
    }
    std::string Content() { return fake.files.texts.at(file); }

    /// Shows the editor as the menu does.
    void Open(const std::vector<ReminderFields>& records)
    {
        fake.files.texts[file] = Slots(records);
        ShowAllReminders();
        fake.windows.boxes.clear();
        fake.log.clear();
    }
    /// Types a reminder that is due next year into the fields.
    void Fill(const std::string& title = "Tea", const std::string& time = "16:30",
              const std::string& description = "Kettle")
    {
        form.txtTitle.UserEdit(title);
        form.mvDate.UserSelect({2005, 5, 9});
        form.txtTime.UserEdit(time);
        form.txtDesc.UserEdit(description);
    }
    Lines Boxes() const
    {
        Lines texts;
        for (const auto& box : fake.windows.boxes)
            texts.push_back(box.text);
        return texts;
    }
    std::string Enabled() const
    {
        return std::string(form.cmdAdd.Enabled ? "Add " : "") + (form.cmdUpdate.Enabled ? "Update " : "") +
               (form.cmdDelete.Enabled ? "Delete " : "");
    }
    Lines Rows()
    {
        Lines rows;
        for (const std::uint32_t number : form.lstvReminders.Rows()) {
            const ListItem& item = form.lstvReminders.ListItems()[number - 1];
            rows.push_back(item.Text + "|" + std::to_string(item.SmallIcon) + "|" + item.SubItems[0] + "|" +
                           item.SubItems[1] + "|" + item.SubItems[2]);
        }
        return rows;
    }
    std::string Fields() const
    {
        const CalendarDate& date = form.mvDate.Value();
        return form.txtTitle.Text.get() + "|" + std::to_string(date.Year) + "-" + std::to_string(date.Month) + "-" +
               std::to_string(date.Day) + "|" + form.txtTime.Text.get() + "|" + form.txtDesc.Text.get() + "|" +
               std::to_string(form.chkDone.Value);
    }
};

/// The same for what its commands do.
class ReminderCommandsTest : public ReminderFormTest
{
};

} // namespace editor_test

} // namespace voxmate
