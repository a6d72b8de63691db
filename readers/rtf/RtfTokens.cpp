#include "readers/rtf/RtfTokens.h"

#include "base/Text.h"

#include <algorithm>
#include <charconv>

namespace voxmate::readers
{

std::optional<RtfToken> RtfTokens::Next()
{
    // Line ends between tokens mean nothing.
    while (at_ < text_.size() && (text_[at_] == '\r' || text_[at_] == '\n' || text_[at_] == '\0'))
        ++at_;
    if (at_ >= text_.size())
        return std::nullopt;
    RtfToken token;
    switch (text_[at_]) {
    case '{':
        ++at_;
        token.kind = RtfToken::Kind::Open;
        return token;
    case '}':
        ++at_;
        token.kind = RtfToken::Kind::Close;
        return token;
    case '\\':
        ++at_;
        return Control();
    default:
        break;
    }
    constexpr std::string_view special("{}\\\r\n\0", 6);
    const std::size_t end = std::min(text_.find_first_of(special, at_), text_.size());
    token.text = text_.substr(at_, end - at_);
    at_ = end;
    return token;
}

// What follows a backslash.
RtfToken RtfTokens::Control()
{
    RtfToken token;
    if (at_ >= text_.size())
        return token;
    if (!IsLetter(text_[at_])) {
        token.kind = RtfToken::Kind::Symbol;
        token.text = text_.substr(at_++, 1);
        if (token.text == "'" && text_.size() - at_ >= 2) {
            unsigned byte = 0;
            const char* const digits = text_.data() + at_;
            if (std::from_chars(digits, digits + 2, byte, 16).ptr == digits + 2) {
                token.kind = RtfToken::Kind::Byte;
                token.byte = static_cast<unsigned char>(byte);
                at_ += 2;
            }
        }
        return token;
    }
    token.kind = RtfToken::Kind::Word;
    const std::size_t begin = at_;
    // No word is longer than 32 letters.
    while (at_ < text_.size() && IsLetter(text_[at_]) && at_ - begin < 32)
        ++at_;
    token.text = text_.substr(begin, at_ - begin);
    const char* const digits = text_.data() + at_;
    int number = 0;
    const auto [end, error] = std::from_chars(digits, text_.data() + text_.size(), number);
    if (end != digits && error == std::errc())
        token.number = number;
    at_ += static_cast<std::size_t>(end - digits);
    if (at_ < text_.size() && text_[at_] == ' ')
        ++at_;
    if (token.text == "bin" && token.number.value_or(0) > 0)
        at_ += std::min(static_cast<std::size_t>(*token.number), text_.size() - at_);
    return token;
}

} // namespace voxmate::readers
