// Numbers in rich text and what they stand for.
#pragma once

#include <string>
#include <string_view>

namespace voxmate::readers
{

/// The encoding of a font's character set (\fcharset), a name for DecodeFrom; empty for the document's own, and for the
/// set of symbol fonts (2), whose characters are no text.
std::string RtfCharset(int charset);
inline constexpr int RtfSymbolCharset = 2;

/// Whether the bytes from 0x81 on are first halves of characters in an encoding (of East Asia).
bool HasDoubleBytes(std::string_view encoding);

/// The language of a Windows language identifier ("de" for 1031), [MS-LCID]; empty for an unknown one.
std::string LanguageOfIdentifier(int identifier);

} // namespace voxmate::readers
