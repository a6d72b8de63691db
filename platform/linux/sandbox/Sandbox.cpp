#include "platform/Sandbox.h"

#include "platform/linux/system/Limits.h"

#include <array>
#include <cerrno>
#include <csignal>
#include <fcntl.h>
#include <memory>
#include <sched.h>
#include <sys/mman.h>
#include <sys/prctl.h>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <unistd.h>

#include <linux/landlock.h>
#include <seccomp.h>

namespace voxmate
{

namespace
{

void SetLimits(const SandboxLimits& limits)
{
    LimitMemory(limits.memory);
    // At the first limit comes SIGXCPU, by which the starter knows why the process ended.
    const auto seconds = static_cast<rlim_t>(limits.time.count());
    Limit(RLIMIT_CPU, seconds, seconds + 1);
    Limit(RLIMIT_CORE, 0, 0);
    Limit(RLIMIT_FSIZE, 0, 0);
    constexpr rlim_t files = 64;
    Limit(RLIMIT_NOFILE, files, files);
}

// Landlock: only the files in these folders can be opened, and only to be read. False where the kernel has none of it.
bool LimitFiles(const std::vector<std::string>& readable)
{
    constexpr std::uint64_t all =
        LANDLOCK_ACCESS_FS_EXECUTE | LANDLOCK_ACCESS_FS_WRITE_FILE | LANDLOCK_ACCESS_FS_READ_FILE |
        LANDLOCK_ACCESS_FS_READ_DIR | LANDLOCK_ACCESS_FS_REMOVE_DIR | LANDLOCK_ACCESS_FS_REMOVE_FILE |
        LANDLOCK_ACCESS_FS_MAKE_CHAR | LANDLOCK_ACCESS_FS_MAKE_DIR | LANDLOCK_ACCESS_FS_MAKE_REG |
        LANDLOCK_ACCESS_FS_MAKE_SOCK | LANDLOCK_ACCESS_FS_MAKE_FIFO | LANDLOCK_ACCESS_FS_MAKE_BLOCK |
        LANDLOCK_ACCESS_FS_MAKE_SYM;
    landlock_ruleset_attr attributes{};
    attributes.handled_access_fs = all;
    // The C library has no functions for these calls.
    const auto rules = static_cast<int>(syscall(SYS_landlock_create_ruleset, &attributes, sizeof attributes, 0));
    if (rules < 0)
        return false;
    bool good = true;
    for (const std::string& folder : readable) {
        landlock_path_beneath_attr rule{};
        rule.allowed_access = LANDLOCK_ACCESS_FS_READ_FILE | LANDLOCK_ACCESS_FS_READ_DIR;
        rule.parent_fd = open(folder.c_str(), O_PATH | O_CLOEXEC | O_DIRECTORY);
        // A folder that is not there holds nothing that could be read.
        if (rule.parent_fd < 0)
            continue;
        good = syscall(SYS_landlock_add_rule, rules, LANDLOCK_RULE_PATH_BENEATH, &rule, 0) == 0 && good;
        close(rule.parent_fd);
    }
    good = good && syscall(SYS_landlock_restrict_self, rules, 0) == 0;
    close(rules);
    return good;
}

// seccomp: any system call but these fails. Nothing here reaches another process, the network, or a file for writing.
bool LimitCalls(bool mayOpen)
{
    constexpr std::array calls{SCMP_SYS(read),         SCMP_SYS(readv),        SCMP_SYS(pread64),
                               SCMP_SYS(write),        SCMP_SYS(writev),       SCMP_SYS(close),
                               SCMP_SYS(fstat),        SCMP_SYS(newfstatat),   SCMP_SYS(stat),
                               SCMP_SYS(lstat),        SCMP_SYS(statx),        SCMP_SYS(lseek),
                               SCMP_SYS(mmap),         SCMP_SYS(munmap),       SCMP_SYS(mremap),
                               SCMP_SYS(mprotect),     SCMP_SYS(madvise),      SCMP_SYS(brk),
                               SCMP_SYS(futex),        SCMP_SYS(rt_sigaction), SCMP_SYS(rt_sigprocmask),
                               SCMP_SYS(rt_sigreturn), SCMP_SYS(sigaltstack),  SCMP_SYS(exit),
                               SCMP_SYS(exit_group),   SCMP_SYS(getrandom),    SCMP_SYS(clock_gettime),
                               SCMP_SYS(clock_getres), SCMP_SYS(gettimeofday), SCMP_SYS(time),
                               SCMP_SYS(times),        SCMP_SYS(sched_yield),  SCMP_SYS(sched_getaffinity),
                               SCMP_SYS(getpid),       SCMP_SYS(gettid),       SCMP_SYS(getuid),
                               SCMP_SYS(geteuid),      SCMP_SYS(getgid),       SCMP_SYS(getegid),
                               SCMP_SYS(access),       SCMP_SYS(faccessat),    SCMP_SYS(faccessat2),
                               SCMP_SYS(readlink),     SCMP_SYS(readlinkat),   SCMP_SYS(getcwd),
                               SCMP_SYS(fcntl),        SCMP_SYS(sysinfo),      SCMP_SYS(uname),
                               SCMP_SYS(getdents64),   SCMP_SYS(getrusage),    SCMP_SYS(restart_syscall)};
    const std::unique_ptr<void, decltype(&seccomp_release)> filter(seccomp_init(SCMP_ACT_ERRNO(EPERM)),
                                                                   &seccomp_release);
    if (!filter)
        return false;
    // A call that this processor's system does not have is not added; that is no fault.
    for (const int call : calls)
        seccomp_rule_add(filter.get(), SCMP_ACT_ALLOW, call, 0);
    // The sanitizers find out through a pipe whether memory may be read.
    if (UnderAddressSanitizer)
        for (const int call : {SCMP_SYS(pipe), SCMP_SYS(pipe2)})
            seccomp_rule_add(filter.get(), SCMP_ACT_ALLOW, call, 0);
    // Its own limits may be asked for, not changed.
    const std::array<scmp_arg_cmp, 2> asking{SCMP_CMP(0, SCMP_CMP_EQ, 0), SCMP_CMP(2, SCMP_CMP_EQ, 0)};
    seccomp_rule_add_array(filter.get(), SCMP_ACT_ALLOW, SCMP_SYS(prlimit64), asking.size(), asking.data());
    if (mayOpen) {
        constexpr unsigned writing = O_WRONLY | O_RDWR | O_CREAT | O_TRUNC;
        for (const auto& [call, argument] : {std::pair{SCMP_SYS(open), 1U}, std::pair{SCMP_SYS(openat), 2U}}) {
            const scmp_arg_cmp reading = SCMP_CMP(argument, SCMP_CMP_MASKED_EQ, writing, 0);
            seccomp_rule_add_array(filter.get(), SCMP_ACT_ALLOW, call, 1, &reading);
        }
    }
    return seccomp_load(filter.get()) == 0;
}

} // namespace

bool EnterSandbox(const SandboxLimits& limits)
{
    prctl(PR_SET_PDEATHSIG, SIGKILL);
    if (prctl(PR_SET_NO_NEW_PRIVS, 1, 0, 0, 0) != 0)
        return false;
    SetLimits(limits);
    // A network without anything on it, where an ordinary user may have one; an old kernel without the filter is kept
    // from the network by this alone.
    const bool alone = unshare(CLONE_NEWUSER | CLONE_NEWNET) == 0;
    const bool files = LimitFiles(limits.readable);
    const bool calls = LimitCalls(files);
    return calls || (alone && files);
}

InputBytes MapInput(std::uint64_t most)
{
    InputBytes input;
    struct stat status {
    };
    if (fstat(STDIN_FILENO, &status) != 0 || !S_ISREG(status.st_mode))
        return input;
    input.size = static_cast<std::uint64_t>(status.st_size);
    input.good = true;
    if (input.size == 0 || input.size > most)
        return input;
    // Private: what is mapped is never written back.
    void* const bytes = mmap(nullptr, input.size, PROT_READ, MAP_PRIVATE, STDIN_FILENO, 0);
    input.good = bytes != MAP_FAILED; // NOLINT(performance-no-int-to-ptr): the system's constant
    if (input.good)
        input.data = static_cast<const char*>(bytes);
    return input;
}

bool WriteOutput(const char* bytes, std::uint64_t size)
{
    while (size > 0) {
        const ssize_t written = write(STDOUT_FILENO, bytes, size);
        if (written < 0 && errno == EINTR)
            continue;
        if (written <= 0)
            return false;
        bytes += written;
        size -= static_cast<std::uint64_t>(written);
    }
    return true;
}

void LeaveSandbox(int status)
{
    _exit(status);
}

} // namespace voxmate
