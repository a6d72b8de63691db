// The settings store: the registry itself, so that what other programs change there is seen at once.
#pragma once

#include "base/RegistryFile.h"
#include "platform/SettingsStore.h"

#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <string>

namespace voxmate::windows_platform
{

/// Most users may not write to HKEY_LOCAL_MACHINE. A key there that may not be written stands for the same key of
/// HKEY_CURRENT_USER, where values are set, with those of the machine for what is missing there. Every call answers
/// with the registry's own result codes. Texts are UTF-8 here and UTF-16 in the registry.
class RegistrySettingsStore : public SettingsStore
{
public:
    RegistrySettingsStore();
    ~RegistrySettingsStore() override;
    RegistrySettingsStore(const RegistrySettingsStore&) = delete;
    RegistrySettingsStore& operator=(const RegistrySettingsStore&) = delete;

    /// Supplies values that the registry lacks, texts in UTF-8; `key` is its path with the root's name. With it every
    /// key below a root can be opened for reading.
    std::function<std::optional<RawValue>(const std::string& key, const std::string& name)> Lookup;
    /// Called each time that a value could not be set, unless it is the one that holds anyway.
    std::function<void()> NotSaved;

    std::int32_t RegCreateKeyA(std::uint32_t root, const std::string& subKey, std::uint32_t& key) override;
    std::int32_t RegOpenKeyExA(std::uint32_t root, const std::string& subKey, std::uint32_t options,
                               std::uint32_t access, std::uint32_t& key) override;
    /// The size of a text is that of its bytes in UTF-8.
    std::int32_t RegQueryValueExA(std::uint32_t key, const std::string& name, std::uint32_t& type,
                                  std::span<std::uint8_t> data, std::uint32_t& size) override;
    std::int32_t RegSetValueExA(std::uint32_t key, const std::string& name, std::uint32_t reserved, std::uint32_t type,
                                std::span<const std::uint8_t> data) override;
    std::int32_t RegCloseKey(std::uint32_t key) override;

private:
    struct OpenKey;

    std::map<std::uint32_t, std::unique_ptr<OpenKey>> open_;
    std::uint32_t nextHandle_ = 1;

    OpenKey* Find(std::uint32_t key);
    bool Again(const std::string& path, std::uint32_t access, std::uint32_t& key) const;
    std::int32_t GiveHandle(OpenKey opened, std::uint32_t& key);
};

/// Makes the store for a program whose shared data are in `sharedFolder`. What the registry lacks comes from there: the
/// values of registry.reg, where that exists, and the folder of the characters that ship. The tool that describes the
/// computer for about boxes is looked for if the registry names none.
std::unique_ptr<RegistrySettingsStore> MakeSettingsStore(const std::string& sharedFolder);

} // namespace voxmate::windows_platform
