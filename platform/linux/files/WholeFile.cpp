#include "platform/linux/files/WholeFile.h"

#include <algorithm>
#include <cerrno>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace voxmate::linux_platform
{

namespace
{

std::optional<std::string> ReadOpenFile(int file, std::uint64_t most)
{
    struct stat info {
    };
    if (::fstat(file, &info) != 0 || !S_ISREG(info.st_mode))
        return std::nullopt;
    // One byte more than the file's size, to detect its end. Files that are generated while they are read have no size.
    constexpr std::uint64_t least = 4096;
    std::string text(std::min(most, std::max(static_cast<std::uint64_t>(info.st_size) + 1, least)), '\0');
    std::size_t length = 0;
    while (length < most) {
        if (length == text.size())
            text.resize(std::min<std::uint64_t>(most, 2 * length));
        const ssize_t got = ::read(file, text.data() + length, text.size() - length);
        if (got < 0 && errno != EINTR)
            return std::nullopt;
        if (got == 0)
            break;
        length += static_cast<std::size_t>(std::max<ssize_t>(got, 0));
    }
    text.resize(length);
    return text;
}

} // namespace

std::optional<std::string> ReadWholeFile(const std::string& path, std::uint64_t most)
{
    // Non-blocking, because the path may be a pipe.
    const int file = ::open(path.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK);
    if (file < 0)
        return std::nullopt;
    std::optional<std::string> text = ReadOpenFile(file, most);
    ::close(file);
    return text;
}

} // namespace voxmate::linux_platform
