#include "platform/windows/system/WindowsPower.h"

#include "platform/windows/system/WindowsApi.h"

namespace voxmate::windows_platform
{

bool WindowsPower::OnBattery()
{
    constexpr BYTE offline = 0; // 1: on mains, 255: not known
    SYSTEM_POWER_STATUS status{};
    return ::GetSystemPowerStatus(&status) && status.ACLineStatus == offline;
}

} // namespace voxmate::windows_platform
