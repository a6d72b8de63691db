#include "platform/linux/desktop/X11Presence.h"

#include "platform/linux/desktop/X11Connection.h"

#include <QtGlobal>

#include <xcb/screensaver.h>

namespace voxmate::linux_platform
{

std::optional<std::chrono::milliseconds> X11Presence::Idle()
{
    xcb_connection_t* connection = qt::Connection();
    if (!connection || qEnvironmentVariableIsSet("WAYLAND_DISPLAY"))
        return std::nullopt;
    // A request of an extension that the server does not have would end the connection.
    const xcb_query_extension_reply_t* extension = xcb_get_extension_data(connection, &xcb_screensaver_id);
    if (!extension || extension->present == 0)
        return std::nullopt;
    const qt::Reply<xcb_screensaver_query_info_reply_t> info(xcb_screensaver_query_info_reply(
        connection, xcb_screensaver_query_info(connection, qt::RootWindow(connection)), nullptr));
    if (!info)
        return std::nullopt;
    return std::chrono::milliseconds(info->ms_since_user_input);
}

} // namespace voxmate::linux_platform
