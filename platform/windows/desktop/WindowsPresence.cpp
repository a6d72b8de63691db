#include "platform/windows/desktop/WindowsPresence.h"

#include "platform/windows/system/WindowsApi.h"

namespace voxmate::windows_platform
{

std::optional<std::chrono::milliseconds> WindowsPresence::Idle()
{
    LASTINPUTINFO last{sizeof last, 0};
    if (!::GetLastInputInfo(&last))
        return std::nullopt;
    // Both count to 2^32 and begin again.
    return std::chrono::milliseconds(static_cast<std::uint32_t>(::GetTickCount() - last.dwTime));
}

} // namespace voxmate::windows_platform
