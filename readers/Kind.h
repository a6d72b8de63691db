// What a file is, by its content.
#pragma once

#include <cstdint>
#include <string_view>

namespace voxmate::readers
{

enum class Kind : std::uint8_t { Text, Markdown, Page, Docx, Odt, FlatOdt, Epub, Pdf, Rtf, Calendar };
inline constexpr Kind LastKind = Kind::Calendar;

/// Raises Refused for what no reader here reads: unknown, sound, protected, damaged, no text (an empty file), and needs
/// converter for the older files of word processors and for pages stored like mail.
Kind FindKind(std::string_view bytes);

} // namespace voxmate::readers
