// Changes in the file system: files of slots, and creating, deleting and renaming files.
#include "base/FileName.h"
#include "platform/linux/files/LinuxFileSystem.h"
#include "platform/linux/files/LinuxRandomFile.h"

#include <cerrno>
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <fcntl.h>
#include <filesystem>
#include <string_view>
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

void LinuxFileSystem::CopyFile(const std::string& from, const std::string& to)
{
    constexpr std::size_t blockSize = 1U << 20;
    const Descriptor source(::open(InAnyExtensionCase(from).c_str(), O_RDONLY | O_CLOEXEC | O_NOCTTY | O_NONBLOCK));
    struct stat status {
    };
    if (source.Number() < 0)
        throw ChangeErrorOf(errno);
    if (::fstat(source.Number(), &status) != 0 || !S_ISREG(status.st_mode))
        throw PermissionDenied();
    const std::string fresh = to + ".new";
    ::unlink(fresh.c_str());
    Descriptor copy(::open(fresh.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC | O_NOFOLLOW, 0666));
    if (copy.Number() < 0)
        throw WriteErrorOf(errno);
    try {
        std::string block(blockSize, '\0');
        std::int64_t position = 0;
        for (;;) {
            const std::size_t length = source.Read(position, block);
            if (!copy.Write(position, std::string_view(block).substr(0, length)))
                throw WriteErrorOf(errno);
            position += static_cast<std::int64_t>(length);
            if (length < block.size())
                break;
        }
        if (::fdatasync(copy.Number()) != 0 || !copy.Close() || ::rename(fresh.c_str(), to.c_str()) != 0)
            throw WriteErrorOf(errno);
    } catch (...) {
        ::unlink(fresh.c_str());
        throw;
    }
    SyncFolderOf(to);
}

void LinuxFileSystem::LinkFile(const std::string& target, const std::string& name)
{
    if (::symlink(target.c_str(), name.c_str()) != 0)
        throw ChangeErrorOf(errno);
}

void LinuxFileSystem::CreateFolder(const std::string& path)
{
    std::error_code error;
    std::filesystem::create_directories(path, error);
    if (error && !FolderExists(path))
        throw ChangeErrorOf(error.value());
}

bool LinuxFileSystem::FolderWritable(const std::string& path)
{
    return FolderExists(path) && ::faccessat(AT_FDCWD, path.c_str(), W_OK | X_OK, AT_EACCESS) == 0;
}

} // namespace voxmate::linux_platform
