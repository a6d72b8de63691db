// A file that another process has open.
#pragma once

#include <csignal>
#include <cstdlib>
#include <fcntl.h>
#include <filesystem>
#include <sys/file.h>
#include <sys/wait.h>
#include <unistd.h>

namespace voxmate::linux_platform
{

/// Another process that keeps a file locked during this object's lifetime.
class FileHolder
{
public:
    explicit FileHolder(const std::filesystem::path& path)
    {
        int ready[2];
        if (::pipe(ready) != 0)
            std::abort();
        process_ = ::fork();
        if (process_ == 0) {
            const int file = ::open(path.c_str(), O_RDONLY);
            const char done = file >= 0 && ::flock(file, LOCK_EX) == 0 ? 'y' : 'n';
            if (::write(ready[1], &done, 1) == 1)
                ::pause();
            ::_exit(0);
        }
        char done = 'n';
        if (::read(ready[0], &done, 1) != 1 || done != 'y')
            std::abort();
        ::close(ready[0]);
        ::close(ready[1]);
    }
    ~FileHolder()
    {
        ::kill(process_, SIGKILL);
        ::waitpid(process_, nullptr, 0);
    }
    FileHolder(const FileHolder&) = delete;
    FileHolder& operator=(const FileHolder&) = delete;

private:
    pid_t process_;
};

} // namespace voxmate::linux_platform
