#include "base/Text.h"

#include <algorithm>
#include <array>
#include <bit>
#include <cstring>
#include <utility>

namespace voxmate
{

namespace
{

struct Decoded {
    char32_t point;
    std::size_t bytes;
    bool valid;
};

// Decodes the character at `at` by RFC 3629: no overlong forms, no surrogates. An invalid byte is one U+FFFD.
Decoded DecodeAt(std::string_view text, std::size_t at)
{
    const auto byte = [&](std::size_t i) { return static_cast<unsigned char>(text[at + i]); };
    const unsigned char lead = byte(0);
    if (lead < 0x80)
        return {lead, 1, true};
    std::size_t more = 0;
    char32_t point = 0;
    char32_t least = 0;
    if (lead >= 0xC2 && lead <= 0xDF) {
        more = 1;
        point = lead & 0x1Fu;
        least = 0x80;
    } else if (lead >= 0xE0 && lead <= 0xEF) {
        more = 2;
        point = lead & 0x0Fu;
        least = 0x800;
    } else if (lead >= 0xF0 && lead <= 0xF4) {
        more = 3;
        point = lead & 0x07u;
        least = 0x10000;
    } else {
        return {0xFFFD, 1, false};
    }
    if (at + more >= text.size())
        return {0xFFFD, 1, false};
    for (std::size_t i = 1; i <= more; ++i) {
        if ((byte(i) & 0xC0u) != 0x80u)
            return {0xFFFD, 1, false};
        point = (point << 6) | (byte(i) & 0x3Fu);
    }
    if (point < least || point > 0x10FFFF || (point >= 0xD800 && point <= 0xDFFF))
        return {0xFFFD, 1, false};
    return {point, more + 1, true};
}

// The end of the run of ASCII characters that begins at `at`. Checks eight bytes at a time, since most texts are mostly
// ASCII.
std::size_t AsciiEnd(std::string_view text, std::size_t at)
{
    constexpr std::uint64_t highBits = 0x8080808080808080u;
    for (std::uint64_t eight = 0; at + sizeof eight <= text.size(); at += sizeof eight) {
        std::memcpy(&eight, text.data() + at, sizeof eight);
        eight &= highBits;
        if (eight != 0)
            return at + static_cast<std::size_t>(std::endian::native == std::endian::little ? std::countr_zero(eight)
                                                                                            : std::countl_zero(eight)) /
                            8;
    }
    while (at < text.size() && static_cast<unsigned char>(text[at]) < 0x80)
        ++at;
    return at;
}

// Writes a character as one to four bytes and returns where the next one goes.
char* PutUtf8(char* to, char32_t point)
{
    const auto put = [&to](char32_t byte) { *to++ = static_cast<char>(static_cast<unsigned char>(byte)); };
    if (point > 0x10FFFF || (point >= 0xD800 && point <= 0xDFFF))
        point = 0xFFFD;
    if (point < 0x80) {
        put(point);
    } else if (point < 0x800) {
        put(0xC0 | (point >> 6));
        put(0x80 | (point & 0x3F));
    } else if (point < 0x10000) {
        put(0xE0 | (point >> 12));
        put(0x80 | ((point >> 6) & 0x3F));
        put(0x80 | (point & 0x3F));
    } else {
        put(0xF0 | (point >> 18));
        put(0x80 | ((point >> 12) & 0x3F));
        put(0x80 | ((point >> 6) & 0x3F));
        put(0x80 | (point & 0x3F));
    }
    return to;
}

char32_t UpperOf(char32_t c)
{
    if ((c >= U'a' && c <= U'z') || (c >= 0xE0 && c <= 0xFE && c != 0xF7) || (c >= 0x3B1 && c <= 0x3C9 && c != 0x3C2) ||
        (c >= 0x430 && c <= 0x44F))
        return c - 32;
    if (c >= 0x450 && c <= 0x45F)
        return c - 80;
    const bool pairedOdd = (c >= 0x100 && c <= 0x137 && c != 0x131) || (c >= 0x14A && c <= 0x177);
    const bool pairedEven = (c >= 0x139 && c <= 0x148) || (c >= 0x179 && c <= 0x17E);
    if ((pairedOdd && c % 2 == 1) || (pairedEven && c % 2 == 0))
        return c - 1;
    return c == 0xFF ? char32_t{0x178} : c;
}

} // namespace

std::size_t Len(std::string_view text)
{
    std::size_t count = 0;
    for (std::size_t at = 0; at < text.size(); at += DecodeAt(text, at).bytes)
        ++count;
    return count;
}

std::string_view Left(std::string_view text, std::size_t count)
{
    std::size_t at = 0;
    for (; count > 0 && at < text.size(); --count)
        at += DecodeAt(text, at).bytes;
    return text.substr(0, at);
}

std::string_view Trimmed(std::string_view text, std::string_view blanks)
{
    text.remove_prefix(std::min(text.find_first_not_of(blanks), text.size()));
    return text.substr(0, text.find_last_not_of(blanks) + 1);
}

std::string Trim(std::string_view text)
{
    return std::string(Trimmed(text));
}

std::string Trim(std::string&& text)
{
    text.erase(text.find_last_not_of(' ') + 1);
    text.erase(0, text.find_first_not_of(' '));
    return std::move(text);
}

std::string Padded(std::int32_t value, std::size_t digits)
{
    std::string text = std::to_string(value < 0 ? -std::int64_t{value} : value);
    if (text.size() < digits)
        text.insert(0, digits - text.size(), '0');
    return value < 0 ? "-" + text : text;
}

std::string LowerAscii(std::string_view text)
{
    std::string lower(text);
    for (char& c : lower)
        if (c >= 'A' && c <= 'Z')
            c = static_cast<char>(c - 'A' + 'a');
    return lower;
}

std::string UCase(std::string_view text)
{
    std::string out;
    out.reserve(text.size());
    for (std::size_t at = 0; at < text.size();) {
        const Decoded c = DecodeAt(text, at);
        if (c.valid)
            AppendUtf8(out, UpperOf(c.point));
        else
            out.append(text.substr(at, 1));
        at += c.bytes;
    }
    return out;
}

std::size_t InStr(std::string_view text, std::string_view part)
{
    const std::size_t at = text.find(part);
    return at == std::string_view::npos ? 0 : at + 1;
}

bool ContainsNoCase(std::string_view text, std::string_view part)
{
    return InStr(UCase(text), UCase(part)) != 0;
}

bool EqualNoCase(std::string_view a, std::string_view b)
{
    return UCase(a) == UCase(b);
}

std::string JoinLines(std::span<const std::string> lines)
{
    std::string text;
    for (std::size_t i = 0; i < lines.size(); ++i) {
        if (i > 0)
            text += CrLf;
        text += lines[i];
    }
    return text;
}

std::u32string DecodeUtf8(std::string_view text)
{
    std::u32string points;
    points.reserve(text.size());
    for (std::size_t at = 0; at < text.size();) {
        const Decoded c = DecodeAt(text, at);
        points.push_back(c.point);
        at += c.bytes;
    }
    return points;
}

void AppendUtf8(std::string& out, char32_t point)
{
    std::array<char, 4> bytes{};
    out.append(bytes.data(), PutUtf8(bytes.data(), point));
}

std::string EncodeUtf8(std::u32string_view points)
{
    std::string out;
    for (const char32_t point : points)
        AppendUtf8(out, point);
    return out;
}

std::string Utf16ToUtf8(std::u16string_view text)
{
    std::size_t most = 0;
    for (const char16_t unit : text)
        most += unit < 0x80 ? 1 : unit < 0x800 ? 2 : 3;
    std::string out(most, '\0');
    char* to = out.data();
    for (std::size_t i = 0; i < text.size(); ++i) {
        const char32_t unit = text[i];
        if (unit < 0x80) {
            *to++ = static_cast<char>(unit);
        } else if (unit >= 0xD800 && unit <= 0xDBFF && i + 1 < text.size() && text[i + 1] >= 0xDC00 &&
                   text[i + 1] <= 0xDFFF) {
            to = PutUtf8(to, 0x10000 + ((unit - 0xD800) << 10) + (char32_t{text[i + 1]} - 0xDC00));
            ++i;
        } else {
            to = PutUtf8(to, unit);
        }
    }
    out.resize(static_cast<std::size_t>(to - out.data()));
    return out;
}

std::u16string Utf8ToUtf16(std::string_view text)
{
    std::u16string out;
    for (const char32_t point : DecodeUtf8(text)) {
        if (point < 0x10000) {
            out.push_back(static_cast<char16_t>(point));
        } else {
            out.push_back(static_cast<char16_t>(0xD800 + ((point - 0x10000) >> 10)));
            out.push_back(static_cast<char16_t>(0xDC00 + ((point - 0x10000) & 0x3FF)));
        }
    }
    return out;
}

std::string Windows1252ToUtf8(std::string_view bytes)
{
    // The UTF-8 form of each byte from 0x80 on, ready to be copied: copying always four bytes is quicker than copying a
    // number of bytes that varies.
    struct Sequence {
        std::array<char, 4> bytes;
        std::size_t length;
    };
    static const std::array<Sequence, 128> sequences = [] {
        // Bytes 0x80 to 0x9F (Unicode's mapping table for CP1252). All other bytes are their own code point.
        constexpr std::array<char16_t, 32> high{0x20AC, 0x81,   0x201A, 0x0192, 0x201E, 0x2026, 0x2020, 0x2021,
                                                0x02C6, 0x2030, 0x0160, 0x2039, 0x0152, 0x8D,   0x017D, 0x8F,
                                                0x90,   0x2018, 0x2019, 0x201C, 0x201D, 0x2022, 0x2013, 0x2014,
                                                0x02DC, 0x2122, 0x0161, 0x203A, 0x0153, 0x9D,   0x017E, 0x0178};
        std::array<Sequence, 128> made{};
        for (std::size_t i = 0; i < made.size(); ++i) {
            Sequence& sequence = made.at(i);
            const char32_t point = i < high.size() ? char32_t{high.at(i)} : static_cast<char32_t>(0x80 + i);
            sequence.length = static_cast<std::size_t>(PutUtf8(sequence.bytes.data(), point) - sequence.bytes.data());
        }
        return made;
    }();
    const auto others = static_cast<std::size_t>(
        std::count_if(bytes.begin(), bytes.end(), [](char c) { return static_cast<unsigned char>(c) >= 0x80; }));
    std::string out(bytes.size() + 2 * others + sizeof(Sequence::bytes), '\0');
    char* to = out.data();
    for (std::size_t at = 0; at < bytes.size();) {
        const std::size_t end = AsciiEnd(bytes, at);
        to = std::copy(bytes.data() + at, bytes.data() + end, to);
        for (at = end; at < bytes.size() && static_cast<unsigned char>(bytes[at]) >= 0x80; ++at) {
            const Sequence& sequence = sequences[static_cast<unsigned char>(bytes[at]) - 0x80u];
            std::memcpy(to, sequence.bytes.data(), sequence.bytes.size());
            to += sequence.length;
        }
    }
    out.resize(static_cast<std::size_t>(to - out.data()));
    return out;
}

bool IsValidUtf8(std::string_view text)
{
    return ValidUtf8End(text) == text.size();
}

std::size_t ValidUtf8End(std::string_view text)
{
    const auto byte = [&](std::size_t at) { return static_cast<unsigned char>(text[at]); };
    for (std::size_t at = 0; at < text.size();) {
        if (byte(at) < 0x80) {
            at = AsciiEnd(text, at);
            continue;
        }
        // Two-byte characters are checked right here, for speed: the letters of many scripts are such.
        const std::size_t begin = at;
        while (at + 1 < text.size() && byte(at) >= 0xC2 && byte(at) <= 0xDF && (byte(at + 1) & 0xC0u) == 0x80u)
            at += 2;
        if (at == begin) {
            const Decoded c = DecodeAt(text, at);
            if (!c.valid)
                return at;
            at += c.bytes;
        }
    }
    return text.size();
}

std::size_t WholeUtf8(std::string_view text)
{
    for (std::size_t back = 1; back <= std::min<std::size_t>(3, text.size()); ++back) {
        const auto byte = static_cast<unsigned char>(text[text.size() - back]);
        if ((byte & 0xC0u) == 0x80u)
            continue;
        const std::size_t bytes = byte >= 0xF0 ? 4 : byte >= 0xE0 ? 3 : byte >= 0xC0 ? 2 : 1;
        return bytes > back ? text.size() - back : text.size();
    }
    return text.size();
}

} // namespace voxmate
