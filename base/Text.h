// Text helpers. Text is UTF-8; where nothing else is said, positions and lengths count bytes.
#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <string>
#include <string_view>

namespace voxmate
{

inline constexpr const char* CrLf = "\r\n";

/// Number of characters in a UTF-8 text. A byte that is not valid UTF-8 counts as one character.
std::size_t Len(std::string_view text);

/// The first `count` characters of the text, or all of it if it is shorter.
std::string_view Left(std::string_view text, std::size_t count);

/// The part of the text between the `blanks` at its ends.
std::string_view Trimmed(std::string_view text, std::string_view blanks = " ");
/// Removes blanks (U+0020) from both ends; tabs and line ends stay.
std::string Trim(std::string_view text);
inline std::string Trim(const char* text)
{
    return Trim(std::string_view(text));
}
/// The same for a text that may be changed, without a copy.
std::string Trim(std::string&& text);

/// A number in decimal with at least `digits` digits: zeros in front, and the sign before them ("-08").
std::string Padded(std::int32_t value, std::size_t digits);

/// Of ASCII only.
inline bool IsDigit(char c)
{
    return c >= '0' && c <= '9';
}
inline bool IsLetter(char c)
{
    return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z');
}
/// Lower case of ASCII letters; all other characters stay.
std::string LowerAscii(std::string_view text);

/// Upper case of ASCII letters, and of Latin-1, Latin Extended-A, Greek and Cyrillic letters with a simple counterpart.
std::string UCase(std::string_view text);

/// Position (1-based, in bytes of the UTF-8 text) of the first occurrence of `part`, 0 if there is none.
std::size_t InStr(std::string_view text, std::string_view part);
/// Whether `part` occurs in the text without regard to case (as UCase sees it).
bool ContainsNoCase(std::string_view text, std::string_view part);
bool EqualNoCase(std::string_view a, std::string_view b);

/// The lines joined with CR LF between them.
std::string JoinLines(std::span<const std::string> lines);

/// UTF-8 to code points and back. An invalid byte decodes as U+FFFD; a surrogate or a value above U+10FFFF encodes as
/// U+FFFD.
std::u32string DecodeUtf8(std::string_view text);
std::string EncodeUtf8(std::u32string_view points);
void AppendUtf8(std::string& out, char32_t point);
std::string Utf16ToUtf8(std::u16string_view text);
std::u16string Utf8ToUtf16(std::string_view text);
/// The code page's five unassigned bytes become the C1 controls with the same numbers, as in the Encoding Standard.
std::string Windows1252ToUtf8(std::string_view bytes);
bool IsValidUtf8(std::string_view text);
/// The position of the first byte that is part of no UTF-8 character; the text's size when there is none.
std::size_t ValidUtf8End(std::string_view text);
/// The length in bytes of a UTF-8 text without a character that is cut off at its end.
std::size_t WholeUtf8(std::string_view text);

} // namespace voxmate
