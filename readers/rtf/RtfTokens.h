// The tokens of rich text (RTF 1.9.1).
#pragma once

#include <cstddef>
#include <optional>
#include <string_view>

namespace voxmate::readers
{

struct RtfToken {
    enum class Kind {
        Open,   ///< {
        Close,  ///< }
        Word,   ///< \word or \word-12
        Symbol, ///< \ and one character, in `text`
        Byte,   ///< \'e4: one byte of a character, in `byte`
        Text,   ///< bytes as they are, without line ends
    };
    Kind kind = Kind::Text;
    std::string_view text;
    std::optional<int> number;
    unsigned char byte = 0;
};

class RtfTokens
{
public:
    explicit RtfTokens(std::string_view text) : text_(text) {}
    /// The next token; nothing at the end. The raw bytes behind \bin are passed over.
    std::optional<RtfToken> Next();

private:
    RtfToken Control();

    std::string_view text_;
    std::size_t at_ = 0;
};

} // namespace voxmate::readers
