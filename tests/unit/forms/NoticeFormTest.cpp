// The notice window against the real list of reminders and its file in memory.
#include "forms/frmShowRem.h"
#include "tests/fakes/FakeMainWindow.h"
#include "tests/fakes/FocusPeer.h"
#include "tests/fakes/ProgramTest.h"

#include <algorithm>

#include <gtest/gtest.h>

namespace voxmate
{

namespace
{

using Lines = std::vector<std::string>;

class NoticesMain : public fakes::FakeMainWindow
{
public:
    NoticesMain(fakes::Log& log, Program& program) : FakeMainWindow(log), program_(program) {}
    std::vector<frmShowRem*> made;
    std::unique_ptr<NoticeWindow> NewNoticeWindow() override
    {
        auto window = std::make_unique<frmShowRem>(program_);
        made.push_back(window.get());
        return window;
    }

private:
    Program& program_;
};

class NoticeFormTest : public ProgramTest
{
protected:
    NoticesMain main{fake.log, program};

    NoticeFormTest()
    {
        program.Main = &main;
        ReminderFilePath = "C:\\Voxmate\\VoxmateReminders.txt";
        ReminderTempPath = "C:\\Voxmate\\VoxmateReminders.tmp";
        main.CheckReminderMenus(true, false);
        Settings.ReminderType = 1;
        fake.clock.now = {2004, 3, 7, 14, 55, 30};
        // Two are due, one was missed, one is done and one is yet to come.
        Add({"Call", 7, 3, 2004, 14, 55, "Bank", false});
        Add({"Swim", 7, 3, 2004, 14, 55, "Pool", false});
        Add({"Read", 6, 3, 2004, 10, 5, "Book", false});
        Add({"Done", 6, 3, 2004, 10, 5, "Gone", true});
        Add({"Later", 7, 3, 2004, 14, 56, "Soon", false});
        LoadReminders(false, 0);
        fake.log.clear();
    }

    void Add(const Reminder& reminder)
    {
        AppendReminder(reminder);
        ++RemCount;
    }
    /// The notice of a reminder, after one tick of the timer.
    frmShowRem& Notice(std::size_t number)
    {
        RemTimer_Timer();
        return *main.made.at(number - 1);
    }
    Lines Calls(const std::string& start) const
    {
        Lines calls;
        std::copy_if(fake.log.begin(), fake.log.end(), std::back_inserter(calls),
                     [&start](const std::string& call) { return call.starts_with(start); });
        return calls;
    }
    std::string Stored(std::size_t id) const
    {
        return std::to_string(RemDays[id]) + "." + std::to_string(RemMonths[id]) + "." + std::to_string(RemYears[id]) +
               " " + std::to_string(RemHours[id]) + ":" + std::to_string(RemMinutes[id]) + " " + RemDone[id];
    }
};

TEST_F(NoticeFormTest, TheControlsSayWhatTheyAreFor)
{
    const frmShowRem form(program);
    EXPECT_EQ(form.Caption, "Voxmate Reminder");
    EXPECT_EQ(form.cmdSnooze.Caption.get(), "Snooze");
    EXPECT_EQ(form.cmdOK.Caption.get(), "OK");
    EXPECT_EQ(form.Label1.Caption.get(), "");
    EXPECT_EQ(form.Label2.Caption.get(), "Time:");
    EXPECT_EQ(form.Label3.Caption.get(), "Title:");
    EXPECT_EQ(form.Label4.Caption.get(), "Date:");
    EXPECT_EQ(form.Label5.Caption.get(), "Id:");
    EXPECT_EQ(form.Label6.Caption.get(), "Description:");
    EXPECT_EQ(form.Label7.Caption.get(), "min(s)");
    EXPECT_EQ(form.lblHeading.Font.get().Name, "Comic Sans MS");
    EXPECT_EQ(form.FontName, "Tahoma");
    EXPECT_EQ(form.txtSnooze.MaxLength, 3U);
    EXPECT_FALSE(form.ShowActivated);
}

TEST_F(NoticeFormTest, DueAndMissedRemindersAreShownEachInAWindowOfItsOwn)
{
    RemTimer_Timer();
    ASSERT_EQ(main.made.size(), 3U);
    Lines shown;
    for (const frmShowRem* form : main.made) {
        EXPECT_TRUE(form->Visible());
        EXPECT_TRUE(form->txtDesc.Locked.get());
        EXPECT_EQ(form->txtSnooze.Text.get(), "10");
        shown.push_back(form->lblHeading.Caption.get() + "|" + form->lblId.Caption.get() + "|" +
                        form->lblTitle.Caption.get() + "|" + form->lblDate.Caption.get() + "|" +
                        form->lblTime.Caption.get() + "|" + form->txtDesc.Text.get());
    }
    EXPECT_EQ(shown, (Lines{"New Reminder|1|Call|07/03/2004|14:55|Bank", "New Reminder|2|Swim|07/03/2004|14:55|Pool",
                            "Missed Reminder|3|Read|06/03/2004|10:05|Book"}));
    EXPECT_NE(main.made[0]->Handle(), main.made[1]->Handle());
    // A reminder whose window is up is not announced again.
    RemTimer_Timer();
    EXPECT_EQ(main.made.size(), 3U);
}

TEST_F(NoticeFormTest, WithReminderOnTopOneItIsNotKeptAboveOthersAndElseItIs)
{
    for (const std::int16_t setting : std::initializer_list<std::int16_t>{1, 0, 2}) {
        Settings.ReminderOnTop = setting;
        frmShowRem form(program);
        fake.log.clear();
        fake.windows.named.clear();
        form.ShowNotice({"New Reminder", 1, "Call", "", "", ""});
        EXPECT_EQ(fake.log, (Lines{setting == 1 ? "SetWindowPos -2 0 0 0 0 0x3" : "SetWindowPos -1 0 0 0 0 0x3",
                                   "Window frmShowRem shown"}));
        EXPECT_EQ(fake.windows.named, std::vector<WindowHandle>{form.Handle()});
    }
}

TEST_F(NoticeFormTest, TheSnoozeFieldTakesDigitsBackspaceAndEnterAlone)
{
    const frmShowRem& form = Notice(1);
    std::string passed;
    for (int key = 1; key < 256; ++key)
        if (key != '\r' && main.made[0]->txtSnooze.UserKeyPress(key))
            passed += static_cast<char>(key);
    EXPECT_EQ(passed, "\b0123456789");
    EXPECT_TRUE(form.Visible());
}

TEST_F(NoticeFormTest, EnterInTheSnoozeFieldSnoozesAndDoesNotMeanOk)
{
    const frmShowRem& form = Notice(1);
    main.made[0]->txtSnooze.UserEdit("5");
    EXPECT_TRUE(main.made[0]->txtSnooze.UserKeyPress('\r'));
    EXPECT_FALSE(form.Visible());
    EXPECT_EQ(RemDone[1], "N");
    EXPECT_NE(Stored(1), "7.3.2004 14:55 N"); // from now on, not from its own time
    EXPECT_FALSE(form.cmdOK.IsDefault);
}

TEST_F(NoticeFormTest, OkMarksTheReminderDoneAndUnloadsTheWindow)
{
    frmShowRem& form = Notice(2);
    form.cmdOK.UserClick();
    EXPECT_FALSE(form.IsLoaded());
    EXPECT_EQ(Stored(2), "7.3.2004 14:55 Y");
    EXPECT_EQ(Stored(1), "7.3.2004 14:55 N");
    EXPECT_TRUE(main.made[0]->Visible());
    RemTimer_Timer();
    EXPECT_FALSE(form.Visible());
}

TEST_F(NoticeFormTest, SnoozePutsTheReminderOffFromNowAndUnloadsTheWindow)
{
    frmShowRem& form = Notice(3);
    form.cmdSnooze.UserClick();
    EXPECT_FALSE(form.IsLoaded());
    EXPECT_EQ(Stored(3), "7.3.2004 15:5 N");
    RemTimer_Timer();
    EXPECT_FALSE(form.Visible());
}

TEST_F(NoticeFormTest, SeventyMinutesAreAnHourAndTenMinutes)
{
    frmShowRem& form = Notice(1);
    form.txtSnooze.UserEdit("  70 ");
    form.cmdSnooze.UserClick();
    EXPECT_EQ(form.txtSnooze.Text.get(), "70");
    EXPECT_EQ(Stored(1), "7.3.2004 16:5 N");
}

TEST_F(NoticeFormTest, WhatIsNoNumberAboveZeroIsRefusedAndTheWindowStays)
{
    frmShowRem& form = Notice(1);
    for (const char* text : {"", "  ", "0", "00", "-5", "abc", "1.5", ".5", "1e2", "+-1"}) {
        fake.windows.boxes.clear();
        form.txtSnooze.UserEdit(text);
        form.cmdSnooze.UserClick();
        ASSERT_EQ(fake.windows.boxes.size(), 1U) << text;
        EXPECT_EQ(fake.windows.boxes[0].text, "Snooze time should be greater than zero.");
        EXPECT_EQ(fake.windows.boxes[0].style, 48);
        EXPECT_EQ(fake.windows.boxes[0].title, "Voxmate - Reminders");
        EXPECT_EQ(IsBusy, False);
        EXPECT_TRUE(form.Visible());
        EXPECT_EQ(Stored(1), "7.3.2004 14:55 N");
    }
}

TEST_F(NoticeFormTest, TheRefusalIsSaidWithoutAnAnimationAndTheFieldGetsTheKeyboard)
{
    frmShowRem& form = Notice(1);
    std::string focused;
    fakes::FocusPeer peer(form.txtSnooze, focused);
    Settings.ReadMessages = 1;
    form.txtSnooze.UserEdit("x");
    fake.log.clear();
    form.cmdSnooze.UserClick();
    EXPECT_EQ(fake.log, Lines{"MsgBox Voxmate - Reminders"});
    EXPECT_EQ(focused, "txtSnooze");
    form.txtSnooze.SetPeer(nullptr);
}

TEST_F(NoticeFormTest, TheCloseBoxLeavesTheReminderPendingAndItComesAgainAsMissed)
{
    frmShowRem& form = Notice(1);
    form.txtSnooze.UserEdit("45");
    form.UserClose();
    EXPECT_FALSE(form.Visible());
    EXPECT_EQ(Stored(1), "7.3.2004 14:55 N");
    fake.clock.now.minute = 56;
    RemTimer_Timer();
    EXPECT_TRUE(form.Visible());
    EXPECT_EQ(form.lblHeading.Caption.get(), "Missed Reminder");
    // It begins anew: what was typed before has gone.
    EXPECT_EQ(form.txtSnooze.Text.get(), "10");
}

TEST_F(NoticeFormTest, ANoticeThatShowsAnotherReminderByTheTimeASnoozeIsSpokenStays)
{
    frmShowRem& form = Notice(1);
    fakes::FakeCharacter character(fake.log, "Nalu");
    Character = &character;
    Settings.ReminderNextSchSpeak = 1;
    fake.windows.whilePending = [&] {
        fake.windows.whilePending = nullptr;
        form.UserClose();
        fake.clock.now.minute = 56;
        RemTimer_Timer();
    };
    form.cmdSnooze.UserClick();
    EXPECT_EQ(Stored(1), "7.3.2004 15:5 N");
    EXPECT_EQ(main.made.size(), 3U) << "a new window was made";
    EXPECT_TRUE(form.Visible());
    EXPECT_EQ(form.lblTitle.Caption.get(), "Later");
    // Its buttons are the new reminder's.
    form.cmdOK.UserClick();
    EXPECT_EQ(Stored(5), "7.3.2004 14:56 Y");
    EXPECT_FALSE(form.Visible());
    Character = nullptr;
}

TEST_F(NoticeFormTest, AWindowWhoseReminderIsNoLongerInTheListOnlyCloses)
{
    frmShowRem& form = Notice(3);
    fake.files.texts[ReminderFilePath].resize(128);
    LoadReminders(false, 0);
    ASSERT_EQ(RemCount, 1);
    form.cmdOK.UserClick();
    EXPECT_FALSE(form.IsLoaded());
    EXPECT_EQ(fake.files.texts[ReminderFilePath].size(), 128U);
}

} // namespace

} // namespace voxmate
