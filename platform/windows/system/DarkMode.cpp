#include "platform/windows/system/DarkMode.h"

#include "platform/windows/system/WindowsApi.h"

namespace voxmate::windows_platform
{

bool PrefersDark()
{
    DWORD light = 1;
    DWORD size = sizeof light;
    return ::RegGetValueW(HKEY_CURRENT_USER, L"Software\\Microsoft\\Windows\\CurrentVersion\\Themes\\Personalize",
                          L"AppsUseLightTheme", RRF_RT_REG_DWORD, nullptr, &light, &size) == 0 &&
           light == 0;
}

} // namespace voxmate::windows_platform
