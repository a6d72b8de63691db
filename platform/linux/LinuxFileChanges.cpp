// What the file system changes: files of slots, and making, deleting and renaming files.
#include "base/FileName.h"
#include "platform/linux/LinuxFileSystem.h"
#include "platform/linux/LinuxRandomFile.h"

#include <cerrno>
#include <cstdio>
#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

namespace voxmate::linux_platform
{

namespace
{

RuntimeError ChangeErrorOf(int number)
{
    switch (number) {
    case ENOENT:
    case ENOTDIR:
        return FileNotFound();
    case EEXIST:
        return FileAlreadyExists();
    case ENOSPC:
    case EDQUOT:
        return DiskFull();
    case EIO:
        return DeviceIOError();
    default:
        return PermissionDenied();
    }
}

// Renames without ever replacing a file; 0 or -1 with errno.
int RenameToNew(const char* from, const char* to)
{
    if (::renameat2(AT_FDCWD, from, AT_FDCWD, to, RENAME_NOREPLACE) == 0)
        return 0;
    // Not every file system can.
    if (errno != EINVAL && errno != ENOSYS)
        return -1;
    struct stat status {
    };
    if (::lstat(to, &status) == 0) {
        errno = EEXIST;
        return -1;
    }
    return std::rename(from, to);
}

} // namespace

std::unique_ptr<RandomAccessFile> LinuxFileSystem::OpenRandom(const std::string& path, std::size_t recordLength)
{
    return std::make_unique<LinuxRandomFile>(InAnyExtensionCase(path), recordLength);
}

void LinuxFileSystem::CreateTextFile(const std::string& path)
{
    Descriptor file(OpenLocked(InAnyExtensionCase(path), O_WRONLY | O_CREAT));
    if (::ftruncate(file.Number(), 0) != 0 || ::fsync(file.Number()) != 0 || !file.Close())
        throw WriteErrorOf(errno);
    SyncFolderOf(path);
}

void LinuxFileSystem::DeleteFile(const std::string& path)
{
    const std::string found = InAnyExtensionCase(path);
    struct stat status {
    };
    if (::stat(found.c_str(), &status) != 0)
        throw ChangeErrorOf(errno);
    // A file made read-only is meant to stay, though its folder would let it go.
    if (!S_ISREG(status.st_mode) || ::faccessat(AT_FDCWD, found.c_str(), W_OK, AT_EACCESS) != 0)
        throw PermissionDenied();
    // Held until it is gone, so that nobody opens it meanwhile.
    const Descriptor file(::open(found.c_str(), O_RDONLY | O_CLOEXEC | O_NOCTTY | O_NONBLOCK));
    if (file.Number() >= 0 && ::flock(file.Number(), LOCK_EX | LOCK_NB) != 0 && errno == EWOULDBLOCK)
        throw PermissionDenied();
    if (::unlink(found.c_str()) != 0)
        throw ChangeErrorOf(errno);
}

void LinuxFileSystem::MoveFile(const std::string& from, const std::string& to)
{
    if (RenameToNew(InAnyExtensionCase(from).c_str(), to.c_str()) != 0)
        throw ChangeErrorOf(errno);
    SyncFolderOf(to);
}

} // namespace voxmate::linux_platform
