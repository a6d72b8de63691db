#include "extras/CalendarText.h"
#include "readers/CalendarEntry.h"
#include "tests/unit/extras/ExtrasTest.h"

namespace voxmate
{
namespace
{

using readers::CalendarEntry;

class CalendarsTest : public ExtrasTest
{
protected:
    CalendarsTest()
    {
        fake.clock.now = {2026, 11, 23, 8, 0, 0};
        Begin();
        fake.windows.boxes.clear();
    }
    static CalendarEntry Entry(const std::string& title, const DateTime& at, const std::string& description = "")
    {
        return {at, title, description};
    }
    void File(const std::string& path, const std::vector<CalendarEntry>& entries)
    {
        fake.files.texts[path] = "";
        std::vector<readers::Frame>& told = documents.told[path] = {readers::Kind::Calendar};
        for (const CalendarEntry& entry : entries)
            told.emplace_back(ToBlock(entry));
        told.emplace_back(entries.empty() ? readers::Refusal::NoText : readers::Refusal::None);
    }
    /// Drops files on the main window.
    void Drop(const Lines& files)
    {
        fake.windows.boxes.clear();
        form.FilesDropped(files);
        TimerOf("tmrCalendars").Fire();
    }
    Lines Listed() const
    {
        Lines reminders;
        for (std::int32_t id = 1; id <= RemCount; ++id) {
            const readers::Block block = ToBlock(EntryOf(program.Reminders.List.At(id)));
            reminders.push_back(block.label + " " + block.text);
        }
        return reminders;
    }
    static CalendarEntry EntryOf(const Reminder& one)
    {
        return {DateTime{one.Year, one.Month, one.Day, one.Hour, one.Minute, 0}, one.Title, one.Description};
    }
    void Answer(int answer) { fake.windows.answers.push_back(answer); }
    const std::string file = "C:\\team.ics";
    const DateTime later{2026, 12, 1, 9, 5, 0};
    const DateTime earlier{2026, 11, 23, 7, 59, 0};
    const std::string title = "Voxmate - Reminders: ";
};

TEST_F(CalendarsTest, WhatIsToComeIsAddedAndTold)
{
    File(file, {Entry("Tea", later, "Green\nor black"), Entry("Now", {2026, 11, 23, 8, 0, 0})});
    Drop({file});
    EXPECT_EQ(Listed(), (Lines{"2026-12-01 09:05 Tea\nGreen\r\nor black", "2026-11-23 08:00 Now"}));
    EXPECT_EQ(Boxes(), (Lines{title + "2 reminders were added from \"team.ics\"."}));
}

TEST_F(CalendarsTest, TheSameFileAgainAddsNothing)
{
    File(file, {Entry("Tea", later), Entry("Tea", later)});
    Drop({file});
    EXPECT_EQ(Boxes(), (Lines{title + "1 reminder was added from \"team.ics\".\r\n1 entry is in the list already."}));
    Drop({file});
    EXPECT_EQ(Listed(), (Lines{"2026-12-01 09:05 Tea"}));
    EXPECT_EQ(Boxes(),
              (Lines{title + "No reminder was added from \"team.ics\".\r\n2 entries are in the list already."}));
}

TEST_F(CalendarsTest, WhatIsInThePastIsAskedAboutOnce)
{
    File(file, {Entry("Old", earlier), Entry("Tea", later), Entry("Older", {2025, 1, 1, 9, 0, 0})});
    Answer(vbNo);
    Drop({file});
    EXPECT_EQ(Listed(), (Lines{"2026-12-01 09:05 Tea"}));
    EXPECT_EQ(Boxes(), (Lines{title + "2 of the 3 entries are in the past. Do you want to add them as well?\r\n\r\n"
                                      "What is in the past and not marked as done is announced at once as missed.",
                              title + "1 reminder was added from \"team.ics\".\r\n"
                                      "2 entries are in the past and were left out."}));
    Answer(vbYes);
    Drop({file});
    EXPECT_EQ(Listed(), (Lines{"2026-12-01 09:05 Tea", "2026-11-23 07:59 Old", "2025-01-01 09:00 Older"}));
}

TEST_F(CalendarsTest, FilesThatComeTogetherAreToldTogether)
{
    const std::string other = "C:\\Other.ICS";
    File(file, {Entry("Tea", later)});
    File(other, {Entry("Milk", later)});
    Drop({file, other});
    EXPECT_EQ(Boxes(), (Lines{title + "2 reminders were added from 2 files."}));
}

TEST_F(CalendarsTest, WhatWasTakenOtherwiseThanItIsWrittenIsTold)
{
    CalendarEntry weekly = Entry("Choir", later);
    weekly.Repeats = true;
    CalendarEntry far = Entry("Call", later);
    far.ForeignZone = true;
    CalendarEntry dateless = Entry("Some day", later);
    dateless.At.reset();
    File(file, {weekly, far, dateless, Entry(std::string(60, 'T'), later, std::string(300, 'd'))});
    Drop({file});
    EXPECT_EQ(Listed(), (Lines{"2026-12-01 09:05 Choir", "2026-12-01 09:05 Call",
                               "2026-12-01 09:05 " + std::string(49, 'T') + "…\n" + std::string(44, 'd') + "…"}));
    EXPECT_EQ(
        Boxes(),
        (Lines{title + "3 reminders were added from \"team.ics\".\r\n"
                       "1 entry has no date and was left out.\r\n"
                       "1 entry repeats; its next date was taken.\r\n"
                       "1 entry is longer than a reminder can be and was shortened.\r\n"
                       "1 entry is in a time zone that is not known here; its time was taken as it is written."}));
}

TEST_F(CalendarsTest, WhatCannotBeReadIsTold)
{
    fake.files.texts[file] = "Dear Ann";
    Drop({file});
    EXPECT_EQ(Boxes(), (Lines{title + "\"team.ics\" is no calendar."}));
    documents.told[file] = {readers::Kind::Calendar, ToBlock(Entry("Tea", later)), readers::Refusal::TooLarge};
    Drop({file});
    EXPECT_EQ(Boxes(), (Lines{title + "1 reminder was added from \"team.ics\".\r\n"
                                      "\"team.ics\" cannot be read to its end: it is too large."}));
    File(file, {});
    Drop({file});
    EXPECT_EQ(Boxes(), (Lines{title + "No reminder was added from \"team.ics\"."}));
}

TEST_F(CalendarsTest, RemindersThatAreDisabledStaySo)
{
    Answer(vbYes);
    form.mnuDReminders.UserClick();
    File(file, {Entry("Tea", later)});
    Drop({file});
    EXPECT_FALSE(form.ReminderTimerEnabled());
    EXPECT_EQ(Boxes(), (Lines{title + "1 reminder was added from \"team.ics\".\r\n"
                                      "Reminders are disabled; nothing is announced until you enable them."}));
}

TEST_F(CalendarsTest, AllRemindersAreSavedAsAFile)
{
    ASSERT_TRUE(TryAppendReminder({"Tea", 1, 12, 2026, 9, 5, "Green", false}));
    LoadReminders(false, 0);
    sounds.chosen = {"C:\\mine"};
    Item("mnuSaveCalendar").UserClick();
    EXPECT_TRUE(Logged("ShowSave Save as Calendar File Calendar Files (*.ics)|*.ics Reminders.ics"));
    EXPECT_TRUE(fake.files.texts["C:\\mine.ics"].starts_with("BEGIN:VCALENDAR\r\nVERSION:2.0\r\n"));
    EXPECT_NE(fake.files.texts["C:\\mine.ics"].find("\r\nSUMMARY:Tea\r\n"), std::string::npos);
    EXPECT_EQ(Boxes(), (Lines{title + "1 reminder was saved in the following file:\r\nC:\\mine.ics"}));
}

TEST_F(CalendarsTest, NothingIsSavedWithoutRemindersOrAName)
{
    Item("mnuSaveCalendar").UserClick();
    EXPECT_EQ(Boxes(), (Lines{title + "There are no reminders to save."}));
    ASSERT_TRUE(TryAppendReminder({"Tea", 1, 12, 2026, 9, 5, "Green", false}));
    LoadReminders(false, 0);
    fake.windows.boxes.clear();
    Item("mnuSaveCalendar").UserClick();
    EXPECT_EQ(Boxes(), (Lines{}));
}

TEST_F(CalendarsTest, AFileThatCannotBeWrittenIsTold)
{
    ASSERT_TRUE(TryAppendReminder({"Tea", 1, 12, 2026, 9, 5, "Green", false}));
    LoadReminders(false, 0);
    sounds.chosen = {"C:\\mine.ics"};
    fake.files.texts["C:\\mine.ics"] = "older";
    savesText = false;
    Item("mnuSaveCalendar").UserClick();
    EXPECT_EQ(fake.files.texts["C:\\mine.ics"], "older");
    EXPECT_EQ(Boxes(), (Lines{title + "The calendar cannot be saved in the following file:\r\nC:\\mine.ics"}));
}

TEST(CalendarTextTest, IsAnEventForEachReminder)
{
    const Reminder tea{"Tea, now", 1, 12, 2026, 9, 5, "One\r\nTwo; \\ three", false};
    const Reminder done{"Tax", 2, 1, 2027, 0, 0, "", true};
    EXPECT_EQ(
        CalendarText({tea, done, done}, "20261123T080000Z"),
        "BEGIN:VCALENDAR\r\nVERSION:2.0\r\nPRODID:-//Voxmate//Reminders//EN\r\n"
        "BEGIN:VEVENT\r\nUID:6109e352e731efc1@voxmate\r\nDTSTAMP:20261123T080000Z\r\n"
        "DTSTART:20261201T090500\r\nSUMMARY:Tea\\, now\r\nDESCRIPTION:One\\nTwo\\; \\\\ three\r\n"
        "BEGIN:VALARM\r\nACTION:DISPLAY\r\nTRIGGER:PT0S\r\nDESCRIPTION:Tea\\, now\r\nEND:VALARM\r\n"
        "END:VEVENT\r\n"
        "BEGIN:VEVENT\r\nUID:1b07ddd93bf58a76@voxmate\r\nDTSTAMP:20261123T080000Z\r\nDTSTART:20270102T000000\r\n"
        "SUMMARY:Tax\r\nX-VOXMATE-DONE:TRUE\r\nEND:VEVENT\r\n"
        "BEGIN:VEVENT\r\nUID:1b07ddd93bf58a76-1@voxmate\r\nDTSTAMP:20261123T080000Z\r\nDTSTART:20270102T000000\r\n"
        "SUMMARY:Tax\r\nX-VOXMATE-DONE:TRUE\r\nEND:VEVENT\r\n"
        "END:VCALENDAR\r\n");
}

TEST(CalendarTextTest, FoldsLongLinesBetweenLetters)
{
    const std::string text = CalendarText({{std::string(66, 'x') + "éy", 1, 12, 2026, 9, 5, "", true}}, "");
    EXPECT_NE(text.find("\r\nSUMMARY:" + std::string(66, 'x') + "\r\n éy\r\n"), std::string::npos);
}

} // namespace
} // namespace voxmate
