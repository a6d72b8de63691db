#include "platform/Sandbox.h"

#include <gtest/gtest.h>

#include <cerrno>
#include <fcntl.h>
#include <filesystem>
#include <fstream>
#include <functional>
#include <sys/mman.h>
#include <sys/prctl.h>
#include <sys/resource.h>
#include <sys/socket.h>
#include <sys/wait.h>
#include <unistd.h>

using namespace voxmate;

namespace
{

// Runs `act` in a sandboxed child and returns its status: the exit code, or minus the signal.
int InSandbox(const std::function<int()>& act, const std::vector<std::string>& readable = {},
              std::chrono::seconds time = std::chrono::seconds(20))
{
    const pid_t child = fork();
    if (child == 0) {
        if (!EnterSandbox({time, std::uint64_t{512} << 20, readable}))
            _exit(99);
        _exit(act());
    }
    int status = 0;
    waitpid(child, &status, 0);
    return WIFEXITED(status) ? WEXITSTATUS(status) : -WTERMSIG(status);
}

} // namespace

TEST(SandboxTest, ThereIsNoNetwork)
{
    EXPECT_EQ(InSandbox([] { return socket(AF_INET, SOCK_STREAM, 0) < 0 && errno == EPERM ? 0 : 1; }), 0);
    EXPECT_EQ(InSandbox([] { return socket(AF_UNIX, SOCK_STREAM, 0) < 0 ? 0 : 1; }), 0);
}

TEST(SandboxTest, NoFileCanBeOpenedButInTheFoldersNamedAndNoneWritten)
{
    const std::string folder = std::filesystem::temp_directory_path() / ("sandbox-" + std::to_string(getpid()));
    std::filesystem::create_directory(folder);
    const std::string file = folder + "/file";
    std::ofstream(file) << "x";
    EXPECT_EQ(InSandbox([] { return open("/etc/passwd", O_RDONLY) < 0 ? 0 : 1; }), 0);
    EXPECT_EQ(InSandbox([&] { return open(file.c_str(), O_RDONLY) < 0 ? 0 : 1; }), 0);
    EXPECT_EQ(InSandbox([&] { return open(file.c_str(), O_WRONLY) < 0 ? 0 : 1; }, {folder}), 0);
    EXPECT_EQ(InSandbox([&] { return open((folder + "/new").c_str(), O_RDWR | O_CREAT, 0600) < 0 ? 0 : 1; }, {folder}),
              0);
    EXPECT_EQ(InSandbox([&] { return unlink(file.c_str()) < 0 ? 0 : 1; }, {folder}), 0);
    EXPECT_TRUE(std::filesystem::exists(file));
    std::filesystem::remove_all(folder);
}

TEST(SandboxTest, ThereAreNoOtherProcesses)
{
    EXPECT_EQ(InSandbox([] { return fork() < 0 ? 0 : 1; }), 0);
    EXPECT_EQ(InSandbox([] { return kill(getppid(), 0) < 0 ? 0 : 1; }), 0);
    EXPECT_EQ(InSandbox([] {
                  execl("/bin/true", "true", nullptr);
                  return errno == EPERM || errno == EACCES ? 0 : 1;
              }),
              0);
}

TEST(SandboxTest, MemoryAndTimeAreLimited)
{
#ifndef __SANITIZE_ADDRESS__ // which needs more address space than any limit
    EXPECT_EQ(InSandbox([] {
                  const std::size_t size = std::size_t{1} << 30;
                  return mmap(nullptr, size, PROT_READ, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0) == MAP_FAILED ? 0 : 1;
              }),
              0);
#endif
    EXPECT_EQ(InSandbox(
                  [] {
                      for (volatile unsigned i = 0;;)
                          i = i + 1;
                      return 0;
                  },
                  {}, std::chrono::seconds(1)),
              -SIGXCPU);
    EXPECT_EQ(InSandbox([] {
                  const rlimit more{RLIM_INFINITY, RLIM_INFINITY};
                  return setrlimit(RLIMIT_CPU, &more) != 0 ? 0 : 1;
              }),
              0);
}
