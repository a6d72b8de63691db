// Locks that keep programs from reading and replacing a file at the same time.
#include "platform/windows/files/File.h"
#include "platform/windows/files/WindowsFileSystem.h"
#include "platform/windows/system/WindowsApi.h"

#include <chrono>
#include <thread>

namespace voxmate::windows_platform
{

namespace
{

constexpr std::chrono::milliseconds Patience{2000};
constexpr std::chrono::milliseconds LookEvery{1};

// The bytes of the lock file that stand for the lock and for the first place in its queue. A waiting program holds that
// place, so the one that releases the lock cannot take it again at once: two that save without a pause take turns.
constexpr DWORD LockByte = 0;
constexpr DWORD QueueByte = 1;

enum class Answer { Have, Held, NoLocks };

Answer Take(void* file, DWORD byte, std::chrono::steady_clock::time_point last)
{
    for (;;) {
        OVERLAPPED place{};
        place.Offset = byte;
        if (::LockFileEx(file, LOCKFILE_EXCLUSIVE_LOCK | LOCKFILE_FAIL_IMMEDIATELY, 0, 1, 0, &place))
            return Answer::Have;
        const DWORD error = ::GetLastError();
        if (error != ERROR_LOCK_VIOLATION && error != ERROR_IO_PENDING)
            return Answer::NoLocks;
        if (std::chrono::steady_clock::now() > last)
            return Answer::Held;
        std::this_thread::sleep_for(LookEvery);
    }
}

void Release(void* file, DWORD byte)
{
    OVERLAPPED place{};
    place.Offset = byte;
    ::UnlockFileEx(file, 0, 1, 0, &place);
}

// Closing the file releases the lock only at some later time, so it is released before.
class WindowsFileLock : public FileLock
{
public:
    explicit WindowsFileLock(void* file) : file_(file) {}
    ~WindowsFileLock() override
    {
        if (held_)
            Release(file_, LockByte);
        ::CloseHandle(file_);
    }
    WindowsFileLock(const WindowsFileLock&) = delete;
    WindowsFileLock& operator=(const WindowsFileLock&) = delete;

    /// Returns Held when another program kept it too long.
    Answer TakeTurn()
    {
        const auto last = std::chrono::steady_clock::now() + Patience;
        Answer answer = Take(file_, QueueByte, last);
        if (answer == Answer::Have) {
            answer = Take(file_, LockByte, last);
            Release(file_, QueueByte);
        }
        held_ = answer == Answer::Have;
        return answer;
    }

private:
    void* file_;
    bool held_ = false;
};

} // namespace

// The lock is on a second file, "path.lock", which is never removed: a file that is replaced by another, as a save
// does, cannot keep a lock across that.
std::unique_ptr<FileLock> WindowsFileSystem::Lock(const std::string& path)
{
    void* const file =
        ::CreateFileW(SystemPath(path + ".lock").c_str(), GENERIC_READ | GENERIC_WRITE,
                      FILE_SHARE_READ | FILE_SHARE_WRITE, nullptr, OPEN_ALWAYS, FILE_ATTRIBUTE_NORMAL, nullptr);
    if (file == INVALID_HANDLE_VALUE)
        return nullptr;
    auto lock = std::make_unique<WindowsFileLock>(file);
    switch (lock->TakeTurn()) {
    case Answer::Have:
        return lock;
    case Answer::Held:
        throw PermissionDenied();
    case Answer::NoLocks:
        break;
    }
    return nullptr;
}

} // namespace voxmate::windows_platform
