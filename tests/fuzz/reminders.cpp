// Fuzzes the reminders' file. Any bytes either are a list of valid reminders, or are refused as a whole and left alone.
// What is read can be announced, and saving it changes none of it.
#include "fuzz.h"

#include "modules/ReminderRecord.h"
#include "modules/Reminders.h"
#include "tests/fakes/FakePlatform.h"

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

using namespace voxmate;
using voxmate::fuzz::InTime;
using voxmate::fuzz::Require;

namespace
{

const std::string file = "C:\\Voxmate\\VoxmateReminders.txt";

using Numbers = std::vector<std::int16_t>;

struct List {
    std::vector<std::string> titles = RemTitles;
    Numbers days = RemDays;
    Numbers months = RemMonths;
    Numbers years = RemYears;
    Numbers hours = RemHours;
    Numbers minutes = RemMinutes;
    std::vector<std::string> descriptions = RemDescs;
    std::vector<std::string> done = RemDone;
    std::int16_t count = RemCount;
    bool operator==(const List&) const = default;
};

void RequireValidList(std::size_t bytes, std::size_t rows)
{
    const auto count = static_cast<std::size_t>(RemCount);
    Require(count <= (bytes + ReminderSlotSize - 1) / ReminderSlotSize, "no more reminders than slots");
    Require(rows == count, "a row for each reminder");
    Require(RemTitles.size() == count + 1 && RemDays.size() == count + 1 && RemDone.size() == count + 1,
            "an entry for each reminder");
    for (std::size_t i = 1; i <= count; ++i) {
        Require(!Trim(RemTitles[i]).empty(), "a title that is not blank");
        // A byte that is not UTF-8 is shown as a character of up to three bytes.
        Require(RemTitles[i].size() + RemDescs[i].size() <= ReminderSlotSize * 3, "texts that fit a slot");
        Require(IsRealDate(RemDays[i], RemMonths[i], RemYears[i]), "a real date");
        Require(RemHours[i] >= 0 && RemHours[i] <= 23 && RemMinutes[i] >= 0 && RemMinutes[i] <= 59, "a time of day");
        Require(Trim(RemDone[i]) == "Y" || Trim(RemDone[i]) == "N", "a flag");
    }
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    fakes::FakePlatform fake;
    fakes::FakeMainWindow window(fake.log);
    BeginProgram(fake.platform, window);
    ResetReminders();
    Settings.ReminderSentenceSpeak = Settings.ReminderTitleSpeak = Settings.ReminderDateSpeak = 1;
    Settings.ReminderTimeSpeak = Settings.ReminderDescSpeak = 1;
    Settings.DateFormat = 2;
    ReminderFilePath = file;
    ReminderTempPath = "C:\\Voxmate\\VoxmateReminders.tmp";
    const std::string bytes(reinterpret_cast<const char*>(data), size);
    fake.files.texts[file] = bytes;
    window.CheckReminderMenus(true, false);
    {
        const InTime limit("loading");
        LoadReminders(true, 1);
    }
    Require(fake.files.texts[file] == bytes, "loading changes nothing");
    Require((RemindersValid != False) == window.reminderTimer, "reminders are on when the file is valid");
    if (RemindersValid == False) {
        Require(RemCount == 0, "nothing of an invalid file is announced");
        Require(!TrySaveReminders(0), "nothing is saved over an invalid file");
        Require(fake.files.texts[file] == bytes, "an invalid file stays as it is");
        ResetReminders();
        return 0;
    }
    RequireValidList(size, window.editor.rows.size());

    fake.clock.now = {9999, 12, 31, 23, 59, 59};
    RemTimer_Timer();
    std::size_t pending = 0;
    for (std::size_t i = 1; i <= static_cast<std::size_t>(RemCount); ++i)
        pending += RemDone[i] == "N" ? 1 : 0;
    Require(window.alerts.size() == pending, "a window for each pending reminder");

    const List before;
    if (TrySaveReminders(0)) {
        const std::string saved = fake.files.texts[file];
        Require(saved.size() == static_cast<std::size_t>(RemCount) * ReminderSlotSize, "a slot for each reminder");
        LoadReminders(false, 0);
        Require(List() == before, "what is saved is what was read");
        SaveReminders(0);
        Require(fake.files.texts[file] == saved, "a second save writes the same");
    } else {
        // A slot that holds numbers without leading zeros can be too small for them with these zeros.
        Require(fake.files.texts[file] == bytes, "a save that does not fit leaves the file alone");
        Require(List() == before, "and the list");
    }
    ResetReminders();
    return 0;
}
