// Texts in encodings from before Unicode.
#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace voxmate
{

/// Decodes a text in the encoding of that name, as pages and documents name it ("windows-1251", "Shift_JIS"), to UTF-8.
/// What stands for no character becomes U+FFFD. Nothing when the system does not know the encoding.
std::optional<std::string> DecodeFrom(std::string_view bytes, const std::string& encoding);

/// Decodes a text of unknown encoding to UTF-8: by its byte-order mark, as UTF-16 or UTF-8 where it looks like that,
/// otherwise in the code page of the user's locale.
std::string DecodeUnknown(std::string_view bytes);

} // namespace voxmate
