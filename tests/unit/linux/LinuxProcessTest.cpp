#include "platform/linux/process/LinuxProcess.h"

#include "HangingDisk.h"
#include "OrdinaryUser.h"
#include "OwnFolder.h"
#include "base/RuntimeError.h"
#include "platform/linux/process/EndSignals.h"
#include "platform/linux/settings/FileSettingsStore.h"
#include "tests/fakes/Eventually.h"

#include <array>
#include <chrono>
#include <csignal>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <functional>
#include <gtest/gtest.h>
#include <sstream>
#include <sys/wait.h>
#include <thread>
#include <unistd.h>

namespace voxmate::linux_platform
{

namespace
{

namespace fs = std::filesystem;

class LinuxProcessTest : public OwnFolder
{
protected:
    LinuxProcessTest()
    {
        Set("XDG_RUNTIME_DIR", folder.string());
        Set("VOXMATE_HOME", (folder / "home").string());
    }
};

TEST_F(LinuxProcessTest, TheProgramsFolderIsMadeOnFirstStart)
{
    LinuxProcess process;
    EXPECT_EQ(process.ProgramDirectory(), (folder / "home").string());
    EXPECT_TRUE(fs::is_directory(folder / "home"));
}

TEST_F(LinuxProcessTest, AStartedProgramInheritsNoOpenFile)
{
    const fs::path script = folder / "lister";
    const fs::path list = folder / "list";
    std::ofstream(script) << "#!/bin/sh\nls -l /proc/$$/fd > '" << list.string() << ".part'\nmv '" << list.string()
                          << ".part' '" << list.string() << "'\n";
    fs::permissions(script, fs::perms::owner_all);
    std::ofstream(folder / "held") << "held";
    const std::ifstream held(folder / "held");
    LinuxProcess process;
    EXPECT_NE(process.Shell("\"" + script.string() + "\"", 1), 0);
    ASSERT_TRUE(fakes::Eventually([&] { return fs::exists(list); }));
    std::stringstream open;
    open << std::ifstream(list).rdbuf();
    EXPECT_NE(open.str().find("lister"), std::string::npos) << "the shell has its script open";
    EXPECT_EQ(open.str().find("/held"), std::string::npos) << open.str();
}

TEST_F(LinuxProcessTest, ASecondCopyIsSeenAndOneThatWasKilledIsNot)
{
    std::array<int, 2> ready{};
    ASSERT_EQ(::pipe(ready.data()), 0);
    const pid_t child = ::fork();
    if (child == 0) {
        LinuxProcess first;
        const char answer = first.PreviousInstance() ? 'y' : 'n';
        [[maybe_unused]] const ssize_t written = ::write(ready[1], &answer, 1);
        ::pause();
        ::_exit(0);
    }
    char answer = 0;
    ASSERT_EQ(::read(ready[0], &answer, 1), 1);
    EXPECT_EQ(answer, 'n');
    {
        LinuxProcess second;
        EXPECT_TRUE(second.PreviousInstance());
    }
    ::kill(child, SIGKILL);
    ::waitpid(child, nullptr, 0);
    LinuxProcess third;
    EXPECT_FALSE(third.PreviousInstance());
    EXPECT_FALSE(third.PreviousInstance());
    ::close(ready[0]);
    ::close(ready[1]);
}

/// How a process ends whose settings do not reach the disk. Each test runs in a child, which an alarm ends if nothing
/// else does.
class EndTest : public LinuxProcessTest
{
protected:
    /// How a child ended that calls `end` while a value is on its way to a disk that does not answer.
    int StatusOf(const std::function<void(LinuxProcess&)>& end)
    {
        const pid_t child = ::fork();
        if (child == 0) {
            ::alarm(60);
            LinuxProcess process;
            FileSettingsStore store((folder / "registry.reg").string(), {});
            process.BeforeEnd = [&store](std::chrono::milliseconds patience) { store.Flush(patience); };
            const HangingDisk disk;
            std::uint32_t key = 0;
            store.RegCreateKeyA(0x80000002, "SOFTWARE\\Voxmate", key);
            HangingDisk::WaitForASave();
            end(process);
            ::_exit(2);
        }
        int status = 0;
        ::waitpid(child, &status, 0);
        return status;
    }
};

TEST_F(EndTest, AProgramEndsAlthoughItsSettingsDoNotGetToTheDisk)
{
    const int status = StatusOf([](LinuxProcess& process) { process.EndProgram(); });
    ASSERT_TRUE(WIFEXITED(status)) << "had to be killed";
    EXPECT_EQ(WEXITSTATUS(status), EXIT_SUCCESS);
}

TEST_F(EndTest, ASignalEndsItWhenItsEventLoopHangsAtTheSameDisk)
{
    const int status = StatusOf([](LinuxProcess& process) {
        const EndSignals signals([] {}, [&process] { process.EndWithin(std::chrono::milliseconds(20)); },
                                 std::chrono::milliseconds(20));
        ::raise(SIGTERM);
        process.BeforeEnd(std::chrono::hours(1));
    });
    ASSERT_TRUE(WIFEXITED(status)) << "had to be killed";
    EXPECT_EQ(WEXITSTATUS(status), EXIT_SUCCESS);
}

class OneCopyTest : public LinuxProcessTest
{
protected:
    /// Whether another process started with this environment finds a previous instance.
    bool AnotherIsSeen(const std::string& home, const std::string& runtime)
    {
        const pid_t child = ::fork();
        if (child == 0) {
            Set("VOXMATE_HOME", home);
            Set("XDG_RUNTIME_DIR", runtime);
            LinuxProcess another;
            ::_exit(another.PreviousInstance() ? 1 : 0);
        }
        int status = 0;
        ::waitpid(child, &status, 0);
        return WEXITSTATUS(status) == 1;
    }
    std::string Home(const std::string& name = "home") const { return (folder / name).string(); }
};

TEST_F(OneCopyTest, TwoSessionsWithOneFolderOfDataAreOneTooMany)
{
    LinuxProcess first;
    EXPECT_FALSE(first.PreviousInstance());
    fs::create_directory(folder / "other session");
    EXPECT_TRUE(AnotherIsSeen(Home(), (folder / "other session").string()));
    fs::create_directory_symlink(Home(), folder / "linked");
    EXPECT_TRUE(AnotherIsSeen(Home("linked"), folder.string()));
}

TEST_F(OneCopyTest, TwoFoldersOfDataMayBeUsedInOneSession)
{
    LinuxProcess first;
    EXPECT_FALSE(first.PreviousInstance());
    EXPECT_FALSE(AnotherIsSeen(Home("other home"), folder.string()));
}

TEST_F(OneCopyTest, AFolderThatMayNotBeWrittenIsWatchedFromTheSession)
{
    fs::create_directory(folder / "home");
    fs::permissions(folder / "home", fs::perms(0555));
    fs::permissions(folder, fs::perms(0777));
    const OrdinaryUser user;
    LinuxProcess first;
    EXPECT_FALSE(first.PreviousInstance());
    EXPECT_TRUE(AnotherIsSeen(Home(), folder.string()));
}

TEST_F(LinuxProcessTest, AProgramIsStartedWithItsArgumentsAndAMissingOneIsAnError)
{
    LinuxProcess process;
    const fs::path out = folder / "out put";
    EXPECT_GT(process.Shell("touch \"" + out.string() + "\"", 3), 0);
    for (int i = 0; i < 200 && !fs::exists(out); ++i)
        std::this_thread::sleep_for(std::chrono::milliseconds(10));
    EXPECT_TRUE(fs::exists(out));
    try {
        process.Shell("/no/such/program at all", 3);
        FAIL() << "no error";
    } catch (const RuntimeError& error) {
        EXPECT_EQ(error.Number, 53);
    }
    EXPECT_THROW(process.Shell("", 3), RuntimeError);
}

class OpenerTest : public LinuxProcessTest
{
protected:
    OpenerTest() { Set("PATH", (folder / "bin").string() + ":" + std::getenv("PATH")); }
    /// Makes this script the desktop's opener.
    void Opener(const std::string& script) { Program(folder / "bin" / "xdg-open", "#!/bin/sh\n" + script + "\n"); }
    std::chrono::milliseconds Taken() const
    {
        return std::chrono::duration_cast<std::chrono::milliseconds>(std::chrono::steady_clock::now() - begin_);
    }

    LinuxProcess process;

private:
    const std::chrono::steady_clock::time_point begin_ = std::chrono::steady_clock::now();
};

TEST_F(OpenerTest, AnAddressIsOpenedByTheDesktopsOwnOpener)
{
    const fs::path seen = folder / "seen";
    Opener("echo $# \"$@\" > '" + seen.string() + "'");
    EXPECT_GT(process.Shell("explorer.exe file:///usr/share/a page.html", 3), 0);
    EXPECT_EQ(Read(seen), "1 file:///usr/share/a page.html\n");
    EXPECT_LT(Taken(), LinuxProcess::OpenerPatience) << "waits on although the opener has ended";
}

TEST_F(OpenerTest, AnOpenerThatEndsWithAnErrorHasNotOpenedThePage)
{
    Opener("sleep 0.3; exit 3");
    int turns = 0;
    process.WhileWaiting = [&turns] { ++turns; };
    EXPECT_THROW(process.Shell("explorer.exe file:///page.html", 3), RuntimeError);
    EXPECT_GT(turns, 5) << "the windows stand still meanwhile";
}

TEST_F(OpenerTest, AnOpenerThatWaitsForItsBrowserIsNotWaitedForAndLeftAlone)
{
    const fs::path closed = folder / "closed";
    Opener("sleep 2.5; touch '" + closed.string() + "'; exit 1");
    EXPECT_GT(process.Shell("explorer.exe file:///page.html", 3), 0);
    EXPECT_GE(Taken(), LinuxProcess::OpenerPatience);
    EXPECT_FALSE(fs::exists(closed));
    for (int i = 0; i < 200 && !fs::exists(closed); ++i)
        std::this_thread::sleep_for(std::chrono::milliseconds(10));
    EXPECT_TRUE(fs::exists(closed));
}

TEST_F(LinuxProcessTest, AProgramThatHasEndedLeavesNothingBehind)
{
    LinuxProcess process;
    const auto id = static_cast<pid_t>(process.Shell("true", 1));
    for (int i = 0; i < 200 && ::kill(id, 0) == 0; ++i)
        std::this_thread::sleep_for(std::chrono::milliseconds(10));
    EXPECT_EQ(::kill(id, 0), -1) << "nobody has asked after it";
}

TEST_F(LinuxProcessTest, TheSharedFolderFitsOrTellsItsLength)
{
    LinuxProcess process;
    std::string buffer(500, '\0');
    const std::uint32_t length = process.GetWindowsDirectoryA(buffer, 500);
    EXPECT_EQ(buffer.substr(0, length).substr(length - 14), "/share/voxmate");
    std::string small(3, '\0');
    EXPECT_EQ(process.GetWindowsDirectoryA(small, 3), length);
    EXPECT_EQ(small, std::string(3, '\0'));
}

} // namespace

} // namespace voxmate::linux_platform
