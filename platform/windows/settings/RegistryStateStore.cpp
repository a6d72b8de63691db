#include "platform/windows/settings/RegistryStateStore.h"

#include "platform/windows/system/Wide.h"
#include "platform/windows/system/WindowsApi.h"

namespace voxmate::windows_platform
{

RegistryStateStore::RegistryStateStore(std::string key) : key_(Wide(key)) {}

std::string RegistryStateStore::Get(const std::string& name)
{
    if (const auto found = unsaved_.find(name); found != unsaved_.end())
        return found->second;
    std::wstring text;
    DWORD size = 0;
    LSTATUS code = ERROR_MORE_DATA;
    // Another copy of the program may make it longer between the calls.
    while (code == ERROR_MORE_DATA) {
        text.resize(text.size() + size / sizeof(wchar_t) + 128);
        size = static_cast<DWORD>(text.size() * sizeof(wchar_t));
        code = ::RegGetValueW(HKEY_CURRENT_USER, key_.c_str(), Wide(name).c_str(), RRF_RT_REG_SZ, nullptr, text.data(),
                              &size);
    }
    if (code != ERROR_SUCCESS || size < sizeof(wchar_t))
        return "";
    text.resize(size / sizeof(wchar_t) - 1);
    return Narrow(text);
}

void RegistryStateStore::Set(const std::string& name, const std::string& value)
{
    const std::wstring text = Wide(value);
    if (::RegSetKeyValueW(HKEY_CURRENT_USER, key_.c_str(), Wide(name).c_str(), REG_SZ, text.c_str(),
                          static_cast<DWORD>((text.size() + 1) * sizeof(wchar_t))) == ERROR_SUCCESS)
        unsaved_.erase(name);
    else
        unsaved_[name] = value;
}

} // namespace voxmate::windows_platform
