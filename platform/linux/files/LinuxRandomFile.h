// Files of slots on Linux.
#pragma once

#include "base/RuntimeError.h"
#include "platform/RandomAccess.h"

#include <cstddef>
#include <cstdint>
#include <span>
#include <string>
#include <string_view>

namespace voxmate::linux_platform
{

/// Owns a file descriptor and closes it.
class Descriptor
{
public:
    explicit Descriptor(int number) : number_(number) {}
    ~Descriptor();
    Descriptor(const Descriptor&) = delete;
    Descriptor& operator=(const Descriptor&) = delete;
    int Number() const { return number_; }
    /// Fills the buffer from offset `position` on and returns the number of bytes read: less than the buffer's size
    /// only at the end of the file. Raises run-time error 57 "Device I/O error".
    std::size_t Read(std::int64_t position, std::span<char> buffer) const;
    /// Writes all bytes at offset `position`; false, with errno set, when that fails.
    bool Write(std::int64_t position, std::string_view bytes) const;
    /// Closes the file; false, with errno set, when data written to it was lost.
    bool Close();

private:
    int number_;
};

/// Locks an open file against other processes until it is closed; false when another one keeps it locked. Programs that
/// only look at a file, such as backup tools, hold it for a moment; that is waited for.
bool LockedInTime(int number);
/// Opens a regular file and locks it with LockedInTime. With O_CREAT a missing one is created, readable only by its
/// user. Raises the errors of FileSystem::OpenRandom.
int OpenLocked(const std::string& path, int flags);
/// Renames a file without ever replacing another; returns 0, or -1 with errno set.
int RenameToNew(const char* from, const char* to);
/// Writes new and changed names in a file's folder to the disk, if its file system supports that.
void SyncFolderOf(const std::string& path);
/// The run-time error for a call that failed to open or write a file, by its errno.
RuntimeError WriteErrorOf(int number);

/// Reads and writes in blocks, so that going through all slots in order costs little more than the bytes themselves.
class LinuxRandomFile : public RandomAccessFile
{
public:
    /// Opens the file; with `create`, creates it if it is missing. Raises the errors of FileSystem::OpenRandom, and
    /// run-time error 53 for a missing file that is not to be created.
    LinuxRandomFile(const std::string& path, std::size_t recordLength, bool create);
    ~LinuxRandomFile() override;

    std::int64_t Count() override;
    std::string_view Get(std::int32_t slot) override;
    void Put(std::int32_t slot, std::string_view record) override;
    void Flush() override;
    void Close() override;

private:
    std::int64_t Position(std::int32_t slot) const;
    void ReadBlock(std::int64_t position);
    /// Writes what is pending. When that fails, the file gets its former size back.
    void WriteOut();
    /// Gives a new file its name.
    void Name();

    std::string path_;
    std::int64_t recordLength_;
    std::string unnamed_; ///< path of a new file until it gets its name; else empty
    bool readOnly_ = false;
    Descriptor file_;
    std::string block_; ///< the block read last, from offset blockAt_ on
    std::int64_t blockAt_ = 0;
    std::string pending_; ///< to be written at offset pendingAt_
    std::int64_t pendingAt_ = 0;
};

} // namespace voxmate::linux_platform
