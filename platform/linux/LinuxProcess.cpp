#include "platform/linux/LinuxProcess.h"

#include "base/RuntimeError.h"
#include "base/Text.h"
#include "platform/linux/Folders.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstdlib>
#include <ctime>
#include <fcntl.h>
#include <string_view>
#include <sys/file.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>
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

struct Started {
    pid_t process;
    int error;
};

// In the grandchild: becomes the program, or reports why not.
[[noreturn]] void Become(const std::vector<char*>& arguments, int report)
{
    ::setsid();
    const int nothing = ::open("/dev/null", O_RDWR | O_CLOEXEC);
    ::dup2(nothing, STDIN_FILENO);
    ::execvp(arguments.front(), arguments.data());
    const Started failed{0, errno};
    [[maybe_unused]] const ssize_t written = ::write(report, &failed, sizeof failed);
    ::_exit(127);
}

// Starts a program as nobody's child, so that it outlives this one and leaves no zombie; 0 when it cannot be started.
pid_t StartDetached(std::vector<std::string> words)
{
    std::vector<char*> arguments;
    arguments.reserve(words.size() + 1);
    for (std::string& word : words)
        arguments.push_back(word.data());
    arguments.push_back(nullptr);
    std::array<int, 2> pipe{};
    if (::pipe2(pipe.data(), O_CLOEXEC) != 0)
        return 0;
    const pid_t child = ::fork();
    if (child == 0) {
        const pid_t grandchild = ::fork();
        if (grandchild == 0)
            Become(arguments, pipe[1]);
        const Started started{grandchild, grandchild < 0 ? errno : 0};
        [[maybe_unused]] const ssize_t written = ::write(pipe[1], &started, sizeof started);
        ::_exit(0);
    }
    ::close(pipe[1]);
    pid_t process = 0;
    bool failed = child < 0;
    // One message comes from the child; a second only when the program could not be run.
    for (Started message{}; child > 0;) {
        const ssize_t got = ::read(pipe[0], &message, sizeof message);
        if (got < 0 && errno == EINTR)
            continue;
        if (got != sizeof message)
            break;
        failed = failed || message.error != 0;
        process = std::max(process, message.process);
    }
    ::close(pipe[0]);
    if (child > 0)
        ::waitpid(child, nullptr, 0);
    return failed ? 0 : process;
}

} // namespace

LinuxProcess::LinuxProcess() : programFolder_(ProgramFolder())
{
    PlaceTips(SharedDataFolder(), programFolder_);
}

LinuxProcess::~LinuxProcess()
{
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
    const int file = ::open(LockFilePath().c_str(), O_RDWR | O_CREAT | O_CLOEXEC | O_NOFOLLOW, 0600);
    // Where no lock can be had (a read-only folder), a second copy is better than none.
    if (file < 0)
        return false;
    if (::flock(file, LOCK_EX | LOCK_NB) != 0) {
        const bool taken = errno == EWOULDBLOCK;
        ::close(file);
        return taken;
    }
    lock_ = file;
    return false;
}

double LinuxProcess::Shell(const std::string& command, int /*windowStyle*/)
{
    constexpr std::string_view explorer = "explorer.exe ";
    std::vector<std::string> words;
    if (EqualNoCase(std::string_view(command).substr(0, explorer.size()), explorer))
        words = {"xdg-open", command.substr(explorer.size())};
    else
        words = SplitCommand(command);
    if (words.empty())
        throw FileNotFound();
    const pid_t process = StartDetached(std::move(words));
    if (process == 0)
        throw FileNotFound();
    return process;
}

void LinuxProcess::EndProcess()
{
    if (BeforeEnd)
        BeforeEnd();
    ::_exit(EXIT_SUCCESS);
}

DateTime LinuxClock::Now()
{
    const std::time_t now = std::time(nullptr);
    std::tm local{};
    ::localtime_r(&now, &local);
    return {local.tm_year + 1900, local.tm_mon + 1, local.tm_mday, local.tm_hour, local.tm_min, local.tm_sec};
}

std::string LinuxClock::ShortDate(const DateTime& date)
{
    // The user's own locale, whatever the process has been set to, and without setting it.
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
