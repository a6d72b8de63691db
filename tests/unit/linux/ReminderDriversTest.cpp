// Several programs change the reminders of one folder at the same time, as fast as they can.
#include "OwnFolder.h"
#include "RealFiles.h"

#include <algorithm>
#include <chrono>
#include <cstdlib>
#include <map>
#include <random>
#include <sstream>
#include <sys/wait.h>
#include <unistd.h>

namespace voxmate::linux_platform
{

namespace
{

namespace fs = std::filesystem;

/// How long the drivers work: the seconds in VOXMATE_DRIVER_SECONDS, otherwise a fixed number of changes.
class Work
{
public:
    bool GoesOn()
    {
        ++done_;
        return seconds_ > 0 ? std::chrono::steady_clock::now() < end_ : done_ <= fewChanges;
    }

private:
    static constexpr int fewChanges = 150;
    static double Seconds()
    {
        const char* seconds = std::getenv("VOXMATE_DRIVER_SECONDS");
        return seconds ? std::atof(seconds) : 0;
    }
    double seconds_ = Seconds();
    std::chrono::steady_clock::time_point end_ =
        std::chrono::steady_clock::now() + std::chrono::milliseconds(static_cast<int>(seconds_ * 1000));
    int done_ = 0;
};

/// The reminders that must be in the file: their title, and whether they are done.
using Expected = std::map<std::string, bool>;

/// Adds, answers and deletes its own reminders without a pause, among those of others.
class Driver : private RealFiles, public ProgramNames
{
public:
    Driver(const fs::path& folder, int number)
        : ProgramNames(programOnFiles), name_("Driver " + std::to_string(number) + " "),
          random_(static_cast<unsigned>(number))
    {
        ReminderFilePath = (folder / "VoxmateReminders.txt").string();
        ReminderTempPath = (folder / "VoxmateReminders.tmp").string();
        window.CheckReminderMenus(true, false);
        LoadReminders(false, 0);
    }
    Driver(const Driver&) = delete;
    Driver& operator=(const Driver&) = delete;

    Expected Run()
    {
        constexpr std::size_t most = 40;
        Work work;
        while (work.GoesOn()) {
            const std::size_t choice = random_() % 3;
            if (mine_.empty() || (choice == 0 && mine_.size() < most))
                Add();
            else if (choice == 1)
                Answer();
            else
                Delete();
        }
        // An answer that could not be saved at once is saved later.
        while (window.reminderRetry)
            RetryReminders();
        return mine_;
    }
    /// The number of reminders it has added.
    int Added() const { return count_; }

private:
    std::string name_;
    std::mt19937 random_;
    Expected mine_;
    int count_ = 0;

    std::string Any() { return std::next(mine_.begin(), static_cast<std::ptrdiff_t>(random_() % mine_.size()))->first; }
    std::int16_t NumberOf(const std::string& title) const
    {
        const auto at = std::find(RemTitles.begin() + 1, RemTitles.begin() + 1 + RemCount, title);
        return at == RemTitles.begin() + 1 + RemCount ? std::int16_t{0}
                                                      : static_cast<std::int16_t>(at - RemTitles.begin());
    }
    void Add()
    {
        const std::string title = name_ + std::to_string(++count_);
        if (TryAppendReminder({title, 7, 3, 2104, 9, 5, "Bank", false}))
            mine_[title] = false;
        LoadReminders(false, 0);
    }
    void Answer()
    {
        const std::string title = Any();
        if (const std::int16_t number = NumberOf(title); number != 0) {
            FinishReminder(number, false, 0);
            mine_[title] = true;
        }
    }
    void Delete()
    {
        const std::string title = Any();
        const std::int16_t number = NumberOf(title);
        if (number != 0 && TrySaveReminders(number))
            mine_.erase(title);
        LoadReminders(false, 0);
    }
};

class ReminderDriversTest : public OwnFolder
{
protected:
    static constexpr int Others = 7; ///< reminders that exist beforehand and that nobody changes
    std::string File() const { return (folder / "VoxmateReminders.txt").string(); }

    void WriteOthers()
    {
        Driver driver(folder, 0);
        for (int i = 1; i <= Others; ++i)
            ASSERT_TRUE(driver.TryAppendReminder({"Other " + std::to_string(i), 7, 3, 2104, 9, 5, "", false}) &&
                        (driver.LoadReminders(false, 0), driver.RemCount == i));
    }
    /// Starts a driver in another process, which writes the reminders it leaves, one per line, to a file.
    pid_t Start(int number)
    {
        const pid_t process = ::fork();
        if (process != 0)
            return process;
        Driver driver(folder, number);
        std::ostringstream left;
        for (const auto& [title, done] : driver.Run())
            left << (done ? "Y " : "N ") << title << "\n";
        Write(folder / ("left " + std::to_string(number)), left.str());
        Write(folder / ("added " + std::to_string(number)), std::to_string(driver.Added()));
        ::_exit(0);
    }
};

TEST_F(ReminderDriversTest, TwoThatSaveWithoutPauseLoseNothing)
{
    WriteOthers();
    const std::vector<pid_t> drivers{Start(1), Start(2)};
    for (const pid_t driver : drivers) {
        int status = 0;
        ::waitpid(driver, &status, 0);
        EXPECT_EQ(status, 0);
    }
    std::vector<std::string> expected;
    for (int i = 1; i <= Others; ++i)
        expected.push_back("N Other " + std::to_string(i));
    for (const char* number : {"1", "2"}) {
        RecordProperty(std::string("added by driver ") + number, Read(folder / (std::string("added ") + number)));
        std::istringstream left(Read(folder / (std::string("left ") + number)));
        for (std::string line; std::getline(left, line);)
            expected.push_back(line);
    }
    const Driver reader(folder, 3);
    std::vector<std::string> found;
    for (std::size_t number = 1; number <= static_cast<std::size_t>(reader.RemCount); ++number)
        found.push_back(reader.RemDone[number] + " " + reader.RemTitles[number]);
    std::sort(expected.begin(), expected.end());
    std::sort(found.begin(), found.end());
    EXPECT_EQ(found, expected);
}

} // namespace

} // namespace voxmate::linux_platform
