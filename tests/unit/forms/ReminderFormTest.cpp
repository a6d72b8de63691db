// The reminder editor: what it shows, and what marks it as changed.
#include "ReminderFormTest.h"

#include <functional>

namespace voxmate::editor_test
{

TEST_F(ReminderFormTest, TheControlsSayWhatTheyAreFor)
{
    EXPECT_EQ(form.Caption, "Voxmate Reminders");
    EXPECT_EQ(form.cmdAdd.Caption.get(), "Add");
    EXPECT_EQ(form.cmdUpdate.Caption.get(), "Update");
    EXPECT_EQ(form.cmdDelete.Caption.get(), "Delete");
    EXPECT_EQ(form.cmdClose.Caption.get(), "Close");
    EXPECT_EQ(form.Frame1.Caption.get(), "Reminder");
    EXPECT_EQ(form.chkDone.Caption.get(), "Marked as done");
    EXPECT_EQ(form.Label1.Caption.get(), "Title");
    EXPECT_EQ(form.Label2.Caption.get(), "Description:");
    EXPECT_EQ(form.Label3.Caption.get(), "Time");
    EXPECT_EQ(form.Label4.Caption.get(), "HH:MM");
    EXPECT_EQ(form.txtTitle.MaxLength, 50U);
    EXPECT_EQ(form.txtTime.MaxLength, 5U);
    EXPECT_EQ(form.txtDesc.MaxLength, 250U);
    Lines columns;
    for (const auto& column : form.lstvReminders.ColumnHeaders())
        columns.push_back(column.Text);
    EXPECT_EQ(columns, (Lines{"Id", "Title", "Date", "Time"}));
    EXPECT_EQ(form.RemImgList.At(1)->Picture, "done");
    EXPECT_EQ(form.RemImgList.At(2)->Picture, "pending");
}

TEST_F(ReminderFormTest, TheCaptionSaysWhetherRemindersAreEnabledWhenItIsLoaded)
{
    form.Show();
    EXPECT_EQ(form.Caption, "Voxmate Reminders - CURRENTLY ENABLED");
    form.Unload();
    main.reminderTimer = false;
    form.Show();
    EXPECT_EQ(form.Caption, "Voxmate Reminders - CURRENTLY DISABLED");
}

TEST_F(ReminderFormTest, AnEmptyListOpensWithEmptyFieldsTodaysDateAndOnlyAddEnabled)
{
    Open({});
    EXPECT_EQ(Rows(), Lines{});
    EXPECT_EQ(Fields(), "|2004-3-7|||0");
    EXPECT_EQ(Enabled(), "Add ");
}

TEST_F(ReminderFormTest, EveryReminderIsListedAndTheFirstShownSelectedRowWide)
{
    Open(Three());
    EXPECT_EQ(Rows(), (Lines{"1|2|Call|2005/03/07|09:05", "2|1|Swim|2004/12/31|00:00", "3|2|apple|2006/01/01|23:59"}));
    EXPECT_EQ(form.lstvReminders.SelectedItem(), 1U);
    EXPECT_TRUE(form.lstvReminders.FullRowSelect.get());
    EXPECT_EQ(Fields(), "Call|2005-3-7|09:05|Bank|0");
    EXPECT_EQ(Enabled(), "Update Delete ");
}

TEST_F(ReminderFormTest, AClickedItemIsShownAndAddIsDisabled)
{
    Open(Three());
    form.txtTitle.UserEdit("x");
    EXPECT_TRUE(form.cmdAdd.Enabled.get());
    form.lstvReminders.UserItemClick(2);
    EXPECT_EQ(Fields(), "Swim|2004-12-31|00:00|Pool|1");
    EXPECT_EQ(Enabled(), "Update Delete ");
}

TEST_F(ReminderFormTest, AColumnIsSortedByAndItsSecondClickTurnsTheOrder)
{
    Open(Three());
    const auto shown = [this] {
        std::string ids;
        for (const std::uint32_t number : form.lstvReminders.Rows())
            ids += std::to_string(number);
        return ids;
    };
    EXPECT_EQ(shown(), "123");
    form.lstvReminders.UserColumnClick(2);
    EXPECT_EQ(shown(), "312"); // apple, Call, Swim
    EXPECT_EQ(form.lstvReminders.SortKey.get(), 1);
    form.lstvReminders.UserColumnClick(2);
    EXPECT_EQ(shown(), "213");
    form.lstvReminders.UserColumnClick(3);
    EXPECT_EQ(shown(), "213"); // 2004, 2005, 2006
    EXPECT_EQ(form.lstvReminders.Order.get(), SortOrder::Ascending);
    form.lstvReminders.UserColumnClick(3);
    EXPECT_EQ(shown(), "312");
    form.lstvReminders.UserColumnClick(4);
    EXPECT_EQ(shown(), "213"); // 00:00, 09:05, 23:59
    // What is clicked in a sorted list is the reminder that stands there.
    form.lstvReminders.UserItemClick(3);
    EXPECT_EQ(form.txtTitle.Text.get(), "apple");
}

TEST_F(ReminderFormTest, TheSortKeyIsTheFirstColumnAtFirstSoThatItsFirstClickTurnsTheOrder)
{
    Open(Three());
    form.lstvReminders.UserColumnClick(1);
    EXPECT_EQ(form.lstvReminders.Order.get(), SortOrder::Descending);
    EXPECT_EQ(form.lstvReminders.Rows(), (std::vector<std::uint32_t>{3, 2, 1}));
}

TEST_F(ReminderFormTest, TheOrderOutlivesAReloadAndTheSelectedOneIsStillTheRightOne)
{
    Open(Three());
    form.lstvReminders.UserColumnClick(2);
    Fill("Bath");
    form.cmdAdd.UserClick();
    EXPECT_EQ(form.lstvReminders.Rows(), (std::vector<std::uint32_t>{3, 4, 1, 2}));
    EXPECT_EQ(form.lstvReminders.SelectedItem(), 4U);
    EXPECT_EQ(form.txtTitle.Text.get(), "Bath");
}

TEST_F(ReminderFormTest, EachFieldMarksTheFormAsChangedWhileThereAreReminders)
{
    const auto edits = {std::function<void()>([this] { form.txtTitle.UserEdit("x"); }),
                        std::function<void()>([this] { form.txtDesc.UserEdit("x"); }),
                        std::function<void()>([this] { form.txtTime.UserEdit("1"); }),
                        std::function<void()>([this] { form.chkDone.UserClick(true); }), std::function<void()>([this] {
                            form.mvDate.UserSelect({2005, 1, 1});
                        })};
    for (const auto& edit : edits) {
        Open(Three());
        form.cmdUpdate.Enabled = false;
        edit();
        EXPECT_EQ(Enabled(), "Add Update Delete ");
        form.Unload();
    }
    for (const auto& edit : edits) {
        Open({});
        edit();
        EXPECT_EQ(Enabled(), "Add ");
        form.Unload();
    }
}

TEST_F(ReminderFormTest, ADateOrTextSetByTheProgramMarksTheFormAsChangedToo)
{
    Open(Three());
    form.cmdUpdate.Enabled = false;
    form.mvDate.SetValue({2005, 1, 1});
    EXPECT_TRUE(form.cmdUpdate.Enabled.get());
    form.cmdUpdate.Enabled = false;
    form.txtDesc.Text = "set";
    EXPECT_TRUE(form.cmdUpdate.Enabled.get());
}

TEST_F(ReminderFormTest, TheTimeTakesDigitsColonBackspaceAndEnterAlone)
{
    std::string passed;
    for (int key = 1; key < 256; ++key)
        if (form.txtTime.UserKeyPress(key))
            passed += static_cast<char>(key);
    EXPECT_EQ(passed, "\b\r0123456789:");
    EXPECT_FALSE(form.txtTime.UserKeyPress(0x0661)); // another script's digit
}

} // namespace voxmate::editor_test
