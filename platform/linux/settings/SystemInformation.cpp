#include "platform/linux/settings/SystemInformation.h"

#include "base/Text.h"
#include "platform/FindProgram.h"
#include "platform/SettingsStore.h"

#include <array>

namespace voxmate::linux_platform
{

namespace
{

struct Tool {
    const char* program;
    const char* arguments;
};

// The general tools first, because they show most, then those that come with a desktop.
constexpr std::array<Tool, 4> tools{{
    {"hardinfo2", ""},
    {"hardinfo", ""},
    {"kinfocenter", ""},
    {"gnome-control-center", " info-overview"},
}};

} // namespace

std::string SystemInformationCommand()
{
    for (const Tool& tool : tools) {
        const std::string path = FindProgram(tool.program);
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
    return RawValue{REG_SZ, {command.begin(), command.end()}};
}

} // namespace voxmate::linux_platform
