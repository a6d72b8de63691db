// Describes the contents of a character file as JSON.
#pragma once

#include "agent/file/AcsFile.h"

#include <string>

namespace voxmate::characters
{

/// Returns one JSON object (RFC 8259, UTF-8, indented by two blanks, ending in a line end) with everything in the file
/// except pixels and sounds, in the order of the file's own description. `size` is the file's length in bytes.
std::string Describe(const agent::AcsFile& file, std::uint64_t size);

} // namespace voxmate::characters
