#include "platform/windows/system/Wide.h"

#include "base/Text.h"

#include <cstddef>

namespace voxmate::windows_platform
{

namespace
{

constexpr bool IsHalf(char32_t point)
{
    return point >= 0xD800 && point <= 0xDFFF;
}

// The half of a surrogate pair that three bytes at the beginning of `text` stand for; 0 when they stand for none.
char32_t HalfAt(std::string_view text)
{
    const auto byte = [&text](std::size_t at) { return static_cast<unsigned char>(text[at]); };
    if (text.size() < 3 || byte(0) != 0xED || byte(1) < 0xA0 || byte(1) > 0xBF || (byte(2) & 0xC0u) != 0x80)
        return 0;
    return 0xD000u | (byte(1) & 0x3Fu) << 6u | (byte(2) & 0x3Fu);
}

} // namespace

std::wstring Wide(std::string_view text)
{
    std::wstring wide;
    while (!text.empty()) {
        const std::size_t end = ValidUtf8End(text);
        const std::u16string units = Utf8ToUtf16(text.substr(0, end));
        wide.append(units.begin(), units.end());
        text.remove_prefix(end);
        if (text.empty())
            break;
        const char32_t half = HalfAt(text);
        wide += static_cast<wchar_t>(half ? half : 0xFFFD);
        text.remove_prefix(half ? 3 : 1);
    }
    return wide;
}

std::string Narrow(std::wstring_view text)
{
    std::string narrow;
    for (std::size_t i = 0; i < text.size(); ++i) {
        const char32_t unit = text[i];
        const char32_t next = i + 1 < text.size() ? text[i + 1] : 0;
        if (unit < 0xDC00 && IsHalf(unit) && next >= 0xDC00 && IsHalf(next)) {
            AppendUtf8(narrow, 0x10000 + ((unit - 0xD800) << 10u) + (next - 0xDC00));
            ++i;
        } else if (IsHalf(unit)) {
            narrow += static_cast<char>(0xE0u | unit >> 12u);
            narrow += static_cast<char>(0x80u | (unit >> 6u & 0x3Fu));
            narrow += static_cast<char>(0x80u | (unit & 0x3Fu));
        } else {
            AppendUtf8(narrow, unit);
        }
    }
    return narrow;
}

} // namespace voxmate::windows_platform
