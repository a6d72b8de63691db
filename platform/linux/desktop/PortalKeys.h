// The conversation with the portal GlobalShortcuts (org.freedesktop.portal.GlobalShortcuts, version 1).
#pragma once

#include "platform/GlobalKeys.h"
#include "platform/linux/desktop/X11Keys.h"

#include <QDBusArgument>
#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusObjectPath>
#include <QList>
#include <QObject>
#include <QString>
#include <QVariantMap>

#include <functional>
#include <optional>
#include <vector>

namespace voxmate::linux_platform
{

/// A shortcut as the portal passes it: (sa{sv}).
struct PortalShortcut {
    QString id;
    QVariantMap properties;
};

/// Lives in the thread of the application object. Each Hold closes the session before, which lets its keys go, and
/// begins another. Connecting is the only step that waits for the bus, so it is done on a thread of its own.
class PortalKeys : public QObject
{
    Q_OBJECT

public:
    PortalKeys(GlobalKeys& owner, QObject* parent);
    void Detach()
    {
        owner_ = nullptr;
        x11_.ReleaseAll();
    }

    void Hold(std::vector<GlobalKeys::Key> keys);

private Q_SLOTS:
    void SessionMade(uint response, const QVariantMap& results); // NOLINT(readability-identifier-naming)
    void Bound(uint response, const QVariantMap& results);
    void Activated(const QDBusObjectPath& session, const QString& id, qulonglong time, const QVariantMap& options);

private:
    void Connect();
    void Ask();
    void CreateSession();
    bool EndAsking();
    void HoldByServer();
    void Answer(const GlobalKeys::Key& key, GlobalKeys::Outcome outcome, const QString& trigger);
    void Press(const QString& name);
    /// A call of the portal that answers by a signal to `slot`.
    void Request(QDBusMessage call, QVariantMap options, const char* slot);

    GlobalKeys* owner_;
    std::vector<GlobalKeys::Key> keys_;
    X11Keys x11_;
    std::optional<QDBusConnection> bus_;
    std::optional<bool> hasPortal_; ///< once that is known
    bool connecting_ = false;
    bool asking_ = false; ///< a session is being made, or its keys bound
    bool again_ = false;  ///< other keys were wished for meanwhile
    QString session_;
    unsigned requests_ = 0;
};

} // namespace voxmate::linux_platform

Q_DECLARE_METATYPE(voxmate::linux_platform::PortalShortcut)
