// Texts as Windows has them, in UTF-16.
#pragma once

#include <string>
#include <string_view>

namespace voxmate::windows_platform
{

/// A text in UTF-8 as UTF-16. Half a surrogate pair, written as if it were a character, becomes that half again;
/// anything else that is not valid becomes U+FFFD.
std::wstring Wide(std::string_view text);
/// The reverse. File names may hold half a surrogate pair; it is written in three bytes, so that the name survives.
std::string Narrow(std::wstring_view text);

} // namespace voxmate::windows_platform
