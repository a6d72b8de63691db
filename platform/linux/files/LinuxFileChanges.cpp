// Changes in the file system: files of slots, and creating, deleting and renaming files.
#include "base/FileName.h"
#include "platform/linux/files/LinuxFileSystem.h"
#include "platform/linux/files/LinuxRandomFile.h"

#include <cerrno>
#include <fcntl.h>
#include <filesystem>
#include <sys/stat.h>
#include <system_error>
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

} // namespace

std::unique_ptr<RandomAccessFile> LinuxFileSystem::OpenRandom(const std::string& path, std::size_t recordLength)
{
    return std::make_unique<LinuxRandomFile>(InAnyExtensionCase(path), recordLength, true);
}

std::unique_ptr<RandomAccessFile> LinuxFileSystem::OpenRandomExisting(const std::string& path, std::size_t recordLength)
{
    const std::string found = InAnyExtensionCase(path);
    struct stat status {
    };
    if (::stat(found.c_str(), &status) != 0 && errno == ENOENT) {
        const std::filesystem::path folder = std::filesystem::path(found).parent_path();
        if (::stat(folder.empty() ? "." : folder.c_str(), &status) != 0)
            throw PathNotFound();
        throw FileNotFound();
    }
    return std::make_unique<LinuxRandomFile>(found, recordLength, false);
}

std::string LinuxFileSystem::LinkTarget(const std::string& path)
{
    constexpr int mostLinks = 40; // as many as the kernel follows
    std::filesystem::path target = path;
    std::error_code error;
    for (int i = 0; i < mostLinks && std::filesystem::is_symlink(target, error); ++i) {
        const std::filesystem::path next = std::filesystem::read_symlink(target, error);
        target = next.is_absolute() ? next : target.parent_path() / next;
    }
    return target.string();
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
    // A read-only file is meant to stay, even though its folder would allow deleting it.
    if (!S_ISREG(status.st_mode) || ::faccessat(AT_FDCWD, found.c_str(), W_OK, AT_EACCESS) != 0)
        throw PermissionDenied();
    // Locked until it is deleted, so that nobody opens it meanwhile.
    const Descriptor file(::open(found.c_str(), O_RDONLY | O_CLOEXEC | O_NOCTTY | O_NONBLOCK));
    if (file.Number() >= 0 && !LockedInTime(file.Number()))
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
