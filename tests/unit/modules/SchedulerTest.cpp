#include "ReminderTest.h"
#include "modules/ReminderRecord.h"

#include <cstdlib>

namespace voxmate
{

namespace
{

// The clock stands at 14:05:09 on Monday, 17 March 1975.
class SchedulerTest : public ReminderTest
{
protected:
    SchedulerTest() { WithCharacter(); }

    /// Announcement windows shown, by their numbers, and headings.
    Lines Announced() const
    {
        Lines shown;
        for (const std::string& call : fake.log) {
            if (call.starts_with("Alert ")) {
                const std::size_t text = call.find(": ") + 2;
                shown.push_back(call.substr(6, call.find(' ', 6) - 6) + " " +
                                call.substr(text, call.find('\r') - text));
            } else if (call.starts_with("Notice ")) {
                shown.push_back(call.substr(7, call.find('|') - 7));
            }
        }
        return shown;
    }
    void Tick()
    {
        fake.log.clear();
        RemTimer_Timer();
    }
    void At(int hour, int minute) { fake.clock.now = {1975, 3, 17, hour, minute, 0}; }
    static ReminderFields Due(const std::string& title, const std::string& hour, const std::string& minute)
    {
        return ReminderTest::At(title, hour, minute);
    }
};

// The scan.

TEST_F(SchedulerTest, AReminderIsNewDuringTheWholeOfItsMinuteAndMissedFromTheNextOnOn)
{
    Load({Due("Tea", "10", "15")});
    fake.clock.now = {1975, 3, 17, 10, 14, 59};
    Tick();
    EXPECT_EQ(Announced(), Lines{});
    fake.clock.now = {1975, 3, 17, 10, 15, 0};
    Tick();
    EXPECT_EQ(Announced(), Lines{"1 New Reminder"});
    window.alerts.at(0)->visible = false;
    fake.clock.now = {1975, 3, 17, 10, 15, 59};
    Tick();
    EXPECT_EQ(Announced(), Lines{"1 New Reminder"});
    window.alerts.at(0)->visible = false;
    fake.clock.now = {1975, 3, 17, 10, 16, 0};
    Tick();
    EXPECT_EQ(Announced(), Lines{"1 Missed Reminder"});
}

TEST_F(SchedulerTest, DatesAreComparedFieldByFieldFromTheYearDown)
{
    struct Case {
        ReminderFields fields;
        const char* heading; ///< nullptr: left alone
    };
    const std::vector<Case> cases{
        {{"x", "31", "12", "1974", "23", "59", "", "N"}, "Missed Reminder"},
        {{"x", "31", "12", "1975", "23", "59", "", "N"}, nullptr},
        {{"x", "01", "01", "1976", "00", "00", "", "N"}, nullptr},
        {{"x", "28", "02", "1975", "23", "59", "", "N"}, "Missed Reminder"},
        {{"x", "01", "04", "1975", "00", "00", "", "N"}, nullptr},
        {{"x", "16", "03", "1975", "23", "59", "", "N"}, "Missed Reminder"},
        {{"x", "18", "03", "1975", "00", "00", "", "N"}, nullptr},
        {{"x", "17", "03", "1975", "13", "59", "", "N"}, "Missed Reminder"},
        {{"x", "17", "03", "1975", "15", "00", "", "N"}, nullptr},
        {{"x", "17", "03", "1975", "14", "04", "", "N"}, "Missed Reminder"},
        {{"x", "17", "03", "1975", "14", "05", "", "N"}, "New Reminder"},
        {{"x", "17", "03", "1975", "14", "06", "", "N"}, nullptr},
    };
    for (const Case& one : cases) {
        BeginAgain();
        Load({one.fields});
        Tick();
        const std::string when = one.fields[3] + one.fields[2] + one.fields[1] + one.fields[4] + one.fields[5];
        EXPECT_EQ(Announced(), one.heading ? Lines{std::string("1 ") + one.heading} : Lines{}) << when;
    }
}

TEST_F(SchedulerTest, SeveralThatAreDueAreAnnouncedInTheirOrderInOneTick)
{
    Settings.ReminderSentenceSpeak = 0;
    Settings.ReminderDateSpeak = 0;
    Settings.ReminderTimeSpeak = 0;
    Load({Due("A", "14", "05"), Due("later", "14", "06"), Due("B", "14", "05"), Due("C", "14", "04")});
    Tick();
    EXPECT_EQ(Announced(), (Lines{"1 New Reminder", "3 New Reminder", "4 Missed Reminder"}));
    EXPECT_EQ(Spoken(),
              (Lines{"[Announce]", "Title: A\r\n", "[Announce]", "Title: B\r\n", "[Announce]", "Title: C\r\n"}));
    EXPECT_EQ(window.alerts.size(), 3u);
}

TEST_F(SchedulerTest, WhatIsOnTheScreenNeedsNoAnnouncement)
{
    Load({Due("A", "14", "05"), Due("later", "14", "06"), Due("B", "14", "04")});
    EXPECT_TRUE(program.Scheduler.AnyToAnnounce());
    IsBusy = True;
    EXPECT_FALSE(program.Scheduler.AnyToAnnounce());
    IsBusy = False;
    Tick();
    EXPECT_FALSE(program.Scheduler.AnyToAnnounce());
    window.alerts.at(1)->visible = false;
    EXPECT_TRUE(program.Scheduler.AnyToAnnounce());
    window.alerts.at(1)->visible = true;
    At(14, 6);
    EXPECT_TRUE(program.Scheduler.AnyToAnnounce());
    Tick();
    EXPECT_FALSE(program.Scheduler.AnyToAnnounce());
}

TEST_F(SchedulerTest, AnAnswerIsToldOfByTheNumberThatWasAnnounced)
{
    std::vector<std::int16_t> answered;
    program.Scheduler.Answered = [&](std::int16_t id) { answered.push_back(id); };
    Load({Due("A", "14", "05"), Due("B", "14", "05")});
    Tick();
    FinishReminder(2, false, 0);
    FinishReminder(1, true, 10);
    EXPECT_EQ(answered, (std::vector<std::int16_t>{2, 1}));
}

TEST_F(SchedulerTest, OnlyAFlagOfExactlyNIsPending)
{
    ReminderFields done = Due("Done", "14", "05");
    done[7] = "Y";
    ReminderFields blank = Due("Blank", "14", "05");
    blank[7] = "N ";
    Load({done, blank});
    Tick();
    EXPECT_EQ(Announced(), Lines{});
}

TEST_F(SchedulerTest, ATickDoesNothingWhileAMessageIsUp)
{
    Load({Due("Tea", "14", "05")});
    IsBusy = True;
    Tick();
    EXPECT_TRUE(fake.log.empty());
    IsBusy = False;
    Tick();
    EXPECT_EQ(Announced(), Lines{"1 New Reminder"});
}

TEST_F(SchedulerTest, WhatIsOnTheScreenIsNotAnnouncedAgain)
{
    for (const std::int16_t type : {std::int16_t{0}, std::int16_t{1}}) {
        Settings.ReminderType = type;
        BeginAgain();
        Load({Due("Tea", "14", "05")});
        Tick();
        EXPECT_EQ(Announced().size(), 1u);
        Tick();
        EXPECT_TRUE(fake.log.empty());
    }
    window.notices.at(0)->visible = false;
    Tick();
    EXPECT_EQ(Announced(), Lines{"1 New Reminder"});
    EXPECT_EQ(window.notices.size(), 1u); // the window of before
}

TEST_F(SchedulerTest, WindowsStayWhenTheListGetsShorter)
{
    Load({Due("A", "14", "05"), Due("B", "14", "05")});
    Tick();
    ASSERT_EQ(RemAlertWindows.size(), 3u);
    EXPECT_EQ(RemNoticeWindows.size(), 3u);
    EXPECT_FALSE(RemAlertWindows[0]);
    Load({Due("A", "14", "05")});
    window.alerts.at(0)->visible = false;
    Tick();
    EXPECT_EQ(Announced(), Lines{"1 New Reminder"});
    ASSERT_EQ(RemAlertWindows.size(), 3u);
    EXPECT_EQ(RemAlertWindows[2].get(), window.alerts.at(1));
    EXPECT_TRUE(RemAlertWindows[2]->Visible());
}

TEST_F(SchedulerTest, AClosedWindowAnnouncesTheNextReminderThatHasNone)
{
    for (const std::int16_t type : {std::int16_t{0}, std::int16_t{1}}) {
        Settings.ReminderType = type;
        ReminderFields first = Due("A", "14", "05");
        Load({first, Due("B", "14", "06"), Due("C", "14", "06")});
        Tick();
        EXPECT_EQ(Announced(), Lines{"1 New Reminder"});
        (type == 0 ? window.alerts.at(0)->visible : window.notices.at(0)->visible) = false;
        first[7] = "Y";
        Load({first, Due("B", "14", "06"), Due("C", "14", "06")});
        At(14, 6);
        Tick();
        EXPECT_EQ(Announced(), (Lines{"2 New Reminder", "3 New Reminder"}));
        EXPECT_EQ(type == 0 ? window.alerts.size() : window.notices.size(), 2u); // that of A, and one more for C
        At(14, 5);
    }
}

TEST_F(SchedulerTest, TheListMayGetShorterOrBeReadAnewWhileAReminderIsSpoken)
{
    Load({Due("A very long title that no short string holds", "14", "05"), Due("B", "14", "05"), Due("C", "14", "05")});
    bool first = true;
    fake.windows.whilePending = [&] {
        if (first) {
            first = false;
            Store({Due("B", "14", "05")});
            LoadReminders(false, 0);
        }
    };
    Tick();
    EXPECT_EQ(Announced(), Lines{"1 New Reminder"});
    EXPECT_EQ(Spoken().at(2), "Title: A very long title that no short string holds\r\n");
    EXPECT_EQ(RemCount, 1);
}

TEST_F(SchedulerTest, TheTimeIsLookedAtAgainAfterEachAnnouncement)
{
    Load({Due("A", "14", "05"), Due("B", "14", "06")});
    fake.windows.whilePending = [&] { At(14, 6); };
    Tick();
    EXPECT_EQ(Announced(), (Lines{"1 New Reminder", "2 New Reminder"}));
}

// The windows.

TEST_F(SchedulerTest, AnAlertHasSixLinesAndTheStyleOfTheSettings)
{
    fake.clock.now = {2004, 3, 7, 9, 5, 0};
    Load({Call()});
    const std::string text =
        "New Reminder\r\nRem. Id: 1\r\nTitle: Call\r\nDate: 07/03/2004\r\nTime: 09:05\r\nDesc: Bank";
    struct Style {
        std::int16_t action, gradient, shape, color, close;
        const char* shown;
    };
    const std::vector<Style> styles{
        {0, 1, 1, 3, 0, "Alert 1 0 s scroll fit round 13172680 tube: "},
        {1, 0, 0, 0, 0, "Alert 1 0 s fade fit square 12648447 corner: "},
        {1, 1, 0, 1, 1, "Alert 1 7 s fade fit square 16761760 tube: "},
        {0, 0, 1, 2, 1, "Alert 1 7 s scroll fit round 13158655 corner: "},
    };
    Settings.RemAlertCloseTime = 7;
    for (const Style& style : styles) {
        Settings.RemAlertAction = style.action;
        Settings.RemAlertGradient = style.gradient;
        Settings.RemAlertShape = style.shape;
        Settings.RemAlertColor = style.color;
        Settings.RemAlertClose = style.close;
        if (!window.alerts.empty())
            window.alerts[0]->visible = false;
        Tick();
        EXPECT_EQ(fake.log.at(0), style.shown + text);
    }
    // The numbers above, put together from red, green and blue.
    EXPECT_EQ(255 + 256 * 255 + 65536 * 192, 12648447);
    EXPECT_EQ(160 + 256 * 195 + 65536 * 255, 16761760);
    EXPECT_EQ(255 + 256 * 200 + 65536 * 200, 13158655);
    EXPECT_EQ(200 + 256 * 255 + 65536 * 200, 13172680);
}

TEST_F(SchedulerTest, ANoticeWindowIsFilledWithTheSameTexts)
{
    Settings.ReminderType = 1;
    fake.clock.now = {2004, 3, 7, 9, 6, 0};
    Load({Call()});
    Tick();
    EXPECT_EQ(fake.log.at(0), "Notice 1 Missed Reminder|Call|07/03/2004|09:05|Bank");
    EXPECT_TRUE(window.alerts.empty());
}

TEST_F(SchedulerTest, AnyTypeButOneIsAnAlert)
{
    Settings.ReminderType = 2;
    Load({Due("Tea", "14", "05")});
    Tick();
    EXPECT_EQ(window.alerts.size(), 1u);
    EXPECT_TRUE(window.notices.empty());
}

// The speech.

TEST_F(SchedulerTest, AReminderIsSpokenPieceByPieceAfterItsWindow)
{
    fake.clock.now = {2004, 3, 7, 9, 5, 0};
    ReminderFields fields = Call();
    fields[6] = "  Bank  ";
    Load({fields});
    Tick();
    EXPECT_TRUE(fake.log.at(0).starts_with("Alert 1"));
    EXPECT_EQ(Spoken(), (Lines{"[Announce]", "You have a reminder", "Title: Call\r\n",
                               "Date: Sunday, 7th of March, 2004\r\n", "Time: 9:05 AM\r\n", "Description: Bank"}));
}

TEST_F(SchedulerTest, TheFirstPieceThatIsSpokenHasTheAnimation)
{
    fake.clock.now = {2004, 3, 7, 9, 5, 0};
    const Lines pieces{"You have a reminder", "Title: Call\r\n", "Date: Sunday, 7th of March, 2004\r\n",
                       "Time: 9:05 AM\r\n", "Description: Bank"};
    const std::vector<std::int16_t*> switches{&Settings.ReminderSentenceSpeak, &Settings.ReminderTitleSpeak,
                                              &Settings.ReminderDateSpeak, &Settings.ReminderTimeSpeak,
                                              &Settings.ReminderDescSpeak};
    for (unsigned mask = 0; mask < 32; ++mask) {
        BeginAgain();
        Load({Call()});
        Lines expected;
        for (std::size_t i = 0; i < 5; ++i) {
            *switches[i] = static_cast<std::int16_t>(mask >> i & 1u);
            if (*switches[i] == 1) {
                if (expected.empty())
                    expected.emplace_back("[Announce]");
                expected.push_back(pieces[i]);
            }
        }
        Tick();
        EXPECT_EQ(Spoken(), expected) << mask;
    }
}

TEST_F(SchedulerTest, AnEmptyDescriptionAndAnEmptySentenceAreNotSpoken)
{
    Settings.ReminderSentence = "";
    ReminderFields fields = Due("Tea", "14", "05");
    fields[6] = "   ";
    Load({fields});
    Tick();
    EXPECT_EQ(Spoken(),
              (Lines{"[Announce]", "Title: Tea\r\n", "Date: Monday, 17th of March, 1975\r\n", "Time: 2:05 PM\r\n"}));
}

TEST_F(SchedulerTest, DateAndTimeAreSpokenInTheFormatsOfTheSettings)
{
    Settings.DateFormat = 6;
    Settings.TimeIn24Hour = 1;
    fake.clock.now = {2004, 7, 3, 0, 5, 0};
    Load({{"Tea", "03", "07", "2004", "00", "05", "", "N"}}); // 3 July, not 7 March
    Tick();
    EXPECT_EQ(Spoken(), (Lines{"[Announce]", "You have a reminder", "Title: Tea\r\n", "Date: Saturday, July 3rd\r\n",
                               "Time: 00:05\r\n"}));
}

// Snooze.

DateTime Snoozed(const DateTime& now, int minutes)
{
    return SnoozedTime(now, static_cast<std::int16_t>(minutes));
}

TEST_F(SchedulerTest, ASnoozeWithinADayIsExact)
{
    EXPECT_EQ(Snoozed({2004, 3, 10, 14, 55, 30}, 10), (DateTime{2004, 3, 10, 15, 5, 0}));
    EXPECT_EQ(Snoozed({2004, 3, 10, 14, 55, 0}, 70), (DateTime{2004, 3, 10, 16, 5, 0}));
    EXPECT_EQ(Snoozed({2004, 3, 10, 14, 55, 0}, 4), (DateTime{2004, 3, 10, 14, 59, 0}));
    EXPECT_EQ(Snoozed({2004, 3, 10, 14, 55, 0}, 5), (DateTime{2004, 3, 10, 15, 0, 0}));
    EXPECT_EQ(Snoozed({2004, 3, 10, 23, 50, 0}, 9), (DateTime{2004, 3, 10, 23, 59, 0}));
    EXPECT_EQ(Snoozed({2004, 3, 10, 0, 0, 0}, 999), (DateTime{2004, 3, 10, 16, 39, 0}));
}

TEST_F(SchedulerTest, ASnoozeAcrossMidnightIsWrongOutsideFebruaryAsItAlwaysWas)
{
    EXPECT_EQ(Snoozed({2004, 3, 10, 23, 50, 0}, 20), (DateTime{2005, -8, 11, 0, 10, 0}));
    EXPECT_EQ(Snoozed({2005, 2, 28, 23, 55, 0}, 10), (DateTime{2006, -9, 1, 0, 5, 0}));
    EXPECT_EQ(Snoozed({2004, 3, 10, 10, 0, 0}, 999), (DateTime{2005, -8, 11, 2, 39, 0}));
    EXPECT_EQ(Snoozed({2004, 12, 31, 23, 59, 0}, 1), (DateTime{2005, 1, 32, 0, 0, 0}));
    EXPECT_EQ(Snoozed({2004, 1, 1, 23, 59, 0}, 1), (DateTime{2005, -10, 2, 0, 0, 0}));
    // February alone has a length.
    EXPECT_EQ(Snoozed({2005, 2, 27, 23, 55, 0}, 10), (DateTime{2005, 2, 28, 0, 5, 0}));
    EXPECT_EQ(Snoozed({2004, 2, 28, 23, 55, 0}, 10), (DateTime{2004, 2, 29, 0, 5, 0}));
    EXPECT_EQ(Snoozed({2004, 2, 29, 23, 55, 0}, 10), (DateTime{2005, -9, 1, 0, 5, 0}));
    EXPECT_EQ(Snoozed({2000, 2, 28, 23, 55, 0}, 10), (DateTime{2000, 2, 29, 0, 5, 0}));
    EXPECT_EQ(Snoozed({2100, 2, 28, 23, 55, 0}, 10), (DateTime{2101, -9, 1, 0, 5, 0}));
}

TEST_F(SchedulerTest, EverySnoozeOfADayComesOutAsMinutesSinceMidnightDo)
{
    // The same rules stated the other way round: all in minutes since midnight, and what a day carried makes of the
    // date.
    for (const int month : {1, 2, 3, 11, 12})
        for (const int year : {2004, 2005, 2100})
            for (const int day : {1, 10, 27, 28, 29, 30, 31})
                for (int start = 0; start < 1440; start += 7)
                    for (const int minutes : {1, 9, 10, 59, 60, 61, 70, 600, 999}) {
                        const int total = start + minutes;
                        const bool leap = (year % 4 == 0 && year % 100 != 0) || year % 400 == 0;
                        const int february = leap ? 29 : 28;
                        DateTime expected{year, month, day, total % 1440 / 60, total % 60, 0};
                        if (total >= 1440) {
                            expected.day = day + 1;
                            const int length = month == 2 ? february : 0;
                            if (expected.day > length)
                                expected = {year + 1,      month - 11,      expected.day - length,
                                            expected.hour, expected.minute, 0};
                        }
                        ASSERT_EQ(Snoozed({year, month, day, start / 60, start % 60, 41}, minutes), expected)
                            << year << "-" << month << "-" << day << " " << start << " + " << minutes;
                    }
}

TEST_F(SchedulerTest, ASnoozedReminderIsPendingAgainFromNowOn)
{
    Settings.ReminderNextSchSpeak = 0;
    ReminderFields done = Due("Tea", "10", "00");
    done[7] = "Y";
    Load({Due("A", "23", "00"), done, Due("C", "23", "00")});
    At(14, 55);
    FinishReminder(2, true, 10);
    ReminderFields snoozed = Due("Tea", "15", "05");
    EXPECT_EQ(Content(), Slot(Due("A", "23", "00")) + Slot(snoozed) + Slot(Due("C", "23", "00")));
    EXPECT_EQ(RemHours[2], 15);
    EXPECT_EQ(RemDone[2], "N");
    EXPECT_TRUE(RemindersAreOn());
    EXPECT_TRUE(Spoken().empty());
}

TEST_F(SchedulerTest, OkMarksAReminderAsDoneAndKeepsItsTime)
{
    fake.files.log = &fake.log;
    Load({Due("A", "10", "00"), Due("B", "11", "00")});
    FinishReminder(2, false, 0);
    ReminderFields done = Due("B", "11", "00");
    done[7] = "Y";
    EXPECT_EQ(Content(), Slot(Due("A", "10", "00")) + Slot(done));
    EXPECT_TRUE(Spoken().empty());
    EXPECT_EQ(FileCalls().back(), "Close C:\\Voxmate\\VoxmateReminders.txt"); // saved, and loaded again
    EXPECT_EQ(FileCalls().size(), 11u);
    Tick();
    EXPECT_EQ(Announced(), Lines{"1 Missed Reminder"});
}

TEST_F(SchedulerTest, AnAnswerDoesNotGoToTheReminderThatHasMovedUp)
{
    Load({Due("A", "10", "00"), Due("B", "11", "00"), Due("C", "12", "00")});
    Tick();
    SaveReminders(1);
    LoadReminders(false, 0);
    const std::string before = Content();
    ASSERT_EQ(before, Slot(Due("B", "11", "00")) + Slot(Due("C", "12", "00")));
    FinishReminder(1, false, 0); // the window of A, which is no more
    EXPECT_EQ(Content(), before);
    FinishReminder(2, false, 0); // the window of B, which is number 1 now
    ReminderFields done = Due("B", "11", "00");
    done[7] = "Y";
    EXPECT_EQ(Content(), Slot(done) + Slot(Due("C", "12", "00")));
}

TEST_F(SchedulerTest, AnswersThatCannotBeSavedMakeOneBoxAndAreNotAskedForAgain)
{
    Load({Due("A", "10", "00"), Due("B", "11", "00"), Due("C", "12", "00")});
    Tick();
    ASSERT_EQ(Announced().size(), 3u);
    fake.log.clear();
    const std::string before = Content();
    fake.files.failures = {{"DeleteFile " + file, DeviceIOError()}};
    // While the box is up the others are answered, too.
    fake.windows.whileBoxIsUp = [this](const auto&) {
        FinishReminder(2, false, 0);
        FinishReminder(3, false, 0);
    };
    FinishReminder(1, false, 0);
    EXPECT_EQ(fake.windows.boxes.size(), 1u);
    EXPECT_EQ(Content(), before);
    for (auto* window : window.alerts)
        window->visible = false;
    Tick();
    EXPECT_EQ(Announced(), Lines{});
}

TEST_F(SchedulerTest, AnAnswerDoesNotTouchAReminderThatWasChangedMeanwhile)
{
    Load({Due("A", "10", "00")});
    Tick();
    StoreReminder(1, {"A", 20, 3, 1975, 10, 0, "", false});
    SaveReminders(0);
    LoadReminders(false, 0);
    const std::string before = Content();
    FinishReminder(1, false, 0);
    EXPECT_EQ(Content(), before);
    EXPECT_EQ(RemDone[1], "N");
}

TEST_F(SchedulerTest, TheNextScheduleIsSpokenBeforeItIsSaved)
{
    Load({Due("Tea", "14", "00")});
    fake.files.log = &fake.log;
    At(14, 55);
    FinishReminder(1, true, 10);
    EXPECT_EQ(Spoken(), (Lines{"[Announce]", "Your reminder has been snoozed by 10 minute(s)\r\n"
                                             "New schedule for this reminder is \r\n"
                                             "Monday, 17th of March, 1975\r\n3:05 PM\r\n"}));
    EXPECT_EQ(fake.log.at(0), "Show");
    fake.log.clear();
    Settings.TimeIn24Hour = 1;
    Settings.DateFormat = 4;
    FinishReminder(1, true, 10);
    EXPECT_EQ(Spoken().at(1), "Your reminder has been snoozed by 10 minute(s)\r\n"
                              "New schedule for this reminder is \r\nMonday, March 17th, 75\r\n15:05\r\n");
}

TEST_F(SchedulerTest, ASnoozeAcrossMidnightIsWrittenAsItComesOutAndMakesTheFileInvalid)
{
    Load({Due("Tea", "14", "00")});
    fake.clock.now = {2004, 3, 10, 23, 50, 0};
    FinishReminder(1, true, 20);
    // A day that no calendar has has no name.
    EXPECT_EQ(Spoken().at(1), "Your reminder has been snoozed by 20 minute(s)\r\n"
                              "New schedule for this reminder is \r\n\r\n12:10 AM\r\n");
    EXPECT_EQ(Content(), Slot({"Tea", "11", "-08", "2005", "00", "10", "", "N"}));
    ASSERT_EQ(fake.windows.boxes.size(), 2u);
    EXPECT_TRUE(fake.windows.boxes[0].text.starts_with("Reminders file is not having valid data."));
    EXPECT_EQ(RemindersValid, False);
    EXPECT_TRUE(RemindersAreOff());
}

TEST_F(SchedulerTest, AnAnnouncementThatEndsWhenTheListIsGoneWritesNothing)
{
    Load({Due("A", "14", "05"), Due("B", "14", "05")});
    Store({Due("A", "14", "05"), {"Bad", "30", "02", "1975", "14", "05", "", "N"}});
    const std::string before = Content();
    LoadReminders(false, 0);
    fake.windows.boxes.clear();
    FinishReminder(1, false, 0);
    FinishReminder(2, true, 10);
    FinishReminder(0, false, 0);
    FinishReminder(-1, false, 0);
    EXPECT_EQ(Content(), before);
    EXPECT_TRUE(fake.windows.boxes.empty());
}

TEST_F(SchedulerTest, ASnoozeOutlastsALoadWhileItIsSpoken)
{
    Load({Due("A", "14", "00"), Due("B", "14", "00")});
    fake.windows.whilePending = [this] { LoadReminders(false, 0); };
    FinishReminder(2, true, 10);
    EXPECT_EQ(Content(), Slot(Due("A", "14", "00")) + Slot(Due("B", "14", "15")));
}

TEST_F(SchedulerTest, ASnoozeOfAReminderThatIsDeletedWhileItIsSpokenTouchesNoOther)
{
    Load({Due("A", "14", "00"), Due("B", "14", "00"), Due("C", "14", "00")});
    fake.windows.whilePending = [this] {
        SaveReminders(2);
        LoadReminders(false, 0);
    };
    FinishReminder(2, true, 10);
    EXPECT_EQ(Content(), Slot(Due("A", "14", "00")) + Slot(Due("C", "14", "00")));
    EXPECT_EQ(TitlesInList(), (Lines{"A", "C"}));
}

TEST_F(SchedulerTest, AFileThatCannotBeReadLeavesNoListAndIsTriedAgainWhenRemindersAreSwitchedOn)
{
    Load({Due("A", "23", "00")});
    fake.files.failures = {{"OpenRandom " + file + " 128", PermissionDenied()}};
    LoadReminders(false, 0);
    EXPECT_EQ(RemindersValid, False);
    EXPECT_EQ(RemCount, 0);
    EXPECT_FALSE(RemindersAreOn());
    fake.windows.boxes.clear();
    EnableReminders();
    EXPECT_FALSE(RemindersAreOn());
    ASSERT_EQ(fake.windows.boxes.size(), 1u);
    EXPECT_TRUE(fake.windows.boxes[0].text.starts_with("The reminders could not be read: "));
    fake.files.failures.clear();
    EnableReminders();
    EXPECT_TRUE(RemindersAreOn());
    EXPECT_EQ(RemCount, 1);
    EXPECT_EQ(fake.windows.boxes.size(), 1u);
}

// The menu.

TEST_F(SchedulerTest, DisablingAsksFirst)
{
    Load({});
    fake.windows.answers = {vbNo, vbYes};
    DisableReminders();
    ASSERT_EQ(fake.windows.boxes.size(), 1u);
    EXPECT_EQ(fake.windows.boxes[0].text, "Are you sure you want to disable the reminders ?");
    EXPECT_EQ(fake.windows.boxes[0].style, vbYesNo + vbQuestion + vbDefaultButton2);
    EXPECT_EQ(fake.windows.boxes[0].title, "Voxmate - Reminders");
    EXPECT_EQ(Spoken(),
              (Lines{"[GetAttention]", "[GetAttentionContinued]", "[GetAttentionContinued]", "[GetAttentionReturn]",
                     "Dear Buddy, \r\nAre you sure you want to disable the reminders ?"}));
    EXPECT_TRUE(RemindersAreOn());
    EXPECT_EQ(IsBusy, False);
    DisableReminders();
    EXPECT_TRUE(RemindersAreOff());
    DisableReminders();
    EXPECT_EQ(fake.windows.boxes.size(), 2u); // off already: nothing is asked
}

TEST_F(SchedulerTest, DisablingLeavesOpenAnnouncementsOpen)
{
    Load({Due("A", "14", "05")});
    Tick();
    fake.windows.answers = {vbYes};
    DisableReminders();
    EXPECT_TRUE(window.alerts.at(0)->visible);
}

TEST_F(SchedulerTest, EnablingSwitchesTimerAndMenus)
{
    Load({});
    window.EnableReminderTimer(false);
    window.CheckReminderMenus(false, true);
    fake.log.clear();
    EnableReminders();
    EXPECT_TRUE(RemindersAreOn());
    EXPECT_TRUE(fake.windows.boxes.empty());
    EnableReminders();
    EXPECT_TRUE(RemindersAreOn());
}

TEST_F(SchedulerTest, EnablingWithAnInvalidFileRefuses)
{
    Store({{"Bad", "30", "02", "1975", "14", "05", "", "N"}});
    LoadReminders(false, 0);
    fake.windows.boxes.clear();
    fake.log.clear();
    EnableReminders();
    ASSERT_EQ(fake.windows.boxes.size(), 1u);
    EXPECT_EQ(fake.windows.boxes[0].text,
              "Following reminders file is not having valid data:\r\nC:\\Voxmate\\VoxmateReminders.txt\r\n\r\n"
              "To enable reminders delete the above file and then restart the application.");
    EXPECT_EQ(fake.windows.boxes[0].style, vbOKOnly + vbExclamation);
    EXPECT_EQ(fake.windows.boxes[0].title, "Voxmate - Reminders");
    EXPECT_EQ(Spoken().at(0), "[GetAttention]");
    EXPECT_TRUE(RemindersAreOff());
    EXPECT_EQ(IsBusy, False);
}

TEST_F(SchedulerTest, ShowAllOpensTheEditorOnTheFirstReminder)
{
    Store({Call(), Call()});
    ShowAllReminders();
    EXPECT_EQ(fake.log, (Lines{"Editor shown", "Select item 1", "Fields Call|7|3|2004|09:05|Bank|pending"}));
    EXPECT_EQ(window.editor.rows.size(), 2u);
}

} // namespace

} // namespace voxmate
