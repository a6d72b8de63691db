#include "platform/linux/desktop/MprisPlayer.h"

#include "platform/linux/desktop/MprisAdaptors.h"

#include <QCoreApplication>
#include <QDBusPendingCall>
#include <QPointer>

namespace voxmate::linux_platform
{

namespace
{

constexpr const char* Path = "/org/mpris/MediaPlayer2";
constexpr const char* PlayerInterface = "org.mpris.MediaPlayer2.Player";
constexpr const char* BusName = "org.freedesktop.DBus";
constexpr const char* BusPath = "/org/freedesktop/DBus";
/// A position that is off by more than this has been sought, and is told of: others count on by themselves.
constexpr std::chrono::seconds Tolerance{2};

} // namespace

void MprisObject::Show(const MediaControls::State& state)
{
    const qint64 counted = Position();
    const qint64 expected = state.Position.count();
    const MediaControls::State before = std::exchange(state_, state);
    if (before.Position != state.Position || before.Playing != state.Playing || before.Number != state.Number)
        since_.start();
    wanted_ = true;
    if (!bus_)
        Connect();
    else if (!registered_)
        Register();
    if (!registered_)
        return;
    QVariantMap changes;
    if (before.Playing != state.Playing)
        changes[QStringLiteral("PlaybackStatus")] = Status();
    if (before.Number != state.Number || before.Title != state.Title || before.Length != state.Length)
        changes[QStringLiteral("Metadata")] = Metadata();
    if (before.HasParts != state.HasParts) {
        changes[QStringLiteral("CanGoNext")] = state.HasParts;
        changes[QStringLiteral("CanGoPrevious")] = state.HasParts;
    }
    if ((before.Length.count() > 0) != (state.Length.count() > 0))
        changes[QStringLiteral("CanSeek")] = state.Length.count() > 0;
    if (!changes.isEmpty())
        Changed(changes);
    if (before.Number == state.Number && std::abs(expected - counted) > std::chrono::microseconds(Tolerance).count())
        Send(Path, PlayerInterface, "Seeked", {qlonglong(expected)});
}

void MprisObject::Withdraw()
{
    wanted_ = false;
    if (!registered_)
        return;
    registered_ = false;
    QDBusMessage release = QDBusMessage::createMethodCall(QLatin1String(BusName), QLatin1String(BusPath),
                                                          QLatin1String(BusName), QStringLiteral("ReleaseName"));
    release << QLatin1String(MprisPlayer::Name);
    bus_->asyncCall(release);
    bus_->unregisterObject(QLatin1String(Path));
}

void MprisObject::Connect()
{
    if (std::exchange(connecting_, true))
        return;
    std::thread([object = QPointer<MprisObject>(this)] {
        const QDBusConnection bus =
            QDBusConnection::connectToBus(QDBusConnection::SessionBus, QStringLiteral("voxmate-media"));
        QMetaObject::invokeMethod(QCoreApplication::instance(), [object, bus] {
            if (!object || !bus.isConnected())
                return;
            object->bus_ = bus;
            if (object->wanted_)
                object->Register();
        });
    }).detach();
}

// The object is on the bus before its name is, so that who sees the name finds it.
void MprisObject::Register()
{
    constexpr uint doNotQueue = 4;
    registered_ = bus_->registerObject(QLatin1String(Path), this, QDBusConnection::ExportAdaptors);
    QDBusMessage request = QDBusMessage::createMethodCall(QLatin1String(BusName), QLatin1String(BusPath),
                                                          QLatin1String(BusName), QStringLiteral("RequestName"));
    request << QLatin1String(MprisPlayer::Name) << doNotQueue;
    bus_->asyncCall(request);
}

void MprisObject::Send(const char* path, const char* interface, const char* member, const QVariantList& arguments)
{
    QDBusMessage signal =
        QDBusMessage::createSignal(QLatin1String(path), QLatin1String(interface), QLatin1String(member));
    signal.setArguments(arguments);
    bus_->send(signal);
}

void MprisObject::Changed(const QVariantMap& properties)
{
    Send(Path, "org.freedesktop.DBus.Properties", "PropertiesChanged",
         {QLatin1String(PlayerInterface), properties, QStringList()});
}

MprisPlayer::MprisPlayer() : object_(new MprisObject(*this, QCoreApplication::instance()))
{
    auto* object = static_cast<MprisObject*>(object_);
    new MprisRoot(object);
    new MprisPlayerAdaptor(object);
}

MprisPlayer::~MprisPlayer()
{
    static_cast<MprisObject*>(object_)->Detach();
}

void MprisPlayer::Show(const State& state)
{
    static_cast<MprisObject*>(object_)->Show(state);
}

void MprisPlayer::Withdraw()
{
    static_cast<MprisObject*>(object_)->Withdraw();
}

} // namespace voxmate::linux_platform
