// The settings store of a system without a registry: a text file of the user's, and behind it those of the system.
//
// A value is set in memory and handed to a thread that saves it, so that dragging a bar never waits for the disk. What
// is set while a save runs is saved by the next one, all of it at once.
#pragma once

#include "platform/SettingsStore.h"
#include "platform/linux/settings/RegistryFile.h"

#include <chrono>
#include <condition_variable>
#include <functional>
#include <map>
#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <thread>
#include <vector>

namespace voxmate::linux_platform
{

class FileSettingsStore : public SettingsStore
{
public:
    /// `userFile` is read and written, `systemFiles` are only read, the first that has a value counts. A file that is
    /// missing or cannot be read counts as empty.
    FileSettingsStore(std::string userFile, const std::vector<std::string>& systemFiles);
    /// Waits until all is saved.
    ~FileSettingsStore() override;
    FileSettingsStore(const FileSettingsStore&) = delete;
    FileSettingsStore& operator=(const FileSettingsStore&) = delete;

    /// Waits until everything set so far is in the file, or has failed to get there, but no longer than `patience`: a
    /// folder of the network may never answer. False when it was not done by then.
    bool Flush(std::chrono::milliseconds patience);

    /// Answers a value that no file has, or nothing: look-ups that the desktop itself knows.
    std::function<std::optional<RawValue>(const std::string& key, const std::string& name)> Lookup;

    std::int32_t RegCreateKeyA(std::uint32_t root, const std::string& subKey, std::uint32_t& key) override;
    std::int32_t RegOpenKeyExA(std::uint32_t root, const std::string& subKey, std::uint32_t options,
                               std::uint32_t access, std::uint32_t& key) override;
    std::int32_t RegQueryValueExA(std::uint32_t key, const std::string& name, std::uint32_t& type,
                                  std::span<std::uint8_t> data, std::uint32_t& size) override;
    std::int32_t RegSetValueExA(std::uint32_t key, const std::string& name, std::uint32_t reserved, std::uint32_t type,
                                std::span<const std::uint8_t> data) override;
    std::int32_t RegCloseKey(std::uint32_t key) override;

private:
    struct OpenKey {
        std::string path;
        std::uint32_t access;
    };
    struct Stamp {
        std::int64_t seconds = -1;
        std::int64_t nanoseconds = 0;
        std::uint64_t inode = 0;
        std::int64_t size = -1;
        bool operator==(const Stamp&) const = default;
    };

    std::string userFile_;
    std::vector<RegistryFile> system_;
    std::map<std::uint32_t, OpenKey> open_;
    std::uint32_t nextHandle_ = 1;

    std::mutex mutex_; // guards all below
    std::condition_variable changed_;
    RegistryFile user_;
    Stamp userStamp_;
    bool unreadable_ = false; ///< the user's file is there and cannot be read: it counts as empty and stays as it is
    std::optional<std::string> toSave_;
    bool saving_ = false;
    bool saveFailed_ = false; ///< the last save did not get to the file
    bool quit_ = false;
    std::thread saver_;

    static Stamp StampOf(const std::string& path);
    // With the mutex held:
    void Refresh();
    std::int32_t Change(RegistryFile content);
    bool KeyExists(const std::string& path) const;
    std::int32_t GiveHandle(const std::string& path, std::uint32_t access, std::uint32_t& key);

    void RunSaver();
    void StopSaver();
};

/// The user's settings file and the system's, in the places of the XDG base directory standard:
/// $XDG_CONFIG_HOME/voxmate/registry.reg and voxmate/registry.reg below each of $XDG_CONFIG_DIRS; where they do not
/// name the tool that describes the computer, the desktop's own.
std::unique_ptr<FileSettingsStore> MakeSettingsStore();

} // namespace voxmate::linux_platform
