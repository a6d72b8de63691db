#include "platform/linux/files/LinuxTextStream.h"

#include "base/RuntimeError.h"
#include "base/Text.h"
#include "platform/linux/files/RegularFile.h"

#include <algorithm>
#include <cerrno>
#include <fcntl.h>
#include <optional>
#include <sys/stat.h>
#include <unistd.h>

namespace voxmate::linux_platform
{

namespace
{

// Large enough for a system call to cost less than the reading itself, small enough for the processor's cache.
constexpr std::size_t BlockSize = std::size_t{64} * 1024;

// The length in bytes of UTF-16 text without an incomplete character at its end.
std::size_t WholeUtf16(std::string_view text, bool littleEndian)
{
    const std::size_t even = text.size() / 2 * 2;
    if (even == 0)
        return 0;
    const auto high = static_cast<unsigned char>(text[even - (littleEndian ? 1 : 2)]);
    return high >= 0xD8 && high <= 0xDB ? even - 2 : even;
}

} // namespace

LinuxTextStream::LinuxTextStream(const std::string& path, const CodePage& codePage)
    : file_(OpenRegular(path, size_)), codePage_(codePage), block_(BlockSize, '\0')
{
    if (size_ > LargestTextFile)
        throw OutOfMemory();
    FindEncoding();
}

void LinuxTextStream::FindEncoding()
{
    bool marked = false;
    Utf8Census census;
    for (std::int64_t at = 0;;) {
        const std::size_t got = file_.Read(at, block_);
        std::string_view block(block_.data(), got);
        if (at == 0) {
            const std::optional<ByteOrderMark> mark = FindByteOrderMark(block);
            marked = mark.has_value();
            position_ = mark ? static_cast<std::int64_t>(mark->length) : 0;
            encoding_ = mark ? mark->encoding : GuessUtf16(block).value_or(TextEncoding::Utf8);
            if (encoding_ != TextEncoding::Utf8)
                return;
        }
        const bool last = got < BlockSize;
        if (!last)
            block = block.substr(0, WholeUtf8(block));
        census.Count(block);
        at += static_cast<std::int64_t>(block.size());
        if (at > LargestTextFile)
            throw OutOfMemory();
        if (last) {
            end_ = at;
            break;
        }
    }
    damaged_ = census.Strays() > 0;
    if (!marked && !census.IsUtf8())
        encoding_ = TextEncoding::CodePage;
}

bool LinuxTextStream::Fill()
{
    while (at_ == text_.size() && position_ < end_) {
        const std::size_t room = std::min(BlockSize, static_cast<std::size_t>(end_ - position_));
        const std::string_view block(block_.data(), std::min(file_.Read(position_, block_), room));
        if (block.size() < room)
            end_ = position_ + static_cast<std::int64_t>(block.size());
        position_ +=
            static_cast<std::int64_t>(Take(block, position_ + static_cast<std::int64_t>(block.size()) == end_));
        at_ = 0;
        nextLf_ = std::min(text_.find('\n'), text_.size());
        nextCr_ = std::min(text_.find('\r'), text_.size());
    }
    return at_ < text_.size();
}

std::size_t LinuxTextStream::Take(std::string_view block, bool last)
{
    std::size_t taken = block.size();
    if (encoding_ == TextEncoding::Utf8 && !damaged_) {
        text_ = block;
        return taken;
    }
    if (encoding_ == TextEncoding::Utf8) {
        taken = last ? taken : WholeUtf8(block);
        decoded_ = codePage_.Repair(block.substr(0, taken));
    } else if (encoding_ == TextEncoding::CodePage) {
        decoded_.clear();
        taken = codePage_.Decode(block, last, decoded_);
    } else {
        const bool littleEndian = encoding_ == TextEncoding::Utf16LittleEndian;
        if (!last)
            taken = WholeUtf16(block, littleEndian);
        decoded_ = DecodeUtf16(block.substr(0, taken), littleEndian);
    }
    text_ = decoded_;
    return taken;
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
    // Each is searched for only when the last one found lies behind at_, so that no byte is scanned repeatedly.
    if (nextLf_ < at_)
        nextLf_ = std::min(text_.find('\n', at_), text_.size());
    if (nextCr_ < at_)
        nextCr_ = std::min(text_.find('\r', at_), text_.size());
    return std::min(nextLf_, nextCr_);
}

std::size_t LinuxTextStream::SizeHint()
{
    // A line end of one byte becomes two; in other encodings than UTF-8 one byte can become three (the Euro sign of
    // Windows-1252). The last line may have had no line end.
    const std::size_t most = encoding_ == TextEncoding::Utf8 && !damaged_ ? 2 : 3;
    const std::size_t inFile = static_cast<std::size_t>(std::max(std::min(end_, size_) - position_, std::int64_t{0}));
    return most * (inFile + text_.size() - at_) + 2;
}

} // namespace voxmate::linux_platform
