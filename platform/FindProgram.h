// Looking for other programs.
#pragma once

#include <string>
#include <string_view>

namespace voxmate
{

/// The path of a program that can be run, the first one found in `folders`, which are separated as in PATH; relative
/// ones do not count. Empty when there is none.
std::string FindProgram(const std::string& name, std::string_view folders);
/// The same in the folders of PATH.
std::string FindProgram(const std::string& name);

} // namespace voxmate
