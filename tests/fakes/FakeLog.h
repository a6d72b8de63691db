// What the fakes share: the log of calls, and the end of the program.
#pragma once

#include <cstdint>
#include <cstdio>
#include <string>
#include <vector>

namespace voxmate::fakes
{

/// What ending the program throws in a test. It is no exception of the program's own, so nothing there catches it.
struct ProgramEnded {
};

using Log = std::vector<std::string>;

inline std::string Hex(std::uint32_t value)
{
    char text[11];
    std::snprintf(text, sizeof text, "0x%X", value);
    return text;
}

} // namespace voxmate::fakes
