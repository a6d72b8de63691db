// File names on file systems that distinguish capital from small letters.
#pragma once

#include <string>

namespace voxmate
{

/// The path of an existing file that differs from `path` at most in the case of its extension ("Bo.ACS" for "Bo.acs"):
/// `path` itself if that exists, else the first such file in alphabetical order. Returns `path` when there is none.
std::string InAnyExtensionCase(const std::string& path);

} // namespace voxmate
