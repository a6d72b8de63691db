// File names on file systems that tell capital from small letters.
#pragma once

#include <string>

namespace voxmate
{

/// The path of an existing file that is `path` but for the case of its extension ("Bo.ACS" for "Bo.acs"): `path` itself
/// when that exists, else the first of such files in alphabetical order, and `path` again when there is none.
std::string InAnyExtensionCase(const std::string& path);

} // namespace voxmate
