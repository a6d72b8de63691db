// Fuzzes the reminders' file. Any bytes either are a list of valid reminders, or are refused as a whole and left alone.
// What is read can be announced, and saving it changes none of it.
#include "fuzz.h"

#include "tests/fakes/FakeMainWindow.h"
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
    std::vector<std::string> titles;
    Numbers days;
    Numbers months;
    Numbers years;
    Numbers hours;
    Numbers minutes;
    std::vector<std::string> descriptions;
    std::vector<std::string> done;
    std::int16_t count;
    explicit List(const ReminderList& list)
        : titles(list.RemTitles), days(list.RemDays), months(list.RemMonths), years(list.RemYears),
          hours(list.RemHours), minutes(list.RemMinutes), descriptions(list.RemDescs), done(list.RemDone),
          count(list.RemCount)
    {
    }
    bool operator==(const List&) const = default;
};

void RequireValidList(const ReminderList& list, std::size_t bytes, std::size_t rows)
{
    const auto count = static_cast<std::size_t>(list.RemCount);
    Require(count <= (bytes + ReminderSlotSize - 1) / ReminderSlotSize, "no more reminders than slots");
    Require(rows == count, "a row for each reminder");
    Require(list.RemTitles.size() == count + 1 && list.RemDays.size() == count + 1 && list.RemDone.size() == count + 1,
            "an entry for each reminder");
    for (std::size_t i = 1; i <= count; ++i) {
        Require(!Trim(list.RemTitles[i]).empty(), "a title that is not blank");
        // A byte that is not UTF-8 is shown as a character of up to three bytes.
        Require(list.RemTitles[i].size() + list.RemDescs[i].size() <= ReminderSlotSize * 3, "texts that fit a slot");
        Require(IsRealDate(list.RemDays[i], list.RemMonths[i], list.RemYears[i]), "a real date");
        Require(list.RemHours[i] >= 0 && list.RemHours[i] <= 23 && list.RemMinutes[i] >= 0 && list.RemMinutes[i] <= 59,
                "a time of day");
        Require(Trim(list.RemDone[i]) == "Y" || Trim(list.RemDone[i]) == "N", "a flag");
    }
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    fakes::FakePlatform fake;
    fakes::FakeMainWindow window(fake.log);
    fake.program.Main = &window;
    Reminders& reminders = fake.program.Reminders;
    const ReminderList& list = reminders.List;
    SettingsRecord& settings = fake.program.Settings;
    settings.ReminderSentenceSpeak = settings.ReminderTitleSpeak = settings.ReminderDateSpeak = 1;
    settings.ReminderTimeSpeak = settings.ReminderDescSpeak = 1;
    settings.DateFormat = 2;
    reminders.File.ReminderFilePath = file;
    reminders.File.ReminderTempPath = "C:\\Voxmate\\VoxmateReminders.tmp";
    const std::string bytes(reinterpret_cast<const char*>(data), size);
    fake.files.texts[file] = bytes;
    window.CheckReminderMenus(true, false);
    {
        const InTime limit("loading");
        reminders.LoadReminders(true, 1);
    }
    Require(fake.files.texts[file] == bytes, "loading changes nothing");
    Require((list.RemindersValid != False) == window.reminderTimer, "reminders are on when the file is valid");
    if (list.RemindersValid == False) {
        Require(list.RemCount == 0, "nothing of an invalid file is announced");
        Require(!reminders.TrySaveReminders(0), "nothing is saved over an invalid file");
        Require(fake.files.texts[file] == bytes, "an invalid file stays as it is");
        return 0;
    }
    RequireValidList(list, size, window.editor.rows.size());

    fake.clock.now = {9999, 12, 31, 23, 59, 59};
    fake.program.Scheduler.RemTimer_Timer();
    std::size_t pending = 0;
    for (std::size_t i = 1; i <= static_cast<std::size_t>(list.RemCount); ++i)
        pending += list.RemDone[i] == "N" ? 1 : 0;
    Require(window.alerts.size() == pending, "a window for each pending reminder");

    const List before(list);
    if (reminders.TrySaveReminders(0)) {
        const std::string saved = fake.files.texts[file];
        Require(saved.size() == static_cast<std::size_t>(list.RemCount) * ReminderSlotSize, "a slot for each reminder");
        reminders.LoadReminders(false, 0);
        Require(List(list) == before, "what is saved is what was read");
        reminders.File.WriteReminders(0);
        Require(fake.files.texts[file] == saved, "a second save writes the same");
    } else {
        // A slot that holds numbers without leading zeros can be too small for them with these zeros.
        Require(fake.files.texts[file] == bytes, "a save that does not fit leaves the file alone");
        Require(List(list) == before, "and the list");
    }
    return 0;
}
