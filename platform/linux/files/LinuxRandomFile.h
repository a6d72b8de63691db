// Files of slots on Linux.
#pragma once

#include "base/RuntimeError.h"
#include "platform/RandomAccess.h"

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

namespace voxmate::linux_platform
{

/// Holds a file open and lets go of it.
class Descriptor
{
public:
    explicit Descriptor(int number) : number_(number) {}
    ~Descriptor();
    Descriptor(const Descriptor&) = delete;
    Descriptor& operator=(const Descriptor&) = delete;
    int Number() const { return number_; }
    /// Closes the file; false, with errno, when the system has lost what was written to it.
    bool Close();

private:
    int number_;
};

/// Locks an open file against other processes until it is closed; false when another has it. Whoever looks at a file,
/// as programs that make copies do, has it for a moment, which is waited for.
bool LockedInTime(int number);
/// Opens a regular file, with O_CREAT creating a missing one readable by its user alone, and locks it in that way.
/// Raises what FileSystem::OpenRandom does.
int OpenLocked(const std::string& path, int flags);
/// Renames without ever replacing a file; 0, or -1 with errno.
int RenameToNew(const char* from, const char* to);
/// Has the disk know of new and changed names in the folder of a file, as far as its file system can.
void SyncFolderOf(const std::string& path);
/// The run-time error of a failed call that opens or writes a file, by its errno.
RuntimeError WriteErrorOf(int number);

/// Reads and writes in blocks, so that going through all slots in order costs little more than the bytes themselves.
class LinuxRandomFile : public RandomAccessFile
{
public:
    /// Opens the file, or, with `create`, makes a missing one. Raises what FileSystem::OpenRandom does, and run-time
    /// error 53 for a missing file that is not to be made.
    LinuxRandomFile(const std::string& path, std::size_t recordLength, bool create);
    ~LinuxRandomFile() override;
    LinuxRandomFile(const LinuxRandomFile&) = delete;
    LinuxRandomFile& operator=(const LinuxRandomFile&) = delete;

    std::int64_t Count() override;
    std::string_view Get(std::int32_t slot) override;
    void Put(std::int32_t slot, std::string_view record) override;
    void Flush() override;
    void Close() override;

private:
    std::int64_t Position(std::int32_t slot) const;
    void ReadBlock(std::int64_t position);
    /// Writes what is pending. Where that fails, the file gets back the size it had.
    void WriteOut();
    /// Gives a new file its name.
    void Name();

    std::string path_;
    std::int64_t recordLength_;
    std::string unnamed_; ///< where a new file stands until it has its name; else empty
    bool readOnly_ = false;
    Descriptor file_;
    std::string block_; ///< read last, from blockAt_ on
    std::int64_t blockAt_ = 0;
    std::string pending_; ///< to be written from pendingAt_ on
    std::int64_t pendingAt_ = 0;
};

} // namespace voxmate::linux_platform
