// Looking for other programs.
#pragma once

#include <string>
#include <string_view>

namespace voxmate
{

/// The path of the first executable program of this name in `folders`, a list separated as in PATH. Relative folders
/// are ignored. Empty when there is none.
std::string FindProgram(const std::string& name, std::string_view folders);
/// The same in the folders of PATH.
std::string FindProgram(const std::string& name);

} // namespace voxmate
