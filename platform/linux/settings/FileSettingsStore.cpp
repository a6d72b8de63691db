#include "platform/linux/settings/FileSettingsStore.h"

#include "platform/linux/files/Folders.h"
#include "platform/linux/files/WholeFile.h"
#include "platform/linux/settings/SystemInformation.h"

#include <algorithm>
#include <sys/stat.h>
#include <unistd.h>
#include <utility>

namespace voxmate::linux_platform
{

namespace
{

// Access rights of a value write and a value read (winnt.h: KEY_SET_VALUE, KEY_QUERY_VALUE).
constexpr std::uint32_t CanSetValue = 0x0002;
constexpr std::uint32_t CanQueryValue = 0x0001;

// Our own handles stay below the predefined roots.
std::string KeyPath(std::uint32_t root, const std::string& subKey)
{
    if (root < FirstRootKey || root - FirstRootKey >= RootKeys.size())
        return {};
    const std::string name(RootKeys.at(root - FirstRootKey));
    return subKey.empty() ? name : name + "\\" + subKey;
}

} // namespace

FileSettingsStore::FileSettingsStore(std::string userFile, const std::vector<std::string>& systemFiles)
    : userFile_(std::move(userFile)), saver_(userFile_)
{
    // Read by Refresh only while nothing is being saved. After a failure the file is read again as it is.
    saver_.Saved = [this](bool good) {
        userStamp_ = good ? StampOf(userFile_) : Stamp{-2, 0, 0, 0};
        if (!good)
            Refuse(true);
    };
    for (const std::string& path : systemFiles)
        system_.push_back(RegistryFile::Parse(ReadWholeFile(path).value_or("")));
}

FileSettingsStore::Stamp FileSettingsStore::StampOf(const std::string& path)
{
    struct stat info {
    };
    if (::stat(path.c_str(), &info) != 0)
        return {};
    return {info.st_mtim.tv_sec, info.st_mtim.tv_nsec, info.st_ino, info.st_size};
}

// The user may edit the file while the program runs; the next save must not lose those changes.
void FileSettingsStore::Refresh()
{
    if (saver_.Working())
        return;
    const Stamp stamp = StampOf(userFile_);
    if (stamp == userStamp_)
        return;
    user_ = RegistryFile::Parse(ReadWholeFile(userFile_).value_or(""));
    unreadable_ = stamp != Stamp{} && ::access(userFile_.c_str(), R_OK) != 0;
    userStamp_ = stamp;
}

bool FileSettingsStore::KeyExists(const std::string& path) const
{
    return user_.HasKey(path) ||
           std::any_of(system_.begin(), system_.end(), [&path](const RegistryFile& file) { return file.HasKey(path); });
}

std::int32_t FileSettingsStore::Refuse(bool lost) const
{
    if (lost && NotSaved)
        NotSaved();
    return ERROR_ACCESS_DENIED;
}

std::int32_t FileSettingsStore::Change(RegistryFile content, bool lost)
{
    if (unreadable_ || !CanSave(userFile_))
        return Refuse(lost);
    // After a failed save this one is done at once, so that the caller learns the result.
    if (saver_.Failed() && !saver_.Working()) {
        if (!saver_.SaveNow(content.Text()))
            return Refuse(lost);
        user_ = std::move(content);
        userStamp_ = StampOf(userFile_);
        return ERROR_SUCCESS;
    }
    user_ = std::move(content);
    saver_.Save(user_.Text());
    return ERROR_SUCCESS;
}

std::int32_t FileSettingsStore::GiveHandle(const std::string& path, std::uint32_t access, std::uint32_t& key)
{
    // Callers leave a key open when a read fails. Each handle is small, and a path that is already open gets the same
    // one again.
    for (const auto& [handle, opened] : open_) {
        if (opened.path == path && opened.access == access) {
            key = handle;
            return ERROR_SUCCESS;
        }
    }
    key = nextHandle_++;
    open_[key] = {path, access};
    return ERROR_SUCCESS;
}

std::int32_t FileSettingsStore::RegCreateKeyA(std::uint32_t root, const std::string& subKey, std::uint32_t& key)
{
    const std::string path = KeyPath(root, subKey);
    if (path.empty())
        return ERROR_INVALID_HANDLE;
    Refresh();
    if (!KeyExists(path)) {
        RegistryFile changed = user_;
        changed.AddKey(path);
        if (const std::int32_t code = Change(std::move(changed)); code != ERROR_SUCCESS)
            return code;
    }
    return GiveHandle(path, KEY_READ | KEY_WRITE, key);
}

std::int32_t FileSettingsStore::RegOpenKeyExA(std::uint32_t root, const std::string& subKey, std::uint32_t /*options*/,
                                              std::uint32_t access, std::uint32_t& key)
{
    const std::string path = KeyPath(root, subKey);
    if (path.empty())
        return ERROR_INVALID_HANDLE;
    Refresh();
    if (!KeyExists(path) && !Lookup)
        return ERROR_FILE_NOT_FOUND;
    return GiveHandle(path, access, key);
}

std::int32_t FileSettingsStore::RegQueryValueExA(std::uint32_t key, const std::string& name, std::uint32_t& type,
                                                 std::span<std::uint8_t> data, std::uint32_t& size)
{
    const auto opened = open_.find(key);
    if (opened == open_.end())
        return ERROR_INVALID_HANDLE;
    if ((opened->second.access & CanQueryValue) == 0)
        return ERROR_ACCESS_DENIED;
    Refresh();
    const std::string& path = opened->second.path;
    std::optional<RawValue> value = FileValue(path, name);
    if (!value && Lookup)
        value = Lookup(path, name);
    if (!value)
        return ERROR_FILE_NOT_FOUND;
    type = value->type;
    const auto room = std::min<std::size_t>(size, data.size());
    size = static_cast<std::uint32_t>(value->data.size());
    if (value->data.size() > room)
        return ERROR_MORE_DATA;
    std::copy(value->data.begin(), value->data.end(), data.begin());
    return ERROR_SUCCESS;
}

std::int32_t FileSettingsStore::RegSetValueExA(std::uint32_t key, const std::string& name, std::uint32_t /*reserved*/,
                                               std::uint32_t type, std::span<const std::uint8_t> data)
{
    const auto opened = open_.find(key);
    if (opened == open_.end())
        return ERROR_INVALID_HANDLE;
    if ((opened->second.access & CanSetValue) == 0)
        return ERROR_ACCESS_DENIED;
    Refresh();
    const RawValue value{type, {data.begin(), data.end()}};
    if (!saver_.Failed() && user_.Value(opened->second.path, name) == value)
        return ERROR_SUCCESS;
    const bool holds = FileValue(opened->second.path, name) == value;
    RegistryFile changed = user_;
    changed.SetValue(opened->second.path, name, value);
    return Change(std::move(changed), !holds);
}

std::optional<RawValue> FileSettingsStore::FileValue(const std::string& path, const std::string& name) const
{
    std::optional<RawValue> value = user_.Value(path, name);
    for (std::size_t i = 0; !value && i < system_.size(); ++i)
        value = system_[i].Value(path, name);
    return value;
}

std::int32_t FileSettingsStore::RegCloseKey(std::uint32_t key)
{
    return open_.erase(key) == 1 ? ERROR_SUCCESS : ERROR_INVALID_HANDLE;
}

std::unique_ptr<FileSettingsStore> MakeSettingsStore()
{
    std::vector<std::string> systemFiles;
    for (const std::string& folder : SystemConfigFolders())
        systemFiles.push_back(folder + "/voxmate/registry.reg");
    auto store = std::make_unique<FileSettingsStore>(ConfigFolder() + "/voxmate/registry.reg", systemFiles);
    store->Lookup = SystemInformationValue;
    return store;
}

} // namespace voxmate::linux_platform
