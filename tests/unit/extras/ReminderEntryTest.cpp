// The help with entering a reminder in the editor.
#include "extras/ReminderEntry.h"
#include "ExtrasTest.h"
#include "tests/fakes/FocusPeer.h"
#include "tests/fakes/ReminderSlot.h"

namespace voxmate
{

namespace
{

class ReminderEntryTest : public ExtrasTest
{
protected:
    const std::string file = "C:\\Voxmate\\VoxmateReminders.txt";
    frmReminder& editor = dynamic_cast<frmReminder&>(form.Editor());
    Label& line = dynamic_cast<Label&>(*editor.Find("lblUnderstood"));

    ReminderEntryTest() { fake.clock.now = {2026, 11, 25, 14, 20, 40}; } // a Wednesday

    /// Shows the editor as the menu does.
    void Open(const std::vector<ReminderFields>& records = {})
    {
        std::string bytes;
        for (const ReminderFields& record : records)
            bytes += Slot(record);
        if (!records.empty())
            fake.files.texts[file] = bytes;
        Begin();
        Item("mnuShowAll").UserClick();
        fake.windows.boxes.clear();
    }
    static std::vector<ReminderFields> One() { return {{"Call", "07", "03", "2027", "09", "05", "Bank", "N"}}; }
    std::string Fields() const
    {
        const CalendarDate& date = editor.mvDate.Value();
        return editor.txtTitle.Text.get() + "|" + std::to_string(date.Year) + "-" + std::to_string(date.Month) + "-" +
               std::to_string(date.Day) + "|" + editor.txtTime.Text.get() + "|" + editor.txtDesc.Text.get();
    }
    Lines Rows() const
    {
        Lines rows;
        for (const ListItem& item : editor.lstvReminders.ListItems())
            rows.push_back(item.SubItems[0] + "|" + item.SubItems[1] + "|" + item.SubItems[2]);
        return rows;
    }
    void Type(const std::string& title) { editor.txtTitle.UserEdit(title); }
};

TEST_F(ReminderEntryTest, TheKeyboardBeginsInTheTitleAndAnEmptyListSaysWhatToDo)
{
    EXPECT_EQ(editor.FirstFocus, &editor.txtTitle);
    EXPECT_EQ(
        editor.lstvReminders.PlaceholderText,
        "There are no reminders in the list. To add one, write its title, choose the day and the time, describe it, "
        "and press Add.");
    Open();
    EXPECT_EQ(Fields(), "|2026-11-25||");
}

// The fields show the first reminder of the list when the editor opens.
TEST_F(ReminderEntryTest, WhatStandsThereOfAnotherReminderIsNotAdded)
{
    Open({{"Call", "07", "03", "2027", "09", "05", "About the card", "Y"}});
    Type("tea in 15 minutes");
    editor.cmdAdd.UserClick();
    EXPECT_EQ(fake.windows.boxes.size(), 0U);
    EXPECT_EQ(Rows(), (Lines{"Call|2027/03/07|09:05", "tea|2026/11/25|14:35"}));
    EXPECT_EQ(Fields(), "tea|2026-11-25|14:35|tea");
    EXPECT_EQ(editor.chkDone.Value, 0);
}

TEST_F(ReminderEntryTest, WhatTheUserHasDescribedAndMarkedIsAdded)
{
    Open(One());
    editor.txtDesc.Text = "Green";
    Type("tea in 15 minutes");
    editor.cmdAdd.UserClick();
    EXPECT_EQ(Fields(), "tea|2026-11-25|14:35|Green");
}

TEST_F(ReminderEntryTest, WhatIsNotAddedLeavesTheFieldsAsTheyWere)
{
    Open(One());
    editor.chkDone.Value = 1;
    Type("tea in 15 minutes");
    fake.windows.answers.push_back(vbNo);
    editor.cmdAdd.UserClick();
    EXPECT_EQ(Fields(), "tea in 15 minutes|2027-3-7|09:05|Bank");
    EXPECT_EQ(editor.chkDone.Value, 1);
    EXPECT_NE(line.Caption.get(), "");
    EXPECT_EQ(Rows(), (Lines{"Call|2027/03/07|09:05"}));
}

TEST_F(ReminderEntryTest, AddAndUpdateStandAtTheEndOfTheFrameWithTheFields)
{
    const Layout& frame = editor.Arrangement.children.at(0).children.at(1);
    ASSERT_EQ(frame.control, &editor.Frame1);
    const Layout& last = frame.children.at(0).children.back();
    ASSERT_EQ(last.children.size(), 3U);
    EXPECT_EQ(last.children[0].control, &editor.cmdAdd);
    EXPECT_EQ(last.children[1].control, &editor.cmdUpdate);
    const Layout& foot = editor.Arrangement.children.at(1);
    ASSERT_EQ(foot.children.size(), 3U);
    EXPECT_EQ(foot.children[0].control, &editor.cmdDelete);
    EXPECT_EQ(foot.children[2].control, &editor.cmdClose);
    const Layout& title = frame.children.at(0).children.at(0);
    EXPECT_EQ(title.children.at(2).control, &line);
}

TEST_F(ReminderEntryTest, InAnEmptyListATitleBringsTheNextFullQuarterOfAnHour)
{
    Open();
    Type("B");
    EXPECT_EQ(Fields(), "B|2026-11-25|14:30|");
    // Emptied by the user, it stays so.
    editor.txtTime.UserEdit("");
    Type("Ba");
    EXPECT_EQ(Fields(), "Ba|2026-11-25||");
}

TEST_F(ReminderEntryTest, ThereIsNoQuarterOfAnHourToBeginWithAtTheEndOfADay)
{
    fake.clock.now = {2026, 11, 25, 23, 45, 0};
    Open();
    Type("Bank");
    EXPECT_EQ(Fields(), "Bank|2026-11-25||");
}

TEST_F(ReminderEntryTest, InAListWithRemindersTheFieldsStayAsTheyAre)
{
    Open(One());
    Type("Tea in 15 minutes");
    EXPECT_EQ(Fields(), "Tea in 15 minutes|2027-3-7|09:05|Bank");
}

TEST_F(ReminderEntryTest, WhatWasUnderstoodIsShownAndToldToTheScreenReaderWhileOneTypes)
{
    Open(One());
    Type("Tea at 1");
    EXPECT_EQ(line.Caption.get(), "Tomorrow at 01:00: Tea");
    Type("Tea at 16");
    EXPECT_EQ(line.Caption.get(), "Today at 16:00: Tea");
    EXPECT_EQ(editor.txtTitle.AccessibleDescription.get(), "Today at 16:00: Tea");
    Type("Tea on friday");
    EXPECT_EQ(line.Caption.get(), "Friday, 27 November 2026 at 09:00: Tea");
    Type("Tea every friday");
    EXPECT_EQ(line.Caption.get(), "A reminder comes once. Please give one day and one time.");
    Type("Tea");
    EXPECT_EQ(line.Caption.get(), "");
    EXPECT_EQ(editor.txtTitle.AccessibleDescription.get(), "");
}

TEST_F(ReminderEntryTest, AddTakesTitleDateAndTimeFromWhatWasUnderstood)
{
    Open(One());
    Type("tomorrow 10:30 bank");
    editor.cmdAdd.UserClick();
    EXPECT_EQ(Boxes(), Lines{});
    EXPECT_EQ(Rows(), (Lines{"Call|2027/03/07|09:05", "bank|2026/11/26|10:30"}));
    EXPECT_EQ(Fields(), "bank|2026-11-26|10:30|bank");
    EXPECT_EQ(line.Caption.get(), "");
}

TEST_F(ReminderEntryTest, AnEmptyDescriptionBecomesTheTitle)
{
    Open();
    Type("tea in 15 minutes");
    EXPECT_EQ(Fields(), "tea in 15 minutes|2026-11-25|14:35|");
    editor.cmdAdd.UserClick();
    EXPECT_EQ(Boxes(), Lines{});
    EXPECT_EQ(Rows(), (Lines{"tea|2026/11/25|14:35"}));
    EXPECT_EQ(Fields(), "tea|2026-11-25|14:35|tea");
}

TEST_F(ReminderEntryTest, EnterInTheTitleAddsWhatWasUnderstood)
{
    Open();
    Type("tea");
    editor.txtTitle.UserKeyPress(13);
    EXPECT_EQ(Rows(), Lines{});
    EXPECT_EQ(Boxes(), Lines{});
    Type("tea in 15 minutes");
    editor.txtTitle.UserKeyPress(13);
    EXPECT_EQ(Rows(), (Lines{"tea|2026/11/25|14:35"}));
}

TEST_F(ReminderEntryTest, ARefusalIsSaidWhenAddIsPressedAndNothingIsAdded)
{
    Open(One());
    std::string focused;
    fakes::FocusPeer peer(editor.txtTitle, focused);
    Type("pills every day at 9");
    editor.cmdAdd.UserClick();
    EXPECT_EQ(Boxes(),
              (Lines{"Voxmate - Reminders: A reminder comes once. Please give one day and one time.\r\n\r\nTo keep "
                     "the title as it is, choose the day or the time yourself."}));
    EXPECT_EQ(focused, "txtTitle");
    EXPECT_EQ(Rows(), (Lines{"Call|2027/03/07|09:05"}));
    EXPECT_EQ(Fields(), "pills every day at 9|2027-3-7|09:05|Bank");
    editor.txtTitle.SetPeer(nullptr);
}

TEST_F(ReminderEntryTest, DateAndTimeThatTheUserSetHoldAndTheTitleStaysAsItIsWritten)
{
    Open(One());
    Type("pills every day at 9");
    editor.txtTime.UserEdit("10:00");
    EXPECT_EQ(line.Caption.get(), "");
    editor.cmdAdd.UserClick();
    EXPECT_EQ(Boxes(), Lines{});
    EXPECT_EQ(Rows().back(), "pills every day at 9|2027/03/07|10:00");
    // The fields now show the new reminder, and the title may say when again.
    Type("tea in 15 minutes");
    EXPECT_EQ(line.Caption.get(), "Today at 14:35: tea");
    editor.mvDate.UserSelect({2027, 5, 9});
    Type("tea at 5");
    EXPECT_EQ(line.Caption.get(), "");
    editor.cmdAdd.UserClick();
    EXPECT_EQ(Rows().back(), "tea at 5|2027/05/09|10:00");
}

TEST_F(ReminderEntryTest, AnotherReminderInTheFieldsEndsWhatWasUnderstood)
{
    Open({One()[0], {"Tea at 5", "01", "01", "2027", "17", "00", "Green", "N"}});
    Type("tea in 15 minutes");
    editor.lstvReminders.UserItemClick(2);
    EXPECT_EQ(line.Caption.get(), "");
    EXPECT_EQ(Fields(), "Tea at 5|2027-1-1|17:00|Green");
}

TEST_F(ReminderEntryTest, UpdateTakesTheTitleAsItIsWritten)
{
    Open(One());
    Type("Call at 5");
    fake.windows.answers = {vbYes};
    editor.cmdUpdate.UserClick();
    EXPECT_EQ(Rows(), (Lines{"Call at 5|2027/03/07|09:05"}));
}

TEST_F(ReminderEntryTest, ATitleWithoutATimeIsAddedAsItAlwaysWas)
{
    Open();
    Type("Bank");
    editor.txtTime.UserEdit("");
    editor.cmdAdd.UserClick();
    EXPECT_EQ(Boxes(), (Lines{"Voxmate - Reminders: Time format you have entered is incorrect. It should be 'HH:MM'"}));
    EXPECT_EQ(Rows(), Lines{});
}

} // namespace

} // namespace voxmate
