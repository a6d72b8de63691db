#include "platform/linux/desktop/DesktopKeys.h"

#include "platform/linux/desktop/Portal.h"
#include "platform/linux/desktop/PortalKeys.h"

#include <QClipboard>
#include <QCoreApplication>
#include <QDBusMetaType>
#include <QDBusPendingCallWatcher>
#include <QDBusPendingReply>
#include <QGuiApplication>
#include <QPointer>
#include <QStringList>

#include <algorithm>
#include <memory>
#include <thread>
#include <utility>

namespace voxmate::linux_platform
{

namespace
{

constexpr QLatin1String Shortcuts("org.freedesktop.portal.GlobalShortcuts");
/// A request's response when the user has closed the dialog.
constexpr uint Cancelled = 1;
/// Milliseconds that the portal may take to say that it is there; it may have to be started.
constexpr int PortalPatience = 5000;

// "Ctrl+Alt+S" as the desktops' own notation has it: "CTRL+ALT+s".
QString PortalTrigger(const std::string& trigger)
{
    QStringList parts = QString::fromStdString(trigger).toUpper().split(u'+');
    parts.last() = parts.last().toLower();
    return parts.join(u'+').replace(QStringLiteral("META"), QStringLiteral("LOGO"));
}

} // namespace

QDBusArgument& operator<<(QDBusArgument& argument, const PortalShortcut& shortcut)
{
    argument.beginStructure();
    argument << shortcut.id << shortcut.properties;
    argument.endStructure();
    return argument;
}

const QDBusArgument& operator>>(const QDBusArgument& argument, PortalShortcut& shortcut)
{
    argument.beginStructure();
    argument >> shortcut.id >> shortcut.properties;
    argument.endStructure();
    return argument;
}

PortalKeys::PortalKeys(GlobalKeys& owner, QObject* parent) : QObject(parent), owner_(&owner)
{
    qDBusRegisterMetaType<PortalShortcut>();
    qDBusRegisterMetaType<QList<PortalShortcut>>();
    x11_.Pressed = [this](const std::string& name) { Press(QString::fromStdString(name)); };
}

void PortalKeys::Hold(std::vector<GlobalKeys::Key> keys)
{
    keys_ = std::move(keys);
    if (asking_) {
        again_ = true;
        return;
    }
    x11_.ReleaseAll();
    if (!session_.isEmpty() && bus_) {
        bus_->asyncCall(PortalCall(std::exchange(session_, QString()), QLatin1String("org.freedesktop.portal.Session"),
                                   QLatin1String("Close")));
    }
    if (keys_.empty())
        return;
    if (!hasPortal_)
        Connect();
    else if (*hasPortal_)
        CreateSession();
    else
        HoldByServer();
}

void PortalKeys::Connect()
{
    if (std::exchange(connecting_, true))
        return;
    std::thread([object = QPointer<PortalKeys>(this)] {
        const QDBusConnection bus =
            QDBusConnection::connectToBus(QDBusConnection::SessionBus, QStringLiteral("voxmate-keys"));
        QMetaObject::invokeMethod(QCoreApplication::instance(), [object, bus] {
            if (!object)
                return;
            object->bus_ = bus;
            object->Ask();
        });
    }).detach();
}

// Whether there is a portal that knows of shortcuts.
void PortalKeys::Ask()
{
    const auto known = [this](bool has) {
        hasPortal_ = has;
        Hold(std::move(keys_));
    };
    if (!bus_->isConnected()) {
        known(false);
        return;
    }
    bus_->connect(PortalService, PortalPath, Shortcuts, QStringLiteral("Activated"), this,
                  SLOT(Activated(QDBusObjectPath, QString, qulonglong, QVariantMap)));
    QDBusMessage ask = PortalCall(PortalPath, QLatin1String("org.freedesktop.DBus.Properties"), QLatin1String("Get"));
    ask << Shortcuts << QStringLiteral("version");
    auto* watcher = new QDBusPendingCallWatcher(bus_->asyncCall(ask, PortalPatience), this);
    connect(watcher, &QDBusPendingCallWatcher::finished, this, [known, watcher] {
        watcher->deleteLater();
        known(!watcher->isError());
    });
}

// A portal may refuse without the signal: newer ones do so to programs that have no entry in the desktop's menu.
void PortalKeys::Request(QDBusMessage call, QVariantMap options, const char* slot)
{
    const QString token = QStringLiteral("voxmate%1").arg(++requests_);
    // Listens before it calls, so that no answer is missed.
    bus_->connect(PortalService, PortalRequestPath(*bus_, token), PortalRequest, QStringLiteral("Response"), this,
                  slot);
    options[QStringLiteral("handle_token")] = token;
    call << options;
    auto* watcher = new QDBusPendingCallWatcher(bus_->asyncCall(call), this);
    connect(watcher, &QDBusPendingCallWatcher::finished, this, [this, watcher] {
        watcher->deleteLater();
        if (watcher->isError() && EndAsking())
            HoldByServer();
    });
}

// The conversation is over. False where other keys were wished for meanwhile: these are begun with.
bool PortalKeys::EndAsking()
{
    asking_ = false;
    if (!std::exchange(again_, false))
        return true;
    Hold(std::move(keys_));
    return false;
}

void PortalKeys::CreateSession()
{
    asking_ = true;
    Request(PortalCall(PortalPath, Shortcuts, QLatin1String("CreateSession")),
            {{QStringLiteral("session_handle_token"), QStringLiteral("voxmate%1").arg(requests_ + 1)}},
            SLOT(SessionMade(uint, QVariantMap)));
}

void PortalKeys::SessionMade(uint response, const QVariantMap& results)
{
    session_ = results.value(QStringLiteral("session_handle")).toString();
    if (again_ || response != 0 || session_.isEmpty()) {
        if (EndAsking())
            HoldByServer();
        return;
    }
    QList<PortalShortcut> shortcuts;
    for (const GlobalKeys::Key& key : keys_)
        shortcuts.append({QString::fromStdString(key.Name),
                          {{QStringLiteral("description"), QString::fromStdString(key.Description)},
                           {QStringLiteral("preferred_trigger"), PortalTrigger(key.Trigger)}}});
    QDBusMessage bind = PortalCall(PortalPath, Shortcuts, QLatin1String("BindShortcuts"));
    bind << QVariant::fromValue(QDBusObjectPath(session_)) << QVariant::fromValue(shortcuts) << QString();
    Request(bind, {}, SLOT(Bound(uint, QVariantMap)));
}

void PortalKeys::Bound(uint response, const QVariantMap& results)
{
    if (!EndAsking())
        return;
    const auto bound =
        qdbus_cast<QList<PortalShortcut>>(results.value(QStringLiteral("shortcuts")).value<QDBusArgument>());
    const std::vector<GlobalKeys::Key> keys = keys_; // an answer may ask for others
    for (const GlobalKeys::Key& key : keys) {
        const auto found = std::ranges::find(bound, QString::fromStdString(key.Name), &PortalShortcut::id);
        if (response == Cancelled)
            Answer(key, GlobalKeys::Outcome::Refused, {});
        else if (response != 0 || found == bound.end())
            Answer(key, GlobalKeys::Outcome::Taken, {});
        else
            Answer(key, GlobalKeys::Outcome::Held,
                   found->properties.value(QStringLiteral("trigger_description")).toString());
    }
}

void PortalKeys::Activated(const QDBusObjectPath& session, const QString& id, qulonglong /*time*/,
                           const QVariantMap& /*options*/)
{
    if (session.path() == session_)
        Press(id);
}

void PortalKeys::HoldByServer()
{
    const std::vector<GlobalKeys::Key> keys = keys_;
    for (const GlobalKeys::Key& key : keys) {
        const auto refused = X11Keys::Possible() ? GlobalKeys::Outcome::Taken : GlobalKeys::Outcome::None;
        Answer(key, x11_.Grab(key.Name, key.Trigger) ? GlobalKeys::Outcome::Held : refused,
               QString::fromStdString(key.Trigger));
    }
}

void PortalKeys::Answer(const GlobalKeys::Key& key, GlobalKeys::Outcome outcome, const QString& trigger)
{
    const std::string told = trigger.isEmpty() ? key.Trigger : trigger.toStdString();
    QMetaObject::invokeMethod(
        this,
        [this, name = key.Name, outcome, told] {
            if (owner_ && owner_->Answered)
                owner_->Answered(name, outcome, told);
        },
        Qt::QueuedConnection);
}

void PortalKeys::Press(const QString& name)
{
    QMetaObject::invokeMethod(
        this,
        [this, name = name.toStdString()] {
            if (owner_ && owner_->Pressed)
                owner_->Pressed(name);
        },
        Qt::QueuedConnection);
}

DesktopKeys::DesktopKeys() : object_(new PortalKeys(*this, QCoreApplication::instance())) {}

DesktopKeys::~DesktopKeys()
{
    static_cast<PortalKeys*>(object_)->Detach();
}

void DesktopKeys::Hold(const std::vector<Key>& keys)
{
    static_cast<PortalKeys*>(object_)->Hold(keys);
}

std::string DesktopKeys::SelectedText()
{
    const QClipboard* clipboard = QGuiApplication::clipboard();
    return clipboard->supportsSelection() ? clipboard->text(QClipboard::Selection).toStdString() : "";
}

} // namespace voxmate::linux_platform
