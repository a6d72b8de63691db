#include "platform/windows/desktop/WindowsQuiet.h"

#include "platform/windows/system/WindowsApi.h"

#include <QMetaObject>

#include <shellapi.h>

namespace voxmate::windows_platform
{

void WindowsQuiet::Ask()
{
    QUERY_USER_NOTIFICATION_STATE state = QUNS_ACCEPTS_NOTIFICATIONS;
    const bool quiet = ::SHQueryUserNotificationState(&state) == S_OK &&
                       (state == QUNS_BUSY || state == QUNS_RUNNING_D3D_FULL_SCREEN ||
                        state == QUNS_PRESENTATION_MODE || state == QUNS_QUIET_TIME);
    QMetaObject::invokeMethod(
        &context_,
        [this, quiet] {
            if (Answered)
                Answered(quiet);
        },
        Qt::QueuedConnection);
}

} // namespace voxmate::windows_platform
