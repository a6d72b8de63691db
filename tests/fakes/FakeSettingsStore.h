// The settings store's fake: keys and values in memory, and result codes that a test chooses.
#pragma once

#include "platform/SettingsStore.h"
#include "tests/fakes/Log.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <map>
#include <optional>
#include <span>
#include <string>

namespace voxmate::fakes
{

class FakeSettingsStore : public SettingsStore
{
public:
    explicit FakeSettingsStore(Log& log) : log_(log) {}

    struct Value {
        std::uint32_t type;
        std::string data;
        bool operator==(const Value&) const = default;
    };
    /// The keys that exist and their values.
    std::map<std::string, std::map<std::string, Value>> keys;
    bool logCalls = false;
    std::map<std::string, std::int32_t> failures; ///< call name -> result code
    int openHandles = 0;

    void SetDword(const std::string& name, std::uint32_t number)
    {
        std::string data;
        for (unsigned shift = 0; shift < 32; shift += 8)
            data.push_back(static_cast<char>(number >> shift));
        keys[settingsSubKey][name] = {REG_DWORD, data};
    }
    void SetText(const std::string& name, const std::string& data) { keys[settingsSubKey][name] = {REG_SZ, data}; }
    bool Has(const std::string& name) { return keys[settingsSubKey].contains(name); }
    Value At(const std::string& name) { return keys[settingsSubKey].at(name); }
    std::int64_t Dword(const std::string& name)
    {
        const Value value = At(name);
        if (value.type != REG_DWORD || value.data.size() != 4)
            return -1;
        std::uint32_t number = 0;
        for (std::size_t i = 4; i > 0; --i)
            number = number << 8 | static_cast<std::uint8_t>(value.data[i - 1]);
        return number;
    }

    std::int32_t RegCreateKeyA(std::uint32_t root, const std::string& subKey, std::uint32_t& key) override
    {
        Record("RegCreateKeyA " + Hex(root) + " " + subKey);
        if (const auto code = Failure("RegCreateKeyA"))
            return *code;
        keys[subKey];
        return Give(subKey, key);
    }
    std::int32_t RegOpenKeyExA(std::uint32_t root, const std::string& subKey, std::uint32_t options,
                               std::uint32_t access, std::uint32_t& key) override
    {
        Record("RegOpenKeyExA " + Hex(root) + " " + subKey + " " + std::to_string(options) + " " + Hex(access));
        if (const auto code = Failure("RegOpenKeyExA"))
            return *code;
        return keys.contains(subKey) ? Give(subKey, key) : ERROR_FILE_NOT_FOUND;
    }
    std::int32_t RegQueryValueExA(std::uint32_t key, const std::string& name, std::uint32_t& type,
                                  std::span<std::uint8_t> data, std::uint32_t& size) override
    {
        Record("RegQueryValueExA " + name + " " + std::to_string(type) + " " + std::to_string(size));
        if (const auto code = Failure("RegQueryValueExA"))
            return *code;
        const auto& values = keys[handles_.at(key)];
        const auto found = values.find(name);
        if (found == values.end())
            return ERROR_FILE_NOT_FOUND;
        const std::string& stored = found->second.data;
        type = found->second.type;
        const auto room = std::min<std::size_t>(size, data.size());
        size = static_cast<std::uint32_t>(stored.size());
        if (stored.size() > room)
            return ERROR_MORE_DATA;
        std::copy(stored.begin(), stored.end(), data.begin());
        return ERROR_SUCCESS;
    }
    std::int32_t RegSetValueExA(std::uint32_t key, const std::string& name, std::uint32_t reserved, std::uint32_t type,
                                std::span<const std::uint8_t> data) override
    {
        Record("RegSetValueExA " + name + " " + std::to_string(reserved) + " " + std::to_string(type) + " " +
               std::to_string(data.size()) + " bytes");
        if (const auto code = Failure("RegSetValueExA"))
            return *code;
        keys[handles_.at(key)][name] = {type, std::string(data.begin(), data.end())};
        return ERROR_SUCCESS;
    }
    std::int32_t RegCloseKey(std::uint32_t key) override
    {
        Record("RegCloseKey");
        openHandles -= static_cast<int>(handles_.erase(key));
        return ERROR_SUCCESS;
    }

private:
    static constexpr const char* settingsSubKey = "SOFTWARE\\Voxmate";
    Log& log_;
    std::map<std::uint32_t, std::string> handles_;
    std::uint32_t next_ = 1;

    void Record(const std::string& call)
    {
        if (logCalls)
            log_.push_back(call);
    }
    std::optional<std::int32_t> Failure(const std::string& call)
    {
        const auto found = failures.find(call);
        if (found == failures.end())
            return std::nullopt;
        return found->second;
    }
    std::int32_t Give(const std::string& subKey, std::uint32_t& key)
    {
        key = next_++;
        handles_[key] = subKey;
        ++openHandles;
        return ERROR_SUCCESS;
    }
};

} // namespace voxmate::fakes
