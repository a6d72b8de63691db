// Saves a file so that an interruption at any point leaves either the old file or the new one.
#pragma once

#include <chrono>
#include <condition_variable>
#include <functional>
#include <mutex>
#include <optional>
#include <string>
#include <thread>

namespace voxmate::linux_platform
{

/// Whether a save of this file can succeed; makes its folder if that is missing. A read-only file is meant to stay as
/// it is.
bool CanSave(const std::string& path);
/// Writes the new content to a file beside the old one, syncs it, and renames it in one step. A symbolic link stays:
/// its target is replaced. A new file is readable by its user alone.
bool SaveFile(const std::string& path, const std::string& text);

/// Saves one file on a thread, so that the caller never waits for the disk. What is handed over during a save is saved
/// by the next one; of several contents the last counts.
class FileSaver
{
public:
    /// A save begins when nothing new has been handed over for `rest`.
    explicit FileSaver(std::string path, std::chrono::milliseconds rest = {});
    /// Waits until everything is saved.
    ~FileSaver();
    FileSaver(const FileSaver&) = delete;
    FileSaver& operator=(const FileSaver&) = delete;

    /// Called on the thread after each save, while Working is still true.
    std::function<void(bool good)> Saved;

    void Save(std::string text);
    /// Saves on the calling thread; nothing else may be waiting to be saved.
    bool SaveNow(const std::string& text);
    /// Whether something is being saved or waits for it.
    bool Working();
    /// Whether the last save failed.
    bool Failed();
    /// Begins a waiting save at once, and waits at most `patience` until there is nothing more to save; a network
    /// folder may never answer. False when that was not done in time. Callable from any thread.
    bool Flush(std::chrono::milliseconds patience);

private:
    const std::string path_;
    const std::chrono::milliseconds rest_;

    std::mutex mutex_; // guards everything below
    std::condition_variable changed_;
    std::optional<std::string> toSave_;
    std::chrono::steady_clock::time_point due_;
    bool saving_ = false;
    bool failed_ = false;
    bool quit_ = false;
    std::thread thread_;

    void Run();
};

} // namespace voxmate::linux_platform
