// The settings store: one hive of keys with typed raw values, reached by five calls with Win32 names and result codes.
#pragma once

#include <array>
#include <cstdint>
#include <span>
#include <string>
#include <string_view>

namespace voxmate
{

// Result codes (winerror.h) and value types (winnt.h) with their documented numbers.
inline constexpr std::int32_t ERROR_SUCCESS = 0;
inline constexpr std::int32_t ERROR_FILE_NOT_FOUND = 2;
inline constexpr std::int32_t ERROR_ACCESS_DENIED = 5;
inline constexpr std::int32_t ERROR_INVALID_HANDLE = 6;
inline constexpr std::int32_t ERROR_MORE_DATA = 234;
inline constexpr std::uint32_t REG_SZ = 1;
inline constexpr std::uint32_t REG_BINARY = 3;
inline constexpr std::uint32_t REG_DWORD = 4;
inline constexpr std::uint32_t KEY_READ = 0x20019;
inline constexpr std::uint32_t KEY_WRITE = 0x20006;
/// The predefined roots in the order of their handles, which begin with FirstRootKey (winreg.h).
inline constexpr std::uint32_t FirstRootKey = 0x80000000;
inline constexpr std::array<std::string_view, 7> RootKeys{
    "HKEY_CLASSES_ROOT",     "HKEY_CURRENT_USER",   "HKEY_LOCAL_MACHINE", "HKEY_USERS",
    "HKEY_PERFORMANCE_DATA", "HKEY_CURRENT_CONFIG", "HKEY_DYN_DATA"};

class SettingsStore
{
public:
    virtual ~SettingsStore() = default;

    /// Opens a sub-key of a predefined root and creates it if it is missing; `key` receives the handle.
    virtual std::int32_t RegCreateKeyA(std::uint32_t root, const std::string& subKey, std::uint32_t& key) = 0;
    /// Opens an existing sub-key with the given access (KEY_READ or KEY_WRITE).
    virtual std::int32_t RegOpenKeyExA(std::uint32_t root, const std::string& subKey, std::uint32_t options,
                                       std::uint32_t access, std::uint32_t& key) = 0;
    /// Copies a value's raw bytes into `data`; `type` and `size` receive its type and its size in bytes. When the data
    /// does not fit, it returns 234 with the needed size in `size` and leaves the buffer unchanged.
    virtual std::int32_t RegQueryValueExA(std::uint32_t key, const std::string& name, std::uint32_t& type,
                                          std::span<std::uint8_t> data, std::uint32_t& size) = 0;
    /// Sets a value to these raw bytes.
    virtual std::int32_t RegSetValueExA(std::uint32_t key, const std::string& name, std::uint32_t reserved,
                                        std::uint32_t type, std::span<const std::uint8_t> data) = 0;
    virtual std::int32_t RegCloseKey(std::uint32_t key) = 0;
};

} // namespace voxmate
