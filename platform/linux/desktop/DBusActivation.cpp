#include "platform/linux/desktop/DBusActivation.h"

#include "base/FileName.h"
#include "platform/linux/desktop/DBusReceiver.h"

#include <QCoreApplication>
#include <QDBusConnection>
#include <QDBusMessage>
#include <QGuiApplication>
#include <QPointer>
#include <QVariantMap>

#include <algorithm>
#include <future>
#include <memory>
#include <thread>
#include <utility>

namespace voxmate::linux_platform
{

namespace
{

constexpr const char* Interface = "org.freedesktop.Application";
/// How long a call that nobody waits for may take to be answered.
constexpr std::chrono::seconds CallPatience{20};

/// Its own connection, because a bus that does not answer would hold up all who use the common one.
QDBusConnection Connect(const char* purpose)
{
    return QDBusConnection::connectToBus(QDBusConnection::SessionBus, QLatin1String(purpose));
}

QDBusMessage MessageOf(const Call& call)
{
    const auto message = [](const char* method) {
        return QDBusMessage::createMethodCall(QLatin1String(DBusActivation::Name), QLatin1String(DBusActivation::Path),
                                              QLatin1String(Interface), QLatin1String(method));
    };
    QVariantMap platformData;
    for (const auto& [variable, key] : {std::pair{"DESKTOP_STARTUP_ID", "desktop-startup-id"},
                                        std::pair{"XDG_ACTIVATION_TOKEN", "activation-token"}}) {
        if (const QByteArray value = qgetenv(variable); !value.isEmpty())
            platformData[QLatin1String(key)] = QString::fromUtf8(value);
    }
    if (!call.Action.empty()) {
        QDBusMessage action = message("ActivateAction");
        action << QString::fromStdString(call.Action) << QVariantList() << platformData;
        return action;
    }
    if (call.Files.empty()) {
        QDBusMessage activate = message("Activate");
        activate << platformData;
        return activate;
    }
    QStringList uris;
    for (const std::string& file : call.Files)
        uris << QString::fromStdString(file.starts_with('/') ? AddressOfPath(file) : file);
    QDBusMessage open = message("Open");
    open << uris << platformData;
    return open;
}

} // namespace

DBusActivation::DBusActivation() : object_(new QObject(QCoreApplication::instance()))
{
    new Receiver(object_, *this);
}

DBusActivation::~DBusActivation()
{
    object_->findChild<Receiver*>()->Detach();
}

void DBusActivation::Listen()
{
    // Connecting waits for the bus. The object is on the bus before its name is, so that no call misses it.
    std::thread([object = object_] {
        QDBusConnection bus = Connect("voxmate-called");
        if (bus.isConnected() && bus.registerObject(QLatin1String(Path), object, QDBusConnection::ExportAdaptors))
            bus.registerService(QLatin1String(Name));
    }).detach();
}

bool DBusActivation::PassOn(const Call& call, std::chrono::milliseconds patience)
{
    auto answer = std::make_shared<std::promise<bool>>();
    std::future<bool> taken = answer->get_future();
    QDBusMessage message = MessageOf(call);
    // Without a program that listens, the bus would start one.
    message.setAutoStartService(false);
    const auto most = std::max(patience, std::chrono::milliseconds(CallPatience));
    std::thread([answer = std::move(answer), message, most] {
        const QDBusConnection bus = Connect("voxmate-calling");
        answer->set_value(bus.isConnected() && bus.call(message, QDBus::Block, static_cast<int>(most.count())).type() ==
                                                   QDBusMessage::ReplyMessage);
    }).detach();
    return patience.count() > 0 && taken.wait_for(patience) == std::future_status::ready && taken.get();
}

} // namespace voxmate::linux_platform
