// The clock: it follows the system's time zone, even when that changes, and writes dates as the locale does.
#include "platform/linux/process/LinuxProcess.h"

#include <cstdint>
#include <cstdlib>
#include <ctime>
#include <filesystem>
#include <fstream>
#include <gtest/gtest.h>
#include <sched.h>
#include <string>
#include <sys/mount.h>
#include <sys/wait.h>
#include <unistd.h>

namespace voxmate::linux_platform
{

namespace
{

namespace fs = std::filesystem;

/// A zone file (RFC 8536) with a single offset from universal time, in hours.
std::string ZoneFile(int hours)
{
    std::string file = "TZif";
    file.append(16, '\0');
    const auto number = [&file](std::int32_t value) {
        for (int shift = 24; shift >= 0; shift -= 8)
            file += static_cast<char>(static_cast<std::uint32_t>(value) >> shift & 0xFF);
    };
    // No indicators, no leap seconds, no transitions; one local time type, whose name takes four bytes.
    for (const std::int32_t count : {0, 0, 0, 0, 1, 4})
        number(count);
    number(hours * 3600);
    file += std::string("\0\0XYZ\0", 6);
    return file;
}

/// Changes the system's zone as the system's tools do: the new file is renamed over the old one.
void Choose(int hours)
{
    std::ofstream("/etc/zone.new", std::ios::binary) << ZoneFile(hours);
    fs::rename("/etc/zone.new", "/etc/localtime");
}

/// Hours that a clock is ahead of universal time, -12 to 11.
int Ahead(LinuxClock& clock)
{
    std::tm universal{};
    DateTime told;
    // Read both times within the same minute.
    do {
        const std::time_t now = std::time(nullptr);
        ::gmtime_r(&now, &universal);
        told = clock.Now();
    } while (told.minute != universal.tm_min);
    return (told.hour - universal.tm_hour + 36) % 24 - 12;
}

enum Outcome { Followed, NotFollowed, WrongAtFirst, NotGranted };

/// What a process sees of a change of zone, in its own mount namespace.
Outcome SeeAnotherZone(const char* tz)
{
    const bool granted = (::geteuid() == 0 ? ::unshare(CLONE_NEWNS) : ::unshare(CLONE_NEWUSER | CLONE_NEWNS)) == 0;
    if (!granted || ::mount(nullptr, "/", nullptr, MS_REC | MS_PRIVATE, nullptr) != 0 ||
        ::mount("zone", "/etc", "tmpfs", 0, nullptr) != 0)
        return NotGranted;
    if (tz)
        ::setenv("TZ", tz, 1);
    else
        ::unsetenv("TZ");
    Choose(3);
    LinuxClock clock;
    if (Ahead(clock) != 3)
        return WrongAtFirst;
    Choose(-5);
    return Ahead(clock) == -5 ? Followed : NotFollowed;
}

Outcome InAProcess(const char* tz)
{
    const pid_t child = ::fork();
    if (child == 0)
        ::_exit(SeeAnotherZone(tz));
    int status = 0;
    ::waitpid(child, &status, 0);
    return static_cast<Outcome>(WEXITSTATUS(status));
}

} // namespace

TEST(LinuxClockTest, FollowsTheSystemToAnotherTimeZone)
{
    for (const char* tz : {static_cast<const char*>(nullptr), "/etc/localtime", ":/etc/localtime"}) {
        SCOPED_TRACE(tz ? tz : "TZ not set");
        const Outcome outcome = InAProcess(tz);
        if (outcome == NotGranted)
            GTEST_SKIP() << "this system grants no view of the file system of one's own";
        EXPECT_EQ(outcome, Followed);
    }
}

TEST(LinuxClockTest, KeepsTheZoneThatTheUserHasNamed)
{
    const Outcome outcome = InAProcess("XYZ-3");
    if (outcome == NotGranted)
        GTEST_SKIP() << "this system grants no view of the file system of one's own";
    EXPECT_EQ(outcome, NotFollowed);
}

TEST(LinuxClockTest, AShortDateIsTheLocales)
{
    const pid_t process = ::fork();
    if (process == 0) {
        ::setenv("LC_ALL", "C", 1);
        LinuxClock clock;
        ::_exit(clock.ShortDate({2004, 3, 7, 9, 5, 0}) == "03/07/04" ? 0 : 1);
    }
    int status = 0;
    ::waitpid(process, &status, 0);
    EXPECT_EQ(WEXITSTATUS(status), 0);
    LinuxClock clock;
    EXPECT_NE(clock.ShortDate({2004, 3, 7, 0, 0, 0}), "");
    EXPECT_NE(clock.ShortDate({2004, 3, 7, 0, 0, 0}), clock.ShortDate({2004, 7, 3, 0, 0, 0}));
}

} // namespace voxmate::linux_platform
