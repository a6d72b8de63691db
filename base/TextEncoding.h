// Telling how a text is encoded that comes from anywhere.
#pragma once

#include <cstddef>
#include <optional>
#include <string_view>

namespace voxmate
{

/// CodePage is one of the encodings from before Unicode, whichever the system's user had.
enum class TextEncoding { Utf8, CodePage, Utf16LittleEndian, Utf16BigEndian };

/// A byte-order mark: what it says, and how many bytes it takes.
struct ByteOrderMark {
    TextEncoding encoding;
    std::size_t length;
};
std::optional<ByteOrderMark> FindByteOrderMark(std::string_view text);

/// Whether a text without a mark is UTF-16, judged by its beginning (an even number of bytes, some hundred are enough),
/// and which: it makes no sense in bytes, has only characters there are, and its blanks and line ends are where that
/// order of bytes has them.
std::optional<TextEncoding> GuessUtf16(std::string_view beginning);

/// Whether a text is UTF-8. Characters of several bytes come about by chance so seldom that a text with as many of them
/// as there are strays, bytes that are part of none, is UTF-8 with damage, as when two texts were put together.
class Utf8Census
{
public:
    /// Counts another piece of the text; no character may lie across the seam.
    void Count(std::string_view text);
    std::size_t Strays() const { return strays_; }
    bool IsUtf8() const { return characters_ >= strays_; }

private:
    std::size_t characters_ = 0; ///< of several bytes
    std::size_t strays_ = 0;
};

} // namespace voxmate
