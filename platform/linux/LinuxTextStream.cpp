#include "platform/linux/LinuxTextStream.h"

#include "base/RuntimeError.h"
#include "base/Text.h"

#include <algorithm>
#include <cerrno>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace voxmate::linux_platform
{

namespace
{

// Large enough that reading costs more than asking for it, small enough to stay in the processor's cache.
constexpr std::size_t BlockSize = 64 * 1024;

RuntimeError ErrorOf(int number)
{
    switch (number) {
    case ENOENT:
    case ENOTDIR:
    case ENAMETOOLONG:
    case ELOOP:
        return FileNotFound();
    case EACCES:
    case EPERM:
        return PermissionDenied();
    default:
        return DeviceIOError();
    }
}

bool IsHighSurrogate(char16_t unit)
{
    return unit >= 0xD800 && unit <= 0xDBFF;
}

} // namespace

LinuxTextStream::File::File(const std::string& path)
{
    // Asked before it is opened as well: merely opening a device can do something.
    struct stat status {
    };
    if (::stat(path.c_str(), &status) != 0)
        throw ErrorOf(errno);
    if (!S_ISREG(status.st_mode))
        throw PermissionDenied();
    descriptor_ = ::open(path.c_str(), O_RDONLY | O_CLOEXEC | O_NOCTTY | O_NONBLOCK);
    if (descriptor_ < 0)
        throw ErrorOf(errno);
    if (::fstat(descriptor_, &status) != 0 || !S_ISREG(status.st_mode)) {
        ::close(descriptor_);
        throw PermissionDenied();
    }
    size_ = status.st_size;
}

LinuxTextStream::File::~File()
{
    ::close(descriptor_);
}

std::size_t LinuxTextStream::File::Read(std::int64_t position, std::string& buffer) const
{
    std::size_t filled = 0;
    while (filled < buffer.size()) {
        const ssize_t got = ::pread(descriptor_, buffer.data() + filled, buffer.size() - filled,
                                    static_cast<off_t>(position) + static_cast<off_t>(filled));
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

LinuxTextStream::LinuxTextStream(const std::string& path) : file_(path), block_(BlockSize, '\0')
{
    if (file_.Size() > LargestTextFile)
        throw OutOfMemory();
    FindEncoding();
}

void LinuxTextStream::FindEncoding()
{
    for (std::int64_t at = 0;;) {
        const std::size_t got = file_.Read(at, block_);
        std::string_view block(block_.data(), got);
        if (at == 0 && (block.starts_with("\xFF\xFE") || block.starts_with("\xFE\xFF"))) {
            encoding_ = block.front() == '\xFF' ? Encoding::Utf16LittleEndian : Encoding::Utf16BigEndian;
            position_ = 2;
            return;
        }
        if (at == 0 && block.starts_with("\xEF\xBB\xBF"))
            position_ = 3;
        const bool last = got < BlockSize;
        if (!last)
            block = block.substr(0, WholeUtf8(block));
        if (!IsValidUtf8(block)) {
            encoding_ = Encoding::Windows1252;
            return;
        }
        at += static_cast<std::int64_t>(block.size());
        if (at > LargestTextFile)
            throw OutOfMemory();
        if (last) {
            end_ = at;
            return;
        }
    }
}

bool LinuxTextStream::Fill()
{
    while (at_ == text_.size() && position_ < end_) {
        const std::size_t room = std::min(BlockSize, static_cast<std::size_t>(end_ - position_));
        const std::string_view block(block_.data(), std::min(file_.Read(position_, block_), room));
        if (block.size() < room)
            end_ = position_ + static_cast<std::int64_t>(block.size());
        std::size_t taken = block.size();
        if (encoding_ == Encoding::Utf8)
            text_ = block;
        else if (encoding_ == Encoding::Windows1252)
            text_ = decoded_ = Windows1252ToUtf8(block);
        else
            taken = TakeUtf16(block, position_ + static_cast<std::int64_t>(block.size()) == end_);
        position_ += static_cast<std::int64_t>(taken);
        at_ = 0;
        nextLf_ = std::min(text_.find('\n'), text_.size());
        nextCr_ = std::min(text_.find('\r'), text_.size());
    }
    return at_ < text_.size();
}

std::size_t LinuxTextStream::TakeUtf16(std::string_view block, bool last)
{
    const std::size_t low = encoding_ == Encoding::Utf16LittleEndian ? 0 : 1;
    units_.resize(block.size() / 2);
    for (std::size_t i = 0; i < units_.size(); ++i) {
        const auto byte = [&](std::size_t at) { return static_cast<unsigned char>(block[2 * i + at]); };
        units_[i] = static_cast<char16_t>(byte(1 - low) << 8 | byte(low));
    }
    if (!last && IsHighSurrogate(units_.back()))
        units_.pop_back();
    decoded_ = Utf16ToUtf8(units_);
    if (last && block.size() % 2 == 1)
        AppendUtf8(decoded_, 0xFFFD);
    text_ = decoded_;
    return last ? block.size() : 2 * units_.size();
}

bool LinuxTextStream::AtEndOfStream()
{
    if (afterCr_ && Fill() && text_[at_] == '\n')
        ++at_;
    afterCr_ = false;
    return !Fill();
}

std::string LinuxTextStream::ReadLine()
{
    std::string line;
    AppendLine(line);
    return line;
}

void LinuxTextStream::AppendLine(std::string& text)
{
    if (AtEndOfStream())
        throw InputPastEndOfFile();
    std::size_t end = LineEnd();
    text.append(text_, at_, end - at_);
    while (end == text_.size()) {
        at_ = end;
        if (!Fill())
            return;
        end = LineEnd();
        text.append(text_, at_, end - at_);
    }
    afterCr_ = text_[end] == '\r';
    at_ = end + 1;
}

std::size_t LinuxTextStream::LineEnd()
{
    // Each is looked for only when the last one found lies behind, so that no byte is looked at time and again.
    if (nextLf_ < at_)
        nextLf_ = std::min(text_.find('\n', at_), text_.size());
    if (nextCr_ < at_)
        nextCr_ = std::min(text_.find('\r', at_), text_.size());
    return std::min(nextLf_, nextCr_);
}

std::size_t LinuxTextStream::SizeHint()
{
    // A line's end of one byte makes two; elsewhere a byte makes three of UTF-8 at most (the Euro sign of
    // Windows-1252). The last line may have had no end.
    const std::size_t most = encoding_ == Encoding::Utf8 ? 2 : 3;
    const std::size_t inFile =
        static_cast<std::size_t>(std::max(std::min(end_, file_.Size()) - position_, std::int64_t{0}));
    return most * (inFile + text_.size() - at_) + 2;
}

} // namespace voxmate::linux_platform
