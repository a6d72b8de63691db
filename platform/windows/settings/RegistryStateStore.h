// What the program remembers, in a key of the user's in the registry.
#pragma once

#include "platform/StateStore.h"

#include <map>
#include <string>

namespace voxmate::windows_platform
{

class RegistryStateStore : public StateStore
{
public:
    /// `key` is a path below HKEY_CURRENT_USER.
    explicit RegistryStateStore(std::string key = "Software\\Voxmate\\State");

    std::string Get(const std::string& name) override;
    void Set(const std::string& name, const std::string& value) override;

private:
    std::wstring key_;
    std::map<std::string, std::string> unsaved_; ///< what could not be written
};

} // namespace voxmate::windows_platform
