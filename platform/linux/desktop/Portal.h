// Calls to the desktop's portal (org.freedesktop.portal), by which programs ask the desktop for what only it may do.
#pragma once

#include <QDBusConnection>
#include <QDBusMessage>
#include <QLatin1String>
#include <QString>

namespace voxmate::linux_platform
{

inline constexpr QLatin1String PortalService("org.freedesktop.portal.Desktop");
inline constexpr QLatin1String PortalPath("/org/freedesktop/portal/desktop");
/// What the user is asked is an object with this interface; its signal "Response" has the answer.
inline constexpr QLatin1String PortalRequest("org.freedesktop.portal.Request");

/// A call to one of the portal's objects, to be given its arguments.
QDBusMessage PortalCall(const QString& object, QLatin1String interface, QLatin1String method);

/// The path that the request of a call on this connection gets whose option "handle_token" is `token`: it follows from
/// the caller's name, so that the answer can be listened for before the call. Portals before 2018 choose another one
/// and tell it in their reply.
QString PortalRequestPath(const QDBusConnection& bus, const QString& token);

} // namespace voxmate::linux_platform
