// Locks that keep programs from reading and replacing a file at the same time.
#include "platform/linux/files/LinuxFileSystem.h"

#include "platform/linux/files/LinuxRandomFile.h"

#include <cerrno>
#include <chrono>
#include <fcntl.h>
#include <thread>

namespace voxmate::linux_platform
{

namespace
{

constexpr std::chrono::milliseconds Patience{2000};
constexpr std::chrono::milliseconds LookEvery{1};

// The bytes of the lock file that stand for the lock and for the first place in its queue. A waiting program holds that
// place, so the one that releases the lock cannot take it again at once: two that save without a pause take turns.
constexpr off_t LockByte = 0;
constexpr off_t QueueByte = 1;

enum class Answer { Have, Held, NoLocks };

// Locks or unlocks a byte. The lock lasts as long as this file is open, whatever other files the process opens and
// closes.
Answer Set(int file, off_t byte, short type)
{
    struct flock range {
    };
    range.l_type = type;
    range.l_whence = SEEK_SET;
    range.l_start = byte;
    range.l_len = 1;
    if (::fcntl(file, F_OFD_SETLK, &range) == 0)
        return Answer::Have;
    return errno == EAGAIN || errno == EACCES ? Answer::Held : Answer::NoLocks;
}

Answer WaitFor(int file, off_t byte, std::chrono::steady_clock::time_point last)
{
    for (;;) {
        const Answer answer = Set(file, byte, F_WRLCK);
        if (answer != Answer::Held || std::chrono::steady_clock::now() > last)
            return answer;
        std::this_thread::sleep_for(LookEvery);
    }
}

class LinuxFileLock : public FileLock
{
public:
    explicit LinuxFileLock(int file) : file_(file) {}
    /// Returns Held when another program kept it too long.
    Answer Take()
    {
        const auto last = std::chrono::steady_clock::now() + Patience;
        Answer answer = WaitFor(file_.Number(), QueueByte, last);
        if (answer == Answer::Have) {
            answer = WaitFor(file_.Number(), LockByte, last);
            Set(file_.Number(), QueueByte, F_UNLCK);
        }
        return answer;
    }

private:
    Descriptor file_;
};

} // namespace

// The lock is on a second file, "path.lock", which is never removed: a file that is replaced by another, as a save
// does, cannot keep a lock across that.
std::unique_ptr<FileLock> LinuxFileSystem::Lock(const std::string& path)
{
    const int file = ::open((path + ".lock").c_str(), O_RDWR | O_CREAT | O_CLOEXEC | O_NOFOLLOW | O_NONBLOCK, 0600);
    if (file < 0)
        return nullptr;
    auto lock = std::make_unique<LinuxFileLock>(file);
    switch (lock->Take()) {
    case Answer::Have:
        return lock;
    case Answer::Held:
        throw PermissionDenied();
    case Answer::NoLocks:
        break;
    }
    return nullptr;
}

} // namespace voxmate::linux_platform
