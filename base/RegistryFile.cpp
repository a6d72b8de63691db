#include "base/RegistryFile.h"

#include "base/Text.h"
#include "base/TextEncoding.h"

#include <algorithm>
#include <array>
#include <charconv>

namespace voxmate
{

namespace
{

// Types of values (winnt.h).
constexpr std::uint32_t Text = 1;
constexpr std::uint32_t Binary = 3;
constexpr std::uint32_t Integer = 4;

constexpr std::string_view FileHeader = "REGEDIT4";

std::string_view Strip(std::string_view text)
{
    return Trimmed(text, " \t");
}

bool ParseHex(std::string_view text, std::uint32_t& number)
{
    if (text.empty() || text.size() > 8)
        return false;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number, 16);
    return error == std::errc{} && end == text.data() + text.size();
}

std::string Hex(std::uint32_t number, std::size_t digits)
{
    std::string text(digits, '0');
    for (std::size_t i = digits; i > 0; --i, number >>= 4)
        text[i - 1] = "0123456789abcdef"[number & 0xFu];
    return text;
}

// Removes a quoted text from the front of `rest`; false when its closing quote is missing.
bool TakeQuoted(std::string_view& rest, std::string& out)
{
    if (!rest.starts_with('"'))
        return false;
    out.clear();
    for (std::size_t i = 1; i < rest.size(); ++i) {
        if (rest[i] == '"') {
            rest.remove_prefix(i + 1);
            return true;
        }
        if (rest[i] == '\\' && i + 1 < rest.size())
            ++i;
        out += rest[i];
    }
    return false;
}

bool ParseHexBytes(std::string_view text, std::vector<std::uint8_t>& bytes)
{
    bytes.clear();
    std::string joined;
    for (const char c : text) {
        // A backslash at a line's end only continues the list.
        if (c != ' ' && c != '\t' && c != '\r' && c != '\n' && c != '\\')
            joined += c;
    }
    if (joined.empty())
        return true;
    std::string_view rest = joined;
    while (true) {
        const std::size_t comma = rest.find(',');
        std::uint32_t byte = 0;
        if (!ParseHex(rest.substr(0, comma), byte) || byte > 0xFF)
            return false;
        bytes.push_back(static_cast<std::uint8_t>(byte));
        if (comma == std::string_view::npos)
            return true;
        rest.remove_prefix(comma + 1);
    }
}

bool ParseValue(std::string_view text, RawValue& value)
{
    constexpr std::string_view dword = "dword:";
    constexpr std::string_view hex = "hex";
    if (text.starts_with(dword)) {
        std::uint32_t number = 0;
        if (!ParseHex(text.substr(dword.size()), number))
            return false;
        value.type = Integer;
        value.data.clear();
        for (unsigned shift = 0; shift < 32; shift += 8)
            value.data.push_back(static_cast<std::uint8_t>(number >> shift));
        return true;
    }
    if (text.starts_with('"')) {
        std::string quoted;
        if (!TakeQuoted(text, quoted) || !Strip(text).empty())
            return false;
        // "" is how a person writes an empty text that is present: a lone NUL.
        if (quoted.empty())
            quoted.push_back('\0');
        value.type = Text;
        value.data.assign(quoted.begin(), quoted.end());
        return true;
    }
    if (text.starts_with(hex)) {
        text.remove_prefix(hex.size());
        value.type = Binary;
        if (text.starts_with('(')) {
            const std::size_t close = text.find(')');
            if (close == std::string_view::npos || !ParseHex(text.substr(1, close - 1), value.type))
                return false;
            text.remove_prefix(close + 1);
        }
        return text.starts_with(':') && ParseHexBytes(text.substr(1), value.data);
    }
    return false;
}

std::string Quoted(std::string_view text)
{
    std::string out = "\"";
    for (const char c : text) {
        if (c == '"' || c == '\\')
            out += '\\';
        out += c;
    }
    return out + '"';
}

// Whether the text can be written in quotes: it is not empty and has only printable characters, since "" means a lone
// NUL.
bool QuotesCanSay(std::string_view text)
{
    return !text.empty() && IsValidUtf8(text) && std::none_of(text.begin(), text.end(), [](char c) {
        return static_cast<unsigned char>(c) < 0x20 || c == 0x7F;
    });
}

std::string FormatValue(const RawValue& value)
{
    if (value.type == Integer && value.data.size() == 4) {
        std::uint32_t number = 0;
        for (std::size_t i = 4; i > 0; --i)
            number = number << 8 | value.data[i - 1];
        return "dword:" + Hex(number, 8);
    }
    if (value.type == Text) {
        const std::string_view text(reinterpret_cast<const char*>(value.data.data()), value.data.size());
        if (text == std::string_view("\0", 1))
            return "\"\"";
        if (QuotesCanSay(text))
            return Quoted(text);
    }
    std::array<char, 9> type{};
    const auto typeEnd = std::to_chars(type.data(), type.data() + type.size(), value.type, 16).ptr;
    std::string out = "hex(" + std::string(type.data(), typeEnd) + "):";
    for (std::size_t i = 0; i < value.data.size(); ++i) {
        if (i > 0)
            out += ',';
        out += Hex(value.data[i], 2);
    }
    return out;
}

// Decodes what the user's editor may have saved: UTF-16 with its mark, UTF-8, or otherwise Windows-1252.
std::string Decoded(std::string_view bytes)
{
    if (bytes.starts_with("\xFF\xFE"))
        return DecodeUtf16(bytes.substr(2, bytes.size() / 2 * 2 - 2), true);
    return IsValidUtf8(bytes) ? std::string(bytes) : Windows1252ToUtf8(bytes);
}

} // namespace

RegistryFile RegistryFile::Parse(std::string_view bytes)
{
    RegistryFile file;
    const std::string decoded = Decoded(bytes);
    std::string_view text = decoded;
    constexpr std::string_view byteOrderMark = "\xEF\xBB\xBF";
    if (text.starts_with(byteOrderMark))
        text.remove_prefix(byteOrderMark.size());
    while (!text.empty()) {
        const auto takeLine = [&text, &file] {
            const std::size_t end = text.find('\n');
            std::string_view line = text.substr(0, end);
            text.remove_prefix(end == std::string_view::npos ? text.size() : end + 1);
            if (line.ends_with('\r')) {
                file.crLf_ = true;
                line.remove_suffix(1);
            }
            return std::string(line);
        };
        Line line;
        line.text = takeLine();
        std::string_view content = Strip(line.text);
        if (content.starts_with('[') && content.ends_with(']')) {
            line.kind = Line::Kind::Key;
            line.name = content.substr(1, content.size() - 2);
        } else if (content.starts_with('"')) {
            std::string_view rest = content;
            std::string name;
            if (TakeQuoted(rest, name) && (rest = Strip(rest)).starts_with('=')) {
                rest = Strip(rest.substr(1));
                if (rest.starts_with("hex")) {
                    while (Strip(line.text).ends_with('\\') && !text.empty())
                        line.text += "\n" + takeLine();
                    rest = Strip(line.text);
                    rest = rest.substr(rest.find("hex", name.size()));
                }
                if (ParseValue(rest, line.value)) {
                    line.kind = Line::Kind::Value;
                    line.name = name;
                }
            }
        }
        file.lines_.push_back(std::move(line));
    }
    return file;
}

std::string RegistryFile::Text() const
{
    const std::string_view end = crLf_ ? "\r\n" : "\n";
    std::string out;
    for (const Line& line : lines_) {
        for (const char c : line.text) {
            if (c == '\n')
                out += end;
            else
                out += c;
        }
        out += end;
    }
    return out;
}

std::optional<std::size_t> RegistryFile::FindKey(const std::string& key) const
{
    // A key may occur several times; new values go to the last one.
    for (std::size_t i = lines_.size(); i > 0; --i) {
        if (lines_[i - 1].kind == Line::Kind::Key && EqualNoCase(lines_[i - 1].name, key))
            return i - 1;
    }
    return std::nullopt;
}

std::optional<std::size_t> RegistryFile::FindValue(const std::string& key, const std::string& name) const
{
    std::optional<std::size_t> found;
    bool inside = false;
    for (std::size_t i = 0; i < lines_.size(); ++i) {
        const Line& line = lines_[i];
        if (line.kind == Line::Kind::Key)
            inside = EqualNoCase(line.name, key);
        else if (inside && line.kind == Line::Kind::Value && EqualNoCase(line.name, name))
            found = i;
    }
    return found;
}

bool RegistryFile::HasKey(const std::string& key) const
{
    return FindKey(key).has_value();
}

void RegistryFile::AddKey(const std::string& key)
{
    if (HasKey(key))
        return;
    if (lines_.empty())
        lines_.push_back({Line::Kind::Other, std::string(FileHeader), {}, {}});
    if (!Strip(lines_.back().text).empty())
        lines_.push_back({});
    lines_.push_back({Line::Kind::Key, "[" + key + "]", key, {}});
}

std::optional<RawValue> RegistryFile::Value(const std::string& key, const std::string& name) const
{
    const auto at = FindValue(key, name);
    if (!at)
        return std::nullopt;
    return lines_[*at].value;
}

void RegistryFile::SetValue(const std::string& key, const std::string& name, const RawValue& value)
{
    Line line{Line::Kind::Value, Quoted(name) + "=" + FormatValue(value), name, value};
    if (const auto at = FindValue(key, name)) {
        lines_[*at] = std::move(line);
        return;
    }
    AddKey(key);
    std::size_t end = *FindKey(key) + 1;
    while (end < lines_.size() && lines_[end].kind != Line::Kind::Key)
        ++end;
    // After the key's last line, before the blank lines and comments that belong to the next key.
    if (end < lines_.size()) {
        while (end > 0 && (Strip(lines_[end - 1].text).empty() || Strip(lines_[end - 1].text).starts_with(';')) &&
               lines_[end - 1].kind == Line::Kind::Other)
            --end;
    } else {
        while (end > 0 && Strip(lines_[end - 1].text).empty())
            --end;
    }
    lines_.insert(lines_.begin() + static_cast<std::ptrdiff_t>(end), std::move(line));
}

} // namespace voxmate
