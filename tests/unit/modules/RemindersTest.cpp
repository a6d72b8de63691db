#include "ReminderTest.h"
#include "modules/ReminderRecord.h"

#include <set>

namespace voxmate
{

namespace
{

using RemindersTest = ReminderTest;

// The record.

TEST_F(RemindersTest, ARecordsBytesAreEightLengthsAndTextsAndZerosUpTo128)
{
    Load({});
    AppendReminder({"Call", 7, 3, 2004, 9, 5, "Bank", false});
    const std::string head("\x04\x00"
                           "Call"
                           "\x02\x00"
                           "07"
                           "\x02\x00"
                           "03"
                           "\x04\x00"
                           "2004"
                           "\x02\x00"
                           "09"
                           "\x02\x00"
                           "05"
                           "\x04\x00"
                           "Bank"
                           "\x01\x00"
                           "N",
                           37);
    EXPECT_EQ(Content(), head + std::string(128 - 37, '\0'));
}

TEST_F(RemindersTest, WhatFillsASlotIsNeverRead)
{
    fake.files.texts[file] = Slot(Call(), '\xFF') + Slot(Call(), ' ');
    LoadReminders(false, 0);
    EXPECT_EQ(RemCount, 2);
    EXPECT_NE(RemindersValid, False);
}

TEST_F(RemindersTest, EveryFieldOfARecordComesIntoTheList)
{
    Load({{"Call", "07", "03", "2004", "09", "05", "Bank", "N"}, {"Tea", "31", "12", "1999", "23", "59", "", "Y"}});
    ASSERT_EQ(RemCount, 2);
    EXPECT_EQ(RemTitles, (Lines{"", "Call", "Tea"}));
    EXPECT_EQ(RemDays, (std::vector<std::int16_t>{0, 7, 31}));
    EXPECT_EQ(RemMonths, (std::vector<std::int16_t>{0, 3, 12}));
    EXPECT_EQ(RemYears, (std::vector<std::int16_t>{0, 2004, 1999}));
    EXPECT_EQ(RemHours, (std::vector<std::int16_t>{0, 9, 23}));
    EXPECT_EQ(RemMinutes, (std::vector<std::int16_t>{0, 5, 59}));
    EXPECT_EQ(RemDescs, (Lines{"", "Bank", ""}));
    EXPECT_EQ(RemDone, (Lines{"", "N", "Y"}));
}

TEST_F(RemindersTest, TextsKeepTheirBlanksAndAreCountedInBytes)
{
    const ReminderFields fields{" Müller treffen ", "07", "03", "2004", "09", "05", "Tee für 2 €", "N"};
    Load({fields});
    ASSERT_EQ(RemCount, 1);
    EXPECT_EQ(RemTitles[1], " Müller treffen ");
    SaveReminders(0);
    EXPECT_EQ(Content(), Slot(fields));
    EXPECT_EQ(Content()[0], '\x11'); // 16 characters, one of them of two bytes
}

TEST_F(RemindersTest, NumbersAreWrittenWithZerosInFrontAndTheirSignBeforeThem)
{
    EXPECT_EQ(Padded(7, 2), "07");
    EXPECT_EQ(Padded(12, 2), "12");
    EXPECT_EQ(Padded(123, 2), "123");
    EXPECT_EQ(Padded(-8, 2), "-08");
    EXPECT_EQ(Padded(-11, 2), "-11");
    EXPECT_EQ(Padded(0, 4), "0000");
    EXPECT_EQ(Padded(2004, 4), "2004");
}

// Loading.

TEST_F(RemindersTest, AMissingFileLoadsAsAValidEmptyListAndIsNotMade)
{
    window.CheckReminderMenus(true, false);
    LoadReminders(false, 0);
    EXPECT_FALSE(fake.files.FileExists(file));
    EXPECT_EQ(RemCount, 0);
    EXPECT_NE(RemindersValid, False);
    EXPECT_TRUE(RemindersAreOn());
    EXPECT_TRUE(fake.windows.boxes.empty());
}

TEST_F(RemindersTest, ABlankTitleEndsTheFile)
{
    ReminderFields blank = Call();
    blank[0] = "   ";
    for (const std::string& first : {std::string{}, std::string(128, '\0'), Slot(blank)}) {
        fake.files.texts[file] = first + (first.empty() ? "" : Slot(Call()));
        LoadReminders(false, 0);
        EXPECT_EQ(RemCount, 0);
        EXPECT_NE(RemindersValid, False);
    }
    fake.files.texts[file] = Slot(Call()) + Slot(blank) + Slot(Call());
    LoadReminders(false, 0);
    EXPECT_EQ(RemCount, 1);
    EXPECT_NE(RemindersValid, False);
}

TEST_F(RemindersTest, ALoadPutsRemindersBackAsTheyWere)
{
    Store({Call()});
    window.CheckReminderMenus(true, false);
    LoadReminders(false, 0);
    EXPECT_TRUE(RemindersAreOn());
    window.EnableReminderTimer(false);
    window.CheckReminderMenus(false, true);
    LoadReminders(false, 0);
    EXPECT_TRUE(RemindersAreOff());
    EXPECT_EQ(RemCount, 1);
}

TEST_F(RemindersTest, RemindersAreOffWhileTheFileIsRead)
{
    Store({{"Call", "32", "03", "2004", "09", "05", "Bank", "N"}});
    window.EnableReminderTimer(true);
    window.CheckReminderMenus(true, false);
    bool off = false;
    fake.windows.whileBoxIsUp = [&](const auto&) { off = RemindersAreOff(); };
    fake.windows.answers = {vbYes};
    LoadReminders(false, 0);
    EXPECT_TRUE(off);
}

TEST_F(RemindersTest, TheFilesThatAreOpenedAndClosed)
{
    fake.files.log = &fake.log;
    Store({Call()});
    LoadReminders(false, 0);
    EXPECT_EQ(FileCalls(),
              (Lines{"OpenRandom C:\\Voxmate\\VoxmateReminders.txt 128", "Close C:\\Voxmate\\VoxmateReminders.txt"}));
}

struct Bad {
    const char* what;
    std::size_t field;
    const char* value;
};

TEST_F(RemindersTest, WhatMakesARecordInvalid)
{
    const std::vector<Bad> bad{
        {"31 February", 2, "02"}, {"day 32", 1, "32"},         {"day 0", 1, "00"},
        {"month 13", 2, "13"},    {"month 0", 2, "00"},        {"month -8", 2, "-08"},
        {"month -8", 2, "-8"},    {"no month", 2, ""},         {"year 99", 3, "99"},
        {"no year", 3, ""},       {"a name", 2, "Mar"},        {"a sign", 1, "+7"},
        {"a point", 1, "7.0"},    {"five digits", 3, "10000"}, {"hour 24", 4, "24"},
        {"one digit", 4, "5"},    {"three", 4, "005"},         {"minute 60", 5, "60"},
        {"one digit", 5, "5"},    {"letters", 5, "ab"},        {"lower case", 7, "y"},
        {"empty", 7, ""},         {"another", 7, "X"},         {"two", 7, "NN"},
        {"a NUL", 7, "\x01"},
    };
    for (const Bad& one : bad) {
        ReminderFields fields{"Call", "31", "03", "2004", "09", "05", "Bank", "N"};
        fields.at(one.field) = one.value;
        Store({Call(), fields});
        fake.windows.boxes.clear();
        LoadReminders(false, 0);
        EXPECT_EQ(RemindersValid, False) << one.what;
        EXPECT_EQ(RemCount, 0) << one.what;
        EXPECT_EQ(RemTitles, (Lines{"", "Call"})) << one.what; // as far as it was read
        ASSERT_EQ(fake.windows.boxes.size(), 2u) << one.what;
    }
}

TEST_F(RemindersTest, WhatIsValidThoughItLooksOdd)
{
    const std::vector<ReminderFields> odd{
        {"Blanks round the flag", "07", "03", "2004", "09", "05", "", " Y "},
        {"Blanks round numbers", " 7 ", "3", "2004 ", "09", "05", "", "N"},
        {"Leap year", "29", "02", "2000", "00", "00", "", "N"},
        {"Last minute", "31", "12", "9999", "23", "59", "", "N"},
        {"First year", "01", "01", "0100", "23", "59", "", "N"},
    };
    Load(odd);
    EXPECT_NE(RemindersValid, False);
    ASSERT_EQ(RemCount, 5);
    EXPECT_EQ(RemDone[1], " Y ");
    EXPECT_EQ(RemDays[2], 7);
    EXPECT_EQ(RemYears[2], 2004);
    EXPECT_EQ(RemYears[5], 100);
}

TEST_F(RemindersTest, EveryDayOfFourCenturiesIsRealAndNoOther)
{
    // Counted on day by day from a known Sunday; a year's length must come out as the calendar has it.
    for (int year = 1900; year <= 2299; ++year) {
        int days = 0;
        for (int month = -1; month <= 14; ++month)
            for (int day = -1; day <= 32; ++day)
                days += IsRealDate(day, month, year) ? 1 : 0;
        const std::set<int> common{1900, 2100, 2200};
        EXPECT_EQ(days, year % 4 == 0 && !common.contains(year) ? 366 : 365) << year;
    }
}

TEST_F(RemindersTest, AFileThatEndsWithinARecordIsInvalid)
{
    fake.files.texts[file] = Slot(Call()) + Slot(Call()).substr(0, 20);
    LoadReminders(false, 0);
    EXPECT_EQ(RemindersValid, False);
    EXPECT_EQ(fake.windows.boxes.at(0).text, invalidFileQuestion);
}

TEST_F(RemindersTest, AFileThatEndsRightBehindARecordsTextsIsValid)
{
    fake.files.texts[file] = Slot(Call()) + Slot(Call()).substr(0, 37);
    LoadReminders(false, 0);
    EXPECT_NE(RemindersValid, False);
    EXPECT_EQ(RemCount, 2);
}

TEST_F(RemindersTest, ALengthThatPointsPastItsSlotIsInvalid)
{
    std::string bytes = Slot(Call(), ' '); // the rest of it read as a flag would be one
    bytes[34] = '\x5D';                    // the flag's length: 93 with 92 left
    fake.files.texts[file] = bytes + Slot(Call());
    LoadReminders(false, 0);
    EXPECT_EQ(RemindersValid, False);
}

TEST_F(RemindersTest, AnInvalidFileAnsweredYesIsEmptiedAndRemindersAreOn)
{
    WithCharacter();
    fake.files.log = &fake.log;
    Store({Call(), {"Bad", "30", "02", "2004", "09", "05", "Bank", "N"}, Call()});
    const std::string before = Content();
    window.CheckReminderMenus(false, true);
    fake.windows.answers = {vbYes};
    LoadReminders(false, 0);
    ASSERT_EQ(fake.windows.boxes.size(), 1u);
    EXPECT_EQ(fake.windows.boxes[0].text, invalidFileQuestion);
    EXPECT_EQ(fake.windows.boxes[0].style, vbYesNo + vbCritical);
    EXPECT_EQ(fake.windows.boxes[0].title, "Voxmate - Reminders");
    // What was in it is kept beside it.
    Lines asked = FileCalls();
    EXPECT_EQ(asked,
              (Lines{"OpenRandom C:\\Voxmate\\VoxmateReminders.txt 128", "Close C:\\Voxmate\\VoxmateReminders.txt",
                     "MoveFile C:\\Voxmate\\VoxmateReminders.txt to "
                     "C:\\Voxmate\\VoxmateReminders-1975-03-17-140509.txt",
                     "CreateTextFile C:\\Voxmate\\VoxmateReminders.txt"}));
    EXPECT_EQ(fake.files.texts.at("C:\\Voxmate\\VoxmateReminders-1975-03-17-140509.txt"), before);
    Lines spoken = Spoken();
    ASSERT_EQ(spoken.size(), 2u);
    EXPECT_EQ(spoken[0], "[Decline]");
    EXPECT_TRUE(spoken[1].starts_with("Dear Buddy, \r\nReminders file is not having valid data.")) << spoken[1];
    EXPECT_EQ(Content(), "");
    EXPECT_TRUE(RemindersAreOn());
    EXPECT_EQ(RemindersValid, False);
    EXPECT_EQ(RemTitles, (Lines{"", "Call"}));
    EXPECT_EQ(IsBusy, False);
    LoadReminders(false, 0);
    EXPECT_NE(RemindersValid, False);
    EXPECT_TRUE(RemindersAreOn());
}

TEST_F(RemindersTest, AnInvalidFileAnsweredNoStaysAndRemindersAreOff)
{
    WithCharacter();
    fake.files.log = &fake.log;
    Store({{"Bad", "30", "02", "2004", "09", "05", "Bank", "N"}});
    const std::string before = Content();
    window.CheckReminderMenus(true, false);
    fake.windows.answers = {vbNo, vbOK};
    LoadReminders(false, 0);
    ASSERT_EQ(fake.windows.boxes.size(), 2u);
    EXPECT_EQ(fake.windows.boxes[0].text, invalidFileQuestion);
    EXPECT_EQ(fake.windows.boxes[1].text, "Reminders will not be available until following file is deleted:"
                                          "\r\n\r\nC:\\Voxmate\\VoxmateReminders.txt");
    EXPECT_EQ(fake.windows.boxes[1].style, vbOKOnly + vbCritical);
    EXPECT_EQ(fake.windows.boxes[1].title, "Voxmate - Reminders");
    EXPECT_EQ(Spoken()[2], "[Decline]");
    EXPECT_EQ(fake.log.back(), "Close C:\\Voxmate\\VoxmateReminders.txt");
    EXPECT_EQ(Content(), before);
    EXPECT_TRUE(RemindersAreOff());
    EXPECT_EQ(RemindersValid, False);
    EXPECT_EQ(IsBusy, False);
}

TEST_F(RemindersTest, AnInvalidFileClosesTheEditorFirst)
{
    Store({Call(), {"Bad", "30", "02", "2004", "09", "05", "Bank", "N"}});
    LoadReminders(true, 1);
    EXPECT_EQ(fake.log, (Lines{"Editor unloaded", "MsgBox Voxmate - Reminders", "MsgBox Voxmate - Reminders"}));
    fake.log.clear();
    LoadReminders(false, 0);
    EXPECT_EQ(fake.log, (Lines{"MsgBox Voxmate - Reminders", "MsgBox Voxmate - Reminders"}));
}

TEST_F(RemindersTest, ALoadThatIsWantedWhileOneAsksIsLeftToThatOne)
{
    fake.files.log = &fake.log;
    Store({Call(), {"Bad", "30", "02", "2004", "09", "05", "Bank", "N"}});
    fake.windows.whileBoxIsUp = [this](const auto&) { LoadReminders(false, 0); };
    LoadReminders(false, 0);
    EXPECT_EQ(fake.windows.boxes.size(), 2u);
    EXPECT_EQ(FileCalls().size(), 2u);
    fake.windows.whileBoxIsUp = nullptr;
    Store({Call()});
    LoadReminders(false, 0);
    EXPECT_EQ(RemCount, 1);
}

TEST_F(RemindersTest, TheListHolds32767RemindersAndNoMore)
{
    std::string bytes;
    for (int i = 0; i < 32767; ++i)
        bytes += Slot(Call());
    fake.files.texts[file] = bytes;
    window.CheckReminderMenus(true, false);
    LoadReminders(false, 0);
    EXPECT_EQ(RemCount, 32767);
    EXPECT_TRUE(RemindersAreOn());
    EXPECT_THROW(AppendReminder({"One more", 7, 3, 2004, 9, 5, "", false}), RuntimeError);
    EXPECT_EQ(Content(), bytes);

    // A file with more is left alone: were its first part taken for all, the next save would drop the rest.
    fake.files.texts[file] = bytes + Slot(Call());
    LoadReminders(false, 0);
    EXPECT_EQ(RemindersValid, False);
    EXPECT_EQ(RemCount, 0);
    EXPECT_TRUE(RemindersAreOff());
    ASSERT_EQ(fake.windows.boxes.size(), 1u);
    EXPECT_EQ(fake.windows.boxes[0].text,
              "The reminders could not be read: there is room for no more than 32767 reminders."
              "\r\n\r\nC:\\Voxmate\\VoxmateReminders.txt\r\n\r\n"
              "Reminders are disabled until the file has been read.\r\nError 6 - Overflow");
    EXPECT_EQ(fake.windows.boxes[0].style, vbOKOnly + vbExclamation);
    EXPECT_EQ(fake.windows.boxes[0].title, "Voxmate - Reminders");
}

TEST_F(RemindersTest, AFileThatCannotBeOpenedOrReadIsToldOfAndLeavesRemindersOff)
{
    for (const char* call : {"OpenRandom C:\\Voxmate\\VoxmateReminders.txt 128", "Get 2"}) {
        fake.files.failures.clear();
        Load({Call(), Call(), Call()});
        const std::string before = Content();
        fake.files.failures = {{call, PathFileAccessError()}};
        fake.windows.boxes.clear();
        LoadReminders(false, 0);
        ASSERT_EQ(fake.windows.boxes.size(), 1u) << call;
        EXPECT_EQ(fake.windows.boxes[0].text,
                  "The reminders could not be read: access to the file or its folder is not allowed."
                  "\r\n\r\nC:\\Voxmate\\VoxmateReminders.txt\r\n\r\n"
                  "Reminders are disabled until the file has been read.\r\nError 75 - Path/File access error");
        EXPECT_TRUE(RemindersAreOff()) << call;
        EXPECT_EQ(IsBusy, False) << call;
        EXPECT_EQ(Content(), before) << call;
        // Nothing is announced, and once the file can be read all is as before.
        fake.files.failures.clear();
        LoadReminders(false, 0);
        EXPECT_EQ(RemCount, 3) << call;
        EXPECT_NE(RemindersValid, False) << call;
    }
}

TEST_F(RemindersTest, AnEmptiedFileThatCannotBeMadeIsToldOf)
{
    Store({{"Bad", "30", "02", "2004", "09", "05", "Bank", "N"}});
    fake.files.failures = {{"CreateTextFile C:\\Voxmate\\VoxmateReminders.txt", PathFileAccessError()}};
    fake.windows.answers = {vbYes};
    LoadReminders(false, 0);
    ASSERT_EQ(fake.windows.boxes.size(), 2u);
    EXPECT_TRUE(fake.windows.boxes[1].text.starts_with(
        "The reminders could not be read: access to the file or its folder is not allowed.\r\n"))
        << fake.windows.boxes[1].text;
    EXPECT_TRUE(RemindersAreOff());
}

// The editor's list.

TEST_F(RemindersTest, TheListViewShowsNumberTitleDateAndTimeWithAnImage)
{
    Store({Call(), {"Tea", "31", "12", "1999", "23", "59", "", "Y"}, {"Odd", "1", "2", "2004", "00", "00", "", " Y"}});
    LoadReminders(true, 2);
    EXPECT_EQ(window.editor.rows,
              (Lines{"1|2|Call|2004/03/07|09:05", "2|1|Tea|1999/12/31|23:59", "3|2|Odd|2004/2/1|00:00"}));
    EXPECT_EQ(fake.log, (Lines{"Select item 2", "Fields Tea|31|12|1999|23:59||done"}));
}

TEST_F(RemindersTest, ASelectionOfZeroMeansTheFirst)
{
    Store({Call(), Call()});
    LoadReminders(true, 0);
    EXPECT_EQ(fake.log, (Lines{"Select item 1", "Fields Call|7|3|2004|09:05|Bank|pending"}));
    EXPECT_EQ(window.editor.rows.size(), 2u);
    LoadReminders(true, 0);
    EXPECT_EQ(window.editor.rows.size(), 2u); // not added to those of before
}

TEST_F(RemindersTest, AnEmptyListEmptiesTheFields)
{
    LoadReminders(true, 1);
    EXPECT_EQ(fake.log, (Lines{"Fields empty"}));
    EXPECT_TRUE(window.editor.rows.empty());
    EXPECT_NE(RemindersValid, False);
}

TEST_F(RemindersTest, ASelectionPastTheListShowsNothing)
{
    Store({Call()});
    LoadReminders(true, 5);
    EXPECT_EQ(fake.log, (Lines{"Select item 5"}));
}

// The validators.

TEST_F(RemindersTest, ATimeHasTwoDigitsAColonAndTwoDigits)
{
    for (const char* time : {"00:00", "09:05", "23:59", " 09:05 ", "  12:30"})
        EXPECT_TRUE(IsValidTime(time)) << time;
    for (const char* time :
         {"",        "9:05",  "09:5",  "24:00", "12:60", "12.30", "12:3",   "123:0",  "1 2:30x",
          "ab:cd",   "12-30", "-1:30", "12:-1", "1.:30", "12:.5", "012:30", "12:300", "\xD9\xA1\xD9\xA2:30",
          "12:30\t", "1:2:3"})
        EXPECT_FALSE(IsValidTime(time)) << time;
}

TEST_F(RemindersTest, AWholeNumberIsDigitsAndNothingElse)
{
    for (const char* number : {"1", "10", "999", " 5 ", "007", "+5", "99999999999999999999"}) {
        EXPECT_TRUE(IsWholeNumber(number, true)) << number;
        EXPECT_TRUE(IsWholeNumber(number, false)) << number;
    }
    for (const char* zero : {"0", "00", " 000 ", "-0", "-5"}) {
        EXPECT_TRUE(IsWholeNumber(zero, true)) << zero;
        EXPECT_FALSE(IsWholeNumber(zero, false)) << zero;
    }
    for (const char* text : {"", " ", "1.0", ".5", "5.", "1,000", "1,5", "1e2", "&H9", "x", "1 0", "--1", "+", "-",
                             "1-", "$5", "(5)", "1\t", "\xC2\xB2"}) {
        EXPECT_FALSE(IsWholeNumber(text, true)) << text;
        EXPECT_FALSE(IsWholeNumber(text, false)) << text;
    }
}

} // namespace

} // namespace voxmate
