#include "platform/linux/SystemInformation.h"

#include "base/Text.h"

#include <array>
#include <cstdlib>
#include <filesystem>
#include <string_view>
#include <unistd.h>

namespace voxmate::linux_platform
{

namespace
{

struct Tool {
    const char* program;
    const char* arguments;
};

// The general ones first, as they say most; then those of a desktop, which are there with that desktop.
constexpr std::array<Tool, 4> tools{{
    {"hardinfo2", ""},
    {"hardinfo", ""},
    {"kinfocenter", ""},
    {"gnome-control-center", " info-overview"},
}};

std::string FindProgram(std::string_view folders, const std::string& program)
{
    while (!folders.empty()) {
        const std::size_t colon = folders.find(':');
        std::string path = std::string(folders.substr(0, colon)) + "/" + program;
        folders.remove_prefix(colon == std::string_view::npos ? folders.size() : colon + 1);
        std::error_code error;
        if (path.starts_with('/') && std::filesystem::is_regular_file(path, error) && ::access(path.c_str(), X_OK) == 0)
            return path;
    }
    return {};
}

} // namespace

std::string SystemInformationCommand()
{
    const char* folders = std::getenv("PATH"); // NOLINT(concurrency-mt-unsafe): nobody changes it
    for (const Tool& tool : tools) {
        const std::string path = FindProgram(folders ? folders : "", tool.program);
        if (path.empty())
            continue;
        const bool blanks = path.find(' ') != std::string::npos;
        return (blanks ? '"' + path + '"' : path) + tool.arguments;
    }
    return {};
}

std::optional<RawValue> SystemInformationValue(const std::string& key, const std::string& name)
{
    if (!EqualNoCase(key, R"(HKEY_LOCAL_MACHINE\SOFTWARE\Microsoft\Shared Tools\MSINFO)") || !EqualNoCase(name, "PATH"))
        return std::nullopt;
    const std::string command = SystemInformationCommand();
    if (command.empty())
        return std::nullopt;
    return RawValue{1, {command.begin(), command.end()}};
}

} // namespace voxmate::linux_platform
