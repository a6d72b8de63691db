#include "platform/linux/files/WholeFile.h"

#include "platform/linux/files/LinuxRandomFile.h"

#include <algorithm>

#include <fcntl.h>
#include <sys/stat.h>

namespace voxmate::linux_platform
{

std::optional<std::string> ReadWholeFile(const std::string& path, std::uint64_t most)
{
    // Non-blocking, because the path may be a pipe.
    const Descriptor file(::open(path.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK));
    struct stat info {
    };
    if (::fstat(file.Number(), &info) != 0 || !S_ISREG(info.st_mode))
        return std::nullopt;
    // One byte more than the file's size, to detect its end. Files that are generated while they are read have no size.
    constexpr std::uint64_t least = 4096;
    std::string text(std::min(most, std::max(static_cast<std::uint64_t>(info.st_size) + 1, least)), '\0');
    std::size_t length = 0;
    try {
        while ((length += file.Read(static_cast<std::int64_t>(length), std::span(text).subspan(length))) ==
                   text.size() &&
               length < most)
            text.resize(std::min<std::uint64_t>(most, 2 * length));
    } catch (const RuntimeError&) {
        return std::nullopt;
    }
    text.resize(length);
    return text;
}

} // namespace voxmate::linux_platform
