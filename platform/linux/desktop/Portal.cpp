#include "platform/linux/desktop/Portal.h"

namespace voxmate::linux_platform
{

QDBusMessage PortalCall(const QString& object, QLatin1String interface, QLatin1String method)
{
    return QDBusMessage::createMethodCall(PortalService, object, interface, method);
}

QString PortalRequestPath(const QDBusConnection& bus, const QString& token)
{
    return QStringLiteral("%1/request/%2/%3").arg(PortalPath, bus.baseService().mid(1).replace(u'.', u'_'), token);
}

} // namespace voxmate::linux_platform
