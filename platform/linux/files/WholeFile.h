// Reading a file at once.
#pragma once

#include <cstdint>
#include <limits>
#include <optional>
#include <string>

namespace voxmate::linux_platform
{

/// The first `most` bytes of a file, all of it when it has no more. Nothing for what is no file but a folder, a device
/// or a pipe, which would have to be waited for, and for one that cannot be read.
std::optional<std::string> ReadWholeFile(const std::string& path,
                                         std::uint64_t most = std::numeric_limits<std::uint64_t>::max());

} // namespace voxmate::linux_platform
