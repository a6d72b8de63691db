#include "platform/linux/word/WebArchive.h"

#include "base/Text.h"

#include <algorithm>
#include <array>
#include <cstdint>
#include <map>
#include <utility>

namespace voxmate::linux_platform
{

namespace
{

constexpr int DeepestNesting = 8;

// Removes a line from the front of the text and returns it without its end.
std::string_view TakeLine(std::string_view& text)
{
    const std::size_t end = std::min(text.find('\n'), text.size());
    std::string_view line = text.substr(0, end);
    text.remove_prefix(std::min(end + 1, text.size()));
    if (line.ends_with('\r'))
        line.remove_suffix(1);
    return line;
}

std::string_view Stripped(std::string_view text)
{
    return Trimmed(text, " \t\r\n");
}

// A part of a message: the header fields that describe its content, by name in capitals, and its body.
struct Part {
    std::map<std::string, std::string> fields;
    std::string_view body;

    explicit Part(std::string_view text)
    {
        std::string* last = nullptr;
        while (!text.empty()) {
            const std::string_view rest = text;
            const std::string_view line = TakeLine(text);
            if (Stripped(line).empty())
                break;
            if (line.front() == ' ' || line.front() == '\t') {
                if (last)
                    *last += line;
                continue;
            }
            const std::size_t colon = line.find(':');
            if (colon == std::string_view::npos || line.substr(0, colon).find(' ') != std::string_view::npos) {
                text = rest;
                break;
            }
            const std::string name = UCase(line.substr(0, colon));
            const bool wanted = name == "MIME-VERSION" || name == "CONTENT-TYPE" || name == "CONTENT-TRANSFER-ENCODING";
            last = wanted ? &fields[name] : nullptr;
            if (last)
                *last = Stripped(line.substr(colon + 1));
        }
        body = text;
    }

    std::string Field(const char* name) const
    {
        const auto found = fields.find(name);
        return found == fields.end() ? "" : found->second;
    }

    // The content type in capitals, without its parameters.
    std::string Kind() const
    {
        const std::string value = Field("CONTENT-TYPE");
        return UCase(Stripped(std::string_view(value).substr(0, value.find(';'))));
    }

    // A parameter of the content type; `name` is in capitals.
    std::string Parameter(std::string_view name) const
    {
        const std::string value = Field("CONTENT-TYPE");
        std::string_view rest = value;
        while (!rest.empty()) {
            rest.remove_prefix(std::min(rest.find(';'), rest.size() - 1) + 1);
            const std::size_t equals = rest.find('=');
            if (equals == std::string_view::npos)
                break;
            const bool wanted = UCase(Stripped(rest.substr(0, equals))) == name;
            rest = Stripped(rest.substr(equals + 1));
            const bool quoted = rest.starts_with('"');
            const std::string_view found =
                quoted ? rest.substr(1, rest.find('"', 1) - 1) : rest.substr(0, rest.find(';'));
            if (wanted)
                return std::string(Stripped(found));
            rest.remove_prefix(found.size());
        }
        return {};
    }
};

int HexDigit(char c)
{
    constexpr std::string_view digits = "0123456789ABCDEF";
    const std::size_t at = digits.find(c >= 'a' && c <= 'f' ? static_cast<char>(c - 'a' + 'A') : c);
    return at == std::string_view::npos ? -1 : static_cast<int>(at);
}

// Decodes quoted-printable (RFC 2045, 6.7). An invalid code is kept as it is.
std::string FromQuotedPrintable(std::string_view text)
{
    std::string bytes;
    while (!text.empty()) {
        const std::size_t equals = text.find('=');
        bytes += text.substr(0, equals);
        text.remove_prefix(std::min(equals, text.size()));
        if (text.empty())
            break;
        // An equals sign at a line's end, with blanks after it at most, is a soft line break.
        const std::size_t next = std::min(text.find_first_not_of(" \t\r", 1), text.size());
        if (next == text.size() || text[next] == '\n') {
            text.remove_prefix(std::min(next + 1, text.size()));
            continue;
        }
        const int high = text.size() > 2 ? HexDigit(text[1]) : -1;
        const int low = text.size() > 2 ? HexDigit(text[2]) : -1;
        const bool coded = high >= 0 && low >= 0;
        bytes += coded ? static_cast<char>(high * 16 + low) : '=';
        text.remove_prefix(coded ? 3 : 1);
    }
    return bytes;
}

// Decodes base64 (RFC 2045, 6.8). Characters outside its alphabet are ignored.
std::string FromBase64(std::string_view text)
{
    constexpr std::string_view digits = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";
    std::string bytes;
    std::uint32_t bits = 0;
    int count = 0;
    for (const char c : text) {
        const std::size_t digit = digits.find(c);
        if (digit == std::string_view::npos)
            continue;
        bits = bits << 6 | static_cast<std::uint32_t>(digit);
        count += 6;
        if (count >= 8) {
            count -= 8;
            bytes += static_cast<char>(bits >> count & 0xFF);
        }
    }
    return bytes;
}

std::optional<WebPage> Find(std::string_view text, std::string_view kind, int depth)
{
    const Part part(text);
    const std::string own = part.Kind();
    if (own == kind) {
        const std::string coding = UCase(part.Field("CONTENT-TRANSFER-ENCODING"));
        std::string charset = part.Parameter("CHARSET");
        if (coding == "QUOTED-PRINTABLE")
            return WebPage{FromQuotedPrintable(part.body), std::move(charset)};
        if (coding == "BASE64")
            return WebPage{FromBase64(part.body), std::move(charset)};
        return WebPage{std::string(part.body), std::move(charset)};
    }
    if (!own.starts_with("MULTIPART/") || depth == DeepestNesting)
        return std::nullopt;
    const std::string mark = "--" + part.Parameter("BOUNDARY");
    // Each part is between two lines that begin with the mark.
    std::string_view rest = part.body;
    std::optional<std::size_t> begin;
    while (!rest.empty()) {
        const auto lineAt = static_cast<std::size_t>(rest.data() - part.body.data());
        const std::string_view line = TakeLine(rest);
        const bool atMark = line.starts_with(mark) && mark.size() > 2;
        if (!atMark && !rest.empty())
            continue;
        if (begin) {
            const std::size_t end = atMark ? lineAt : part.body.size();
            if (auto found = Find(part.body.substr(*begin, end - *begin), kind, depth + 1))
                return found;
        }
        begin = static_cast<std::size_t>(rest.data() - part.body.data());
    }
    return std::nullopt;
}

} // namespace

bool IsWebArchive(std::string_view beginning)
{
    const Part part(beginning);
    return part.fields.contains("MIME-VERSION") && part.fields.contains("CONTENT-TYPE");
}

std::optional<WebPage> PageOfWebArchive(std::string_view archive)
{
    std::optional<WebPage> page = Find(archive, "TEXT/HTML", 0);
    return page ? page : Find(archive, "TEXT/PLAIN", 0);
}

} // namespace voxmate::linux_platform
