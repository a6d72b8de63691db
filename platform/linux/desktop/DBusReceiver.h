// What stands on the session's bus for the program: its methods are those of org.freedesktop.Application.
#pragma once

#include "base/FileName.h"
#include "platform/Activation.h"

#include <QDBusAbstractAdaptor>
#include <QGuiApplication>
#include <QString>
#include <QStringList>
#include <QTimer>
#include <QVariantMap>

namespace voxmate::linux_platform
{

/// Takes the calls from the bus, in the thread of the application object. The caller gets its answer at once; what was
/// asked for is done later.
class Receiver : public QDBusAbstractAdaptor
{
    Q_OBJECT
    Q_CLASSINFO("D-Bus Interface", "org.freedesktop.Application")

public:
    Receiver(QObject* object, Activation& owner) : QDBusAbstractAdaptor(object), owner_(&owner) {}
    void Detach() { owner_ = nullptr; }

public Q_SLOTS:
    void Activate(const QVariantMap& platformData) // NOLINT(readability-identifier-naming)
    {
        Tell({}, platformData);
    }
    void Open(const QStringList& uris, const QVariantMap& platformData)
    {
        Call call;
        for (const QString& uri : uris)
            call.Files.push_back(PathOfAddress(uri.toStdString()));
        Tell(call, platformData);
    }
    void ActivateAction(const QString& name, const QVariantList& /*parameter*/, const QVariantMap& platformData)
    {
        Call call;
        call.Action = name.toStdString();
        Tell(call, platformData);
    }

private:
    Activation* owner_;

    void Tell(const Call& call, const QVariantMap& platformData)
    {
        // Wayland compositors let a window come to the front only with the token that the launcher got from them. The
        // toolkit takes it from there when the window is activated.
        const QByteArray token = platformData.value(QStringLiteral("activation-token")).toString().toUtf8();
        if (!token.isEmpty() && QGuiApplication::platformName().startsWith(QLatin1String("wayland")))
            qputenv("XDG_ACTIVATION_TOKEN", token);
        QTimer::singleShot(0, this, [this, call] {
            if (owner_ && owner_->Called)
                owner_->Called(call);
        });
    }
};

} // namespace voxmate::linux_platform
