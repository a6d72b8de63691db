// A small wrapper over the registry calls. Keys are full paths that begin with a hive name. Nothing here shows an
// error: RegFailed tells that the last operation failed, LastRegResult what the last call answered.
#pragma once

#include "base/Checked.h"
#include "platform/SettingsStore.h"

#include <array>
#include <cstddef>
#include <cstdint>
#include <span>
#include <string>
#include <variant>

namespace voxmate
{

/// Empty, a 32-bit integer or a text.
using Variant = std::variant<std::monostate, std::int32_t, std::string>;

/// Handle of the predefined root key with this exact name, 0 for any other name (winreg.h).
std::uint32_t GetRootKey(const std::string& name);

/// Bytes of the longest text that ReadRegString gives back.
inline constexpr std::size_t LongestRegString = 254;

class Registry
{
public:
    explicit Registry(SettingsStore& store) : store_(store) {}

    Boolean RegFailed = False;
    Boolean BadKeyName = False;
    std::int32_t LastRegResult = 0;

    /// Splits a path into root key and sub-key (left in `path`); sets BadKeyName when it does not begin with "HKEY_" or
    /// ends in a backslash, and LastRegResult to the position of the first backslash.
    void ParseKeyPath(std::string& path, std::uint32_t& root);
    /// Makes the key if it is missing; sets RegFailed on failure.
    void CreateRegKey(const std::string& path);
    /// The value as a signed 32-bit integer; integer 0 and RegFailed on failure; empty when the hive name is unknown.
    Variant ReadRegDword(const std::string& path, const std::string& name);
    void WriteRegDword(const std::string& path, const std::string& name, std::int32_t value);
    /// The value's text without blanks round it and up to its first NUL; integer 0 and RegFailed on failure, which
    /// longer data and data of only blanks are, too; empty when the hive name is unknown.
    Variant ReadRegString(const std::string& path, const std::string& name);
    void WriteRegString(const std::string& path, const std::string& name, const std::string& text);

private:
    SettingsStore& store_;
    std::uint32_t rootKey_ = 0;
    std::uint32_t openKey_ = 0;
    std::array<std::uint8_t, 4> dwordBuffer_{};

    bool Locate(const std::string& path, std::string& subKey);
    bool LocateForReading(const std::string& path, std::string& subKey, Variant& result);
    bool Succeeded(std::int32_t code);
    bool Open(const std::string& subKey, std::uint32_t access);
    void Close();
    void WriteValue(const std::string& path, const std::string& name, std::uint32_t type,
                    std::span<const std::uint8_t> data);
};

} // namespace voxmate
