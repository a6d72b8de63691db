// The log of calls that the fakes share.
#pragma once

#include <cstdint>
#include <cstdio>
#include <string>
#include <vector>

namespace voxmate::fakes
{

using Log = std::vector<std::string>;

inline std::string Hex(std::uint32_t value)
{
    char text[11];
    std::snprintf(text, sizeof text, "0x%X", value);
    return text;
}

} // namespace voxmate::fakes
