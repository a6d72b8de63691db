#include "ReminderTest.h"

namespace voxmate
{

namespace
{

using ReminderSaveTest = ReminderTest;

TEST_F(ReminderSaveTest, ASaveGoesThroughTheTemporaryFileInItsOrder)
{
    Load({Call(), Call()});
    fake.files.log = &fake.log;
    fake.files.texts[temp] = "left behind";
    SaveReminders(0);
    EXPECT_EQ(fake.log,
              (Lines{"OpenRandom C:\\Voxmate\\VoxmateReminders.txt 128", "DeleteFile C:\\Voxmate\\VoxmateReminders.tmp",
                     "OpenRandom C:\\Voxmate\\VoxmateReminders.tmp 128", "Put 1", "Put 2",
                     "Flush C:\\Voxmate\\VoxmateReminders.tmp", "Close C:\\Voxmate\\VoxmateReminders.tmp",
                     "Close C:\\Voxmate\\VoxmateReminders.txt", "DeleteFile C:\\Voxmate\\VoxmateReminders.txt",
                     "MoveFile C:\\Voxmate\\VoxmateReminders.tmp to C:\\Voxmate\\VoxmateReminders.txt"}));
    EXPECT_EQ(Content(), Slot(Call()) + Slot(Call()));
    EXPECT_FALSE(fake.files.FileExists(temp));
}

TEST_F(ReminderSaveTest, LeavingOutTheSecondOfFourClosesTheGap)
{
    ReminderFields a = Call();
    ReminderFields b = Call();
    ReminderFields c = Call();
    ReminderFields d = Call();
    a[0] = "A";
    b[0] = "B";
    c[0] = "C";
    d[0] = "D";
    Load({a, b, c, d});
    fake.files.log = &fake.log;
    SaveReminders(2);
    EXPECT_EQ(Content(), Slot(a) + Slot(c) + Slot(d));
    EXPECT_EQ(Lines(fake.log.begin() + 2, fake.log.begin() + 5), (Lines{"Put 1", "Put 2", "Put 3"}));
    LoadReminders(false, 0);
    EXPECT_EQ(TitlesInList(), (Lines{"A", "C", "D"}));
    SaveReminders(3);
    EXPECT_EQ(TitlesInFile(file), (Lines{"A", "C"}));
    LoadReminders(false, 0);
    SaveReminders(1);
    EXPECT_EQ(TitlesInFile(file), Lines{"C"});
    LoadReminders(false, 0);
    SaveReminders(1);
    EXPECT_EQ(Content(), "");
    LoadReminders(false, 0);
    EXPECT_EQ(RemCount, 0);
    EXPECT_NE(RemindersValid, False);
}

TEST_F(ReminderSaveTest, WhatIsStoredIsWrittenWithPaddedNumbers)
{
    Load({Call(), Call()});
    StoreReminder(2, {"Lunch", 1, 2, 300, 4, 5, "Soup", true});
    StoreReminder(3, {"Nobody", 1, 2, 300, 4, 5, "", true}); // there is no third
    StoreReminder(0, {"Nobody", 1, 2, 300, 4, 5, "", true});
    SaveReminders(0);
    EXPECT_EQ(Content(), Slot(Call()) + Slot({"Lunch", "01", "02", "0300", "04", "05", "Soup", "Y"}));
}

TEST_F(ReminderSaveTest, AnAddedReminderStandsBehindTheLastOneInPlace)
{
    Load({Call(), Call()});
    fake.files.log = &fake.log;
    AppendReminder({"Tea", 1, 2, 2004, 4, 5, "", true});
    EXPECT_EQ(fake.log,
              (Lines{"OpenRandom C:\\Voxmate\\VoxmateReminders.txt 128", "Close C:\\Voxmate\\VoxmateReminders.txt",
                     "OpenRandom C:\\Voxmate\\VoxmateReminders.txt 128", "Put 3",
                     "Flush C:\\Voxmate\\VoxmateReminders.txt", "Close C:\\Voxmate\\VoxmateReminders.txt"}));
    EXPECT_EQ(Content(), Slot(Call()) + Slot(Call()) + Slot({"Tea", "01", "02", "2004", "04", "05", "", "Y"}));
}

TEST_F(ReminderSaveTest, TitleAndDescriptionTakeUp99BytesAtMost)
{
    Load({Call()});
    const std::string before = Content();
    fake.files.log = &fake.log;
    const std::string title(50, 't');
    Reminder reminder{title, 7, 3, 2004, 9, 5, std::string(49, 'd'), false};
    AppendReminder(reminder);
    const std::string full = before + Slot({title, "07", "03", "2004", "09", "05", std::string(49, 'd'), "N"});
    EXPECT_EQ(Content(), full);
    LoadReminders(false, 0);
    ASSERT_EQ(RemCount, 2);
    EXPECT_EQ(RemDescs[2], std::string(49, 'd'));

    fake.log.clear();
    reminder.Description += 'd';
    for (const bool append : {true, false}) {
        try {
            if (append) {
                AppendReminder(reminder);
            } else {
                StoreReminder(2, reminder);
                SaveReminders(0);
            }
            ADD_FAILURE() << "nothing raised";
        } catch (const RuntimeError& error) {
            EXPECT_EQ(error.Number, 59);
            EXPECT_EQ(error.Description, "Bad record length");
        }
    }
    EXPECT_TRUE(fake.log.empty()); // nothing was opened, deleted or written
    EXPECT_EQ(Content(), full);
    SaveReminders(2); // without it all fit
    EXPECT_EQ(Content(), before);
}

TEST_F(ReminderSaveTest, TheLengthsAreBytesNotCharacters)
{
    Load({});
    Reminder reminder{std::string(10, 't'), 7, 3, 2004, 9, 5, "", false};
    for (int i = 0; i < 45; ++i)
        reminder.Description += "ü";
    EXPECT_THROW(AppendReminder(reminder), RuntimeError); // 55 characters, 100 bytes
    reminder.Title.pop_back();
    AppendReminder(reminder);
    LoadReminders(false, 0);
    EXPECT_EQ(RemDescs.at(1), reminder.Description);
}

TEST_F(ReminderSaveTest, ATooLongReminderIsToldOfInWordsAndTheListIsAsTheFile)
{
    Load({Call(), Call()});
    const std::string before = Content();
    StoreReminder(2, {"Meeting", 7, 3, 2004, 9, 5, std::string(93, 'd'), false});
    EXPECT_FALSE(TrySaveReminders(0));
    const std::string reason =
        "The reminders could not be saved: the title and the description of \"Meeting\" are too long. Together they "
        "take up 100 bytes, and there is room for 99. A letter from A to Z, a digit or a blank takes up one byte, any "
        "other character up to four."
        "\r\n\r\nTheir file is as it was before this change:\r\nC:\\Voxmate\\VoxmateReminders.txt\r\n\r\n"
        "Error 59 - Bad record length";
    ASSERT_EQ(fake.windows.boxes.size(), 1u);
    EXPECT_EQ(fake.windows.boxes[0].text, reason);
    EXPECT_EQ(fake.windows.boxes[0].style, vbOKOnly + vbExclamation);
    EXPECT_EQ(fake.windows.boxes[0].title, "Voxmate - Reminders");
    EXPECT_EQ(TitlesInList(), (Lines{"Call", "Call"}));
    EXPECT_TRUE(RemindersAreOn());
    EXPECT_FALSE(TryAppendReminder({"Meeting", 7, 3, 2004, 9, 5, std::string(93, 'd'), false}));
    EXPECT_EQ(fake.windows.boxes.at(1).text, reason);
    EXPECT_EQ(Content(), before);
    EXPECT_EQ(IsBusy, False);
}

TEST_F(ReminderSaveTest, AFailureAtAnyStepOfASaveLosesNothing)
{
    const std::vector<std::string> steps{
        "DeleteFile " + temp, "OpenRandom " + temp + " 128", "Put 1", "Put 3", "Flush " + temp,
        "Close " + temp,      "DeleteFile " + file};
    for (const std::string& step : steps) {
        fake.files.failures.clear();
        Load({Call(), Call(), Call()});
        fake.files.texts[temp] = "left behind";
        const std::string before = Content();
        StoreReminder(1, {"Changed", 7, 3, 2004, 9, 5, "", true});
        fake.files.failures = {{step, DiskFull()}};
        fake.windows.boxes.clear();
        EXPECT_FALSE(TrySaveReminders(0)) << step;
        ASSERT_EQ(fake.windows.boxes.size(), 1u) << step;
        EXPECT_EQ(fake.windows.boxes[0].text,
                  "The reminders could not be saved: the disk is full."
                  "\r\n\r\nTheir file is as it was before this change:\r\nC:\\Voxmate\\VoxmateReminders.txt\r\n\r\n"
                  "Error 61 - Disk full")
            << step;
        EXPECT_EQ(Content(), before) << step;
        EXPECT_EQ(TitlesInList(), (Lines{"Call", "Call", "Call"})) << step;
        EXPECT_TRUE(RemindersAreOn()) << step;
        // Half a copy is never left to be taken for a whole one.
        EXPECT_TRUE(!fake.files.FileExists(temp) || step == "DeleteFile " + temp) << step;
        EXPECT_TRUE(fake.files.locks.empty()) << step;
        fake.files.failures.clear();
        StoreReminder(1, {"Changed", 7, 3, 2004, 9, 5, "", true});
        EXPECT_TRUE(TrySaveReminders(0)) << step;
        EXPECT_EQ(TitlesInFile(file), (Lines{"Changed", "Call", "Call"})) << step;
    }
}

TEST_F(ReminderSaveTest, AFailureAtAnyStepOfAnAdditionLosesNothing)
{
    for (const std::string& step : {"OpenRandom " + file + " 128", std::string("Put 2")}) {
        fake.files.failures.clear();
        Load({Call()});
        fake.files.failures = {{step, DeviceIOError()}};
        fake.windows.boxes.clear();
        EXPECT_FALSE(TryAppendReminder({"Tea", 1, 2, 2004, 4, 5, "", true})) << step;
        ASSERT_EQ(fake.windows.boxes.size(), 1u) << step;
        EXPECT_TRUE(
            fake.windows.boxes[0].text.starts_with("The reminders could not be saved: the disk reports an error.\r\n"))
            << fake.windows.boxes[0].text;
        EXPECT_EQ(TitlesInFile(file), Lines{"Call"}) << step;
    }
}

TEST_F(ReminderSaveTest, AFileInUseIsToldOfOnceAndRemindersAreOffUntilItIsFree)
{
    Load({Call(), Call()});
    StoreReminder(2, {"Changed", 7, 3, 2004, 9, 5, "", true});
    fake.files.failures = {{"DeleteFile " + file, PermissionDenied()},
                           {"OpenRandom " + file + " 128", PermissionDenied()}};
    EXPECT_FALSE(TrySaveReminders(0));
    ASSERT_EQ(fake.windows.boxes.size(), 1u);
    EXPECT_EQ(fake.windows.boxes[0].text,
              "The reminders could not be saved: another program has the file open, or it may not be changed."
              "\r\n\r\nTheir file is as it was before this change:\r\nC:\\Voxmate\\VoxmateReminders.txt\r\n\r\n"
              "Reminders are disabled until the file has been read.\r\nError 70 - Permission denied");
    EXPECT_TRUE(RemindersAreOff());
    EXPECT_EQ(TitlesInFile(file), (Lines{"Call", "Call"}));
}

TEST_F(ReminderSaveTest, AnUnexpectedErrorIsToldOfByItsDescription)
{
    Load({Call()});
    fake.files.failures = {{"Put 1", RuntimeError(52, "Bad file name or number")}};
    EXPECT_FALSE(TrySaveReminders(0));
    EXPECT_TRUE(
        fake.windows.boxes.at(0).text.starts_with("The reminders could not be saved: Bad file name or number.\r\n"));
}

TEST_F(ReminderSaveTest, ASaveWhoseRenamingFailsIsCompletedAsSoonAsItCanBe)
{
    const std::string rename = "MoveFile " + temp + " to " + file;
    Load({Call(), Call()});
    StoreReminder(2, {"Changed", 7, 3, 2004, 9, 5, "", true});
    fake.files.failures = {{rename, PermissionDenied()}};
    EXPECT_FALSE(TrySaveReminders(0));
    EXPECT_FALSE(fake.files.FileExists(file)); // no empty one was made in its place
    EXPECT_EQ(TitlesInFile(temp), (Lines{"Call", "Changed"}));
    ASSERT_EQ(fake.windows.boxes.size(), 1u);
    EXPECT_EQ(fake.windows.boxes[0].text,
              "The reminders could not be saved: another program has the file open, or it may not be changed."
              "\r\n\r\nAll of them are in this file:\r\nC:\\Voxmate\\VoxmateReminders.tmp\r\n\r\n"
              "Reminders are disabled until the file has been read.\r\nError 70 - Permission denied");
    fake.files.failures.clear();
    LoadReminders(false, 0);
    EXPECT_EQ(TitlesInList(), (Lines{"Call", "Changed"}));
    EXPECT_EQ(TitlesInFile(file), (Lines{"Call", "Changed"}));
    EXPECT_FALSE(fake.files.FileExists(temp));
}

TEST_F(ReminderSaveTest, ADeletionThatFailsThoughTheFileIsGoneLeavesTheNewOne)
{
    Load({Call(), Call()});
    StoreReminder(2, {"Changed", 7, 3, 2004, 9, 5, "", true});
    fake.files.whenCalled = [this](const std::string& call) {
        if (call == "DeleteFile " + file) {
            fake.files.texts.erase(file);
            throw DeviceIOError();
        }
    };
    EXPECT_TRUE(TrySaveReminders(0)); // it needed no more than its name
    EXPECT_TRUE(fake.windows.boxes.empty());
    EXPECT_EQ(TitlesInFile(file), (Lines{"Call", "Changed"}));
}

TEST_F(ReminderSaveTest, AStartAfterASaveWasCutOffBeforeRenamingFindsEveryReminder)
{
    fake.files.texts[temp] = Slot(Call()) + Slot(Call());
    LoadReminders(false, 0);
    EXPECT_EQ(RemCount, 2);
    EXPECT_EQ(Content(), Slot(Call()) + Slot(Call()));
    EXPECT_FALSE(fake.files.FileExists(temp));
}

TEST_F(ReminderSaveTest, ACopyLeftBehindBesideAGoodFileGoesAway)
{
    fake.files.texts[temp] = Slot(Call());
    Load({Call(), Call()});
    EXPECT_EQ(RemCount, 2);
    EXPECT_FALSE(fake.files.FileExists(temp));
    // Where it cannot go, it does no harm.
    fake.files.texts[temp] = Slot(Call());
    fake.files.failures = {{"DeleteFile " + temp, PermissionDenied()}};
    Load({Call(), Call()});
    EXPECT_EQ(RemCount, 2);
    EXPECT_TRUE(fake.windows.boxes.empty());
}

TEST_F(ReminderSaveTest, ACopyLeftBehindBesideAnInvalidFileStaysWhileThatDoes)
{
    fake.files.texts[temp] = Slot(Call());
    Load({{"Bad", "30", "02", "2004", "09", "05", "Bank", "N"}});
    EXPECT_EQ(fake.files.texts.at(temp), Slot(Call()));
}

TEST_F(ReminderSaveTest, HalfACopyIsNotTakenForTheFileAndKeptUnderADatedName)
{
    const std::string kept = "C:\\Voxmate\\VoxmateReminders-1975-03-17-140509.txt";
    const std::string whole = Slot(Call()) + Slot(Call());
    // Cut off within a slot, and a block that never reached the disk.
    for (const std::string& half : {whole.substr(0, 200), whole.substr(0, 128) + std::string(128, '\0'),
                                    std::string(128, '\0') + whole.substr(128)}) {
        fake.files.texts = {{temp, half}};
        LoadReminders(false, 0);
        EXPECT_EQ(RemCount, 0);
        EXPECT_NE(RemindersValid, False);
        EXPECT_FALSE(fake.files.FileExists(file));
        EXPECT_FALSE(fake.files.FileExists(temp));
        EXPECT_EQ(fake.files.texts.at(kept), half);
    }
    EXPECT_TRUE(fake.windows.boxes.empty());
}

TEST_F(ReminderSaveTest, AWholeCopyIsTakenWhateverItHolds)
{
    // A snooze across midnight writes such a month, and a deletion may leave no reminder at all.
    for (const std::string& copy :
         {Slot(Call()) + Slot({"Tea", "11", "-08", "2005", "00", "10", "", "N"}), std::string()}) {
        fake.files.texts = {{temp, copy}};
        LoadReminders(false, 0);
        EXPECT_EQ(Content(), copy);
    }
}

TEST_F(ReminderSaveTest, AnAdditionAfterACutOffSaveCompletesThatFirst)
{
    Load({Call()});
    fake.files.texts[temp] = fake.files.texts.at(file);
    fake.files.texts.erase(file);
    AppendReminder({"Tea", 1, 2, 2004, 4, 5, "", true});
    EXPECT_EQ(TitlesInFile(file), (Lines{"Call", "Tea"}));
}

TEST_F(ReminderSaveTest, AFileThatWasDeletedMeanwhileIsWrittenAnew)
{
    Load({Call(), Call()});
    fake.files.texts.erase(file);
    EXPECT_TRUE(TrySaveReminders(0));
    EXPECT_EQ(Content(), Slot(Call()) + Slot(Call()));
}

TEST_F(ReminderSaveTest, WithoutAnyFileTheListInMemoryIsKept)
{
    Load({Call(), Call()});
    fake.files.texts.erase(file);
    fake.files.failures = {{"OpenRandom " + temp + " 128", PathNotFound()}};
    EXPECT_FALSE(TrySaveReminders(0));
    EXPECT_EQ(fake.windows.boxes.at(0).text, "The reminders could not be saved: the folder of the file does not exist."
                                             "\r\n\r\nThey are kept in memory until Voxmate ends. Their file should be:"
                                             "\r\nC:\\Voxmate\\VoxmateReminders.txt\r\n\r\nError 76 - Path not found");
    EXPECT_EQ(TitlesInList(), (Lines{"Call", "Call"}));
    EXPECT_FALSE(fake.files.FileExists(file));
    fake.files.failures.clear();
    EXPECT_TRUE(TrySaveReminders(0));
    EXPECT_EQ(Content(), Slot(Call()) + Slot(Call()));
}

TEST_F(ReminderSaveTest, AnInvalidFileIsNeverWrittenOverByTheListThatCouldNotBeReadFromIt)
{
    Load({Call(), Call()});
    Store({Call(), {"Bad", "30", "02", "2004", "09", "05", "Bank", "N"}, Call()});
    const std::string bad = Content();
    LoadReminders(false, 0);
    fake.windows.boxes.clear();
    EXPECT_FALSE(TrySaveReminders(0));
    EXPECT_FALSE(TryAppendReminder({"Tea", 1, 2, 2004, 4, 5, "", true}));
    EXPECT_EQ(Content(), bad);
    ASSERT_EQ(fake.windows.boxes.size(), 4u);
    EXPECT_EQ(fake.windows.boxes[0].text, invalidFileQuestion);
    EXPECT_EQ(fake.windows.boxes[2].text, invalidFileQuestion);

    // Mended, or emptied, it takes an addition at once; a change of what is no longer there has to be made again.
    Store({Call()});
    fake.windows.boxes.clear();
    EXPECT_FALSE(TrySaveReminders(0));
    ASSERT_EQ(fake.windows.boxes.size(), 1u);
    EXPECT_EQ(fake.windows.boxes[0].text, "The reminders have been read anew from their file, and your last change is "
                                          "not among them. Please make it again.");
    RemindersValid = False;
    RemCount = 0;
    EXPECT_TRUE(TryAppendReminder({"Tea", 1, 2, 2004, 4, 5, "", true}));
    EXPECT_EQ(TitlesInFile(file), (Lines{"Call", "Tea"}));
}

} // namespace

} // namespace voxmate
