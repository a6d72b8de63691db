#include "platform/windows/files/WindowsRandomFile.h"

#include "base/RuntimeError.h"
#include "platform/windows/system/WindowsApi.h"

#include <algorithm>
#include <utility>

namespace voxmate::windows_platform
{

namespace
{

// Large enough for a system call to cost less than the reading itself, small enough for the processor's cache.
constexpr std::size_t BlockSize = std::size_t{64} * 1024;

DWORD AttributesOf(const std::string& path)
{
    return ::GetFileAttributesW(SystemPath(path).c_str());
}

} // namespace

WindowsRandomFile::WindowsRandomFile(const std::string& path, std::size_t recordLength, bool create)
    : path_(path), recordLength_(static_cast<std::int64_t>(recordLength))
{
    const DWORD attributes = AttributesOf(path);
    const bool missing = attributes == INVALID_FILE_ATTRIBUTES;
    if (!missing && (attributes & FILE_ATTRIBUTE_DIRECTORY) != 0)
        throw PathFileAccessError();
    if (missing && create)
        unnamed_ = path + ".new";
    // An administrator's program may be allowed to write it all the same.
    readOnly_ = !missing && (attributes & FILE_ATTRIBUTE_READONLY) != 0;
    const Opening how = readOnly_ ? Opening::ReadOnly : unnamed_.empty() ? Opening::Write : Opening::Create;
    file_ = std::make_unique<File>(unnamed_.empty() ? path : unnamed_, how);
    if (!readOnly_ && !file_->Opens() && file_->Error() == ERROR_ACCESS_DENIED && !missing) {
        readOnly_ = true;
        file_ = std::make_unique<File>(path, Opening::ReadOnly);
    }
    if (!file_->Opens())
        throw WriteErrorOf(file_->Error());
    if (!file_->IsRegular())
        throw PathFileAccessError();
    // A file left there by a crash was never complete.
    if (!unnamed_.empty() && !file_->Resize(0))
        throw DeviceIOError();
}

WindowsRandomFile::~WindowsRandomFile()
{
    if (unnamed_.empty())
        return;
    file_->Close();
    ::DeleteFileW(SystemPath(unnamed_).c_str());
}

void WindowsRandomFile::Name()
{
    if (unnamed_.empty())
        return;
    if (!file_->Rename(path_))
        throw WriteErrorOf(file_->Error());
    unnamed_.clear();
}

std::int64_t WindowsRandomFile::Position(std::int32_t slot) const
{
    if (slot < 1)
        throw BadRecordNumber();
    return (slot - std::int64_t{1}) * recordLength_;
}

std::int64_t WindowsRandomFile::Count()
{
    WriteOut();
    return (file_->Size() + recordLength_ - 1) / recordLength_;
}

void WindowsRandomFile::ReadBlock(std::int64_t position)
{
    // Nothing is kept of a block that cannot be read.
    std::string block = std::exchange(block_, {});
    block.resize(std::max(BlockSize, static_cast<std::size_t>(recordLength_)));
    block.resize(file_->Read(position, block));
    block_ = std::move(block);
    blockAt_ = position;
}

std::string_view WindowsRandomFile::Get(std::int32_t slot)
{
    const std::int64_t position = Position(slot);
    WriteOut();
    if (position < blockAt_ || position + recordLength_ > blockAt_ + static_cast<std::int64_t>(block_.size()))
        ReadBlock(position);
    return std::string_view(block_).substr(static_cast<std::size_t>(position - blockAt_),
                                           static_cast<std::size_t>(recordLength_));
}

void WindowsRandomFile::Put(std::int32_t slot, std::string_view record)
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

void WindowsRandomFile::WriteOut()
{
    if (pending_.empty())
        return;
    block_.clear();
    const std::int64_t before = file_->Size();
    const bool written = file_->Write(pendingAt_, pending_);
    const std::uint32_t error = file_->Error();
    pending_.clear();
    if (written)
        return;
    // Half a record at the end would invalidate all those before it.
    file_->Resize(before);
    throw WriteErrorOf(error);
}

void WindowsRandomFile::Flush()
{
    WriteOut();
    if (!readOnly_ && !file_->Flush())
        throw WriteErrorOf(file_->Error());
    Name();
}

void WindowsRandomFile::Close()
{
    try {
        WriteOut();
        Name();
    } catch (const RuntimeError&) {
        file_->Close();
        throw;
    }
    file_->Close();
}

} // namespace voxmate::windows_platform
