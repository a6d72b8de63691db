// What is entrusted is kept: beside other programs, on a full disk, in a file that is held, and from older systems.
#include "ReminderTest.h"

#include <algorithm>

namespace voxmate
{

namespace
{

// The clock stands at 14:05:09 on Monday, 17 March 1975.
class ReminderKeepingTest : public ReminderTest
{
protected:
    static ReminderFields Of(const std::string& title, const std::string& done = "N")
    {
        return {title, "17", "03", "1975", "10", "00", "", done};
    }
    static Reminder As(const std::string& title, bool done = false) { return {title, 17, 3, 1975, 10, 0, "", done}; }
    /// Announces what is due; each in an alert window.
    void Tick()
    {
        fake.log.clear();
        RemTimer_Timer();
    }
    Lines Announced() const
    {
        Lines shown;
        for (const std::string& call : fake.log)
            if (const std::size_t text = call.find(": "); call.starts_with("Alert "))
                shown.push_back(call.substr(6, call.find(' ', 6) - 6) + " " +
                                call.substr(text + 2, call.find('\r') - text - 2));
        return shown;
    }
    /// A second passes so often while something is to be tried again.
    void Seconds(int seconds)
    {
        for (int i = 0; i < seconds && window.reminderRetry; ++i)
            RetryReminders();
    }
    void CloseAlerts()
    {
        for (fakes::FakeAlertWindow* alert : window.alerts)
            alert->visible = false;
    }
};

// Other programs.

TEST_F(ReminderKeepingTest, TheFileIsHeldAcrossEveryLoadSaveAndAddition)
{
    Load({Call()});
    fake.files.log = &fake.log;
    fake.files.logLocks = true;
    const auto isHeld = [this](const auto& work) {
        fake.log.clear();
        work();
        return fake.log.size() > 3 && fake.log.front() == "Lock " + file && fake.log.back() == "Unlock " + file &&
               std::count(fake.log.begin(), fake.log.end(), "Lock " + file) == 1;
    };
    EXPECT_TRUE(isHeld([this] { LoadReminders(false, 0); }));
    EXPECT_TRUE(isHeld([this] { SaveReminders(0); }));
    EXPECT_TRUE(isHeld([this] { AppendReminder(As("Tea")); }));
    EXPECT_TRUE(fake.files.locks.empty());
}

TEST_F(ReminderKeepingTest, WhatAnotherProgramHasAddedStaysWhenTheListIsSaved)
{
    Load({Of("A"), Of("B")});
    Store({Of("A"), Of("B"), Of("Another's")});
    StoreReminder(2, As("B", true));
    EXPECT_TRUE(TrySaveReminders(0));
    EXPECT_EQ(Content(), Slot(Of("A")) + Slot(Of("B", "Y")) + Slot(Of("Another's")));
    EXPECT_TRUE(fake.windows.boxes.empty());
}

TEST_F(ReminderKeepingTest, AChangeGoesToItsReminderWhereverAnotherProgramHasMovedIt)
{
    Load({Of("A"), Of("B"), Of("C")});
    Store({Of("B"), Of("C"), Of("Another's")});
    StoreReminder(2, As("B", true));
    EXPECT_TRUE(TrySaveReminders(0));
    EXPECT_EQ(Content(), Slot(Of("B", "Y")) + Slot(Of("C")) + Slot(Of("Another's")));
}

TEST_F(ReminderKeepingTest, ADeletionTakesItsReminderWhereverAnotherProgramHasMovedIt)
{
    Load({Of("A"), Of("B"), Of("C")});
    Store({Of("B"), Of("C"), Of("Another's")});
    EXPECT_TRUE(TrySaveReminders(3));
    EXPECT_EQ(Content(), Slot(Of("B")) + Slot(Of("Another's")));
}

TEST_F(ReminderKeepingTest, AnAdditionStandsBehindWhatAnotherProgramHasAdded)
{
    Load({Of("A")});
    Store({Of("A"), Of("Another's")});
    EXPECT_TRUE(TryAppendReminder(As("Tea")));
    EXPECT_EQ(TitlesInFile(file), (Lines{"A", "Another's", "Tea"}));
    Store({Of("Another's")});
    EXPECT_TRUE(TryAppendReminder(As("Milk")));
    EXPECT_EQ(TitlesInFile(file), (Lines{"Another's", "Milk"}));
}

TEST_F(ReminderKeepingTest, WhatAnotherProgramHasChangedIsNotWrittenOverAndTheUserIsToldSo)
{
    for (const bool deletes : {false, true}) {
        Load({Of("A"), Of("B")});
        Store({Of("A"), Of("Another's")});
        const std::string before = Content();
        fake.windows.boxes.clear();
        if (!deletes)
            StoreReminder(2, As("Mine"));
        EXPECT_FALSE(TrySaveReminders(deletes ? 2 : 0));
        EXPECT_EQ(Content(), before);
        EXPECT_EQ(TitlesInList(), (Lines{"A", "Another's"}));
        ASSERT_EQ(fake.windows.boxes.size(), 1u);
        EXPECT_EQ(fake.windows.boxes[0].text,
                  "The reminders have been read anew from their file, and your last change is "
                  "not among them. Please make it again.");
    }
}

TEST_F(ReminderKeepingTest, WhatAnotherProgramHasLeftInvalidIsAskedAboutAndNotWrittenOver)
{
    Load({Of("A"), Of("B")});
    ReminderFields bad = Of("Bad");
    bad[2] = "13";
    Store({Of("A"), bad});
    const std::string before = Content();
    EXPECT_FALSE(TryAppendReminder(As("Tea")));
    EXPECT_EQ(Content(), before);
    EXPECT_EQ(fake.windows.boxes.at(0).text, invalidFileQuestion);
}

TEST_F(ReminderKeepingTest, TheSameSaveTwiceIsNoChangeOfAnotherProgram)
{
    Load({Of("A"), Of("B")});
    StoreReminder(1, As("A", true));
    EXPECT_TRUE(TrySaveReminders(0));
    StoreReminder(1, As("A", false));
    EXPECT_TRUE(TrySaveReminders(0));
    EXPECT_EQ(Content(), Slot(Of("A")) + Slot(Of("B")));
    EXPECT_TRUE(fake.windows.boxes.empty());
}

TEST_F(ReminderKeepingTest, AnAdditionToAFileThatHasVanishedBringsTheOthersBack)
{
    Load({Of("A"), Of("B")});
    fake.files.texts.erase(file);
    EXPECT_TRUE(TryAppendReminder(As("Tea")));
    EXPECT_EQ(TitlesInFile(file), (Lines{"A", "B", "Tea"}));
}

// A symbolic link.

TEST_F(ReminderKeepingTest, WhatASymbolicLinkLeadsToIsReplacedBesideItself)
{
    const std::string target = "D:\\Cloud\\My list.txt";
    fake.files.links[file] = target;
    fake.files.texts[target] = Slot(Of("A"));
    window.CheckReminderMenus(true, false);
    LoadReminders(false, 0);
    fake.files.log = &fake.log;
    fake.log.clear();
    EXPECT_TRUE(TrySaveReminders(0));
    EXPECT_EQ(FileCalls(),
              (Lines{"OpenRandom " + target + " 128", "OpenRandom D:\\Cloud\\My list.txt.tmp 128", "Put 1",
                     "Flush D:\\Cloud\\My list.txt.tmp", "Close D:\\Cloud\\My list.txt.tmp", "Close " + target,
                     "DeleteFile " + target, "MoveFile D:\\Cloud\\My list.txt.tmp to " + target}));
    EXPECT_TRUE(TryAppendReminder(As("Tea")));
    EXPECT_EQ(TitlesInFile(target), (Lines{"A", "Tea"}));
    EXPECT_FALSE(fake.files.texts.contains(file));
}

// Dated copies.

TEST_F(ReminderKeepingTest, TheLatestFiveOfTheEmptiedFilesAreKept)
{
    const std::string bad = Slot({"Bad", "30", "02", "2004", "09", "05", "Bank", "N"});
    const std::string own = "C:\\Voxmate\\VoxmateReminders-mine.txt";
    fake.files.texts[own] = "the user's";
    for (int minute = 10; minute < 17; ++minute) {
        fake.clock.now = {1975, 3, 17, 14, minute, 0};
        fake.files.texts[file] = bad + std::to_string(minute);
        fake.windows.answers = {vbYes};
        LoadReminders(false, 0);
        EXPECT_EQ(Content(), "");
    }
    Lines kept;
    for (const auto& [path, content] : fake.files.texts)
        if (path != file && path != own)
            kept.push_back(path + " " + content.substr(bad.size()));
    const std::string name = "C:\\Voxmate\\VoxmateReminders-1975-03-17-14";
    EXPECT_EQ(kept, (Lines{name + "1200.txt 12", name + "1300.txt 13", name + "1400.txt 14", name + "1500.txt 15",
                           name + "1600.txt 16"}));
    EXPECT_EQ(fake.files.texts.at(own), "the user's");
}

TEST_F(ReminderKeepingTest, TwoEmptiedFilesOfOneSecondAreBothKept)
{
    for (const char* title : {"Bad", "Worse"}) {
        Store({{title, "30", "02", "2004", "09", "05", "Bank", "N"}});
        fake.windows.answers = {vbYes};
        LoadReminders(false, 0);
    }
    EXPECT_EQ(TitlesInFile("C:\\Voxmate\\VoxmateReminders-1975-03-17-140509.txt"), Lines{"Bad"});
    EXPECT_EQ(TitlesInFile("C:\\Voxmate\\VoxmateReminders-1975-03-17-140510.txt"), Lines{"Worse"});
}

TEST_F(ReminderKeepingTest, AFileThatCannotBeKeptIsNotEmptied)
{
    Store({{"Bad", "30", "02", "2004", "09", "05", "Bank", "N"}});
    const std::string before = Content();
    fake.files.failures = {
        {"MoveFile " + file + " to C:\\Voxmate\\VoxmateReminders-1975-03-17-140509.txt", PermissionDenied()}};
    fake.windows.answers = {vbYes};
    LoadReminders(false, 0);
    EXPECT_EQ(Content(), before);
    EXPECT_FALSE(window.reminderTimer);
}

TEST_F(ReminderKeepingTest, AFileThatTheUserHasDeletedWhileAskedIsMadeAnew)
{
    Store({{"Bad", "30", "02", "2004", "09", "05", "Bank", "N"}});
    fake.windows.whileBoxIsUp = [this](const auto&) { fake.files.texts.erase(file); };
    fake.windows.answers = {vbYes};
    LoadReminders(false, 0);
    EXPECT_EQ(Content(), "");
    EXPECT_TRUE(RemindersAreOn());
    EXPECT_EQ(fake.windows.boxes.size(), 1u);
}

// Texts of older systems.

TEST_F(ReminderKeepingTest, TextsThatAreNotUtf8AreShownInTheirCodePageAndSavedByteForByte)
{
    const ReminderFields old{"Caf\xE9 M\xFCller", "17", "03", "1975", "10", "00", "\x80 5 f\xFCr \x93Tee\x94", "N"};
    Load({old, Of("Tee für 2 €")});
    EXPECT_EQ(RemTitles[1], "Café Müller");
    EXPECT_EQ(RemDescs[1], "€ 5 für “Tee”");
    LoadReminders(true, 1);
    EXPECT_EQ(window.editor.rows.at(0), "1|2|Café Müller|1975/03/17|10:00");
    EXPECT_TRUE(TrySaveReminders(0));
    EXPECT_EQ(Content(), Slot(old) + Slot(Of("Tee für 2 €")));

    // An answer changes the flag and nothing else; so do further saves.
    Tick();
    FinishReminder(1, false, 0);
    ReminderFields done = old;
    done[7] = "Y";
    EXPECT_EQ(Content(), Slot(done) + Slot(Of("Tee für 2 €")));
    EXPECT_TRUE(TrySaveReminders(0));
    EXPECT_EQ(Content(), Slot(done) + Slot(Of("Tee für 2 €")));

    // A text that the user has changed is written as all new ones are; the other one stays.
    StoreReminder(1, {"Café Meier", 17, 3, 1975, 10, 0, "€ 5 für “Tee”", true});
    EXPECT_TRUE(TrySaveReminders(0));
    done[0] = "Café Meier";
    EXPECT_EQ(Content(), Slot(done) + Slot(Of("Tee für 2 €")));
    // And again from what is in memory now.
    EXPECT_TRUE(TrySaveReminders(0));
    EXPECT_EQ(Content(), Slot(done) + Slot(Of("Tee für 2 €")));
}

TEST_F(ReminderKeepingTest, AFullSlotOfOlderTextsIsSavedThoughItsTextsAreLongerInUtf8)
{
    ReminderFields old = Of(std::string(50, '\xE9'));
    old[6] = std::string(49, '\xFC');
    Load({old});
    EXPECT_EQ(RemTitles[1].size(), 100u);
    StoreReminder(1, {RemTitles[1], 17, 3, 1975, 10, 0, RemDescs[1], true});
    EXPECT_TRUE(TrySaveReminders(0));
    old[7] = "Y";
    EXPECT_EQ(Content(), Slot(old));
}

TEST_F(ReminderKeepingTest, OlderTextsKeepTheirBytesWhenAnotherProgramHasMovedThem)
{
    const ReminderFields old = Of("Caf\xE9");
    Load({Of("A"), old});
    Store({old, Of("Another's")});
    StoreReminder(2, As("Café", true));
    EXPECT_TRUE(TrySaveReminders(0));
    EXPECT_EQ(Content(), Slot(Of("Caf\xE9", "Y")) + Slot(Of("Another's")));
}

TEST_F(ReminderKeepingTest, ALinkToAFileThatIsCalledLikeACopyKeepsIt)
{
    const std::string target = "D:\\Cloud\\list.tmp";
    fake.files.links[file] = target;
    fake.files.texts[target] = Slot(Of("A"));
    LoadReminders(false, 0);
    EXPECT_EQ(fake.files.texts[target], Slot(Of("A")));
    StoreReminder(1, As("A", true));
    EXPECT_TRUE(TrySaveReminders(0));
    EXPECT_EQ(fake.files.texts[target], Slot(Of("A", "Y")));
}

// Files that cannot be read just now.

TEST_F(ReminderKeepingTest, AFileThatCannotBeReadAgainBeforeASaveIsNotWrittenOver)
{
    Load({Of("A"), Of("B")});
    Tick();
    Store({Of("A"), Of("B"), Of("Another's")});
    const std::string before = Content();
    // Where the file has become another it is read to its end.
    fake.files.failures = {{"Get 4", DeviceIOError()}};
    FinishReminder(1, false, 0);
    Seconds(3);
    EXPECT_EQ(Content(), before);
    EXPECT_FALSE(TryAppendReminder(As("Tea")));
    EXPECT_FALSE(TrySaveReminders(0));
    EXPECT_EQ(Content(), before);
    fake.files.failures.clear();
    Seconds(20);
    EXPECT_EQ(Content(), Slot(Of("A", "Y")) + Slot(Of("B")) + Slot(Of("Another's")));
    EXPECT_TRUE(RemindersAreOn());
}

TEST_F(ReminderKeepingTest, AFileWhoseFolderIsNotThereIsNotAnEmptyList)
{
    window.CheckReminderMenus(true, false);
    fake.files.openErrors.emplace(file, PathNotFound());
    LoadReminders(false, 0);
    ASSERT_EQ(fake.windows.boxes.size(), 1U);
    EXPECT_TRUE(fake.windows.boxes[0].text.starts_with(
        "The reminders could not be read: the folder of the file does not exist."));
    EXPECT_EQ(RemindersValid, False);
    fake.files.openErrors.clear();
    Store({Of("A")});
    Seconds(10);
    EXPECT_EQ(TitlesInList(), Lines{"A"});
    EXPECT_TRUE(RemindersAreOn());
}

TEST_F(ReminderKeepingTest, RemindersThatAreEnabledOrDisabledMeanwhileAreSoWhenTheFileHasBeenRead)
{
    for (const bool on : {true, false}) {
        Load({Of("A")});
        if (on) {
            fake.windows.answers = {vbYes};
            DisableReminders();
        }
        fake.files.failures = {{"OpenRandom " + file + " 128", PermissionDenied()}};
        LoadReminders(false, 0);
        if (on) {
            EnableReminders();
        } else {
            fake.windows.answers = {vbYes};
            DisableReminders();
        }
        fake.files.failures.clear();
        Seconds(10);
        EXPECT_EQ(TitlesInList(), Lines{"A"});
        EXPECT_EQ(RemindersAreOn(), on);
        EXPECT_EQ(RemindersAreOff(), !on);
    }
}

TEST_F(ReminderKeepingTest, AnAnswerToAListThatCouldNotBeReadAgainIsSavedBeforeTheEnd)
{
    Load({Of("A")});
    Tick();
    fake.files.failures = {{"OpenRandom " + file + " 128", PermissionDenied()}};
    LoadReminders(false, 0);
    FinishReminder(1, false, 0);
    SaveLastAnswers();
    EXPECT_EQ(Content(), Slot(Of("A")));
    fake.files.failures.clear();
    SaveLastAnswers();
    EXPECT_EQ(Content(), Slot(Of("A", "Y")));
}

TEST_F(ReminderKeepingTest, TheCopyThatWasJustMadeStaysWhenTheClockWasSetBack)
{
    const std::string dated = "C:\\Voxmate\\VoxmateReminders-";
    for (const char* day : {"1", "2", "3", "4", "5"})
        fake.files.texts[dated + "2004-01-0" + day + "-120000.txt"] = "old";
    ReminderFields bad = Of("Bad");
    bad[2] = "13";
    fake.windows.answers = {vbYes};
    Load({Of("A"), bad});
    EXPECT_EQ(fake.files.texts[dated + "1975-03-17-140509.txt"], Slot(Of("A")) + Slot(bad));
    EXPECT_FALSE(fake.files.texts.contains(dated + "2004-01-01-120000.txt"));
    EXPECT_TRUE(fake.files.texts.contains(dated + "2004-01-02-120000.txt"));
}

// Answers that cannot be saved.

TEST_F(ReminderKeepingTest, AnAnswerThatCannotBeSavedIsKeptAndSavedWhenItCanBeWithOneBox)
{
    Load({Of("A"), Of("B")});
    Tick();
    fake.files.failures = {{"Flush " + temp, DiskFull()}};
    FinishReminder(1, false, 0);
    ASSERT_EQ(fake.windows.boxes.size(), 1u);
    EXPECT_EQ(fake.windows.boxes[0].text,
              "The reminders could not be saved: the disk is full.\r\n\r\n"
              "Their file is as it was before this change:\r\nC:\\Voxmate\\VoxmateReminders.txt\r\n\r\n"
              "Your answer is kept in memory and will be saved as soon as that is possible.\r\n"
              "Error 61 - Disk full");
    EXPECT_EQ(Content(), Slot(Of("A")) + Slot(Of("B")));
    EXPECT_EQ(RemDone[1], "Y");
    EXPECT_TRUE(RemindersAreOn());
    CloseAlerts();
    Tick();
    EXPECT_EQ(Announced(), Lines{"2 Missed Reminder"}); // the other one is still waiting for its answer
    FinishReminder(2, false, 0);
    Seconds(100);
    EXPECT_EQ(fake.windows.boxes.size(), 1u);
    EXPECT_EQ(Content(), Slot(Of("A")) + Slot(Of("B")));
    fake.files.failures.clear();
    Seconds(10);
    EXPECT_EQ(Content(), Slot(Of("A", "Y")) + Slot(Of("B", "Y")));
    EXPECT_FALSE(window.reminderRetry);
    EXPECT_EQ(fake.windows.boxes.size(), 1u);
}

TEST_F(ReminderKeepingTest, AnAnswerThatCouldNotBeSavedIsTriedOnceMoreBeforeTheEnd)
{
    Load({Of("A")});
    Tick();
    fake.files.failures = {{"Flush " + temp, DiskFull()}};
    FinishReminder(1, false, 0);
    SaveLastAnswers();
    EXPECT_EQ(Content(), Slot(Of("A")));
    fake.files.failures.clear();
    SaveLastAnswers();
    EXPECT_EQ(Content(), Slot(Of("A", "Y")));
    EXPECT_EQ(fake.windows.boxes.size(), 1u);
}

TEST_F(ReminderKeepingTest, TriesAreSeldomAfterTheFirstOnes)
{
    Load({Of("A")});
    Tick();
    fake.files.failures = {{"Flush " + temp, DiskFull()}};
    FinishReminder(1, false, 0);
    fake.files.log = &fake.log;
    fake.log.clear();
    Seconds(105);
    const auto tries = std::count(fake.log.begin(), fake.log.end(), "Flush " + temp);
    EXPECT_EQ(tries, 5 + 10);
}

TEST_F(ReminderKeepingTest, ASnoozeIsAnnouncedAtItsNewTimeWhateverTheDiskDoes)
{
    Load({Of("Tea")});
    Tick();
    fake.files.failures = {{"Flush " + temp, DiskFull()}};
    FinishReminder(1, true, 10);
    CloseAlerts();
    Tick();
    EXPECT_EQ(Announced(), Lines{});
    // The list may be read anew meanwhile.
    LoadReminders(false, 0);
    fake.clock.now = {1975, 3, 17, 14, 15, 0};
    Tick();
    EXPECT_EQ(Announced(), Lines{"1 New Reminder"});
    // Snoozed and answered again, it is saved once, as it is then.
    FinishReminder(1, true, 5);
    EXPECT_EQ(RemUnsaved.size(), 1u);
    CloseAlerts();
    fake.clock.now = {1975, 3, 17, 14, 20, 0};
    Tick();
    EXPECT_EQ(Announced(), Lines{"1 New Reminder"});
    FinishReminder(1, false, 0);
    fake.files.failures.clear();
    Seconds(10);
    EXPECT_EQ(Content(), Slot({"Tea", "17", "03", "1975", "14", "20", "", "Y"}));
}

TEST_F(ReminderKeepingTest, WhateverIsSavedNextSavesTheAnswerToo)
{
    Load({Of("A"), Of("B")});
    Tick();
    fake.files.failures = {{"Flush " + temp, DiskFull()}};
    FinishReminder(1, false, 0);
    fake.files.failures.clear();
    EXPECT_TRUE(TrySaveReminders(2));
    EXPECT_EQ(Content(), Slot(Of("A", "Y")));
    LoadReminders(false, 0);
    EXPECT_TRUE(RemUnsaved.empty());
}

TEST_F(ReminderKeepingTest, AnAnswerWhoseReminderAnotherProgramHasChangedGoesToNone)
{
    Load({Of("A"), Of("B")});
    Tick();
    fake.files.failures = {{"Flush " + temp, DiskFull()}};
    FinishReminder(1, false, 0);
    fake.files.failures.clear();
    fake.windows.boxes.clear();
    Store({Of("Another's"), Of("B")});
    Seconds(10);
    EXPECT_EQ(Content(), Slot(Of("Another's")) + Slot(Of("B")));
    EXPECT_FALSE(window.reminderRetry);
    EXPECT_TRUE(fake.windows.boxes.empty());
}

TEST_F(ReminderKeepingTest, AnAnswerThatNeverFitsIsToldOfWithTheRoomThereIsAndAskedForAgain)
{
    ReminderFields full = Of(std::string(50, 't'));
    full[6] = std::string(49, 'd');
    Load({full});
    fake.clock.now = {1975, 3, 17, 23, 50, 0};
    Tick();
    FinishReminder(1, true, 20); // across midnight: the month becomes -8, which takes one byte more
    ASSERT_EQ(fake.windows.boxes.size(), 1u);
    EXPECT_TRUE(
        fake.windows.boxes[0].text.starts_with("The reminders could not be saved: the title and the description "
                                               "of \"" +
                                               full[0] +
                                               "\" are too long. Together they take up 99 bytes, and there is "
                                               "room for 98. "))
        << fake.windows.boxes[0].text;
    EXPECT_EQ(Content(), Slot(full));
    CloseAlerts();
    Tick();
    EXPECT_EQ(Announced(), Lines{"1 Missed Reminder"});
    EXPECT_TRUE(TrySaveReminders(0));
}

// A file that another program holds.

TEST_F(ReminderKeepingTest, AFileThatIsHeldForAMomentIsReadAfterIt)
{
    Store({Of("A")});
    window.CheckReminderMenus(true, false);
    fake.files.failures = {{"OpenRandom " + file + " 128", PermissionDenied()}};
    LoadReminders(false, 0);
    EXPECT_FALSE(window.reminderTimer);
    Seconds(3);
    fake.files.failures.clear();
    Seconds(1);
    EXPECT_TRUE(RemindersAreOn());
    EXPECT_EQ(TitlesInList(), Lines{"A"});
    EXPECT_TRUE(fake.windows.boxes.empty());
    EXPECT_FALSE(window.reminderRetry);
}

TEST_F(ReminderKeepingTest, AFileThatStaysHeldIsToldOfOnceAndReadWhenItIsFree)
{
    Load({Of("A")});
    fake.files.failures = {{"OpenRandom " + file + " 128", PermissionDenied()}};
    LoadReminders(false, 0);
    Seconds(100);
    ASSERT_EQ(fake.windows.boxes.size(), 1u);
    EXPECT_EQ(fake.windows.boxes[0].text,
              "The reminders could not be read: another program has the file open, or it may not be changed."
              "\r\n\r\nC:\\Voxmate\\VoxmateReminders.txt\r\n\r\n"
              "Reminders are disabled until the file has been read.\r\nError 70 - Permission denied");
    EXPECT_TRUE(RemindersAreOff());
    fake.files.failures.clear();
    Seconds(10);
    EXPECT_TRUE(RemindersAreOn());
    EXPECT_EQ(TitlesInList(), Lines{"A"});
    EXPECT_EQ(fake.windows.boxes.size(), 1u);
}

TEST_F(ReminderKeepingTest, RemindersThatTheUserHadSwitchedOffStayOff)
{
    Load({Of("A")});
    window.EnableReminderTimer(false);
    window.CheckReminderMenus(false, true);
    fake.files.failures = {{"OpenRandom " + file + " 128", PermissionDenied()}};
    LoadReminders(false, 0);
    Seconds(2);
    fake.files.failures.clear();
    Seconds(10);
    EXPECT_TRUE(RemindersAreOff());
    EXPECT_EQ(RemCount, 1);
}

TEST_F(ReminderKeepingTest, AnAnswerToAReminderWhoseFileIsHeldIsSavedAfterIt)
{
    for (const bool loadFails : {false, true}) {
        Load({Of("A"), Of("B")});
        CloseAlerts();
        Tick();
        fake.files.failures = {{"OpenRandom " + file + " 128", PermissionDenied()}};
        if (loadFails)
            LoadReminders(false, 0);
        FinishReminder(2, false, 0);
        EXPECT_EQ(Content(), Slot(Of("A")) + Slot(Of("B")));
        Seconds(3);
        fake.files.failures.clear();
        Seconds(2);
        EXPECT_EQ(Content(), Slot(Of("A")) + Slot(Of("B", "Y"))) << loadFails;
        EXPECT_TRUE(RemindersAreOn());
        EXPECT_TRUE(fake.windows.boxes.empty());
        EXPECT_FALSE(window.reminderRetry);
    }
}

TEST_F(ReminderKeepingTest, AnEditorThatWasToBeFilledIsFilledWhenTheFileIsFree)
{
    Load({Of("A"), Of("B")});
    fake.files.failures = {{"OpenRandom " + file + " 128", PermissionDenied()}};
    LoadReminders(true, 2);
    fake.files.failures.clear();
    fake.log.clear();
    Seconds(1);
    EXPECT_EQ(fake.log, (Lines{"Select item 2", "Fields B|17|3|1975|10:00||pending"}));
}

// The menu.

TEST_F(ReminderKeepingTest, EnablingThatFindsAnInvalidFileWhichTheUserHasEmptiedEnablesAndSaysNoMore)
{
    Load({Of("A")});
    fake.files.failures = {{"OpenRandom " + file + " 128", PathFileAccessError()}};
    LoadReminders(false, 0);
    fake.files.failures.clear();
    fake.windows.boxes.clear();
    Store({{"Bad", "30", "02", "2004", "09", "05", "Bank", "N"}});
    fake.windows.answers = {vbYes};
    EnableReminders();
    ASSERT_EQ(fake.windows.boxes.size(), 1u);
    EXPECT_EQ(fake.windows.boxes[0].text, invalidFileQuestion);
    EXPECT_TRUE(RemindersAreOn());
    // Switched off and on again, the emptied file is read, which is valid.
    fake.windows.answers = {vbYes};
    DisableReminders();
    EnableReminders();
    EXPECT_EQ(fake.windows.boxes.size(), 2u);
    EXPECT_TRUE(RemindersAreOn());
}

TEST_F(ReminderKeepingTest, DisablingWhileSeveralAreAnnouncedEndsThat)
{
    WithCharacter();
    Load({Of("A"), Of("B"), Of("C")});
    bool first = true;
    fake.windows.whilePending = [&] {
        if (std::exchange(first, false)) {
            fake.windows.answers = {vbYes};
            DisableReminders();
        }
    };
    Tick();
    EXPECT_EQ(Announced(), Lines{"1 Missed Reminder"});
    EXPECT_TRUE(RemindersAreOff());
}

} // namespace

} // namespace voxmate
