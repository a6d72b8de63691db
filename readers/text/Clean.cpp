#include "readers/text/Clean.h"

#include "base/Text.h"

#include <array>
#include <utility>

namespace voxmate::readers
{

namespace
{

constexpr char32_t Invalid = 0xFFFD;

// The character at the front of `text` and its length in bytes. A byte that is part of no character is U+FFFD.
std::pair<char32_t, std::size_t> FirstPoint(std::string_view text)
{
    const auto lead = static_cast<unsigned char>(text[0]);
    if (lead < 0x80)
        return {lead, 1};
    const std::size_t length = lead >= 0xF0 ? 4 : lead >= 0xE0 ? 3 : lead >= 0xC2 ? 2 : 1;
    if (length == 1 || length > text.size() || !IsValidUtf8(text.substr(0, length)))
        return {Invalid, 1};
    char32_t point = lead & (0xFFu >> (length + 1));
    for (std::size_t i = 1; i < length; ++i)
        point = point << 6 | (static_cast<unsigned char>(text[i]) & 0x3Fu);
    return {point, length};
}

// Zs and the control characters of the Unicode Character Database.
bool IsBlank(char32_t point)
{
    return point <= 0x20 || (point >= 0x7F && point <= 0xA0) || point == 0x1680 ||
           (point >= 0x2000 && point <= 0x200A) || point == 0x2028 || point == 0x2029 || point == 0x202F ||
           point == 0x205F || point == 0x3000;
}

bool IsSilent(char32_t point)
{
    // Soft hyphen, zero-width space, marks of direction, word joiner, byte-order mark, variation selectors, and the
    // private range in which symbol fonts of word processors are kept.
    return point == 0xAD || point == 0x200B || point == 0x200E || point == 0x200F ||
           (point >= 0x202A && point <= 0x202E) || point == 0x2060 || (point >= 0x2066 && point <= 0x2069) ||
           point == 0xFEFF || point == 0xFE0E || point == 0xFE0F || (point >= 0xF000 && point <= 0xF0FF);
}

std::string_view Letters(char32_t ligature)
{
    constexpr std::array<std::string_view, 7> letters{"ff", "fi", "fl", "ffi", "ffl", "st", "st"};
    return ligature >= 0xFB00 && ligature <= 0xFB06 ? letters.at(ligature - 0xFB00) : std::string_view();
}

} // namespace

void CleanText::AddPoint(char32_t point, std::string_view bytes)
{
    if (IsSilent(point))
        return;
    if (std::exchange(blank_, false) && !text_.empty() && text_.back() != '\n')
        text_ += ' ';
    if (point == Invalid)
        AppendUtf8(text_, Invalid);
    else if (const std::string_view letters = Letters(point); !letters.empty())
        text_ += letters;
    else
        text_ += bytes;
}

void CleanText::Add(std::string_view text)
{
    while (!text.empty()) {
        // Most text is ASCII: a whole word at a time.
        std::size_t plain = 0;
        while (plain < text.size() && text[plain] > 0x20 && text[plain] < 0x7F)
            ++plain;
        if (plain > 0) {
            AddPoint(static_cast<unsigned char>(text[0]), text.substr(0, 1));
            text_ += text.substr(1, plain - 1);
            text.remove_prefix(plain);
            continue;
        }
        const auto [point, length] = FirstPoint(text);
        if (IsBlank(point))
            blank_ = true;
        else
            AddPoint(point, text.substr(0, length));
        text.remove_prefix(length);
    }
}

void CleanText::Break()
{
    blank_ = false;
    if (!text_.empty() && text_.back() != '\n')
        text_ += '\n';
}

std::string CleanText::Take()
{
    blank_ = false;
    while (text_.ends_with('\n'))
        text_.pop_back();
    return std::exchange(text_, {});
}

std::string CleanText::TakeWords()
{
    const std::size_t last = text_.find_last_of(" \n");
    if (last == std::string::npos) {
        const bool blank = blank_;
        std::string all = Take();
        blank_ = blank;
        return all;
    }
    std::string words = text_.substr(0, last);
    text_.erase(0, last + 1);
    return words;
}

std::string Clean(std::string_view text)
{
    CleanText clean;
    clean.Add(text);
    return clean.Take();
}

} // namespace voxmate::readers
