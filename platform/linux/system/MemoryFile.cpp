#include "platform/MemoryFile.h"

#include <sys/mman.h>
#include <unistd.h>

namespace voxmate
{

MemoryFile::MemoryFile(std::string_view content) : descriptor_(memfd_create("voxmate", MFD_CLOEXEC))
{
    if (descriptor_ >= 0 && write(descriptor_, content.data(), content.size()) == static_cast<ssize_t>(content.size()))
        path_ = "/proc/self/fd/" + std::to_string(descriptor_);
}

MemoryFile::~MemoryFile()
{
    if (descriptor_ >= 0)
        close(descriptor_);
}

} // namespace voxmate
