#include "platform/linux/desktop/LinuxNotifications.h"

#include "platform/linux/desktop/LaterBus.h"
#include "platform/linux/desktop/NotificationServer.h"

#include <QCoreApplication>
#include <QDBusMessage>
#include <QDBusPendingCallWatcher>
#include <QDBusPendingReply>
#include <QDBusServiceWatcher>
#include <QGuiApplication>
#include <QThread>
#include <QVariantMap>

#include <algorithm>
#include <utility>
#include <vector>

namespace voxmate::linux_platform
{

namespace
{

/// Milliseconds. A server that has to be started at a busy log-in takes long to say what it can do; nothing waits for
/// that. What it is then asked to show, it shows at once.
constexpr int StartPatience = 25000;
constexpr int ShowPatience = 5000;
constexpr int LastPatience = 500;
/// NotificationClosed's reason when the user has closed it.
constexpr uint ClosedByUser = 2;
/// Ordinary importance: neither kept out of the way nor shown over everything.
constexpr uchar NormalUrgency = 1;
constexpr int NeverExpires = 0;

QDBusMessage ServerCall(const char* method)
{
    return QDBusMessage::createMethodCall(QLatin1String(NotificationService), QLatin1String(NotificationPath),
                                          QLatin1String(NotificationService), QLatin1String(method));
}

} // namespace

void NotificationServer::Begin()
{
    if (std::exchange(begun_, true))
        return;
    ConnectLater(QLatin1String(NotificationBus), this, [this](const QDBusConnection& bus) { Connected(bus); });
}

void NotificationServer::Connected(const QDBusConnection& bus)
{
    if (!bus.isConnected())
        return;
    bus_ = bus;
    const QString service = QLatin1String(NotificationService);
    const QString path = QLatin1String(NotificationPath);
    bus_->connect(service, path, service, QStringLiteral("ActionInvoked"), this, SLOT(ActionInvoked(uint, QString)));
    bus_->connect(service, path, service, QStringLiteral("NotificationClosed"), this,
                  SLOT(NotificationClosed(uint, uint)));
    auto* watcher = new QDBusServiceWatcher(service, *bus_, QDBusServiceWatcher::WatchForOwnerChange, this);
    connect(watcher, &QDBusServiceWatcher::serviceOwnerChanged, this,
            [this](const QString& /*name*/, const QString& /*before*/, const QString& now) {
                Go();
                if (!now.isEmpty())
                    AskForCapabilities();
            });
    AskForCapabilities();
}

// Where the server is started when it is needed, this starts it.
void NotificationServer::AskForCapabilities()
{
    auto* watcher = new QDBusPendingCallWatcher(bus_->asyncCall(ServerCall("GetCapabilities"), StartPatience), this);
    connect(watcher, &QDBusPendingCallWatcher::finished, this, [this, watcher] {
        watcher->deleteLater();
        const QDBusPendingReply<QStringList> reply = *watcher;
        if (!reply.isError())
            Come(reply.value());
    });
}

void NotificationServer::Come(const QStringList& capabilities)
{
    hasButtons_ = capabilities.contains(QLatin1String("actions"));
    takesMarkup_ = capabilities.contains(QLatin1String("body-markup"));
    if (!std::exchange(serves_, true) && owner_ && owner_->ServerChanged)
        owner_->ServerChanged();
}

// What a server has shown goes with it.
void NotificationServer::Go()
{
    if (!std::exchange(serves_, false))
        return;
    for (const auto& [number, gone] : std::exchange(shown_, {})) {
        if (!gone.unwanted)
            TellEnd(number, DesktopNotifications::End::Lost);
    }
    if (owner_ && owner_->ServerChanged)
        owner_->ServerChanged();
}

void NotificationServer::Show(int number, const DesktopNotifications::Notification& notification)
{
    if (!serves_)
        return;
    Shown& shown = shown_[number];
    shown.unwanted = false;
    if (shown.asked)
        shown.next = notification;
    else
        Send(number, notification);
}

void NotificationServer::Send(int number, const DesktopNotifications::Notification& notification)
{
    Shown& shown = shown_[number];
    shown.asked = true;
    const QString text = QString::fromStdString(notification.Text);
    QStringList actions;
    if (hasButtons_) {
        for (const DesktopNotifications::Button& button : notification.Buttons)
            actions << QString::fromStdString(button.Name) << QString::fromStdString(button.Caption);
    }
    const QVariantMap hints{{QStringLiteral("desktop-entry"), QGuiApplication::desktopFileName()},
                            {QStringLiteral("urgency"), QVariant::fromValue(NormalUrgency)}};
    QDBusMessage call = ServerCall("Notify");
    call << QStringLiteral("Voxmate") << shown.id << QStringLiteral("voxmate")
         << QString::fromStdString(notification.Title) << (takesMarkup_ ? text.toHtmlEscaped() : text) << actions
         << hints << NeverExpires;
    auto* watcher = new QDBusPendingCallWatcher(bus_->asyncCall(call, ShowPatience), this);
    connect(watcher, &QDBusPendingCallWatcher::finished, this, [this, watcher, number] {
        watcher->deleteLater();
        const QDBusPendingReply<uint> reply = *watcher;
        Answered(number, reply.isError() ? std::nullopt : std::optional<uint>(reply.value()));
    });
}

void NotificationServer::Answered(int number, std::optional<uint> id)
{
    const auto found = shown_.find(number);
    if (found == shown_.end() || !found->second.asked)
        return; // the server has gone meanwhile
    found->second.asked = false;
    found->second.id = id.value_or(0);
    if (found->second.unwanted) {
        if (id)
            CloseById(*id);
        shown_.erase(found);
    } else if (const auto next = std::exchange(found->second.next, std::nullopt)) {
        Send(number, *next);
    } else if (!id) {
        shown_.erase(found);
        TellEnd(number, DesktopNotifications::End::Lost);
    }
}

void NotificationServer::Close(int number)
{
    const auto found = shown_.find(number);
    if (found == shown_.end())
        return;
    found->second.next.reset();
    found->second.unwanted = true;
    if (found->second.asked)
        return;
    CloseById(found->second.id);
    shown_.erase(found);
}

// Calls are sent by another thread. The bus's answer to a last one means that those before it have been sent.
void NotificationServer::CloseAll()
{
    if (shown_.empty())
        return;
    for (const auto& [number, shown] : std::exchange(shown_, {})) {
        if (shown.id != 0)
            CloseById(shown.id);
    }
    bus_->call(QDBusMessage::createMethodCall(QStringLiteral("org.freedesktop.DBus"),
                                              QStringLiteral("/org/freedesktop/DBus"),
                                              QStringLiteral("org.freedesktop.DBus"), QStringLiteral("GetId")),
               QDBus::Block, LastPatience);
}

void NotificationServer::CloseById(uint id)
{
    QDBusMessage call = ServerCall("CloseNotification");
    call.setAutoStartService(false);
    call << id;
    bus_->asyncCall(call);
}

// The entry of a notification; the end for those of other programs.
NotificationServer::Entry NotificationServer::Find(uint id)
{
    return std::ranges::find_if(shown_, [id](const auto& entry) { return id != 0 && entry.second.id == id; });
}

void NotificationServer::ActionInvoked(uint id, const QString& action)
{
    const Entry found = Find(id);
    if (found == shown_.end() || found->second.unwanted)
        return;
    const int number = found->first;
    // Most servers take it away by themselves, but they need not.
    Close(number);
    if (owner_ && owner_->Pressed)
        owner_->Pressed(number, action.toStdString());
}

void NotificationServer::NotificationClosed(uint id, uint reason)
{
    const Entry found = Find(id);
    // One that is just being replaced comes again.
    if (found == shown_.end() || found->second.asked)
        return;
    const int number = found->first;
    shown_.erase(found);
    TellEnd(number, reason == ClosedByUser ? DesktopNotifications::End::Dismissed : DesktopNotifications::End::Lost);
}

void NotificationServer::TellEnd(int number, DesktopNotifications::End why)
{
    if (owner_ && owner_->Ended)
        owner_->Ended(number, why);
}

LinuxNotifications::LinuxNotifications() : object_(new NotificationServer(*this, QCoreApplication::instance())) {}

LinuxNotifications::~LinuxNotifications()
{
    static_cast<NotificationServer*>(object_)->Detach();
}

void LinuxNotifications::Begin()
{
    static_cast<NotificationServer*>(object_)->Begin();
}

bool LinuxNotifications::Serves() const
{
    return static_cast<const NotificationServer*>(object_)->Serves();
}

void LinuxNotifications::Show(int number, const Notification& notification)
{
    static_cast<NotificationServer*>(object_)->Show(number, notification);
}

void LinuxNotifications::Close(int number)
{
    static_cast<NotificationServer*>(object_)->Close(number);
}

void LinuxNotifications::CloseAll()
{
    if (QThread::currentThread() == object_->thread())
        static_cast<NotificationServer*>(object_)->CloseAll();
}

} // namespace voxmate::linux_platform
