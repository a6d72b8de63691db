// The reminders in a real file: what is on the disk when the program ends during a save or cannot complete one.
#include "FileHolder.h"
#include "OrdinaryUser.h"
#include "RealFiles.h"
#include "tests/fakes/ReminderSlot.h"

#include <csignal>
#include <filesystem>
#include <fstream>
#include <functional>
#include <gtest/gtest.h>
#include <iterator>
#include <map>
#include <optional>
#include <sched.h>
#include <sys/mount.h>
#include <sys/ptrace.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <sys/wait.h>
#include <unistd.h>

namespace voxmate::linux_platform
{

namespace
{

namespace fs = std::filesystem;

// Enough to fill more than one block of 64 KiB.
constexpr int many = 600;

class ReminderFileTest : public ::testing::Test, protected RealFiles, protected ProgramNames
{
protected:
    fs::path folder;

    ReminderFileTest() : ProgramNames(programOnFiles)
    {
        std::string name = (fs::temp_directory_path() / "voxmate-reminders-XXXXXX").string();
        folder = ::mkdtemp(name.data());
        fs::permissions(folder, fs::perms(0777));
        UseFolder(folder);
        window.CheckReminderMenus(true, false);
    }
    ~ReminderFileTest() override
    {
        fs::permissions(folder, fs::perms(0777));
        fs::remove_all(folder);
    }

    void UseFolder(const fs::path& where)
    {
        ReminderFilePath = (where / "VoxmateReminders.txt").string();
        ReminderTempPath = (where / "VoxmateReminders.tmp").string();
    }
    static std::string Slot(const std::string& title)
    {
        return voxmate::Slot({title, "07", "03", "2004", "09", "05", "Bank", "N"});
    }
    /// The slots of "Reminder 1" and so on, without number `skip`, and with another title for number `changed`.
    static std::string Reminders(int count, int skip = 0, int changed = 0)
    {
        std::string bytes;
        for (int i = 1; i <= count; ++i)
            if (i != skip)
                bytes += Slot(i == changed ? "Changed" : "Reminder " + std::to_string(i));
        return bytes;
    }
    static void Write(const std::string& path, const std::string& bytes)
    {
        std::ofstream(path, std::ios::binary) << bytes;
    }
    static std::string Content(const std::string& path)
    {
        std::ifstream in(path, std::ios::binary);
        return {std::istreambuf_iterator<char>(in), {}};
    }
    /// Writes `count` reminders to the file and loads them.
    void Load(int count)
    {
        fs::remove(ReminderTempPath);
        Write(ReminderFilePath, Reminders(count));
        window.CheckReminderMenus(true, false);
        LoadReminders(false, 0);
        ASSERT_EQ(RemCount, count);
        fake.windows.boxes.clear();
    }
    void Change(std::int16_t id) { StoreReminder(id, {"Changed", 7, 3, 2004, 9, 5, "Bank", false}); }

    /// The wait status of another process that runs `body`.
    static int StatusOf(const std::function<void()>& body)
    {
        const pid_t process = ::fork();
        if (process == 0) {
            try {
                body();
            } catch (const RuntimeError& error) {
                ::_exit(error.Number);
            }
            ::_exit(0);
        }
        int status = 0;
        ::waitpid(process, &status, 0);
        return status;
    }
};

/// Starts another process that runs `body`. It is stopped before that, unless `status` then says that processes may not
/// be traced here.
pid_t StartTraced(const std::function<void()>& body, int& status)
{
    const pid_t process = ::fork();
    if (process == 0) {
        if (::ptrace(PTRACE_TRACEME, 0, nullptr, nullptr) != 0)
            ::_exit(77);
        ::raise(SIGSTOP);
        body();
        ::_exit(0);
    }
    ::waitpid(process, &status, 0);
    return process;
}

enum class End { Cut, Finished, NotAllowed };

/// Runs `body` in another process, and kills that at its `stop`-th stop before or after a system call.
End CutAt(int stop, const std::function<void()>& body)
{
    int status = 0;
    const pid_t process = StartTraced(body, status);
    if (!WIFSTOPPED(status))
        return End::NotAllowed;
    for (int i = 0; i < stop && WIFSTOPPED(status); ++i) {
        ::ptrace(PTRACE_SYSCALL, process, nullptr, nullptr);
        ::waitpid(process, &status, 0);
    }
    if (!WIFSTOPPED(status))
        return WIFEXITED(status) && WEXITSTATUS(status) == 0 ? End::Finished : End::NotAllowed;
    ::kill(process, SIGKILL);
    ::waitpid(process, &status, 0);
    return End::Cut;
}

/// How often a save that was cut off left the old file, the new one, and only the temporary copy.
struct Left {
    int before = 0;
    int after = 0;
    int copyOnly = 0;
};

TEST_F(ReminderFileTest, ASaveCutOffAtAnySystemCallLosesNoReminder)
{
    struct Save {
        const char* what;
        std::function<void()> change;
        std::string after;
        std::size_t count;
    };
    const std::string before = Reminders(many);
    const std::vector<Save> saves{
        {"a change",
         [this] {
             Change(many);
             SaveReminders(0);
         },
         Reminders(many, 0, many), many},
        {"a deletion", [this] { SaveReminders(2); }, Reminders(many, 2), many - 1},
        {"an addition",
         [this] {
             AppendReminder({"Reminder 601", 7, 3, 2004, 9, 5, "Bank", false});
         },
         Reminders(many + 1), many + 1},
    };
    for (const Save& save : saves) {
        Left left;
        End end = End::Cut;
        for (int stop = 1; end == End::Cut; ++stop) {
            Load(many);
            // In every other case an old copy from an earlier interruption is there.
            if (stop % 2 == 0)
                Write(ReminderTempPath, Slot("Old copy"));
            end = CutAt(stop, save.change);
            if (end == End::NotAllowed)
                GTEST_SKIP() << "processes may not be traced here";
            const bool hasFile = fs::exists(ReminderFilePath);
            const std::string found = Content(hasFile ? ReminderFilePath : ReminderTempPath);
            ASSERT_TRUE(found == before || found == save.after) << save.what << ", stop " << stop;
            ASSERT_TRUE(hasFile || found == save.after) << save.what << ", stop " << stop;
            left.before += hasFile && found == before ? 1 : 0;
            left.after += hasFile && found == save.after ? 1 : 0;
            left.copyOnly += hasFile ? 0 : 1;
            // The next start finds them.
            BeginAgain();
            window.CheckReminderMenus(true, false);
            LoadReminders(false, 0);
            ASSERT_NE(RemindersValid, False) << save.what << ", stop " << stop;
            ASSERT_EQ(static_cast<std::size_t>(RemCount), found == before ? many : save.count);
            ASSERT_EQ(Content(ReminderFilePath), found);
            ASSERT_TRUE(fake.windows.boxes.empty());
        }
        EXPECT_EQ(end, End::Finished) << save.what;
        EXPECT_EQ(Content(ReminderFilePath), save.after) << save.what;
        EXPECT_GT(left.before, 5) << save.what;
        EXPECT_GT(left.after, 0) << save.what;
        // The stops between deleting the old file and renaming the new one, one before and one after a call each.
        EXPECT_EQ(left.copyOnly > 1, save.what != saves.back().what) << save.what;
        RecordProperty(std::string("cuts through ") + save.what, left.before + left.after + left.copyOnly);
    }
}

/// The system calls, by name and in order, with which another process that runs `body` changes files or syncs them to
/// the disk; empty where that cannot be traced.
std::vector<std::string> DiskCalls(const std::function<void()>& body)
{
    const std::map<std::uint64_t, std::string> names{{SYS_fdatasync, "fdatasync"},
                                                     {SYS_fsync, "fsync"},
#ifdef SYS_unlink
                                                     {SYS_unlink, "unlink"},
#endif
                                                     {SYS_unlinkat, "unlink"},
                                                     {SYS_renameat2, "rename"}};
    std::vector<std::string> calls;
    int status = 0;
    const pid_t process = StartTraced(body, status);
    // Distinguishes stops at system calls from others.
    ::ptrace(PTRACE_SETOPTIONS, process, nullptr, PTRACE_O_TRACESYSGOOD | PTRACE_O_EXITKILL);
    while (WIFSTOPPED(status)) {
        __ptrace_syscall_info info{};
        const auto size = ::ptrace(PTRACE_GET_SYSCALL_INFO, process, sizeof info, &info);
        if (size > 0 && info.op == PTRACE_SYSCALL_INFO_ENTRY && names.contains(info.entry.nr))
            calls.push_back(names.at(info.entry.nr));
        ::ptrace(PTRACE_SYSCALL, process, nullptr, nullptr);
        ::waitpid(process, &status, 0);
    }
    return calls;
}

TEST_F(ReminderFileTest, TheNewFileIsOnTheDiskBeforeTheOldOneGoesAndItsNameAfterwards)
{
    Load(many);
    const auto calls = DiskCalls([this] { SaveReminders(0); });
    if (calls.empty())
        GTEST_SKIP() << "processes may not be traced here";
    // In order: the copy's bytes, its name once it is complete, and that name in the folder; the old file is deleted;
    // the copy gets the file's name, and that name is synced.
    EXPECT_EQ(calls, (std::vector<std::string>{"fdatasync", "rename", "fsync", "unlink", "rename", "fsync"}));
    EXPECT_EQ(DiskCalls([this] {
                  AppendReminder({"More", 7, 3, 2004, 9, 5, "", false});
              }),
              std::vector<std::string>{"fdatasync"});
}

TEST_F(ReminderFileTest, ASaveCutOffWithinAWriteLosesNoReminder)
{
    const std::string before = Reminders(many);
    std::vector<rlim_t> limits{1, 127, 128, 129, 65535, 65536, 65537, before.size() - 1};
    for (rlim_t limit = 0; limit < before.size(); limit += 2000)
        limits.push_back(limit);
    for (const rlim_t limit : limits) {
        Load(many);
        Change(many);
        const int status = StatusOf([limit, this] {
            ::signal(SIGXFSZ, SIG_DFL);
            const rlimit core{0, 0};
            const rlimit size{limit, limit};
            ::setrlimit(RLIMIT_CORE, &core);
            ::setrlimit(RLIMIT_FSIZE, &size);
            SaveReminders(0);
        });
        ASSERT_TRUE(WIFSIGNALED(status) && WTERMSIG(status) == SIGXFSZ) << limit;
        ASSERT_EQ(fs::file_size(ReminderTempPath + ".new"), limit);
        ASSERT_FALSE(fs::exists(ReminderTempPath)); // an incomplete copy never gets a copy's name
        ASSERT_EQ(Content(ReminderFilePath), before) << limit;
        BeginAgain();
        LoadReminders(false, 0);
        ASSERT_EQ(RemCount, many) << limit;
        // The incomplete copy does not obstruct the next save.
        SaveReminders(0);
        ASSERT_EQ(Content(ReminderFilePath), before) << limit;
        ASSERT_FALSE(fs::exists(ReminderTempPath)) << limit;
        ASSERT_FALSE(fs::exists(ReminderTempPath + ".new")) << limit;
    }
}

TEST_F(ReminderFileTest, AFileThatIsASymbolicLinkStaysOneAndItsTargetIsReplaced)
{
    const fs::path elsewhere = folder / "elsewhere";
    fs::create_directory(elsewhere);
    const std::string target = (elsewhere / "Mine.txt").string();
    Write(target, Reminders(3));
    fs::create_symlink("elsewhere/Mine.txt", ReminderFilePath);
    const auto inode = [&] {
        struct stat status {
        };
        ::stat(target.c_str(), &status);
        return status.st_ino;
    };
    const ino_t before = inode();
    LoadReminders(false, 0);
    ASSERT_EQ(RemCount, 3);
    Change(2);
    EXPECT_TRUE(TrySaveReminders(0));
    EXPECT_TRUE(fs::is_symlink(ReminderFilePath));
    EXPECT_EQ(Content(target), Reminders(3, 0, 2));
    EXPECT_NE(inode(), before) << "not replaced but written over";
    EXPECT_TRUE(TryAppendReminder({"Reminder 4", 7, 3, 2004, 9, 5, "Bank", false}));
    EXPECT_EQ(Content(target), Reminders(4, 0, 2));
    // As when a save is cut off between deleting the old file and renaming the new one: the link is dangling.
    fs::rename(target, elsewhere / "Mine.txt.tmp");
    LoadReminders(false, 0);
    EXPECT_EQ(RemCount, 4);
    EXPECT_TRUE(fs::is_symlink(ReminderFilePath));
    EXPECT_EQ(Content(target), Reminders(4, 0, 2));
    EXPECT_TRUE(fake.windows.boxes.empty());
}

TEST_F(ReminderFileTest, ReadingMakesNoFile)
{
    LoadReminders(false, 0);
    EXPECT_NE(RemindersValid, False);
    EXPECT_FALSE(fs::exists(ReminderFilePath));
    fs::create_symlink("nowhere.txt", ReminderFilePath);
    LoadReminders(false, 0);
    EXPECT_NE(RemindersValid, False);
    EXPECT_FALSE(fs::exists(folder / "nowhere.txt"));
    EXPECT_TRUE(TryAppendReminder({"Reminder 1", 7, 3, 2004, 9, 5, "Bank", false}));
    EXPECT_EQ(Content((folder / "nowhere.txt").string()), Reminders(1));
    EXPECT_TRUE(fs::is_symlink(ReminderFilePath));
}

TEST_F(ReminderFileTest, AFullDiskIsToldOfAndLosesNothing)
{
    // A separate file system in another process, with room for the file but not for a second one.
    const int status = StatusOf([this] {
        if (::geteuid() != 0 && ::unshare(CLONE_NEWUSER) != 0)
            ::_exit(77);
        if (::unshare(CLONE_NEWNS) != 0 || ::mount("none", "/", nullptr, MS_REC | MS_PRIVATE, nullptr) != 0 ||
            ::mount("none", folder.c_str(), "tmpfs", 0, "size=128k") != 0)
            ::_exit(77);
        const auto require = [](bool kept, int line) {
            if (!kept)
                throw RuntimeError(line % 250 + 1, "");
        };
        Load(many);
        const std::string before = Content(ReminderFilePath);
        Change(1);
        require(!TrySaveReminders(0), __LINE__);
        require(fake.windows.boxes.size() == 1 &&
                    fake.windows.boxes[0].text.starts_with("The reminders could not be saved: the disk is full.\r\n") &&
                    fake.windows.boxes[0].text.ends_with("Error 61 - Disk full"),
                __LINE__);
        require(Content(ReminderFilePath) == before, __LINE__);
        require(!fs::exists(ReminderTempPath), __LINE__); // a leftover copy would keep the disk full
        require(RemCount == many && RemTitles[1] == "Reminder 1" && RemindersValid != False, __LINE__);
        require(window.reminderTimer, __LINE__);

        // For an addition the remaining room is filled first.
        Write((folder / "filler").string(), std::string(100000, 'x'));
        const auto size = fs::file_size(ReminderFilePath);
        int added = 0;
        while (added < 100 && TryAppendReminder({"More", 7, 3, 2004, 9, 5, "", false})) {
            LoadReminders(false, 0);
            ++added;
        }
        require(added < 100, __LINE__);
        require(fs::file_size(ReminderFilePath) == size + static_cast<std::size_t>(added) * 128, __LINE__);
        require(RemCount == many + added && fake.windows.boxes.size() == 2, __LINE__);
        fs::remove(folder / "filler");
        require(TryAppendReminder({"More", 7, 3, 2004, 9, 5, "", false}), __LINE__);
    });
    ASSERT_TRUE(WIFEXITED(status));
    if (WEXITSTATUS(status) == 77)
        GTEST_SKIP() << "no disk can be made here";
    EXPECT_EQ(WEXITSTATUS(status), 0) << "what was required on that line of this file, modulo 250, less 1";
}

TEST_F(ReminderFileTest, AReadOnlyFolderIsToldOfAndLosesNothing)
{
    Load(3);
    fs::permissions(ReminderFilePath, fs::perms(0666));
    fs::permissions(folder, fs::perms(0555));
    Change(1);
    const OrdinaryUser user;
    EXPECT_FALSE(TrySaveReminders(0));
    ASSERT_EQ(fake.windows.boxes.size(), 1u);
    EXPECT_EQ(fake.windows.boxes[0].text, "The reminders could not be saved: access to the file or its folder is not "
                                          "allowed.\r\n\r\nTheir file is as it was before this change:\r\n" +
                                              ReminderFilePath + "\r\n\r\nError 75 - Path/File access error");
    EXPECT_EQ(Content(ReminderFilePath), Reminders(3));
    EXPECT_EQ(RemTitles.at(1), "Reminder 1");
    EXPECT_TRUE(window.reminderTimer);
}

TEST_F(ReminderFileTest, AReadOnlyFolderWithoutAFileIsToldOfWhenSomethingIsAdded)
{
    fs::permissions(folder, fs::perms(0555));
    const OrdinaryUser user;
    LoadReminders(false, 0);
    EXPECT_TRUE(fake.windows.boxes.empty());
    EXPECT_TRUE(window.reminderTimer);
    EXPECT_FALSE(TryAppendReminder({"More", 7, 3, 2004, 9, 5, "", false}));
    ASSERT_EQ(fake.windows.boxes.size(), 1u);
    EXPECT_EQ(fake.windows.boxes[0].text,
              "The reminders could not be saved: access to the file or its folder is not "
              "allowed.\r\n\r\nThey are kept in memory until Voxmate ends. Their file should "
              "be:\r\n" +
                  ReminderFilePath + "\r\n\r\nError 75 - Path/File access error");
}

TEST_F(ReminderFileTest, AFileThatMayNotBeReadIsToldOfAndReadOnceItMay)
{
    Load(3);
    fs::permissions(ReminderFilePath, fs::perms(0000));
    {
        const OrdinaryUser user;
        LoadReminders(false, 0);
    }
    ASSERT_EQ(fake.windows.boxes.size(), 1u);
    EXPECT_EQ(fake.windows.boxes[0].text,
              "The reminders could not be read: access to the file or its folder is not allowed.\r\n\r\n" +
                  ReminderFilePath +
                  "\r\n\r\nReminders are disabled until the file has been read.\r\nError 75 - Path/File access error");
    EXPECT_FALSE(window.reminderTimer);
    EXPECT_TRUE(window.reminderRetry);
    RetryReminders();
    EXPECT_TRUE(window.reminderTimer);
    EXPECT_EQ(RemCount, 3);
}

TEST_F(ReminderFileTest, AReadOnlyFileIsReadAndNeitherReplacedNorChanged)
{
    Load(3);
    fs::permissions(ReminderFilePath, fs::perms(0444));
    const OrdinaryUser user;
    LoadReminders(false, 0);
    EXPECT_EQ(RemCount, 3);
    EXPECT_TRUE(window.reminderTimer);
    Change(1);
    EXPECT_FALSE(TrySaveReminders(0));
    EXPECT_FALSE(TryAppendReminder({"More", 7, 3, 2004, 9, 5, "", false}));
    ASSERT_EQ(fake.windows.boxes.size(), 2u);
    EXPECT_TRUE(fake.windows.boxes[0].text.ends_with("Error 70 - Permission denied"));
    EXPECT_TRUE(fake.windows.boxes[1].text.ends_with("Error 75 - Path/File access error"));
    EXPECT_EQ(Content(ReminderFilePath), Reminders(3));
    EXPECT_FALSE(fs::exists(ReminderTempPath));
}

TEST_F(ReminderFileTest, AFileHeldByAnotherProcessIsToldOfAndLosesNothing)
{
    Load(3);
    Change(1);
    {
        const FileHolder holder(ReminderFilePath);
        EXPECT_FALSE(TrySaveReminders(0));
        ASSERT_EQ(fake.windows.boxes.size(), 1u);
        EXPECT_EQ(fake.windows.boxes[0].text,
                  "The reminders could not be saved: another program has the file open, or it may not be changed."
                  "\r\n\r\nTheir file is as it was before this change:\r\n" +
                      ReminderFilePath +
                      "\r\n\r\nReminders are disabled until the file has been read.\r\nError 70 - Permission denied");
        EXPECT_FALSE(window.reminderTimer);
        EXPECT_EQ(Content(ReminderFilePath), Reminders(3));
        EXPECT_FALSE(fs::exists(ReminderTempPath));
    }
    RetryReminders();
    EXPECT_EQ(RemCount, 3);
    EXPECT_EQ(RemTitles.at(1), "Reminder 1");
    EXPECT_TRUE(window.reminderTimer);
    EXPECT_FALSE(window.reminderRetry);
}

TEST_F(ReminderFileTest, AnAnswerGivenWhileAnotherProcessHasTheFileIsInItAfterwards)
{
    Load(3);
    {
        const FileHolder holder(ReminderFilePath);
        FinishReminder(2, false, 0);
        RetryReminders();
        EXPECT_TRUE(fake.windows.boxes.empty());
    }
    RetryReminders();
    std::string answered = Slot("Reminder 2");
    answered[answered.rfind('N')] = 'Y';
    EXPECT_EQ(Content(ReminderFilePath), Slot("Reminder 1") + answered + Slot("Reminder 3"));
    EXPECT_TRUE(window.reminderTimer);
}

} // namespace

} // namespace voxmate::linux_platform
