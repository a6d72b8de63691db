#include "platform/linux/process/LinuxProcess.h"

#include "base/RuntimeError.h"
#include "base/Text.h"
#include "platform/linux/files/Folders.h"
#include "platform/linux/process/GuardedProcess.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <chrono>
#include <cstdlib>
#include <ctime>
#include <fcntl.h>
#include <future>
#include <spawn.h>
#include <string_view>
#include <sys/file.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <thread>
#include <unistd.h>
#include <utility>
#include <vector>

namespace voxmate::linux_platform
{

namespace
{

std::vector<std::string> SplitCommand(const std::string& command)
{
    std::vector<std::string> words;
    std::string word;
    bool quoted = false;
    bool begun = false;
    for (const char c : command) {
        if (c == '"') {
            quoted = !quoted;
            begun = true;
        } else if (c == ' ' && !quoted) {
            if (begun)
                words.push_back(word);
            word.clear();
            begun = false;
        } else {
            word += c;
            begun = true;
        }
    }
    if (begun)
        words.push_back(word);
    return words;
}

/// Starts a program in its own session, so that it outlives this one; its standard input is empty. `status` receives
/// its exit status, or -1 when a signal ended it. Returns 0 when it cannot be started.
pid_t StartDetached(std::vector<std::string> words, std::future<int>& status)
{
    const std::vector<char*> arguments = Pointers(words);
    posix_spawn_file_actions_t files;
    posix_spawnattr_t attributes;
    ::posix_spawn_file_actions_init(&files);
    ::posix_spawn_file_actions_addopen(&files, STDIN_FILENO, "/dev/null", O_RDONLY, 0);
    // Files opened with the standard library would be open in the other program for as long as it lives.
    ::posix_spawn_file_actions_addclosefrom_np(&files, STDERR_FILENO + 1);
    ::posix_spawnattr_init(&attributes);
    ::posix_spawnattr_setflags(&attributes, POSIX_SPAWN_SETSID);
    pid_t process = 0;
    const int error = ::posix_spawnp(&process, arguments.front(), &files, &attributes, arguments.data(), environ);
    ::posix_spawnattr_destroy(&attributes);
    ::posix_spawn_file_actions_destroy(&files);
    if (error != 0)
        return 0;
    // It must be reaped, or it would remain as a zombie while this program lives.
    std::promise<int> ended;
    status = ended.get_future();
    std::thread([process, ended = std::move(ended)]() mutable {
        int state = 0;
        while (::waitpid(process, &state, 0) < 0 && errno == EINTR)
            ;
        ended.set_value(WIFEXITED(state) ? WEXITSTATUS(state) : -1);
    }).detach();
    return process;
}

/// The object whose EndProgram exit() calls; null: exit() goes on as usual.
LinuxProcess* endedAtExit = nullptr;

} // namespace

LinuxProcess::LinuxProcess() : programFolder_(ProgramFolder())
{
    PlaceTips(SharedDataFolder(), programFolder_);
}

LinuxProcess::~LinuxProcess()
{
    if (endedAtExit == this)
        endedAtExit = nullptr;
    if (lock_ >= 0)
        ::close(lock_);
}

std::string LinuxProcess::ProgramDirectory()
{
    return programFolder_;
}

std::uint32_t LinuxProcess::GetWindowsDirectoryA(std::string& buffer, std::uint32_t size)
{
    const std::string folder = SharedDataFolder();
    if (folder.size() <= size)
        buffer.replace(0, folder.size(), folder);
    return static_cast<std::uint32_t>(folder.size());
}

bool LinuxProcess::PreviousInstance()
{
    if (lock_ >= 0)
        return false;
    for (const std::string& path : LockFilePaths()) {
        const int file = ::open(path.c_str(), O_RDWR | O_CREAT | O_CLOEXEC | O_NOFOLLOW, 0600);
        if (file < 0)
            continue;
        if (::flock(file, LOCK_EX | LOCK_NB) == 0) {
            lock_ = file;
            return false;
        }
        const bool taken = errno == EWOULDBLOCK;
        ::close(file);
        if (taken)
            return true;
    }
    // If no lock is possible, a second copy is better than none.
    return false;
}

double LinuxProcess::Shell(const std::string& command, int /*windowStyle*/)
{
    constexpr std::string_view explorer = "explorer.exe ";
    const bool address = EqualNoCase(std::string_view(command).substr(0, explorer.size()), explorer);
    std::vector<std::string> words =
        address ? std::vector<std::string>{"xdg-open", command.substr(explorer.size())} : SplitCommand(command);
    if (words.empty())
        throw FileNotFound();
    std::future<int> status;
    const pid_t process = StartDetached(std::move(words), status);
    if (process == 0 || (address && EndsInError(status)))
        throw FileNotFound();
    return process;
}

bool LinuxProcess::EndsInError(std::future<int>& status) const
{
    using namespace std::chrono_literals;
    const auto last = std::chrono::steady_clock::now() + OpenerPatience;
    while (status.wait_for(10ms) != std::future_status::ready) {
        if (std::chrono::steady_clock::now() > last)
            return false;
        if (WhileWaiting)
            WhileWaiting();
    }
    return status.get() != 0;
}

void LinuxProcess::EndAtExit()
{
    static const int registered = std::atexit([] {
        if (endedAtExit)
            endedAtExit->EndProgram();
    });
    if (registered == 0)
        endedAtExit = this;
}

void LinuxProcess::EndProcess()
{
    EndWithin(EndPatience);
}

void LinuxProcess::EndWithin(std::chrono::milliseconds patience)
{
    if (BeforeEnd)
        BeforeEnd(patience);
    ::_exit(EXIT_SUCCESS);
}

// The C library does not reload the zone named by TZ while TZ stays the same. Without TZ, each tzset checks whether the
// system's zone file has changed. So TZ is removed if it names just that file.
LinuxClock::LinuxClock()
{
    constexpr std::string_view system = "/etc/localtime";
    const char* const named = std::getenv("TZ");
    const std::string_view zone = named ? named : "";
    if (zone == system || (zone.starts_with(':') && zone.substr(1) == system))
        ::unsetenv("TZ");
}

DateTime LinuxClock::Now()
{
    const std::time_t now = std::time(nullptr);
    std::tm local{};
    // localtime_r alone need not notice that the user has chosen another zone.
    ::tzset();
    ::localtime_r(&now, &local);
    return {local.tm_year + 1900, local.tm_mon + 1, local.tm_mday, local.tm_hour, local.tm_min, local.tm_sec};
}

std::string LinuxClock::ShortDate(const DateTime& date)
{
    // The user's own locale, regardless of the process's locale and without changing it.
    static const locale_t users = ::newlocale(LC_TIME_MASK | LC_CTYPE_MASK, "", nullptr);
    static const locale_t plain = ::newlocale(LC_TIME_MASK | LC_CTYPE_MASK, "C", nullptr);
    std::tm parts{};
    parts.tm_year = date.year - 1900;
    parts.tm_mon = date.month - 1;
    parts.tm_mday = date.day;
    std::array<char, 100> text{};
    const std::size_t length = ::strftime_l(text.data(), text.size(), "%x", &parts, users ? users : plain);
    std::string shown(text.data(), length);
    return IsValidUtf8(shown) ? shown : Windows1252ToUtf8(shown);
}

} // namespace voxmate::linux_platform
