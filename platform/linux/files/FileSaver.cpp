#include "platform/linux/files/FileSaver.h"

#include "platform/linux/files/LinuxRandomFile.h"

#include <exception>
#include <fcntl.h>
#include <filesystem>
#include <sys/stat.h>
#include <unistd.h>
#include <utility>

namespace voxmate::linux_platform
{

namespace
{

// The file that a save writes; it may be behind a symbolic link, since the user may keep it elsewhere.
std::string SaveTarget(const std::string& path)
{
    std::error_code error;
    const std::filesystem::path resolved = std::filesystem::canonical(path, error);
    return error ? path : resolved.string();
}

bool Allows(const std::string& path, int access)
{
    return ::faccessat(AT_FDCWD, path.c_str(), access, AT_EACCESS) == 0;
}

} // namespace

bool CanSave(const std::string& path)
{
    const std::string target = SaveTarget(path);
    const std::string folder = std::filesystem::path(target).parent_path().string();
    std::error_code error;
    std::filesystem::create_directories(folder, error);
    const bool fileAllows =
        !Allows(target, F_OK) || (Allows(target, W_OK) && std::filesystem::is_regular_file(target, error));
    return fileAllows && Allows(folder, W_OK | X_OK);
}

bool SaveFile(const std::string& path, const std::string& text)
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

namespace
{

// Running out of memory counts as a failed save.
bool Saves(const std::string& path, const std::string& text)
{
    try {
        return CanSave(path) && SaveFile(path, text);
    } catch (const std::exception&) {
        return false;
    }
}

} // namespace

FileSaver::FileSaver(std::string path, std::chrono::milliseconds rest) : path_(std::move(path)), rest_(rest) {}

FileSaver::~FileSaver()
{
    {
        const std::lock_guard lock(mutex_);
        quit_ = true;
        changed_.notify_all();
    }
    if (thread_.joinable())
        thread_.join();
}

void FileSaver::Save(std::string text)
{
    const std::lock_guard lock(mutex_);
    toSave_ = std::move(text);
    due_ = std::chrono::steady_clock::now() + rest_;
    if (!thread_.joinable())
        thread_ = std::thread([this] { Run(); });
    changed_.notify_all();
}

bool FileSaver::SaveNow(const std::string& text)
{
    {
        const std::lock_guard lock(mutex_);
        saving_ = true;
    }
    const bool good = Saves(path_, text);
    const std::lock_guard lock(mutex_);
    saving_ = false;
    failed_ = !good;
    return good;
}

bool FileSaver::Working()
{
    const std::lock_guard lock(mutex_);
    return toSave_ || saving_;
}

bool FileSaver::Failed()
{
    const std::lock_guard lock(mutex_);
    return failed_;
}

void FileSaver::Run()
{
    std::unique_lock lock(mutex_);
    for (;;) {
        changed_.wait(lock, [this] { return toSave_ || quit_; });
        while (toSave_ && !quit_ && std::chrono::steady_clock::now() < due_)
            changed_.wait_until(lock, due_);
        if (!toSave_)
            return;
        const std::string text = std::move(*toSave_);
        toSave_.reset();
        saving_ = true;
        lock.unlock();
        const bool good = Saves(path_, text);
        if (Saved)
            Saved(good);
        lock.lock();
        saving_ = false;
        failed_ = !good;
        changed_.notify_all();
    }
}

// Polls instead of waiting for changed_, because the caller may be ending a process whose threads hang.
bool FileSaver::Flush(std::chrono::milliseconds patience)
{
    constexpr std::chrono::milliseconds pause{1};
    const auto last = std::chrono::steady_clock::now() + patience;
    for (;;) {
        if (const std::unique_lock lock(mutex_, std::try_to_lock); lock) {
            if (!toSave_ && !saving_)
                return true;
            due_ = {};
            changed_.notify_all();
        }
        if (std::chrono::steady_clock::now() >= last)
            return false;
        std::this_thread::sleep_for(pause);
    }
}

} // namespace voxmate::linux_platform
