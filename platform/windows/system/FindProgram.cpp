#include "platform/FindProgram.h"

#include "platform/windows/system/Wide.h"
#include "platform/windows/system/WindowsApi.h"

#include <algorithm>
#include <cstddef>
#include <cstdlib>
#include <filesystem>
#include <system_error>

namespace voxmate
{

std::string FindProgram(const std::string& name, std::string_view folders)
{
    while (!folders.empty()) {
        const std::size_t end = std::min(folders.find(';'), folders.size());
        const std::filesystem::path folder(windows_platform::Wide(folders.substr(0, end)));
        folders.remove_prefix(std::min(end + 1, folders.size()));
        std::filesystem::path file = folder / windows_platform::Wide(name);
        if (!file.has_extension())
            file += L".exe";
        std::error_code error;
        if (folder.is_absolute() && std::filesystem::is_regular_file(file, error))
            return windows_platform::Narrow(file.native());
    }
    return {};
}

std::string FindProgram(const std::string& name)
{
    const wchar_t* folders = ::_wgetenv(L"PATH"); // NOLINT(concurrency-mt-unsafe): nobody changes it
    return FindProgram(name, folders ? windows_platform::Narrow(folders) : "");
}

} // namespace voxmate
