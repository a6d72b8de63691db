#include "platform/linux/files/Folders.h"

#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <pwd.h>
#include <string_view>
#include <system_error>
#include <unistd.h>

namespace voxmate::linux_platform
{

namespace
{

std::string AbsoluteFromEnvironment(const char* variable)
{
    const char* value = std::getenv(variable); // NOLINT(concurrency-mt-unsafe): read before any thread starts
    return value && value[0] == '/' ? value : std::string{};
}

std::string Below(const char* variable, const char* fallback)
{
    const std::string folder = AbsoluteFromEnvironment(variable);
    return folder.empty() ? HomeFolder() + fallback : folder;
}

} // namespace

std::string HomeFolder()
{
    if (std::string home = AbsoluteFromEnvironment("HOME"); !home.empty())
        return home;
    const passwd* user = ::getpwuid(::getuid());
    return user && user->pw_dir ? user->pw_dir : "/";
}

std::string DataFolder()
{
    return Below("XDG_DATA_HOME", "/.local/share");
}

std::string ConfigFolder()
{
    return Below("XDG_CONFIG_HOME", "/.config");
}

std::string StateFolder()
{
    return Below("XDG_STATE_HOME", "/.local/state");
}

std::vector<std::string> SystemConfigFolders()
{
    std::error_code error;
    const std::filesystem::path program = std::filesystem::read_symlink("/proc/self/exe", error);
    const std::filesystem::path prefix = program.parent_path().parent_path();
    const std::string own = prefix == "/usr" ? "/etc/xdg" : (prefix / "etc" / "xdg").string();
    const char* value = std::getenv("XDG_CONFIG_DIRS"); // NOLINT(concurrency-mt-unsafe)
    std::string_view list = value && value[0] != '\0' ? value : "/etc/xdg";
    std::vector<std::string> folders;
    while (!list.empty()) {
        const std::size_t colon = list.find(':');
        const std::string_view folder = list.substr(0, colon);
        if (folder.starts_with('/'))
            folders.emplace_back(folder);
        list.remove_prefix(colon == std::string_view::npos ? list.size() : colon + 1);
    }
    if (std::find(folders.begin(), folders.end(), own) == folders.end())
        folders.push_back(own);
    return folders;
}

std::string ProgramFolder()
{
    std::string folder = AbsoluteFromEnvironment("VOXMATE_HOME");
    if (folder.empty())
        folder = DataFolder() + "/voxmate";
    std::error_code error;
    std::filesystem::create_directories(folder, error);
    return folder;
}

std::string RunningProgram()
{
    std::error_code error;
    const std::string path = std::filesystem::read_symlink("/proc/self/exe", error).string();
    // What the kernel appends once the file has been replaced.
    constexpr std::string_view deleted = " (deleted)";
    return path.ends_with(deleted) ? path.substr(0, path.size() - deleted.size()) : path;
}

std::string SharedDataFolder()
{
    std::error_code error;
    const std::filesystem::path folder = std::filesystem::path(RunningProgram()).parent_path();
    const std::filesystem::path beside = folder / "share" / "voxmate";
    if (std::filesystem::is_directory(beside, error))
        return beside.string();
    return (folder.parent_path() / "share" / "voxmate").string();
}

void PlaceTips(const std::string& sharedFolder, const std::string& programFolder)
{
    namespace fs = std::filesystem;
    const fs::path target = fs::path(programFolder) / "VoxmateTips.txt";
    std::error_code error;
    if (fs::symlink_status(target, error).type() != fs::file_type::not_found)
        return;
    // The file gets its name only when it is complete.
    const fs::path fresh = fs::path(programFolder) / "VoxmateTips.txt.new";
    if (fs::copy_file(fs::path(sharedFolder) / "VoxmateTips.txt", fresh, fs::copy_options::overwrite_existing, error))
        fs::rename(fresh, target, error);
}

std::vector<std::string> LockFilePaths()
{
    const char* name = "/voxmate.lock";
    std::vector<std::string> paths{ProgramFolder() + name};
    if (const std::string runtime = AbsoluteFromEnvironment("XDG_RUNTIME_DIR"); !runtime.empty())
        paths.push_back(runtime + name);
    return paths;
}

} // namespace voxmate::linux_platform
