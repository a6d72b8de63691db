#include "platform/linux/desktop/X11Presence.h"

#include "platform/linux/desktop/X11Connection.h"

#include <QCoreApplication>
#include <QEvent>
#include <QtGlobal>

#include <xcb/screensaver.h>

namespace voxmate::linux_platform
{

namespace
{

/// Sees all events of the program on their way.
class InputWatch : public QObject
{
public:
    explicit InputWatch(std::chrono::steady_clock::time_point& last) : last_(last)
    {
        QCoreApplication::instance()->installEventFilter(this);
    }

    bool eventFilter(QObject* /*receiver*/, QEvent* event) override
    {
        switch (event->type()) {
        case QEvent::KeyPress:
        case QEvent::MouseButtonPress:
        case QEvent::MouseMove:
        case QEvent::Wheel:
        case QEvent::TouchBegin:
            last_ = std::chrono::steady_clock::now();
            break;
        default:
            break;
        }
        return false;
    }

private:
    std::chrono::steady_clock::time_point& last_;
};

} // namespace

X11Presence::X11Presence() : watch_(std::make_unique<InputWatch>(last_)) {}

X11Presence::~X11Presence() = default;

std::chrono::milliseconds X11Presence::IdleHere()
{
    return std::chrono::duration_cast<std::chrono::milliseconds>(std::chrono::steady_clock::now() - last_);
}

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
