#include "base/FileName.h"

#include "base/Text.h"

#include <algorithm>
#include <charconv>
#include <cstddef>
#include <filesystem>
#include <system_error>

namespace voxmate
{

namespace
{

// Whether paths are as on Windows: with drives and backslashes.
constexpr bool HasDrives = std::filesystem::path::preferred_separator == '\\';

} // namespace

std::string InAnyExtensionCase(const std::string& path)
{
    namespace fs = std::filesystem;
    std::error_code error;
    if (fs::exists(path, error))
        return path;
    const fs::path wanted(path);
    const fs::path folder = wanted.has_parent_path() ? wanted.parent_path() : fs::path(".");
    std::string found;
    for (fs::directory_iterator entry(folder, error), end; !error && entry != end; entry.increment(error)) {
        const fs::path name = entry->path().filename();
        if (name.stem() == wanted.stem() && EqualNoCase(name.extension().string(), wanted.extension().string()) &&
            (found.empty() || name.string() < found))
            found = name.string();
    }
    return found.empty() ? path : (wanted.parent_path() / found).string();
}

bool MatchesPattern(std::string_view name, std::string_view pattern)
{
    if (pattern.empty())
        return name.empty();
    if (pattern.front() == '*')
        return MatchesPattern(name, pattern.substr(1)) || (!name.empty() && MatchesPattern(name.substr(1), pattern));
    if (name.empty())
        return false;
    constexpr std::size_t range = 5; // "[0-9]"
    if (pattern.size() >= range && pattern[0] == '[' && pattern[2] == '-' && pattern[4] == ']')
        return name.front() >= pattern[1] && name.front() <= pattern[3] &&
               MatchesPattern(name.substr(1), pattern.substr(range));
    return (pattern.front() == '?' || LowerAscii(name.substr(0, 1)) == LowerAscii(pattern.substr(0, 1))) &&
           MatchesPattern(name.substr(1), pattern.substr(1));
}

std::string_view NameOfPath(std::string_view path)
{
    return path.substr(path.find_last_of("/\\") + 1);
}

std::string AddressOfPath(const std::string& fullPath)
{
    std::string path = fullPath;
    if (HasDrives)
        std::replace(path.begin(), path.end(), '\\', '/');
    const bool ofNetwork = HasDrives && path.starts_with("//");
    std::string address = ofNetwork ? "file:" : path.starts_with('/') ? "file://" : "file:///";
    for (const char c : path) {
        if (IsLetter(c) || IsDigit(c) || std::string_view("-._~/:").find(c) != std::string_view::npos) {
            address += c;
        } else {
            const auto byte = static_cast<unsigned char>(c);
            address += '%';
            address += "0123456789ABCDEF"[byte >> 4];
            address += "0123456789ABCDEF"[byte & 0xFu];
        }
    }
    return address;
}

std::string PercentDecoded(std::string_view text)
{
    std::string bytes;
    for (std::size_t i = 0; i < text.size(); ++i) {
        unsigned byte = 0;
        if (text[i] == '%' && i + 2 < text.size() &&
            std::from_chars(text.data() + i + 1, text.data() + i + 3, byte, 16).ptr == text.data() + i + 3) {
            bytes += static_cast<char>(byte);
            i += 2;
        } else {
            bytes += text[i];
        }
    }
    return bytes;
}

bool IsAddress(std::string_view text)
{
    const std::size_t colon = text.find(':');
    if (colon == std::string_view::npos || colon < 2 || !IsLetter(text.front()))
        return false;
    const std::string_view scheme = text.substr(0, colon);
    return std::all_of(scheme.begin(), scheme.end(),
                       [](char c) { return IsLetter(c) || IsDigit(c) || c == '+' || c == '-' || c == '.'; }) &&
           text.substr(colon).starts_with(EqualNoCase(scheme, "file") ? ":/" : "://");
}

std::string PathOfAddress(const std::string& address)
{
    constexpr std::string_view file = "file:";
    if (!EqualNoCase(std::string_view(address).substr(0, file.size()), file))
        return address;
    std::string_view rest = std::string_view(address).substr(file.size());
    std::string_view host;
    if (rest.starts_with("//")) {
        rest.remove_prefix(2);
        host = rest.substr(0, rest.find('/'));
        rest.remove_prefix(host.size());
        if (EqualNoCase(host, "localhost"))
            host = {};
    }
    if (!rest.starts_with('/') || (!host.empty() && !HasDrives))
        return address;
    std::string path = PercentDecoded(rest.substr(0, rest.find_first_of("?#")));
    if (HasDrives) {
        if (!host.empty())
            path.insert(0, "//" + std::string(host));
        else if (path.size() > 2 && IsLetter(path[1]) && path[2] == ':')
            path.erase(0, 1);
        std::replace(path.begin(), path.end(), '/', '\\');
    }
    // A path that ends early would be another file's.
    return path.find('\0') == std::string::npos ? path : address;
}

} // namespace voxmate
