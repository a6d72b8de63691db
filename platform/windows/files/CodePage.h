// Text encodings from before Unicode.
#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>

namespace voxmate::windows_platform
{

/// The number of the code page that pages and documents name like that ("windows-1251", "Shift_JIS"); nothing for a
/// name that is not known, or when the system lacks the page.
std::optional<unsigned> CodePageOfName(const std::string& name);
/// The code page for the language of the user's settings. The process's own is UTF-8.
unsigned CodePageOfUser();
/// Decodes a text to UTF-8. What stands for no character becomes U+FFFD.
std::string Decode(std::string_view bytes, unsigned codePage);

/// Decodes a whole text of unknown encoding to UTF-8, without its mark: by its byte-order mark, without one as UTF-16
/// or UTF-8 where it looks like that, or otherwise with the code page. In UTF-8 each invalid byte is decoded with the
/// code page.
std::string DecodeText(std::string_view bytes, unsigned codePage = CodePageOfUser());

} // namespace voxmate::windows_platform
