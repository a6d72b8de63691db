// MD5 (RFC 1321), for names that other programs derive with it; it is not used for security.
#pragma once

#include <array>
#include <cstdint>
#include <string_view>

namespace voxmate::linux_platform
{

/// The digest of these bytes.
std::array<std::uint8_t, 16> Md5(std::string_view bytes);

} // namespace voxmate::linux_platform
