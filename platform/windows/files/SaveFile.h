// Saves a file so that an interruption at any point leaves either the old file or the new one.
#pragma once

#include <string>

namespace voxmate::windows_platform
{

/// Writes the new content to a file beside the old one and puts it in its place in one step. False when that fails; the
/// old file then stays as it is.
bool SaveFile(const std::string& path, const std::string& text);

} // namespace voxmate::windows_platform
