#include "platform/windows/settings/RegistrySettingsStore.h"

#include "base/Text.h"
#include "platform/FindProgram.h"
#include "platform/windows/files/File.h"
#include "platform/windows/system/Wide.h"
#include "platform/windows/system/WindowsApi.h"

#include <algorithm>
#include <cstddef>
#include <cstring>
#include <utility>
#include <vector>

namespace voxmate::windows_platform
{

namespace
{

/// More is no file of defaults.
constexpr std::int64_t LongestDefaults = 1 << 20;

constexpr std::uint32_t Machine = FirstRootKey + 2;

bool IsText(std::uint32_t type)
{
    return type == REG_SZ || type == REG_EXPAND_SZ || type == REG_MULTI_SZ;
}

// Handles of the roots are numbers, extended with their sign.
HKEY RootHandle(std::uint32_t root)
{
    // NOLINTNEXTLINE(performance-no-int-to-ptr)
    return reinterpret_cast<HKEY>(static_cast<std::intptr_t>(static_cast<std::int32_t>(root)));
}

std::string PathOf(std::uint32_t root, const std::string& subKey)
{
    return std::string(RootKeys.at(root - FirstRootKey)) + (subKey.empty() ? "" : "\\") + subKey;
}

bool IsRoot(std::uint32_t root)
{
    return root >= FirstRootKey && root - FirstRootKey < RootKeys.size();
}

/// An open key of the registry, closed at the end of its lifetime.
class Handle
{
public:
    Handle() = default;
    Handle(Handle&& other) noexcept : key_(std::exchange(other.key_, nullptr)) {}
    Handle& operator=(Handle&& other) noexcept
    {
        std::swap(key_, other.key_);
        return *this;
    }
    ~Handle()
    {
        if (key_)
            ::RegCloseKey(key_);
    }

    explicit operator bool() const { return key_ != nullptr; }
    HKEY Key() const { return key_; }

    std::int32_t Open(std::uint32_t root, const std::string& subKey, std::uint32_t options, std::uint32_t access)
    {
        return ::RegOpenKeyExW(RootHandle(root), Wide(subKey).c_str(), options, access, &key_);
    }
    std::int32_t Create(std::uint32_t root, const std::string& subKey, std::uint32_t access)
    {
        return ::RegCreateKeyExW(RootHandle(root), Wide(subKey).c_str(), 0, nullptr, 0, access, nullptr, &key_,
                                 nullptr);
    }

private:
    HKEY key_ = nullptr;
};

// Texts in UTF-8.
std::int32_t Read(HKEY key, const std::string& name, RawValue& value)
{
    DWORD type = 0;
    DWORD size = 0;
    std::vector<std::uint8_t> bytes;
    LSTATUS code = ERROR_MORE_DATA;
    // Another program may make it longer between the calls.
    while (code == ERROR_MORE_DATA) {
        size = std::max<DWORD>(size, static_cast<DWORD>(bytes.size()) + 256);
        bytes.resize(size);
        code = ::RegQueryValueExW(key, Wide(name).c_str(), nullptr, &type, bytes.data(), &size);
    }
    if (code != ERROR_SUCCESS)
        return code;
    bytes.resize(size);
    value.type = type;
    if (!IsText(type)) {
        value.data = std::move(bytes);
        return ERROR_SUCCESS;
    }
    std::wstring wide(bytes.size() / sizeof(wchar_t), L'\0');
    std::memcpy(wide.data(), bytes.data(), wide.size() * sizeof(wchar_t));
    const std::string text = Narrow(wide);
    value.data.assign(text.begin(), text.end());
    return ERROR_SUCCESS;
}

} // namespace

/// What a handle of ours stands for: a key of the registry, and for one of the machine's that may not be written also
/// the user's own, either of which may be missing.
struct RegistrySettingsStore::OpenKey {
    std::string path;
    std::uint32_t access = 0;
    Handle own;
    Handle machine;
    bool lacksOwn = false; ///< the user had no such key when it was opened, and may have one by now
};

RegistrySettingsStore::RegistrySettingsStore() = default;
RegistrySettingsStore::~RegistrySettingsStore() = default;

RegistrySettingsStore::OpenKey* RegistrySettingsStore::Find(std::uint32_t key)
{
    const auto found = open_.find(key);
    return found == open_.end() ? nullptr : found->second.get();
}

// Callers leave a key open when a read fails. The same one again gets the same handle. A key that was deleted is opened
// anew.
bool RegistrySettingsStore::Again(const std::string& path, std::uint32_t access, std::uint32_t& key) const
{
    const auto same = std::find_if(open_.begin(), open_.end(), [&](const auto& each) {
        return each.second->path == path && each.second->access == access;
    });
    if (same == open_.end() || same->second->lacksOwn)
        return false;
    for (const HKEY handle : {same->second->own.Key(), same->second->machine.Key()})
        if (handle && ::RegQueryInfoKeyW(handle, nullptr, nullptr, nullptr, nullptr, nullptr, nullptr, nullptr, nullptr,
                                         nullptr, nullptr, nullptr) == ERROR_KEY_DELETED)
            return false;
    key = same->first;
    return true;
}

std::int32_t RegistrySettingsStore::GiveHandle(OpenKey opened, std::uint32_t& key)
{
    key = nextHandle_++;
    open_[key] = std::make_unique<OpenKey>(std::move(opened));
    return ERROR_SUCCESS;
}

std::int32_t RegistrySettingsStore::RegCreateKeyA(std::uint32_t root, const std::string& subKey, std::uint32_t& key)
{
    if (!IsRoot(root))
        return ERROR_INVALID_HANDLE;
    constexpr std::uint32_t access = KEY_READ | KEY_WRITE;
    OpenKey opened{PathOf(root, subKey), access, {}, {}, false};
    std::int32_t code = opened.own.Create(root, subKey, access);
    if (code == ERROR_ACCESS_DENIED && root == Machine) {
        opened.machine.Open(root, subKey, 0, KEY_READ);
        code = opened.own.Create(FirstRootKey + 1, subKey, access);
    }
    return code == ERROR_SUCCESS ? GiveHandle(std::move(opened), key) : code;
}

std::int32_t RegistrySettingsStore::RegOpenKeyExA(std::uint32_t root, const std::string& subKey, std::uint32_t options,
                                                  std::uint32_t access, std::uint32_t& key)
{
    if (!IsRoot(root))
        return ERROR_INVALID_HANDLE;
    OpenKey opened{PathOf(root, subKey), access, {}, {}, false};
    if (Again(opened.path, access, key))
        return ERROR_SUCCESS;
    if (root != Machine) {
        const std::int32_t code = opened.own.Open(root, subKey, options, access);
        return code == ERROR_SUCCESS ? GiveHandle(std::move(opened), key) : code;
    }
    const std::int32_t code = opened.machine.Open(root, subKey, options, access);
    const bool writable = Handle().Open(root, subKey, options, KEY_WRITE) == ERROR_SUCCESS;
    if (code == ERROR_SUCCESS && writable)
        return GiveHandle(std::move(opened), key);
    const bool there = static_cast<bool>(opened.machine) || code == ERROR_ACCESS_DENIED;
    const bool writes = (access & KEY_SET_VALUE) != 0;
    // What is to be written may be the user's first value there.
    const std::int32_t own = writes && there ? opened.own.Create(FirstRootKey + 1, subKey, access)
                                             : opened.own.Open(FirstRootKey + 1, subKey, options, access);
    if (own != ERROR_SUCCESS && !opened.machine && !(Lookup && !writes))
        return there ? code : own;
    opened.lacksOwn = own != ERROR_SUCCESS;
    return GiveHandle(std::move(opened), key);
}

std::int32_t RegistrySettingsStore::RegQueryValueExA(std::uint32_t key, const std::string& name, std::uint32_t& type,
                                                     std::span<std::uint8_t> data, std::uint32_t& size)
{
    const OpenKey* const opened = Find(key);
    if (!opened)
        return ERROR_INVALID_HANDLE;
    if ((opened->access & KEY_QUERY_VALUE) == 0)
        return ERROR_ACCESS_DENIED;
    RawValue value;
    std::int32_t code = ERROR_FILE_NOT_FOUND;
    for (const Handle* handle : {&opened->own, &opened->machine})
        if (code == ERROR_FILE_NOT_FOUND && *handle)
            code = Read(handle->Key(), name, value);
    if (code == ERROR_FILE_NOT_FOUND && Lookup) {
        if (std::optional<RawValue> found = Lookup(opened->path, name)) {
            value = *std::move(found);
            code = ERROR_SUCCESS;
        }
    }
    if (code != ERROR_SUCCESS)
        return code;
    type = value.type;
    const auto room = std::min<std::size_t>(size, data.size());
    size = static_cast<std::uint32_t>(value.data.size());
    if (value.data.size() > room)
        return ERROR_MORE_DATA;
    std::copy(value.data.begin(), value.data.end(), data.begin());
    return ERROR_SUCCESS;
}

std::int32_t RegistrySettingsStore::RegSetValueExA(std::uint32_t key, const std::string& name,
                                                   std::uint32_t /*reserved*/, std::uint32_t type,
                                                   std::span<const std::uint8_t> data)
{
    const OpenKey* const opened = Find(key);
    if (!opened)
        return ERROR_INVALID_HANDLE;
    const HKEY handle = opened->own ? opened->own.Key() : opened->machine.Key();
    LSTATUS code = ERROR_ACCESS_DENIED;
    if (IsText(type)) {
        // A NUL that happens to follow would become part of the value.
        std::wstring wide = Wide({reinterpret_cast<const char*>(data.data()), data.size()});
        const std::size_t length = wide.size();
        wide += L'x';
        code = ::RegSetValueExW(handle, Wide(name).c_str(), 0, type, reinterpret_cast<const BYTE*>(wide.data()),
                                static_cast<DWORD>(length * sizeof(wchar_t)));
    } else {
        code = ::RegSetValueExW(handle, Wide(name).c_str(), 0, type, data.data(), static_cast<DWORD>(data.size()));
    }
    if (code != ERROR_SUCCESS && NotSaved) {
        RawValue holds;
        if (Read(handle, name, holds) != ERROR_SUCCESS || holds != RawValue{type, {data.begin(), data.end()}})
            NotSaved();
    }
    return code;
}

std::int32_t RegistrySettingsStore::RegCloseKey(std::uint32_t key)
{
    return open_.erase(key) == 1 ? ERROR_SUCCESS : ERROR_INVALID_HANDLE;
}

std::unique_ptr<RegistrySettingsStore> MakeSettingsStore(const std::string& sharedFolder)
{
    std::string bytes;
    if (const File file(sharedFolder + "\\registry.reg", Opening::Read); file.Opens() && file.IsRegular()) {
        bytes.resize(static_cast<std::size_t>(std::min(file.Size(), LongestDefaults)));
        bytes.resize(file.Read(0, bytes));
    }
    auto store = std::make_unique<RegistrySettingsStore>();
    store->Lookup = [defaults = RegistryFile::Parse(bytes), characters = sharedFolder + "\\msagent\\chars\\"](
                        const std::string& key, const std::string& name) -> std::optional<RawValue> {
        const auto text = [](const std::string& value) { return RawValue{REG_SZ, {value.begin(), value.end()}}; };
        if (std::optional<RawValue> value = defaults.Value(key, name))
            return value;
        if (EqualNoCase(key, R"(HKEY_LOCAL_MACHINE\SOFTWARE\Voxmate)") && EqualNoCase(name, "CharacterPath"))
            return text(characters);
        if (!EqualNoCase(key, R"(HKEY_LOCAL_MACHINE\SOFTWARE\Microsoft\Shared Tools\MSINFO)") ||
            !EqualNoCase(name, "PATH"))
            return std::nullopt;
        const std::string tool = FindProgram("msinfo32.exe");
        return tool.empty() ? std::nullopt : std::optional(text(tool));
    };
    return store;
}

} // namespace voxmate::windows_platform
