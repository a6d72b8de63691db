#include "platform/linux/settings/FileSettingsStore.h"

#include "platform/linux/files/Folders.h"
#include "platform/linux/files/LinuxRandomFile.h"
#include "platform/linux/files/WholeFile.h"
#include "platform/linux/settings/SystemInformation.h"

#include <algorithm>
#include <fcntl.h>
#include <filesystem>
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

// The file that a save writes; it may be behind a symbolic link, since the user may keep it elsewhere.
std::string SaveTarget(const std::string& path)
{
    std::error_code error;
    const std::filesystem::path resolved = std::filesystem::canonical(path, error);
    return error ? path : resolved.string();
}

// Whether a save can succeed. A read-only file is meant to stay as it is.
bool CanSave(const std::string& path)
{
    const std::string target = SaveTarget(path);
    const std::string folder = std::filesystem::path(target).parent_path().string();
    std::error_code error;
    std::filesystem::create_directories(folder, error);
    const bool fileAllows = ::access(target.c_str(), F_OK) != 0 ||
                            (::access(target.c_str(), W_OK) == 0 && std::filesystem::is_regular_file(target, error));
    return fileAllows && ::access(folder.c_str(), W_OK | X_OK) == 0;
}

// Writes the new content to a file beside the old one, syncs it, and renames it in one step, so that an interruption at
// any point leaves either the old file or the new one.
bool Save(const std::string& path, const std::string& text)
{
    const std::string target = SaveTarget(path);
    const std::string fresh = target + ".new";
    struct stat old {
    };
    const mode_t mode = ::stat(target.c_str(), &old) == 0 ? old.st_mode & 0777u : 0600u;
    ::unlink(fresh.c_str());
    Descriptor file(::open(fresh.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC | O_NOFOLLOW, mode));
    if (file.Number() < 0)
        return false;
    if (file.Write(0, text) && ::fdatasync(file.Number()) == 0 && file.Close() &&
        ::rename(fresh.c_str(), target.c_str()) == 0)
        return true;
    ::unlink(fresh.c_str());
    return false;
}

} // namespace

FileSettingsStore::FileSettingsStore(std::string userFile, const std::vector<std::string>& systemFiles)
    : userFile_(std::move(userFile))
{
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

FileSettingsStore::~FileSettingsStore()
{
    {
        const std::lock_guard lock(mutex_);
        quit_ = true;
        changed_.notify_all();
    }
    if (saver_.joinable())
        saver_.join();
}

// The user may edit the file while the program runs; the next save must not lose those changes.
void FileSettingsStore::Refresh()
{
    if (toSave_ || saving_)
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

std::int32_t FileSettingsStore::Change(RegistryFile content)
{
    if (unreadable_ || !CanSave(userFile_))
        return ERROR_ACCESS_DENIED;
    // After a failed save this one is done at once, so that the caller learns the result.
    if (saveFailed_ && !toSave_ && !saving_) {
        saveFailed_ = !Save(userFile_, content.Text());
        if (saveFailed_)
            return ERROR_ACCESS_DENIED;
        user_ = std::move(content);
        userStamp_ = StampOf(userFile_);
        return ERROR_SUCCESS;
    }
    user_ = std::move(content);
    toSave_ = user_.Text();
    if (!saver_.joinable())
        saver_ = std::thread([this] { RunSaver(); });
    changed_.notify_all();
    return ERROR_SUCCESS;
}

void FileSettingsStore::RunSaver()
{
    std::unique_lock lock(mutex_);
    for (;;) {
        changed_.wait(lock, [this] { return toSave_ || quit_; });
        if (!toSave_)
            return;
        const std::string text = std::move(*toSave_);
        toSave_.reset();
        saving_ = true;
        lock.unlock();
        bool good = false;
        Stamp stamp{};
        try {
            stamp = (good = Save(userFile_, text)) ? StampOf(userFile_) : Stamp{};
        } catch (const std::exception&) {
            // Running out of memory counts as a failed save: the caller that sets the next value is told.
            good = false;
        }
        lock.lock();
        saving_ = false;
        saveFailed_ = !good;
        // After a failure the file is read again as it is.
        userStamp_ = good ? stamp : Stamp{-2, 0, 0, 0};
        changed_.notify_all();
    }
}

// Polls instead of waiting for changed_ or the mutex, because the thread that holds the mutex may be waiting for the
// same disk.
bool FileSettingsStore::Flush(std::chrono::milliseconds patience)
{
    constexpr std::chrono::milliseconds pause{1};
    const auto last = std::chrono::steady_clock::now() + patience;
    for (;;) {
        if (const std::unique_lock lock(mutex_, std::try_to_lock); lock && !toSave_ && !saving_)
            return true;
        if (std::chrono::steady_clock::now() >= last)
            return false;
        std::this_thread::sleep_for(pause);
    }
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
    const std::lock_guard lock(mutex_);
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
    const std::lock_guard lock(mutex_);
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
    const std::lock_guard lock(mutex_);
    Refresh();
    const std::string& path = opened->second.path;
    std::optional<RawValue> value = user_.Value(path, name);
    for (std::size_t i = 0; !value && i < system_.size(); ++i)
        value = system_[i].Value(path, name);
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
    const std::lock_guard lock(mutex_);
    Refresh();
    const RawValue value{type, {data.begin(), data.end()}};
    if (!saveFailed_ && user_.Value(opened->second.path, name) == value)
        return ERROR_SUCCESS;
    RegistryFile changed = user_;
    changed.SetValue(opened->second.path, name, value);
    return Change(std::move(changed));
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
