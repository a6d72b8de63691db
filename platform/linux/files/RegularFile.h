// Opens files of which only regular ones are wanted.
#pragma once

#include <cstdint>
#include <string>

namespace voxmate::linux_platform
{

/// Opens a regular file for reading without ever blocking, and gives its size. Raises run-time errors 53 "File not
/// found", 57 "Device I/O error", and 70 "Permission denied", also for a folder, a device or a pipe.
int OpenRegular(const std::string& path, std::int64_t& size);

} // namespace voxmate::linux_platform
