#include "platform/linux/desktop/LaterBus.h"

#include <QCoreApplication>
#include <QMetaObject>
#include <QPointer>

#include <thread>
#include <utility>

namespace voxmate::linux_platform
{

void ConnectLater(const QString& name, QObject* context, std::function<void(const QDBusConnection& bus)> use)
{
    std::thread([name, object = QPointer<QObject>(context), use = std::move(use)] {
        const QDBusConnection bus = QDBusConnection::connectToBus(QDBusConnection::SessionBus, name);
        QMetaObject::invokeMethod(QCoreApplication::instance(), [object, bus, use] {
            if (object)
                use(bus);
        });
    }).detach();
}

} // namespace voxmate::linux_platform
