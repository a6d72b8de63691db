#include "platform/linux/files/RegularFile.h"

#include "base/RuntimeError.h"

#include <cerrno>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace voxmate::linux_platform
{

namespace
{

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

} // namespace

int OpenRegular(const std::string& path, std::int64_t& size)
{
    // Checked before opening, too: merely opening a device can have an effect.
    struct stat status {
    };
    if (::stat(path.c_str(), &status) != 0)
        throw ErrorOf(errno);
    if (!S_ISREG(status.st_mode))
        throw PermissionDenied();
    const int file = ::open(path.c_str(), O_RDONLY | O_CLOEXEC | O_NOCTTY | O_NONBLOCK);
    if (file < 0)
        throw ErrorOf(errno);
    if (::fstat(file, &status) != 0 || !S_ISREG(status.st_mode)) {
        ::close(file);
        throw PermissionDenied();
    }
    size = status.st_size;
    return file;
}

} // namespace voxmate::linux_platform
