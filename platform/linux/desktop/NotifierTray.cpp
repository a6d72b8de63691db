#include "qt/system/Desktop.h"

#include <QDBusConnection>
#include <QDBusConnectionInterface>

namespace voxmate::qt
{

// The service of freedesktop.org's StatusNotifierItem, under the name it is used with in practice.
bool TrayIsOfItems()
{
    const QDBusConnectionInterface* bus = QDBusConnection::sessionBus().interface();
    return bus && bus->isServiceRegistered(QStringLiteral("org.kde.StatusNotifierWatcher"));
}

} // namespace voxmate::qt
