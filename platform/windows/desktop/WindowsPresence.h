// The time since the last input, as Windows tells it, and that to the program's own windows.
#pragma once

#include "platform/Presence.h"
#include "qt/system/InputWatch.h"

namespace voxmate::windows_platform
{

class WindowsPresence : public Presence
{
public:
    std::optional<std::chrono::milliseconds> Idle() override;
    std::chrono::milliseconds IdleHere() override { return watch_.SinceInput(); }

private:
    qt::InputWatch watch_;
};

} // namespace voxmate::windows_platform
