#include "qt/system/Desktop.h"

#include <QDBusConnection>
#include <QDBusConnectionInterface>

namespace voxmate::qt
{

// freedesktop.org's StatusNotifierItem, with the name that it has come to be used under.
bool TrayIsOfItems()
{
    const QDBusConnectionInterface* bus = QDBusConnection::sessionBus().interface();
    return bus && bus->isServiceRegistered(QStringLiteral("org.kde.StatusNotifierWatcher"));
}

} // namespace voxmate::qt
