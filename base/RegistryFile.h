// The settings hive as a text file in registry-export form: parsing, raw values, and writing that keeps order, comments
// and lines that were not understood.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace voxmate
{

struct RawValue {
    std::uint32_t type = 0; ///< 1 text, 4 32-bit integer, or any other type kept as it is
    std::vector<std::uint8_t> data;
    bool operator==(const RawValue&) const = default;
};

/// The contents of one file. Key paths include the hive's name ("HKEY_LOCAL_MACHINE\SOFTWARE\Voxmate"). Keys and value
/// names are compared without regard to case. If a value occurs twice, the later one counts.
///
/// Value forms: "Name"=dword:0000002a; "Name"="text" (with \\ and \" escaped), which is the text's own bytes and, for
/// "", a lone NUL; "Name"=hex(N):41,42 for any type and bytes, where N is the type in hexadecimal and a backslash at a
/// line's end continues a long list. Lines of any other form are kept but have no meaning.
class RegistryFile
{
public:
    /// Reads UTF-8, UTF-16 with its mark, or otherwise Windows-1252; the file is written as UTF-8.
    static RegistryFile Parse(std::string_view bytes);
    std::string Text() const;

    bool HasKey(const std::string& key) const;
    void AddKey(const std::string& key);
    std::optional<RawValue> Value(const std::string& key, const std::string& name) const;
    void SetValue(const std::string& key, const std::string& name, const RawValue& value);

private:
    struct Line {
        enum class Kind { Other, Key, Value } kind = Kind::Other;
        std::string text; ///< without its line end; a continued value keeps its inner line ends
        std::string name; ///< the key's path or the value's name
        RawValue value;
    };
    std::vector<Line> lines_;
    bool crLf_ = false;

    std::optional<std::size_t> FindKey(const std::string& key) const;
    std::optional<std::size_t> FindValue(const std::string& key, const std::string& name) const;
};

} // namespace voxmate
