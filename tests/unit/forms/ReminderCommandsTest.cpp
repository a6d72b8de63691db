// The reminder editor: adding, updating, deleting and closing, with every check and question on the way.
#include "ReminderFormTest.h"

namespace voxmate::editor_test
{

TEST_F(ReminderCommandsTest, WhatIsMissingIsRefusedInTheOrderOfTitleTimeAndDescription)
{
    Open({});
    fakes::FocusPeer title(form.txtTitle, focused);
    fakes::FocusPeer time(form.txtTime, focused);
    fakes::FocusPeer description(form.txtDesc, focused);
    const auto refused = [this](const char* text, const char* field) {
        fake.windows.boxes.clear();
        form.cmdAdd.UserClick();
        ASSERT_EQ(Boxes(), Lines{text});
        EXPECT_EQ(fake.windows.boxes[0].style, Refusal);
        EXPECT_EQ(fake.windows.boxes[0].title, "Voxmate - Reminders");
        EXPECT_EQ(focused, field);
        EXPECT_EQ(IsBusy, False);
    };
    form.txtTitle.UserEdit("   ");
    refused("Please input a title to your reminder.", "txtTitle");
    form.txtTitle.UserEdit("Tea");
    refused("Time format you have entered is incorrect. It should be 'HH:MM'", "txtTime");
    for (const char* wrong : {"9:05", "09:5", "24:00", "12:60", "12.30", "ab:cd", "12:3"}) {
        form.txtTime.UserEdit(wrong);
        refused("Time format you have entered is incorrect. It should be 'HH:MM'", "txtTime");
    }
    form.txtTime.UserEdit("16:30");
    refused("Please put description for your reminder.", "txtDesc");
    form.txtDesc.UserEdit("  ");
    refused("Please put description for your reminder.", "txtDesc");
    EXPECT_EQ(Content(), "");
    for (TextBox* field : {&form.txtTitle, &form.txtTime, &form.txtDesc})
        field->SetPeer(nullptr);
}

TEST_F(ReminderCommandsTest, TheCharacterSaysARefusalBeforeTheBoxShowsIt)
{
    Open({});
    Settings.ReadMessages = 1;
    fake.windows.whileBoxIsUp = [this](const auto& box) {
        EXPECT_EQ(MessageText, box.text);
        EXPECT_EQ(IsBusy, True);
    };
    form.cmdAdd.UserClick();
    EXPECT_EQ(fake.log, (Lines{"Status Busy...", "MsgBox Voxmate - Reminders"}));
    EXPECT_EQ(IsBusy, False);
}

TEST_F(ReminderCommandsTest, AReminderForTheCurrentMinuteIsNotBackDatedAndOneMinuteEarlierIs)
{
    Open({});
    Fill("Tea", "09:05");
    form.mvDate.UserSelect({2004, 3, 7});
    form.cmdAdd.UserClick();
    EXPECT_EQ(Boxes(), Lines{});
    EXPECT_EQ(Content(), Slot({"Tea", "07", "03", "2004", "09", "05", "Kettle", "N"}));

    form.txtTime.UserEdit("09:04");
    form.cmdAdd.UserClick();
    EXPECT_EQ(Boxes(), Lines{"You are adding a back dated reminder. Proceed anyway ?"});
    EXPECT_EQ(fake.windows.boxes[0].style, Question);
    EXPECT_EQ(fake.windows.boxes[0].title, "Voxmate - Reminders");
    EXPECT_EQ(Content().size(), 128U);
}

TEST_F(ReminderCommandsTest, AnEarlierHourOrDayIsBackDatedWhateverStandsAfterIt)
{
    Open({});
    for (const auto& [date, time, backDated] :
         {std::tuple{CalendarDate{2004, 3, 7}, "08:59", true}, std::tuple{CalendarDate{2004, 3, 6}, "23:59", true},
          std::tuple{CalendarDate{2003, 12, 31}, "23:59", true}, std::tuple{CalendarDate{2004, 3, 7}, "10:00", false},
          std::tuple{CalendarDate{2004, 3, 8}, "00:00", false}, std::tuple{CalendarDate{2005, 1, 1}, "00:00", false}}) {
        Fill("Tea", time);
        form.mvDate.UserSelect(date);
        fake.windows.boxes.clear();
        form.cmdAdd.UserClick();
        EXPECT_EQ(Boxes().size(), backDated ? 1U : 0U) << date.Year << "/" << date.Month << "/" << date.Day << time;
    }
}

TEST_F(ReminderCommandsTest, ADoneReminderIsAskedAboutAfterABackDatedOneAndNoStopsEither)
{
    Open({});
    Fill("Tea", "09:04");
    form.mvDate.UserSelect({2004, 3, 7});
    form.chkDone.UserClick(true);
    fake.windows.answers = {vbYes, vbNo};
    form.cmdAdd.UserClick();
    EXPECT_EQ(Boxes(), (Lines{"You are adding a back dated reminder. Proceed anyway ?",
                              "You are adding a 'Mark as Done' reminder. Proceed anyway ?"}));
    EXPECT_EQ(fake.windows.boxes[1].style, Question);
    EXPECT_EQ(Content(), "");
    fake.windows.answers = {vbYes, vbYes};
    form.cmdAdd.UserClick();
    EXPECT_EQ(Content(), Slot({"Tea", "07", "03", "2004", "09", "04", "Kettle", "Y"}));
}

TEST_F(ReminderCommandsTest, AnAddedReminderIsWrittenInPlaceBehindTheLastAndShownSelected)
{
    Open(Three());
    Fill();
    fake.files.log = &fake.log;
    form.cmdAdd.UserClick();
    Lines writes;
    std::copy_if(fake.log.begin(), fake.log.end(), std::back_inserter(writes),
                 [](const std::string& call) { return call.starts_with("Put") || call.starts_with("Move"); });
    EXPECT_EQ(writes, Lines{"Put 4"});
    EXPECT_EQ(Content(), Slots(Three()) + Slot({"Tea", "09", "05", "2005", "16", "30", "Kettle", "N"}));
    EXPECT_EQ(Rows().back(), "4|2|Tea|2005/05/09|16:30");
    EXPECT_EQ(form.lstvReminders.SelectedItem(), 4U);
    EXPECT_EQ(Fields(), "Tea|2005-5-9|16:30|Kettle|0");
    EXPECT_FALSE(form.cmdAdd.Enabled.get());
    EXPECT_EQ(Boxes(), Lines{});
}

TEST_F(ReminderCommandsTest, AnUpdateIsConfirmedCheckedStoredAndShown)
{
    Open(Three());
    form.lstvReminders.UserItemClick(2);
    Fill("Dive");
    form.chkDone.UserClick(false);
    fake.windows.answers = {vbYes};
    form.cmdUpdate.UserClick();
    EXPECT_EQ(Boxes(), Lines{"Are you sure you want to update the selected reminder ?"});
    EXPECT_EQ(fake.windows.boxes[0].style, Question);
    EXPECT_EQ(fake.windows.boxes[0].title, "Voxmate - Reminders");
    std::vector<ReminderFields> changed = Three();
    changed[1] = {"Dive", "09", "05", "2005", "16", "30", "Kettle", "N"};
    EXPECT_EQ(Content(), Slots(changed));
    EXPECT_EQ(form.lstvReminders.SelectedItem(), 2U);
    EXPECT_EQ(Rows()[1], "2|2|Dive|2005/05/09|16:30");
    EXPECT_EQ(Enabled(), "Delete ");
    form.txtTitle.UserEdit("Diver");
    EXPECT_EQ(Enabled(), "Add Update Delete ");
}

TEST_F(ReminderCommandsTest, AnUpdateThatIsNotConfirmedChangesNothing)
{
    Open(Three());
    form.txtTitle.UserEdit("");
    fake.windows.answers = {vbNo};
    form.cmdUpdate.UserClick();
    EXPECT_EQ(Boxes(), Lines{"Are you sure you want to update the selected reminder ?"});
    EXPECT_EQ(Content(), Slots(Three()));
    EXPECT_EQ(form.txtTitle.Text.get(), "");
    EXPECT_TRUE(form.cmdUpdate.Enabled.get());
}

TEST_F(ReminderCommandsTest, AnUpdateIsCheckedAfterItIsConfirmedAndAsksInItsOwnWords)
{
    Open(Three());
    form.txtTitle.UserEdit("");
    fake.windows.answers = {vbYes};
    form.cmdUpdate.UserClick();
    EXPECT_EQ(Boxes(), (Lines{"Are you sure you want to update the selected reminder ?",
                              "Please input a title to your reminder."}));
    fake.windows.boxes.clear();
    form.txtTitle.UserEdit("Call");
    form.mvDate.UserSelect({2004, 3, 6});
    form.chkDone.UserClick(true);
    fake.windows.answers = {vbYes, vbYes, vbNo};
    form.cmdUpdate.UserClick();
    EXPECT_EQ(Boxes(), (Lines{"Are you sure you want to update the selected reminder ?",
                              "You are updating a back dated reminder. Proceed anyway ?",
                              "You are updating a 'Mark as Done' reminder. Proceed anyway ?"}));
    EXPECT_EQ(Content(), Slots(Three()));
}

TEST_F(ReminderCommandsTest, ADeletedReminderIsGoneAndLaterOnesMoveUpByOne)
{
    Open(Three());
    form.lstvReminders.UserItemClick(2);
    fake.windows.answers = {vbNo, vbYes};
    form.cmdDelete.UserClick();
    EXPECT_EQ(Content(), Slots(Three()));
    form.cmdDelete.UserClick();
    EXPECT_EQ(Boxes(), Lines(2, "Are you sure you want to delete the selected reminder ?"));
    EXPECT_EQ(fake.windows.boxes[1].style, Question);
    EXPECT_EQ(Content(), Slots({Three()[0], Three()[2]}));
    EXPECT_EQ(Rows(), (Lines{"1|2|Call|2005/03/07|09:05", "2|2|apple|2006/01/01|23:59"}));
    EXPECT_EQ(form.lstvReminders.SelectedItem(), 1U);
    EXPECT_EQ(form.txtTitle.Text.get(), "Call");
}

TEST_F(ReminderCommandsTest, DeletingTheLastRemainingReminderLeavesAnEmptyValidFile)
{
    Open({Three()[0]});
    fake.windows.answers = {vbYes};
    form.cmdDelete.UserClick();
    EXPECT_EQ(Content(), "");
    EXPECT_EQ(RemindersValid, True);
    EXPECT_EQ(RemCount, 0);
    EXPECT_EQ(Fields(), "|2004-3-7|||0");
    EXPECT_EQ(Enabled(), "Add ");
    EXPECT_TRUE(main.reminderTimer);
}

TEST_F(ReminderCommandsTest, ClosingWithoutChangesClosesAtOnce)
{
    Open({});
    form.cmdClose.UserClick();
    EXPECT_EQ(Boxes(), Lines{});
    EXPECT_FALSE(form.IsLoaded());
}

TEST_F(ReminderCommandsTest, ClosingWithChangesAsksAndCancelKeepsTheEditor)
{
    Open(Three());
    fake.windows.answers = {vbCancel};
    form.cmdClose.UserClick();
    EXPECT_EQ(Boxes(), Lines{"Do you want to save changes ?"});
    EXPECT_EQ(fake.windows.boxes[0].style, SaveQuestion);
    EXPECT_EQ(fake.windows.boxes[0].title, "Voxmate - Reminders");
    EXPECT_TRUE(form.IsShown());
    fake.windows.answers = {vbNo};
    form.cmdClose.UserClick();
    EXPECT_FALSE(form.IsLoaded());
    EXPECT_EQ(Content(), Slots(Three()));
}

TEST_F(ReminderCommandsTest, YesUpdatesTheSelectedReminderFirstAndThenCloses)
{
    Open(Three());
    form.txtTitle.UserEdit("Ring");
    fake.windows.answers = {vbYes, vbYes};
    form.cmdClose.UserClick();
    EXPECT_EQ(Boxes(),
              (Lines{"Do you want to save changes ?", "Are you sure you want to update the selected reminder ?"}));
    EXPECT_FALSE(form.IsLoaded());
    std::vector<ReminderFields> changed = Three();
    changed[0][0] = "Ring";
    EXPECT_EQ(Content(), Slots(changed));
}

TEST_F(ReminderCommandsTest, TheWindowsCloseBoxAsksTheSameQuestion)
{
    Open(Three());
    fake.windows.answers = {vbCancel, vbNo};
    form.UserClose();
    EXPECT_TRUE(form.IsShown());
    form.UserClose();
    EXPECT_EQ(Boxes(), Lines(2, "Do you want to save changes ?"));
    EXPECT_FALSE(form.IsLoaded());
}

TEST_F(ReminderCommandsTest, AfterAnUpdateThereIsNothingToAskAbout)
{
    Open(Three());
    fake.windows.answers = {vbYes};
    form.cmdUpdate.UserClick();
    fake.windows.boxes.clear();
    form.cmdClose.UserClick();
    EXPECT_EQ(Boxes(), Lines{});
    EXPECT_FALSE(form.IsLoaded());
}

TEST_F(ReminderCommandsTest, AnEditorOpenedAgainBeginsAnew)
{
    Open(Three());
    form.lstvReminders.UserColumnClick(2);
    form.txtTitle.UserEdit("left behind");
    fake.windows.answers = {vbNo};
    form.cmdClose.UserClick();
    form.Show();
    EXPECT_EQ(Rows(), Lines{});
    EXPECT_EQ(Fields(), "|2004-3-7|||0");
    EXPECT_EQ(Enabled(), "Add ");
    EXPECT_FALSE(form.lstvReminders.Sorted.get());
    EXPECT_EQ(form.lstvReminders.SortKey.get(), 0);
    EXPECT_FALSE(form.lstvReminders.FullRowSelect.get());
}

TEST_F(ReminderCommandsTest, TextsThatDoNotFitTheirSlotAreRefusedAndNothingIsLost)
{
    Open(Three());
    Fill(std::string(50, 't'), "16:30", std::string(50, 'd'));
    form.cmdAdd.UserClick();
    ASSERT_EQ(fake.windows.boxes.size(), 1U);
    EXPECT_NE(fake.windows.boxes[0].text.find("Error 59 - Bad record length"), std::string::npos);
    EXPECT_EQ(Content(), Slots(Three()));
    EXPECT_EQ(form.txtDesc.Text.get(), std::string(50, 'd'));
    EXPECT_TRUE(form.cmdAdd.Enabled.get());
    form.txtDesc.UserEdit(std::string(49, 'd'));
    form.cmdAdd.UserClick();
    EXPECT_EQ(Content().size(), 4U * 128U);
}

TEST_F(ReminderCommandsTest, ASaveThatFailsWhileClosingKeepsTheEditorWithWhatWasTyped)
{
    Open(Three());
    form.txtTitle.UserEdit("Ring");
    fake.files.failures.emplace("Put 2", RuntimeError(61, "Disk full"));
    fake.windows.answers = {vbYes, vbYes};
    form.cmdClose.UserClick();
    ASSERT_EQ(fake.windows.boxes.size(), 3U);
    EXPECT_NE(fake.windows.boxes[2].text.find("Error 61 - Disk full"), std::string::npos);
    EXPECT_TRUE(form.IsShown());
    EXPECT_EQ(form.txtTitle.Text.get(), "Ring");
    EXPECT_TRUE(form.cmdUpdate.Enabled.get());
    EXPECT_EQ(Content(), Slots(Three()));
    EXPECT_EQ(RemTitles[1], "Call");
}

TEST_F(ReminderCommandsTest, AnEditorWhoseListIsNoLongerTheFilesWritesNothing)
{
    Open(Three());
    const std::string bad = Slots(Three()) + Slot({"Bad", "31", "02", "2004", "09", "05", "x", "N"});
    // While the question is up another hand changes the file behind the reminders that the list has.
    fake.windows.whileBoxIsUp = [&](const auto& box) {
        if (box.style == Question)
            fake.files.texts[file] = bad;
    };
    fake.files.failures.emplace("OpenRandom C:\\Voxmate\\VoxmateReminders.tmp 128",
                                RuntimeError(70, "Permission denied"));
    fake.windows.answers = {vbYes, vbNo};
    form.cmdDelete.UserClick();
    EXPECT_EQ(Content(), bad);
    EXPECT_EQ(RemindersValid, False);
    // The editor is still there, with a list that is no longer the file's: nothing may be written from it.
    fake.files.failures.clear();
    fake.windows.whileBoxIsUp = nullptr;
    fake.windows.answers = {vbYes, vbNo};
    form.cmdDelete.UserClick();
    Fill();
    fake.windows.answers = {vbNo};
    form.cmdAdd.UserClick();
    fake.windows.answers = {vbYes, vbNo};
    form.cmdUpdate.UserClick();
    EXPECT_EQ(Content(), bad);
}

TEST_F(ReminderCommandsTest, AReminderThatAnotherProgramHasMovedIsTheOneThatIsChangedAndDeleted)
{
    Open(Three());
    std::vector<ReminderFields> moved{Three()[1], Three()[0], Three()[2]};
    fake.files.texts[file] = Slots(moved);
    LoadReminders(false, 0); // as an answer to an announcement does
    form.txtTitle.UserEdit("Ring");
    fake.windows.answers = {vbYes, vbYes};
    form.cmdUpdate.UserClick();
    moved[1][0] = "Ring";
    EXPECT_EQ(Content(), Slots(moved));

    Open(Three());
    fake.files.texts[file] = Slots({Three()[1], Three()[0], Three()[2]});
    LoadReminders(false, 0);
    fake.windows.answers = {vbYes};
    form.cmdDelete.UserClick();
    EXPECT_EQ(Content(), Slots({Three()[1], Three()[2]}));
}

TEST_F(ReminderCommandsTest, AReminderIsToldFromOthersOfTheSameTextsByItsDate)
{
    ReminderFields later = Three()[0];
    later[3] = "2006";
    ReminderFields last = Three()[0];
    last[3] = "2007";
    Open({Three()[0], later, last});
    // Another program has deleted the one that is shown.
    fake.files.texts[file] = Slots({later, last});
    LoadReminders(false, 0);
    fake.windows.answers = {vbYes};
    form.cmdDelete.UserClick();
    EXPECT_EQ(Content(), Slots({later, last}));
}

TEST_F(ReminderCommandsTest, AReminderThatAnotherProgramHasDeletedIsNotChangedAndWhatWasTypedStays)
{
    Open(Three());
    fake.files.texts[file] = Slots({Three()[1], Three()[2]});
    LoadReminders(false, 0);
    form.txtTitle.UserEdit("Ring");
    fake.windows.answers = {vbYes, vbYes};
    form.cmdUpdate.UserClick();
    EXPECT_EQ(Content(), Slots({Three()[1], Three()[2]}));
    EXPECT_EQ(form.txtTitle.Text.get(), "Ring");
    ASSERT_FALSE(fake.windows.boxes.empty());
    EXPECT_EQ(fake.windows.boxes.back().text, "The reminders have been read anew from their file, and your last change "
                                              "is not among them. Please make it again.");
    fake.windows.answers = {vbYes};
    form.cmdDelete.UserClick();
    EXPECT_EQ(Content(), Slots({Three()[1], Three()[2]}));
}

TEST_F(ReminderCommandsTest, AnInvalidFileFoundByTheReloadUnloadsTheEditorWhileItsHandlerRuns)
{
    Open(Three());
    Fill();
    fake.files.log = &fake.log;
    // The record that is added is followed by one that is none.
    fake.files.texts[file] +=
        Slot({"", "", "", "", "", "", "", ""}) + Slot({"Bad", "31", "02", "2004", "09", "05", "x", "N"});
    fake.windows.answers = {vbNo};
    form.cmdAdd.UserClick();
    EXPECT_FALSE(form.IsLoaded());
    EXPECT_EQ(RemindersValid, False);
    ASSERT_EQ(fake.windows.boxes.size(), 2U);
    EXPECT_TRUE(fake.windows.boxes[0].text.starts_with("Reminders file is not having valid data."));
}

TEST_F(ReminderCommandsTest, NoCommandBeginsWhileAnotherOneSpeaks)
{
    Open(Three());
    Settings.ReadMessages = 1;
    int depth = 0;
    fake.windows.whileBoxIsUp = [&](const auto&) {
        if (++depth > 1)
            return;
        form.cmdUpdate.UserClick();
        form.cmdDelete.UserClick();
        form.cmdAdd.UserClick();
        form.cmdClose.UserClick();
        form.UserClose();
    };
    fake.windows.answers = {vbNo};
    form.cmdDelete.UserClick();
    EXPECT_EQ(Boxes(), Lines{"Are you sure you want to delete the selected reminder ?"});
    EXPECT_TRUE(form.IsShown());
    EXPECT_EQ(Content(), Slots(Three()));
}

TEST_F(ReminderCommandsTest, AListThatIsFullTakesNoMore)
{
    std::string bytes;
    for (int i = 0; i < 32767; ++i)
        bytes += Slot(Three()[0]);
    fake.files.texts[file] = bytes;
    ShowAllReminders();
    fake.windows.boxes.clear();
    EXPECT_EQ(form.lstvReminders.ListItems().size(), 32767U);
    Fill();
    form.cmdAdd.UserClick();
    ASSERT_EQ(fake.windows.boxes.size(), 1U);
    EXPECT_NE(fake.windows.boxes[0].text.find("Error 6 - Overflow"), std::string::npos);
    EXPECT_EQ(Content(), bytes);
}

} // namespace voxmate::editor_test
