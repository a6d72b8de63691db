// Finds out how a text of unknown origin is encoded.
#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>

namespace voxmate
{

/// CodePage is an encoding from before Unicode, the one that the system's user had.
enum class TextEncoding { Utf8, CodePage, Utf16LittleEndian, Utf16BigEndian };

/// A byte-order mark: the encoding it stands for, and its length in bytes.
struct ByteOrderMark {
    TextEncoding encoding;
    std::size_t length;
};
std::optional<ByteOrderMark> FindByteOrderMark(std::string_view text);

/// Guesses from its beginning whether a text without a mark is UTF-16, and which byte order it has. `beginning` has an
/// even number of bytes; some hundred are enough. A text counts as UTF-16 when it makes no sense as single bytes, has
/// only valid characters in that byte order, and has its blanks and line ends where that byte order puts them.
std::optional<TextEncoding> GuessUtf16(std::string_view beginning);

/// Decodes UTF-16 without its mark to UTF-8. Half a character becomes U+FFFD.
std::string DecodeUtf16(std::string_view bytes, bool littleEndian);

/// Tells whether a text is UTF-8. Multi-byte characters hardly ever come about by chance. So a text with at least as
/// many of them as stray bytes (bytes that are part of no character) counts as damaged UTF-8, as when two texts were
/// put together.
class Utf8Census
{
public:
    /// Counts another piece of the text. No character may lie across the seam between two pieces.
    void Count(std::string_view text);
    std::size_t Strays() const { return strays_; }
    bool IsUtf8() const { return characters_ >= strays_; }

private:
    std::size_t characters_ = 0; ///< characters of several bytes
    std::size_t strays_ = 0;
};

} // namespace voxmate
