#include "platform/Trial.h"

#include "platform/linux/system/Limits.h"

#include <array>
#include <cerrno>
#include <csignal>
#include <thread>

#include <sys/prctl.h>
#include <sys/wait.h>
#include <unistd.h>

namespace voxmate
{

namespace
{

/// Called in a child. Makes it end with the program (with the thread that forked it) and closes all of the program's
/// files: otherwise the program's lock, display and sound would stay open as long as the child lives.
void LeaveProgram(pid_t program)
{
    prctl(PR_SET_PDEATHSIG, SIGKILL);
    if (getppid() != program) // it had already ended before that call
        _exit(1);
    constexpr unsigned first = 3;
    if (close_range(first, ~0U, 0) == 0)
        return;
    // The kernel does not know that call.
    const long most = sysconf(_SC_OPEN_MAX);
    for (int file = first; file < most; ++file)
        close(file);
}

/// Waits for a child and returns whether it exited with status 0. Nothing when that is unknown, or when `wanted`
/// returned false: then the child is killed.
std::optional<bool> EndsWell(pid_t child, const std::function<bool()>& wanted)
{
    constexpr std::chrono::milliseconds interval{10};
    int status = 0;
    while (true) {
        const pid_t ended = waitpid(child, &status, WNOHANG);
        if (ended == child)
            return WIFEXITED(status) && WEXITSTATUS(status) == 0;
        if (ended < 0 && errno != EINTR)
            return std::nullopt;
        if (!wanted()) {
            kill(child, SIGKILL);
            while (waitpid(child, &status, 0) < 0 && errno == EINTR) {
            }
            return std::nullopt;
        }
        std::this_thread::sleep_for(interval);
    }
}

} // namespace

std::optional<bool> TryInProcess(const std::function<bool()>& act, const TrialLimits& limits,
                                 const std::function<bool()>& wanted)
{
    const pid_t program = getpid();
    const pid_t child = fork();
    if (child < 0)
        return std::nullopt;
    if (child == 0) {
        LeaveProgram(program);
        for (const int fatal : {SIGSEGV, SIGBUS, SIGFPE, SIGABRT, SIGALRM, SIGTERM})
            std::signal(fatal, SIG_DFL);
        LimitMemory(limits.memory);
        Limit(RLIMIT_CORE, 0, 0);
        alarm(static_cast<unsigned>(limits.time.count()));
        _exit(act() ? 0 : 1);
    }
    return EndsWell(child, wanted);
}

} // namespace voxmate
