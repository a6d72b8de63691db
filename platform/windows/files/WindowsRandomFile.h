// Files of slots on Windows.
#pragma once

#include "platform/RandomAccess.h"
#include "platform/windows/files/File.h"

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>
#include <string_view>

namespace voxmate::windows_platform
{

/// Reads and writes in blocks, so that going through all slots in order costs little more than the bytes themselves.
class WindowsRandomFile : public RandomAccessFile
{
public:
    /// Opens the file; with `create`, creates it if it is missing. Raises the errors of FileSystem::OpenRandom, and
    /// run-time error 53 for a missing file that is not to be created.
    WindowsRandomFile(const std::string& path, std::size_t recordLength, bool create);
    ~WindowsRandomFile() override;
    WindowsRandomFile(const WindowsRandomFile&) = delete;
    WindowsRandomFile& operator=(const WindowsRandomFile&) = delete;

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
    std::unique_ptr<File> file_;
    std::string block_; ///< the block read last, from offset blockAt_ on
    std::int64_t blockAt_ = 0;
    std::string pending_; ///< to be written at offset pendingAt_
    std::int64_t pendingAt_ = 0;
};

} // namespace voxmate::windows_platform
