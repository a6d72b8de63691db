#include "base/Words.h"

namespace voxmate
{

std::size_t BlankAt(std::string_view text, std::size_t at)
{
    const auto byte = [&](std::size_t i) { return i < text.size() ? static_cast<unsigned char>(text[i]) : 0u; };
    if (at >= text.size())
        return 0;
    const unsigned first = byte(at);
    if (first <= 0x20 || first == 0x7F)
        return 1;
    if (first == 0xC2 && byte(at + 1) >= 0x80 && byte(at + 1) <= 0xA0)
        return 2;
    if (first == 0xEF &&
        ((byte(at + 1) == 0xBB && byte(at + 2) == 0xBF) || (byte(at + 1) == 0xBF && byte(at + 2) == 0xBD)))
        return 3;
    return 0;
}

std::size_t CharacterAt(std::string_view text, std::size_t at)
{
    std::size_t end = at + 1;
    while (end < text.size() && (static_cast<unsigned char>(text[end]) & 0xC0) == 0x80)
        ++end;
    return end - at;
}

bool HasWord(std::string_view text)
{
    std::size_t at = 0;
    while (const std::size_t blank = BlankAt(text, at))
        at += blank;
    return at < text.size();
}

} // namespace voxmate
