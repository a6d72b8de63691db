#include "modules/Registry.h"

#include "base/Text.h"

#include <algorithm>
#include <utility>

namespace voxmate
{

namespace
{

constexpr std::uint32_t BufferLength = LongestRegString + 1;

} // namespace

// Splits a copy of the path into rootKey_ and the sub-key; true when an operation may go on.
bool Registry::Locate(const std::string& path, std::string& subKey)
{
    subKey = path;
    ParseKeyPath(subKey, rootKey_);
    return BadKeyName == False && rootKey_ != 0;
}

// For reads: a bad name fails with the integer 0, an unknown hive gives the empty variant.
bool Registry::LocateForReading(const std::string& path, std::string& subKey, Variant& result)
{
    if (Locate(path, subKey))
        return true;
    if (BadKeyName != False) {
        RegFailed = True;
        result = std::int32_t{0};
    }
    return false;
}

bool Registry::Succeeded(std::int32_t code)
{
    LastRegResult = code;
    if (code != ERROR_SUCCESS)
        RegFailed = True;
    return code == ERROR_SUCCESS;
}

bool Registry::Open(const std::string& subKey, std::uint32_t access)
{
    return Succeeded(store_.RegOpenKeyExA(rootKey_, subKey, 0, access, openKey_));
}

void Registry::Close()
{
    LastRegResult = store_.RegCloseKey(openKey_);
}

void Registry::WriteValue(const std::string& path, const std::string& name, std::uint32_t type,
                          std::span<const std::uint8_t> data)
{
    CreateRegKey(path);
    std::string subKey;
    if (!Locate(path, subKey) || !Open(subKey, KEY_WRITE))
        return;
    Succeeded(store_.RegSetValueExA(openKey_, name, 0, type, data));
    Close();
}

std::uint32_t GetRootKey(const std::string& name)
{
    const auto found = std::ranges::find(RootKeys, name);
    return found == RootKeys.end() ? 0 : FirstRootKey + static_cast<std::uint32_t>(found - RootKeys.begin());
}

void Registry::ParseKeyPath(std::string& path, std::uint32_t& root)
{
    BadKeyName = False;
    const std::size_t backslash = InStr(path, "\\");
    LastRegResult = static_cast<std::int32_t>(backslash);
    if (!path.starts_with("HKEY_") || path.ends_with('\\')) {
        BadKeyName = True;
        return;
    }
    if (backslash == 0) {
        root = GetRootKey(path);
        path.clear();
    } else {
        root = GetRootKey(path.substr(0, backslash - 1));
        path.erase(0, backslash);
    }
}

void Registry::CreateRegKey(const std::string& path)
{
    std::string subKey;
    if (!Locate(path, subKey))
        return;
    if (Succeeded(store_.RegCreateKeyA(rootKey_, subKey, openKey_)))
        Close();
}

void Registry::WriteRegDword(const std::string& path, const std::string& name, std::int32_t value)
{
    const auto bits = static_cast<std::uint32_t>(value);
    const std::array<std::uint8_t, 4> data{static_cast<std::uint8_t>(bits), static_cast<std::uint8_t>(bits >> 8),
                                           static_cast<std::uint8_t>(bits >> 16),
                                           static_cast<std::uint8_t>(bits >> 24)};
    WriteValue(path, name, REG_DWORD, data);
}

void Registry::WriteRegString(const std::string& path, const std::string& name, const std::string& text)
{
    // The count leaves out the terminating NUL: the data is the text's own characters in the ANSI code page.
    WriteValue(path, name, REG_SZ, {reinterpret_cast<const std::uint8_t*>(text.data()), text.size()});
}

Variant Registry::ReadRegDword(const std::string& path, const std::string& name)
{
    Variant result;
    std::string subKey;
    if (!LocateForReading(path, subKey, result))
        return result;
    if (!Open(subKey, KEY_READ))
        return std::int32_t{0};
    std::uint32_t type = REG_DWORD;
    std::uint32_t size = 4;
    if (!Succeeded(store_.RegQueryValueExA(openKey_, name, type, dwordBuffer_, size)))
        return std::int32_t{0};
    Close();
    const std::uint32_t bits = dwordBuffer_[0] | std::uint32_t{dwordBuffer_[1]} << 8 |
                               std::uint32_t{dwordBuffer_[2]} << 16 | std::uint32_t{dwordBuffer_[3]} << 24;
    return static_cast<std::int32_t>(bits);
}

Variant Registry::ReadRegString(const std::string& path, const std::string& name)
{
    RegFailed = False;
    Variant result;
    std::string subKey;
    if (!LocateForReading(path, subKey, result))
        return result;
    if (!Open(subKey, KEY_READ))
        return std::int32_t{0};
    std::string buffer(BufferLength, ' ');
    std::uint32_t type = REG_SZ;
    std::uint32_t length = BufferLength;
    std::int32_t code = store_.RegQueryValueExA(
        openKey_, name, type, {reinterpret_cast<std::uint8_t*>(buffer.data()), buffer.size()}, length);
    // A text that fills the buffer leaves no room for its terminator and counts as too long.
    if (code == ERROR_SUCCESS && length >= BufferLength)
        code = ERROR_MORE_DATA;
    if (!Succeeded(code))
        return std::int32_t{0};
    buffer = Trim(buffer);
    if (buffer.empty()) {
        RegFailed = True;
        result = std::int32_t{0};
    } else {
        result = buffer.substr(0, buffer.find('\0'));
    }
    Close();
    return result;
}

} // namespace voxmate
