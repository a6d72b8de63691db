// What the computer runs on, as the kernel tells it.
#pragma once

#include "platform/Power.h"

#include <string>

namespace voxmate::linux_platform
{

class LinuxPower : public Power
{
public:
    /// `folder` holds one folder for each source of power (the kernel's power-supply class).
    explicit LinuxPower(std::string folder = "/sys/class/power_supply");

    /// A battery of the computer's own, not a mouse's, is being emptied, and no other source is connected.
    bool OnBattery() override;

private:
    std::string folder_;
};

} // namespace voxmate::linux_platform
