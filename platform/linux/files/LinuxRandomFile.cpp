#include "platform/linux/files/LinuxRandomFile.h"

#include <algorithm>
#include <cerrno>
#include <chrono>
#include <cstdio>
#include <fcntl.h>
#include <filesystem>
#include <sys/file.h>
#include <sys/stat.h>
#include <thread>
#include <unistd.h>
#include <utility>

namespace voxmate::linux_platform
{

namespace
{

// Large enough for a system call to cost less than the reading itself, small enough for the processor's cache.
constexpr std::size_t BlockSize = std::size_t{64} * 1024;

// How long to wait for a file another program has locked, and how often to try meanwhile.
constexpr std::chrono::milliseconds Patience{500};
constexpr std::chrono::milliseconds LookEvery{5};

bool Exists(const std::string& path)
{
    struct stat status {
    };
    return ::stat(path.c_str(), &status) == 0;
}

// Whether a path still leads to this open file, since another program may have replaced it.
bool IsAt(int number, const std::string& path)
{
    struct stat open {
    };
    struct stat named {
    };
    return ::fstat(number, &open) == 0 && ::stat(path.c_str(), &named) == 0 && open.st_dev == named.st_dev &&
           open.st_ino == named.st_ino;
}

// Opens for reading and writing, or read-only where nothing else is allowed.
int OpenForSlots(const std::string& path, bool& readOnly)
{
    try {
        return OpenLocked(path, O_RDWR);
    } catch (const RuntimeError& error) {
        if (error.Number != PathFileAccessError().Number || !Exists(path))
            throw;
    }
    readOnly = true;
    return OpenLocked(path, O_RDONLY);
}

} // namespace

Descriptor::~Descriptor()
{
    Close();
}

bool Descriptor::Close()
{
    const int number = number_;
    number_ = -1;
    // Do not close again after EINTR: the number is already free and may belong to another thread.
    return number < 0 || ::close(number) == 0 || errno == EINTR;
}

std::size_t Descriptor::Read(std::int64_t position, std::span<char> buffer) const
{
    std::size_t filled = 0;
    while (filled < buffer.size()) {
        const ssize_t got =
            ::pread(number_, buffer.data() + filled, buffer.size() - filled, position + static_cast<off_t>(filled));
        if (got < 0 && errno == EINTR)
            continue;
        if (got < 0)
            throw DeviceIOError();
        if (got == 0)
            break;
        filled += static_cast<std::size_t>(got);
    }
    return filled;
}

bool Descriptor::Write(std::int64_t position, std::string_view bytes) const
{
    while (!bytes.empty()) {
        const ssize_t written = ::pwrite(number_, bytes.data(), bytes.size(), position);
        if (written < 0 && errno != EINTR)
            return false;
        position += std::max<ssize_t>(written, 0);
        bytes.remove_prefix(static_cast<std::size_t>(std::max<ssize_t>(written, 0)));
    }
    return true;
}

RuntimeError WriteErrorOf(int number)
{
    switch (number) {
    case ENOENT:
    case ENOTDIR:
        return PathNotFound();
    case EACCES:
    case EPERM:
    case EROFS:
    case EISDIR:
    case ELOOP:
    case ENAMETOOLONG:
    case ETXTBSY:
        return PathFileAccessError();
    case ENOSPC:
    case EDQUOT:
    case EFBIG:
        return DiskFull();
    default:
        return DeviceIOError();
    }
}

bool LockedInTime(int number)
{
    const auto last = std::chrono::steady_clock::now() + Patience;
    // On a file system without locks there are none to respect.
    while (::flock(number, LOCK_EX | LOCK_NB) != 0 && errno == EWOULDBLOCK) {
        if (std::chrono::steady_clock::now() > last)
            return false;
        std::this_thread::sleep_for(LookEvery);
    }
    return true;
}

int OpenLocked(const std::string& path, int flags)
{
    // Non-blocking, because the path may be a pipe.
    const int number = ::open(path.c_str(), flags | O_CLOEXEC | O_NOCTTY | O_NONBLOCK, 0600);
    if (number < 0)
        throw WriteErrorOf(errno);
    struct stat status {
    };
    const bool regular = ::fstat(number, &status) == 0 && S_ISREG(status.st_mode);
    const bool free = regular && LockedInTime(number);
    if (free && IsAt(number, path))
        return number;
    ::close(number);
    // The program that held the lock has replaced the file.
    if (free)
        return OpenLocked(path, flags);
    throw regular ? PermissionDenied() : PathFileAccessError();
}

int RenameToNew(const char* from, const char* to)
{
    if (::renameat2(AT_FDCWD, from, AT_FDCWD, to, RENAME_NOREPLACE) == 0)
        return 0;
    // Not every file system supports the flag.
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

void SyncFolderOf(const std::string& path)
{
    const std::string folder = std::filesystem::path(path).parent_path().string();
    const Descriptor opened(::open(folder.empty() ? "." : folder.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
    if (opened.Number() >= 0)
        ::fsync(opened.Number());
}

LinuxRandomFile::LinuxRandomFile(const std::string& path, std::size_t recordLength, bool create)
    : path_(path), recordLength_(static_cast<std::int64_t>(recordLength)),
      unnamed_(create && !Exists(path) ? path + ".new" : ""),
      file_(unnamed_.empty() ? OpenForSlots(path, readOnly_) : OpenLocked(unnamed_, O_RDWR | O_CREAT))
{
    // A file left there by a crash was never complete.
    if (!unnamed_.empty() && ::ftruncate(file_.Number(), 0) != 0)
        throw DeviceIOError();
}

LinuxRandomFile::~LinuxRandomFile()
{
    if (!unnamed_.empty())
        ::unlink(unnamed_.c_str());
}

void LinuxRandomFile::Name()
{
    if (unnamed_.empty())
        return;
    if (RenameToNew(unnamed_.c_str(), path_.c_str()) != 0)
        throw errno == EEXIST ? PermissionDenied() : WriteErrorOf(errno);
    unnamed_.clear();
}

std::int64_t LinuxRandomFile::Position(std::int32_t slot) const
{
    if (slot < 1)
        throw BadRecordNumber();
    return (slot - std::int64_t{1}) * recordLength_;
}

std::int64_t LinuxRandomFile::Count()
{
    WriteOut();
    struct stat status {
    };
    if (::fstat(file_.Number(), &status) != 0)
        throw DeviceIOError();
    return (status.st_size + recordLength_ - 1) / recordLength_;
}

void LinuxRandomFile::ReadBlock(std::int64_t position)
{
    // Nothing is kept of a block that cannot be read.
    std::string block = std::exchange(block_, {});
    block.resize(std::max(BlockSize, static_cast<std::size_t>(recordLength_)));
    block.resize(file_.Read(position, block));
    block_ = std::move(block);
    blockAt_ = position;
}

std::string_view LinuxRandomFile::Get(std::int32_t slot)
{
    const std::int64_t position = Position(slot);
    WriteOut();
    if (position < blockAt_ || position + recordLength_ > blockAt_ + static_cast<std::int64_t>(block_.size()))
        ReadBlock(position);
    return std::string_view(block_).substr(static_cast<std::size_t>(position - blockAt_),
                                           static_cast<std::size_t>(recordLength_));
}

void LinuxRandomFile::Put(std::int32_t slot, std::string_view record)
{
    const auto recordLength = static_cast<std::size_t>(recordLength_);
    if (record.size() > recordLength)
        throw BadRecordLength();
    const std::int64_t position = Position(slot);
    if (readOnly_)
        throw PathFileAccessError();
    if (pending_.size() >= BlockSize || position != pendingAt_ + static_cast<std::int64_t>(pending_.size()))
        WriteOut();
    if (pending_.empty())
        pendingAt_ = position;
    pending_.append(record);
    pending_.append(recordLength - record.size(), '\0');
}

void LinuxRandomFile::WriteOut()
{
    if (pending_.empty())
        return;
    block_.clear();
    struct stat before {
    };
    const bool sizeKnown = ::fstat(file_.Number(), &before) == 0;
    const bool written = file_.Write(pendingAt_, pending_);
    const int number = errno;
    pending_.clear();
    if (written)
        return;
    // Half a record at the end would invalidate all those before it.
    [[maybe_unused]] const int tried = sizeKnown ? ::ftruncate(file_.Number(), before.st_size) : 0;
    throw WriteErrorOf(number);
}

void LinuxRandomFile::Flush()
{
    WriteOut();
    if (::fdatasync(file_.Number()) != 0)
        throw WriteErrorOf(errno);
    if (unnamed_.empty())
        return;
    Name();
    SyncFolderOf(path_);
}

void LinuxRandomFile::Close()
{
    try {
        WriteOut();
        Name();
    } catch (const RuntimeError&) {
        file_.Close();
        throw;
    }
    if (!file_.Close())
        throw WriteErrorOf(errno);
}

} // namespace voxmate::linux_platform
