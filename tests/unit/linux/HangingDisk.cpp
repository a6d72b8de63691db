#include "HangingDisk.h"

#include <condition_variable>
#include <mutex>
#include <sys/syscall.h>
#include <unistd.h>

namespace voxmate::linux_platform
{

namespace
{

struct Disk {
    std::mutex mutex;
    std::condition_variable changed;
    bool hangs = false;
    int waiting = 0;
};

// Never destroyed: a save may still wait when the process ends.
Disk& TheDisk()
{
    static Disk& disk = *new Disk;
    return disk;
}

void Hang(bool hangs)
{
    const std::lock_guard lock(TheDisk().mutex);
    TheDisk().hangs = hangs;
    TheDisk().changed.notify_all();
}

} // namespace

HangingDisk::HangingDisk()
{
    Hang(true);
}

HangingDisk::~HangingDisk()
{
    Hang(false);
}

void HangingDisk::WaitForASave()
{
    std::unique_lock lock(TheDisk().mutex);
    TheDisk().changed.wait(lock, [] { return TheDisk().waiting > 0; });
}

} // namespace voxmate::linux_platform

// Replaces the C library's function in this program.
extern "C" int fdatasync(int file)
{
    using voxmate::linux_platform::TheDisk;
    std::unique_lock lock(TheDisk().mutex);
    ++TheDisk().waiting;
    TheDisk().changed.notify_all();
    TheDisk().changed.wait(lock, [] { return !TheDisk().hangs; });
    --TheDisk().waiting;
    lock.unlock();
    return static_cast<int>(::syscall(SYS_fdatasync, file));
}
