// What the computer runs on, as Windows tells it.
#pragma once

#include "platform/Power.h"

namespace voxmate::windows_platform
{

class WindowsPower : public Power
{
public:
    bool OnBattery() override;
};

} // namespace voxmate::windows_platform
