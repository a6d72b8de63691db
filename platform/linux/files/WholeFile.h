// Reads a whole file at once.
#pragma once

#include <cstdint>
#include <limits>
#include <optional>
#include <string>

namespace voxmate::linux_platform
{

/// The first `most` bytes of a file, or the whole file if it is shorter. Nothing when it cannot be read, or is a
/// folder, a device or a pipe, whose reading could block.
std::optional<std::string> ReadWholeFile(const std::string& path,
                                         std::uint64_t most = std::numeric_limits<std::uint64_t>::max());

} // namespace voxmate::linux_platform
