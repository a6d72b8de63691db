// The settings store for a system without a registry: a text file of the user's, with system files for the values it
// lacks.
//
// A value is set in memory and handed to a thread that saves it, so that dragging a scroll bar never waits for the
// disk. Values set during a save are saved together by the next one.
#pragma once

#include "base/RegistryFile.h"
#include "platform/SettingsStore.h"
#include "platform/linux/files/FileSaver.h"

#include <chrono>
#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace voxmate::linux_platform
{

class FileSettingsStore : public SettingsStore
{
public:
    /// `userFile` is read and written. `systemFiles` are only read; the first of them that has a value counts. A file
    /// that is missing or cannot be read counts as empty.
    FileSettingsStore(std::string userFile, const std::vector<std::string>& systemFiles);
    /// Waits at most `patience` until everything set so far is in the file or could not be saved; a network folder may
    /// never answer. False when that was not done in time. Callable from any thread, unlike all else here.
    bool Flush(std::chrono::milliseconds patience) { return saver_.Flush(patience); }

    /// Called each time that a value could not be saved, unless it is the one that holds anyway: on the caller's thread
    /// or on the one that saves.
    std::function<void()> NotSaved;
    const std::string& UserFile() const { return userFile_; }

    /// Supplies values that no file has, because the desktop itself knows them; returns nothing for others.
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

    RegistryFile user_;
    Stamp userStamp_;
    bool unreadable_ = false; ///< the user's file exists but cannot be read: it counts as empty and is not changed
    FileSaver saver_;

    static Stamp StampOf(const std::string& path);
    void Refresh();
    /// The answer to a value that cannot be saved; `lost`: it does not hold otherwise.
    std::int32_t Refuse(bool lost) const;
    std::int32_t Change(RegistryFile content, bool lost = true);
    /// The user's value, or the first system file's that has it.
    std::optional<RawValue> FileValue(const std::string& path, const std::string& name) const;
    bool KeyExists(const std::string& path) const;
    std::int32_t GiveHandle(const std::string& path, std::uint32_t access, std::uint32_t& key);
};

/// Makes the store of the user's and the system's settings files in the places of the XDG base directory standard:
/// $XDG_CONFIG_HOME/voxmate/registry.reg, and voxmate/registry.reg in each of $XDG_CONFIG_DIRS. If they do not name the
/// tool that describes the computer, the desktop's own is used.
std::unique_ptr<FileSettingsStore> MakeSettingsStore();

} // namespace voxmate::linux_platform
