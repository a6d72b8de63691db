#include "platform/linux/system/LinuxPower.h"

#include <filesystem>
#include <fstream>
#include <utility>

namespace voxmate::linux_platform
{

namespace
{

/// The first line of a file; empty when there is none.
std::string LineOf(const std::filesystem::path& file)
{
    std::ifstream in(file);
    std::string line;
    std::getline(in, line);
    return line;
}

} // namespace

LinuxPower::LinuxPower(std::string folder) : folder_(std::move(folder)) {}

bool LinuxPower::OnBattery()
{
    bool empties = false;
    std::error_code error;
    for (std::filesystem::directory_iterator source(folder_, error), end; !error && source != end;
         source.increment(error)) {
        if (LineOf(source->path() / "type") != "Battery") {
            if (LineOf(source->path() / "online") == "1")
                return false;
        } else if (LineOf(source->path() / "scope") != "Device") {
            empties = empties || LineOf(source->path() / "status") == "Discharging";
        }
    }
    return empties;
}

} // namespace voxmate::linux_platform
