#include "platform/linux/files/LinuxFileSystem.h"

#include "base/FileName.h"
#include "base/Text.h"
#include "platform/linux/files/CodePage.h"
#include "platform/linux/files/LinuxTextStream.h"

#include <algorithm>
#include <filesystem>
#include <fnmatch.h>
#include <system_error>

namespace voxmate::linux_platform
{

std::string LinuxFileSystem::DecodeText(std::string_view bytes)
{
    return linux_platform::DecodeText(bytes);
}

bool LinuxFileSystem::FolderExists(const std::string& path)
{
    std::error_code error;
    return std::filesystem::is_directory(path, error);
}

bool LinuxFileSystem::FileExists(const std::string& path)
{
    std::error_code error;
    const auto status = std::filesystem::status(InAnyExtensionCase(path), error);
    return std::filesystem::exists(status) && !std::filesystem::is_directory(status);
}

std::string LinuxFileSystem::GetBaseName(const std::string& path)
{
    return std::filesystem::path(path).stem().string();
}

std::string LinuxFileSystem::GetExtensionName(const std::string& path)
{
    // Not the standard library's extension, which treats ".txt" as a name without an extension.
    const std::string name = path.substr(path.rfind('/') + 1);
    const std::size_t dot = name.rfind('.');
    return dot == std::string::npos ? "" : name.substr(dot + 1);
}

std::unique_ptr<TextStream> LinuxFileSystem::OpenTextFile(const std::string& path)
{
    return std::make_unique<LinuxTextStream>(InAnyExtensionCase(path));
}

std::vector<std::string> LinuxFileSystem::ListFiles(const std::string& folder, const std::string& pattern)
{
    std::vector<std::string> names;
    std::error_code error;
    for (std::filesystem::directory_iterator entry(folder, error), end; !error && entry != end;
         entry.increment(error)) {
        std::string name = entry->path().filename().string();
        if (::fnmatch(pattern.c_str(), name.c_str(), FNM_PERIOD | FNM_CASEFOLD) == 0 &&
            FileExists(entry->path().string()))
            names.push_back(std::move(name));
    }
    std::sort(names.begin(), names.end(), [](const std::string& a, const std::string& b) {
        const std::string upperA = UCase(a);
        const std::string upperB = UCase(b);
        return upperA != upperB ? upperA < upperB : a < b;
    });
    return names;
}

} // namespace voxmate::linux_platform
