#include "base/RuntimeError.h"
#include "platform/Helper.h"
#include "platform/linux/files/RegularFile.h"
#include "platform/linux/process/GuardedProcess.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <csignal>
#include <cstdint>
#include <cstdlib>
#include <fcntl.h>
#include <filesystem>
#include <optional>
#include <poll.h>
#include <spawn.h>
#include <string>
#include <sys/wait.h>
#include <system_error>
#include <unistd.h>
#include <utility>
#include <vector>

namespace voxmate
{

namespace
{

namespace fs = std::filesystem;

// A file descriptor, closed at the end of its lifetime.
class Descriptor
{
public:
    explicit Descriptor(int number = -1) : number_(number) {}
    ~Descriptor()
    {
        if (number_ >= 0)
            ::close(number_);
    }
    Descriptor(const Descriptor&) = delete;
    Descriptor& operator=(const Descriptor&) = delete;

    int Number() const { return number_; }
    int Release() { return std::exchange(number_, -1); }

private:
    int number_;
};

// Beside the running program, as in a build, or where an installation has it.
std::string PathOf(const std::string& program)
{
    std::error_code error;
    const fs::path folder = fs::read_symlink("/proc/self/exe", error).parent_path();
    for (const fs::path& path : {folder / program, folder.parent_path() / "libexec/voxmate" / program})
        if (::access(path.c_str(), X_OK) == 0)
            return path.string();
    throw CannotCreateObject();
}

class LinuxHelper : public Helper
{
public:
    LinuxHelper(pid_t process, int output) : process_(process), output_(output) {}

    ~LinuxHelper() override
    {
        if (process_ > 0 && !status_) {
            ::kill(process_, SIGKILL);
            Wait();
        }
    }

    std::size_t Read(std::span<char> buffer, std::chrono::milliseconds wait) override
    {
        if (atEnd_)
            return 0;
        pollfd ready{output_.Number(), POLLIN, 0};
        if (::poll(&ready, 1, static_cast<int>(std::min<std::int64_t>(wait.count(), 60'000))) <= 0)
            return 0;
        ssize_t got = 0;
        do
            got = ::read(output_.Number(), buffer.data(), buffer.size());
        while (got < 0 && errno == EINTR);
        atEnd_ = got <= 0;
        return atEnd_ ? 0 : static_cast<std::size_t>(got);
    }

    bool AtEnd() const override { return atEnd_; }

    End Ending() override
    {
        // It has closed its output, which it does by ending only.
        Wait();
        if (WIFEXITED(*status_) && WEXITSTATUS(*status_) == 0)
            return End::Well;
        const bool outOfTime = WIFSIGNALED(*status_) && WTERMSIG(*status_) == SIGXCPU;
        return outOfTime ? End::OutOfTime : End::Crashed;
    }

private:
    void Wait()
    {
        int status = 0;
        while (!status_ && ::waitpid(process_, &status, 0) < 0 && errno == EINTR)
            ;
        if (!status_)
            status_ = status;
    }

    pid_t process_;
    Descriptor output_;
    std::optional<int> status_;
    bool atEnd_ = false;
};

// What a program needs of the environment: the language, which decides on the code page of old texts, and the time
// zone, in which dates of calendars are told.
std::vector<std::string> Environment()
{
    std::vector<std::string> environment;
    for (const char* name : {"LANG", "LC_ALL", "LC_CTYPE", "TZ"})
        if (const char* value = std::getenv(name)) // NOLINT(concurrency-mt-unsafe): nobody sets any
            environment.push_back(std::string(name) + "=" + value);
    return environment;
}

} // namespace

std::unique_ptr<Helper> StartHelper(const std::string& program, const std::string& file)
{
    std::int64_t size = 0;
    const Descriptor input(linux_platform::OpenRegular(file, size));
    std::vector<std::string> arguments{PathOf(program)};
    std::vector<std::string> environment = Environment();
    std::array<int, 2> pipe{-1, -1};
    if (::pipe2(pipe.data(), O_CLOEXEC) != 0)
        throw CannotCreateObject();
    Descriptor ours(pipe[0]);
    const Descriptor theirs(pipe[1]);

    // posix_spawn does not copy the page tables of a large program, as fork does.
    posix_spawn_file_actions_t files;
    posix_spawnattr_t attributes;
    posix_spawn_file_actions_init(&files);
    posix_spawnattr_init(&attributes);
    posix_spawn_file_actions_adddup2(&files, input.Number(), STDIN_FILENO);
    posix_spawn_file_actions_adddup2(&files, theirs.Number(), STDOUT_FILENO);
    posix_spawn_file_actions_addopen(&files, STDERR_FILENO, "/dev/null", O_WRONLY, 0);
    posix_spawn_file_actions_addclosefrom_np(&files, STDERR_FILENO + 1);
    sigset_t none;
    sigset_t all;
    ::sigemptyset(&none);
    ::sigfillset(&all);
    posix_spawnattr_setsigmask(&attributes, &none);
    posix_spawnattr_setsigdefault(&attributes, &all);
    // A group of its own, so that signals a terminal sends to ours do not reach it.
    posix_spawnattr_setflags(&attributes, POSIX_SPAWN_SETSIGMASK | POSIX_SPAWN_SETSIGDEF | POSIX_SPAWN_SETPGROUP);
    pid_t process = -1;
    const int error =
        ::posix_spawn(&process, arguments[0].c_str(), &files, &attributes, linux_platform::Pointers(arguments).data(),
                      linux_platform::Pointers(environment).data());
    posix_spawn_file_actions_destroy(&files);
    posix_spawnattr_destroy(&attributes);
    if (error != 0)
        throw CannotCreateObject();
    return std::make_unique<LinuxHelper>(process, ours.Release());
}

} // namespace voxmate
