#include "base/TextEncoding.h"

#include "base/Text.h"

#include <algorithm>
#include <cstdint>

namespace voxmate
{

namespace
{

bool IsControl(unsigned unit)
{
    // Tab to carriage return, escape, and the end-of-file mark of old systems (0x1A) do occur in texts.
    return unit < 0x20 && !(unit >= 0x09 && unit <= 0x0D) && unit != 0x1A && unit != 0x1B;
}

/// What a text would consist of if it were UTF-16 in the given byte order.
struct Units {
    std::size_t blanks = 0; ///< including tabs and line ends
    std::size_t ascii = 0;
    bool valid = true;

    Units(std::string_view text, bool littleEndian)
    {
        const auto unitAt = [&](std::size_t at) {
            const auto first = static_cast<unsigned char>(text[at]);
            const auto second = static_cast<unsigned char>(text[at + 1]);
            return littleEndian ? first | second << 8 : first << 8 | second;
        };
        for (std::size_t at = 0; valid && at + 1 < text.size(); at += 2) {
            const auto unit = static_cast<unsigned>(unitAt(at));
            const bool low = unit >= 0xDC00 && unit <= 0xDFFF;
            const bool afterHigh = at > 0 && (unitAt(at - 2) & 0xFC00) == 0xD800;
            valid = !IsControl(unit) && unit < 0xFFFE && low == afterHigh;
            blanks += unit == 0x20 || unit == 0x09 || unit == 0x0A || unit == 0x0D ? 1 : 0;
            ascii += unit >= 0x20 && unit < 0x7F ? 1 : 0;
        }
    }
};

} // namespace

std::optional<ByteOrderMark> FindByteOrderMark(std::string_view text)
{
    if (text.starts_with("\xFF\xFE"))
        return ByteOrderMark{TextEncoding::Utf16LittleEndian, 2};
    if (text.starts_with("\xFE\xFF"))
        return ByteOrderMark{TextEncoding::Utf16BigEndian, 2};
    if (text.starts_with("\xEF\xBB\xBF"))
        return ByteOrderMark{TextEncoding::Utf8, 3};
    return std::nullopt;
}

std::optional<TextEncoding> GuessUtf16(std::string_view beginning)
{
    if (beginning.empty() || beginning.size() % 2 != 0 || beginning.find('\0') == std::string_view::npos)
        return std::nullopt;
    // In UTF-16, Latin and most other scripts have a byte that is a control character beside each letter; the remaining
    // scripts give bytes that are not UTF-8.
    const auto controls = std::count_if(beginning.begin(), beginning.end(),
                                        [](char c) { return IsControl(static_cast<unsigned char>(c)); });
    Utf8Census census;
    census.Count(beginning);
    constexpr std::size_t share = 10;
    if (static_cast<std::size_t>(controls) * share < beginning.size() && census.IsUtf8())
        return std::nullopt;
    const Units little(beginning, true);
    const Units big(beginning, false);
    const bool isLittle = little.valid && (!big.valid || little.blanks > big.blanks ||
                                           (little.blanks == big.blanks && little.ascii > big.ascii));
    const Units& chosen = isLittle ? little : big;
    const Units& other = isLittle ? big : little;
    const bool mostlyAscii = chosen.ascii * 4 >= beginning.size();
    if (!chosen.valid || (chosen.blanks < 2 && !mostlyAscii))
        return std::nullopt;
    if (other.valid && chosen.blanks == other.blanks && chosen.ascii == other.ascii)
        return std::nullopt;
    return isLittle ? TextEncoding::Utf16LittleEndian : TextEncoding::Utf16BigEndian;
}

std::string DecodeUtf16(std::string_view bytes, bool littleEndian)
{
    const std::size_t low = littleEndian ? 0 : 1;
    std::u16string units(bytes.size() / 2, u'\0');
    for (std::size_t i = 0; i < units.size(); ++i) {
        const auto byte = [&](std::size_t at) { return static_cast<unsigned char>(bytes[2 * i + at]); };
        units[i] = static_cast<char16_t>(byte(1 - low) << 8 | byte(low));
    }
    std::string text = Utf16ToUtf8(units);
    if (bytes.size() % 2 == 1)
        AppendUtf8(text, 0xFFFD);
    return text;
}

void Utf8Census::Count(std::string_view text)
{
    while (!text.empty()) {
        const std::size_t end = ValidUtf8End(text);
        characters_ +=
            static_cast<std::size_t>(std::count_if(text.begin(), text.begin() + static_cast<std::ptrdiff_t>(end),
                                                   [](char c) { return static_cast<unsigned char>(c) >= 0xC0; }));
        strays_ += end < text.size() ? 1 : 0;
        text.remove_prefix(std::min(end + 1, text.size()));
    }
}

} // namespace voxmate
