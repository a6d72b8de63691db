// A connection to the session's bus that nobody waits for.
#pragma once

#include <QDBusConnection>
#include <QObject>
#include <QString>

#include <functional>

namespace voxmate::linux_platform
{

/// Connects to the session's bus on a thread of its own, because that step waits for the bus, and hands the connection,
/// which may have failed, to `use` in the application object's thread, unless `context` is gone by then. Connections of
/// the same name are one.
void ConnectLater(const QString& name, QObject* context, std::function<void(const QDBusConnection& bus)> use);

/// The notification server's name on the bus, the path of its object and its interface.
inline constexpr const char* NotificationService = "org.freedesktop.Notifications";
inline constexpr const char* NotificationPath = "/org/freedesktop/Notifications";
/// The connection of all that has to do with notifications.
inline constexpr const char* NotificationBus = "voxmate-notifications";

} // namespace voxmate::linux_platform
