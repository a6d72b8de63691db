// What stands on the session's bus for the program as a media player: the two interfaces of MPRIS 2.2.
#pragma once

#include "platform/MediaControls.h"

#include <QDBusAbstractAdaptor>
#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusObjectPath>
#include <QElapsedTimer>
#include <QGuiApplication>
#include <QObject>
#include <QString>
#include <QStringList>
#include <QTimer>
#include <QVariantMap>

#include <algorithm>
#include <chrono>
#include <functional>
#include <limits>
#include <optional>
#include <thread>
#include <utility>

namespace voxmate::linux_platform
{

/// The object that both interfaces stand on: what is shown, and the way to the bus. It lives in the thread of the
/// application object. Connecting is the only step that waits for the bus, so it is done on a thread of its own.
class MprisObject : public QObject
{
    Q_OBJECT

public:
    MprisObject(MediaControls& owner, QObject* parent) : QObject(parent), owner_(&owner) {}
    void Detach() { owner_ = nullptr; }

    const MediaControls::State& State() const { return state_; }
    qint64 Position() const
    {
        qint64 position = state_.Position.count();
        if (state_.Playing && since_.isValid() && state_.Length.count() > 0)
            position = std::min<qint64>(position + since_.nsecsElapsed() / 1000, state_.Length.count());
        return position;
    }
    QVariantMap Metadata() const
    {
        QVariantMap data{{QStringLiteral("mpris:trackid"), QVariant::fromValue(QDBusObjectPath(Track()))},
                         {QStringLiteral("xesam:title"), QString::fromStdString(state_.Title)}};
        if (state_.Length.count() > 0)
            data[QStringLiteral("mpris:length")] = qlonglong(state_.Length.count());
        return data;
    }
    QString Track() const { return QStringLiteral("/org/voxmate/Voxmate/document/%1").arg(state_.Number); }
    QString Status() const { return state_.Playing ? QStringLiteral("Playing") : QStringLiteral("Paused"); }

    void Show(const MediaControls::State& state);
    void Withdraw();

    /// The caller gets its answer at once; what was asked for is done later.
    void Tell(MediaControls::Command command)
    {
        QTimer::singleShot(0, this, [this, command] {
            if (owner_ && owner_->Called)
                owner_->Called(command);
        });
    }
    void TellPosition(qint64 position)
    {
        QTimer::singleShot(0, this, [this, position] {
            if (owner_ && owner_->Sought && state_.Length.count() > 0)
                owner_->Sought(std::chrono::microseconds(std::max<qint64>(position, 0)));
        });
    }

private:
    void Connect();
    void Register();
    void Send(const char* path, const char* interface, const char* member, const QVariantList& arguments);
    void Changed(const QVariantMap& properties);

    MediaControls* owner_;
    MediaControls::State state_;
    QElapsedTimer since_; ///< the position was told
    std::optional<QDBusConnection> bus_;
    bool connecting_ = false;
    bool wanted_ = false;
    bool registered_ = false;
};

class MprisRoot : public QDBusAbstractAdaptor
{
    Q_OBJECT
    Q_CLASSINFO("D-Bus Interface", "org.mpris.MediaPlayer2")
    Q_PROPERTY(bool CanQuit READ No)
    Q_PROPERTY(bool CanRaise READ Yes)
    Q_PROPERTY(bool HasTrackList READ No)
    Q_PROPERTY(QString Identity READ Identity)
    Q_PROPERTY(QString DesktopEntry READ DesktopEntry)
    Q_PROPERTY(QStringList SupportedUriSchemes READ Nothing)
    Q_PROPERTY(QStringList SupportedMimeTypes READ Nothing)

public:
    explicit MprisRoot(MprisObject* object) : QDBusAbstractAdaptor(object), object_(object) {}
    bool No() const { return false; }
    bool Yes() const { return true; }
    QString Identity() const { return QStringLiteral("Voxmate"); }
    QString DesktopEntry() const { return QGuiApplication::desktopFileName(); }
    QStringList Nothing() const { return {}; }

public Q_SLOTS:
    void Raise() { object_->Tell(MediaControls::Command::Raise); }
    void Quit() {}

private:
    MprisObject* object_;
};

class MprisPlayerAdaptor : public QDBusAbstractAdaptor
{
    Q_OBJECT
    Q_CLASSINFO("D-Bus Interface", "org.mpris.MediaPlayer2.Player")
    Q_PROPERTY(QString PlaybackStatus READ PlaybackStatus)
    Q_PROPERTY(double Rate READ One)
    Q_PROPERTY(double MinimumRate READ One)
    Q_PROPERTY(double MaximumRate READ One)
    Q_PROPERTY(double Volume READ One)
    Q_PROPERTY(QVariantMap Metadata READ Metadata)
    Q_PROPERTY(qlonglong Position READ Position)
    Q_PROPERTY(bool CanGoNext READ HasParts)
    Q_PROPERTY(bool CanGoPrevious READ HasParts)
    Q_PROPERTY(bool CanPlay READ Yes)
    Q_PROPERTY(bool CanPause READ Yes)
    Q_PROPERTY(bool CanSeek READ CanSeek)
    Q_PROPERTY(bool CanControl READ Yes)

public:
    explicit MprisPlayerAdaptor(MprisObject* object) : QDBusAbstractAdaptor(object), object_(object) {}
    QString PlaybackStatus() const { return object_->Status(); }
    double One() const { return 1; }
    bool Yes() const { return true; }
    QVariantMap Metadata() const { return object_->Metadata(); }
    qlonglong Position() const { return object_->Position(); }
    bool HasParts() const { return object_->State().HasParts; }
    bool CanSeek() const { return object_->State().Length.count() > 0; }

public Q_SLOTS:
    void Next() { object_->Tell(MediaControls::Command::Next); }
    void Previous() { object_->Tell(MediaControls::Command::Previous); }
    void Play() { object_->Tell(MediaControls::Command::Play); }
    void Pause() { object_->Tell(MediaControls::Command::Pause); }
    void PlayPause() { object_->Tell(MediaControls::Command::PlayPause); }
    void Stop() { object_->Tell(MediaControls::Command::Stop); }
    void Seek(qlonglong offset)
    {
        constexpr qlonglong far = std::numeric_limits<qlonglong>::max() / 2; // longer than anything takes
        object_->TellPosition(object_->Position() + std::clamp(offset, -far, far));
    }
    void SetPosition(const QDBusObjectPath& track, qlonglong position)
    {
        // Another document may have begun meanwhile.
        if (track.path() == object_->Track())
            object_->TellPosition(position);
    }
    void OpenUri(const QString& /*uri*/) {}

private:
    MprisObject* object_;
};

} // namespace voxmate::linux_platform
