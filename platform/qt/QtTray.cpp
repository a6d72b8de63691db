#include "platform/qt/QtTray.h"

#include "platform/qt/QtText.h"

#include <QDBusConnection>
#include <QDBusConnectionInterface>
#include <QGuiApplication>
#include <QStyleHints>

#include <algorithm>

namespace voxmate::qt
{

namespace
{

constexpr double TwipsPerInch = 1440;

// How often to look whether the notification area is still there while the window is hidden; milliseconds.
constexpr int WatchInterval = 2000;

/// Whether something on the session's bus keeps status-notifier icons (freedesktop.org StatusNotifierItem, with the
/// name that it has come to be used under).
bool NotifierWatched()
{
    const QDBusConnectionInterface* bus = QDBusConnection::sessionBus().interface();
    return bus && bus->isServiceRegistered(QStringLiteral("org.kde.StatusNotifierWatcher"));
}

void Iconify(QWidget& window)
{
    if (!window.isVisible())
        window.showMinimized();
}

} // namespace

double TwipsPerPixel()
{
    // Qt's own pixels are 1/96 inch, whatever the screen's.
    constexpr double pixelsPerInch = 96;
    return TwipsPerInch / pixelsPerInch;
}

std::uint32_t QtTray::HandleOf(PictureBox& box)
{
    const auto found =
        std::find_if(boxes_.begin(), boxes_.end(), [&box](const auto& entry) { return entry.second == &box; });
    if (found != boxes_.end())
        return found->first;
    const auto handle = static_cast<std::uint32_t>(boxes_.size() + 1);
    boxes_[handle] = &box;
    return handle;
}

void QtTray::Activated(QSystemTrayIcon::ActivationReason reason, PictureBox& box)
{
    // A status notifier tells of clicks alone: two in quick succession are a double click.
    const bool click = reason == QSystemTrayIcon::Trigger;
    const bool second = click && viaNotifier_ && lastClick_.isValid() &&
                        lastClick_.elapsed() <= QGuiApplication::styleHints()->mouseDoubleClickInterval();
    if (reason == QSystemTrayIcon::DoubleClick || second) {
        lastClick_.invalidate();
        box.UserMouseMove(WM_LBUTTONDBLCLK * TwipsPerPixel());
    } else if (reason == QSystemTrayIcon::Context) {
        box.UserMouseMove(WM_RBUTTONUP * TwipsPerPixel());
    } else if (click) {
        lastClick_.start();
    }
}

bool QtTray::Notify(std::uint32_t message, const TrayIconData& data, QWidget* window)
{
    if (message == NIM_DELETE) {
        const bool was = icon_ != nullptr;
        watch_.stop();
        icon_.reset();
        return was;
    }
    if (message != NIM_ADD)
        return false;
    if (!QSystemTrayIcon::isSystemTrayAvailable()) {
        QTimer::singleShot(0, window, [window] { Iconify(*window); });
        return false;
    }
    const auto box = boxes_.find(data.window);
    const auto picture = boxes_.find(data.icon);
    if (icon_ || box == boxes_.end() || picture == boxes_.end())
        return false;
    viaNotifier_ = NotifierWatched();
    icon_ = std::make_unique<QSystemTrayIcon>(icons_.Icon(ToQt(picture->second->Picture)));
    icon_->setToolTip(QString::fromUtf8(data.tip.data()));
    QObject::connect(icon_.get(), &QSystemTrayIcon::activated, icon_.get(),
                     [this, receiver = box->second](auto reason) {
                         // Later: a panel waits for its call to return, and a menu stays up for long.
                         QTimer::singleShot(0, icon_.get(), [=, this] { Activated(reason, *receiver); });
                     });
    icon_->show();
    watch_.disconnect();
    QObject::connect(&watch_, &QTimer::timeout, window, [this, window] {
        if (!window->isVisible() && !(viaNotifier_ ? NotifierWatched() : QSystemTrayIcon::isSystemTrayAvailable()))
            Iconify(*window);
    });
    watch_.start(WatchInterval);
    return true;
}

} // namespace voxmate::qt
