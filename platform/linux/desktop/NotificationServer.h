// The conversation with the desktop's notification server (org.freedesktop.Notifications, version 1.2).
#pragma once

#include "platform/DesktopNotifications.h"

#include <QDBusConnection>
#include <QObject>
#include <QString>

#include <map>
#include <optional>

namespace voxmate::linux_platform
{

/// Lives in the thread of the application object. Connecting is the only step that waits for the bus, so it is done on
/// a thread of its own.
class NotificationServer : public QObject
{
    Q_OBJECT

public:
    NotificationServer(DesktopNotifications& owner, QObject* parent) : QObject(parent), owner_(&owner) {}
    void Detach()
    {
        owner_ = nullptr;
        CloseAll();
    }

    void Begin();
    bool Serves() const { return serves_; }
    void Show(int number, const DesktopNotifications::Notification& notification);
    void Close(int number);
    void CloseAll();

private Q_SLOTS:
    void ActionInvoked(uint id, const QString& action); // NOLINT(readability-identifier-naming)
    void NotificationClosed(uint id, uint reason);

private:
    struct Shown {
        uint id = 0;                                                 ///< the server's number; 0 until it has told it
        std::optional<DesktopNotifications::Notification> next = {}; ///< to be shown as soon as it has
        bool asked = false;                                          ///< it has not answered yet
        bool unwanted = false;                                       ///< to be closed as soon as it has
    };

    using Entry = std::map<int, Shown>::iterator;

    void Connected(const QDBusConnection& bus);
    void AskForCapabilities();
    void Come(const QStringList& capabilities);
    void Go();
    void Send(int number, const DesktopNotifications::Notification& notification);
    void Answered(int number, std::optional<uint> id);
    void CloseById(uint id);
    Entry Find(uint id);
    void TellEnd(int number, DesktopNotifications::End why);

    DesktopNotifications* owner_;
    std::optional<QDBusConnection> bus_;
    bool begun_ = false;
    bool serves_ = false;
    bool hasButtons_ = false;
    bool takesMarkup_ = false;
    std::map<int, Shown> shown_;
};

} // namespace voxmate::linux_platform
