// What is in a character file, as JSON.
#pragma once

#include "agent/file/AcsFile.h"

#include <string>

namespace voxmate::characters
{

/// One JSON object (RFC 8259, UTF-8, indented by two blanks, a line end at its end) with all that the file says, in the
/// order of the file's own description; pixels and sounds aside. `size` is the file's length in bytes.
std::string Describe(const agent::AcsFile& file, std::uint64_t size);

} // namespace voxmate::characters
