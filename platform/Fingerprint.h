// Telling files apart by their content.
#pragma once

#include <string>

namespace voxmate
{

/// A digest of a regular file's content, 32 hexadecimal digits: of all of it, or, of a file of more than a megabyte, of
/// its size and of its beginning, middle and end, so that it takes no longer. Empty when the file cannot be read.
std::string Fingerprint(const std::string& path);

} // namespace voxmate
