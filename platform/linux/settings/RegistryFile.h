// The settings hive as a text file in registry-export form: parsing, raw values, and writing with order, comments and
// lines that were not understood kept.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace voxmate::linux_platform
{

struct RawValue {
    std::uint32_t type = 0; ///< 1 text, 4 32-bit integer, or any other type kept as it is
    std::vector<std::uint8_t> data;
    bool operator==(const RawValue&) const = default;
};

/// One file's content. Key paths are written with their hive's name ("HKEY_LOCAL_MACHINE\SOFTWARE\Voxmate"); keys and
/// value names are compared without regard to case. Where a value stands twice the later one counts.
///
/// Value forms: "Name"=dword:0000002a; "Name"="text" (\\ and \" escaped), which is the text's own bytes and, for "", a
/// lone NUL; "Name"=hex(N):41,42 for any type and bytes, N the type in hexadecimal, long ones continued by a backslash
/// at the line's end. Lines of any other form are kept and mean nothing.
class RegistryFile
{
public:
    /// UTF-8, UTF-16 with its mark, or else Windows-1252; it is written as UTF-8.
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

} // namespace voxmate::linux_platform
