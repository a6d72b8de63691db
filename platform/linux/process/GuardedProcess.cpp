#include "platform/linux/process/GuardedProcess.h"

#include "base/Text.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <csignal>
#include <cstring>
#include <ctime>
#include <fcntl.h>
#include <poll.h>
#include <sched.h>
#include <sys/prctl.h>
#include <sys/wait.h>
#include <thread>
#include <unistd.h>
#include <utility>

namespace voxmate::linux_platform
{

namespace
{

// The map for a namespace in which one user or group keeps its number.
std::string OneToItself(unsigned int number)
{
    return std::to_string(number) + " " + std::to_string(number) + " 1";
}

// Everything the guard needs, prepared before the fork: a child of a program with threads may not allocate memory.
struct Plan {
    const char* program;
    char** arguments;
    char** environment;
    const char* folder;
    char** removal;     ///< the command that removes the leavings
    const char* users;  ///< the user map for the namespace; null when the program may use the network
    const char* groups; ///< the group map for the namespace
    int life;
    int report;
    int niceness;
};

void SetSignals(void (*handler)(int))
{
    sigset_t none;
    ::sigemptyset(&none);
    ::sigprocmask(SIG_SETMASK, &none, nullptr);
    for (const int signal : {SIGINT, SIGTERM, SIGHUP, SIGQUIT})
        ::signal(signal, handler);
    for (const int signal : {SIGPIPE, SIGCHLD, SIGUSR1, SIGUSR2})
        ::signal(signal, SIG_DFL);
}

void CloseFrom(unsigned int first, unsigned int last)
{
    if (first <= last)
        ::close_range(first, last, 0);
}

void WriteTo(const char* path, const char* text)
{
    const int file = ::open(path, O_WRONLY | O_CLOEXEC);
    if (file < 0)
        return;
    // Without the map we have no user name in the namespace, but keep all our rights to our files.
    [[maybe_unused]] const ssize_t written = ::write(file, text, std::strlen(text));
    ::close(file);
}

// Moves into a network namespace without any network, not even the loopback. An ordinary user may do that only in a
// user namespace, in which we keep our own identity.
void LeaveNetwork(const Plan& plan)
{
    if (::unshare(CLONE_NEWUSER | CLONE_NEWNET) != 0)
        return;
    WriteTo("/proc/self/setgroups", "deny");
    WriteTo("/proc/self/uid_map", plan.users);
    WriteTo("/proc/self/gid_map", plan.groups);
}

[[noreturn]] void BecomeProgram(const Plan& plan)
{
    ::setpgid(0, 0);
    SetSignals(SIG_DFL);
    [[maybe_unused]] const int priority = ::nice(plan.niceness);
    if (plan.users)
        LeaveNetwork(plan);
    const int nothing = ::open("/dev/null", O_RDWR);
    for (const int standard : {STDIN_FILENO, STDOUT_FILENO, STDERR_FILENO})
        ::dup2(nothing, standard);
    CloseFrom(3, ~0u);
    if (::chdir(plan.folder) == 0)
        ::execve(plan.program, plan.arguments, plan.environment);
    ::_exit(127);
}

// Kills our children, including orphaned descendants that were handed to us.
void KillChildren()
{
    const int list = ::open("/proc/thread-self/children", O_RDONLY | O_CLOEXEC);
    if (list < 0)
        return;
    std::array<char, 4096> text{};
    pid_t process = 0;
    ssize_t size = 0;
    while ((size = ::read(list, text.data(), text.size())) > 0) {
        for (const char c : text) {
            if (size-- == 0)
                break;
            if (IsDigit(c)) {
                process = process * 10 + (c - '0');
                continue;
            }
            if (process > 0)
                ::kill(process, SIGKILL);
            process = 0;
        }
    }
    ::close(list);
}

void KillAll(pid_t program)
{
    // Killed processes end within milliseconds; one that hangs in the kernel is not waited for any longer.
    constexpr int rounds = 400;
    constexpr timespec pause{0, 5'000'000};
    bool reaped = false;
    for (int i = 0; i < rounds; ++i) {
        // The group's number cannot be reused until its first process has been reaped.
        if (!reaped)
            ::kill(-program, SIGKILL);
        KillChildren();
        pid_t gone = 0;
        while ((gone = ::waitpid(-1, nullptr, WNOHANG)) > 0)
            reaped = reaped || gone == program;
        if (gone < 0 && errno == ECHILD)
            return;
        ::nanosleep(&pause, nullptr);
    }
}

bool HasEnded(pid_t program)
{
    siginfo_t info{};
    return ::waitid(P_PID, static_cast<id_t>(program), &info, WEXITED | WNOHANG | WNOWAIT) != 0 || info.si_pid != 0;
}

// The guard's main function. It may call only functions that are safe in a signal handler.
[[noreturn]] void Guard(const Plan& plan)
{
    // In its own group, so that signals a terminal sends to ours do not interrupt its work.
    ::setpgid(0, 0);
    SetSignals(SIG_IGN);
    const auto low = static_cast<unsigned int>(std::min(plan.life, plan.report));
    const auto high = static_cast<unsigned int>(std::max(plan.life, plan.report));
    CloseFrom(3, low - 1);
    CloseFrom(low + 1, high - 1);
    CloseFrom(high + 1, ~0u);
    ::prctl(PR_SET_CHILD_SUBREAPER, 1);

    const pid_t program = ::fork();
    if (program == 0)
        BecomeProgram(plan);
    bool running = program > 0;
    if (running)
        ::setpgid(program, program);
    constexpr int interval = 5; // milliseconds between two looks at the program
    while (true) {
        if (!running || HasEnded(program)) {
            ::close(plan.report);
            running = false;
        }
        pollfd life{plan.life, POLLIN, 0};
        const int ready = ::poll(&life, 1, running ? interval : -1);
        if (ready > 0)
            break;
    }
    if (program > 0)
        KillAll(program);
    ::execve(plan.removal[0], plan.removal, plan.environment);
    ::_exit(127);
}

} // namespace

std::vector<char*> Pointers(std::vector<std::string>& texts)
{
    std::vector<char*> pointers;
    pointers.reserve(texts.size() + 1);
    for (std::string& text : texts)
        pointers.push_back(text.data());
    pointers.push_back(nullptr);
    return pointers;
}

GuardedProcess::GuardedProcess(const GuardedCommand& command)
{
    std::vector<std::string> arguments{command.program};
    arguments.insert(arguments.end(), command.arguments.begin(), command.arguments.end());
    std::vector<std::string> environment = command.environment;
    std::vector<std::string> removal{"/bin/rm", "-rf", "--"};
    removal.insert(removal.end(), command.leavings.begin(), command.leavings.end());
    const std::vector<char*> argumentPointers = Pointers(arguments);
    const std::vector<char*> environmentPointers = Pointers(environment);
    const std::vector<char*> removalPointers = Pointers(removal);
    const std::string users = OneToItself(::geteuid());
    const std::string groups = OneToItself(::getegid());

    std::array<int, 2> life{-1, -1};
    std::array<int, 2> report{-1, -1};
    ended_ = ::pipe2(life.data(), O_CLOEXEC) != 0 || ::pipe2(report.data(), O_CLOEXEC) != 0;
    if (!ended_) {
        const Plan plan{command.program.c_str(),
                        const_cast<char**>(argumentPointers.data()),
                        const_cast<char**>(environmentPointers.data()),
                        command.folder.c_str(),
                        const_cast<char**>(removalPointers.data()),
                        command.withoutNetwork ? users.c_str() : nullptr,
                        groups.c_str(),
                        life[0],
                        report[1],
                        command.niceness};
        guard_ = ::fork();
        if (guard_ == 0)
            Guard(plan);
        ended_ = guard_ < 0;
    }
    for (const int ours : {life[0], report[1]})
        if (ours >= 0)
            ::close(ours);
    life_ = life[1];
    report_ = report[0];
}

GuardedProcess::~GuardedProcess()
{
    End();
    if (report_ >= 0)
        ::close(report_);
    while (guard_ > 0 && ::waitpid(guard_, nullptr, 0) < 0 && errno == EINTR)
        ;
}

bool GuardedProcess::Ended(std::chrono::milliseconds wait)
{
    pollfd report{report_, POLLIN, 0};
    // The guard never writes to the pipe; it only closes its end.
    if (!ended_ && ::poll(&report, 1, static_cast<int>(wait.count())) > 0)
        ended_ = true;
    return ended_;
}

void GuardedProcess::End()
{
    if (life_ >= 0)
        ::close(std::exchange(life_, -1));
}

bool GuardedProcess::Gone(std::chrono::milliseconds wait)
{
    const auto end = std::chrono::steady_clock::now() + wait;
    constexpr std::chrono::milliseconds interval{2};
    while (guard_ > 0) {
        const pid_t gone = ::waitpid(guard_, nullptr, WNOHANG);
        if (gone != 0 && !(gone < 0 && errno == EINTR)) {
            guard_ = -1;
            break;
        }
        if (std::chrono::steady_clock::now() >= end)
            return false;
        std::this_thread::sleep_for(interval);
    }
    return true;
}

} // namespace voxmate::linux_platform
