#include "qt/system/QtTray.h"

#include "qt/forms/ControlPeers.h"
#include "qt/system/Desktop.h"
#include "qt/widgets/FontScale.h"
#include "qt/widgets/QtText.h"

#include <QApplication>

#include <algorithm>

namespace voxmate::qt
{

namespace
{

constexpr double TwipsPerInch = 1440;

// Milliseconds between checks, while the window is hidden, whether the notification area still exists.
constexpr int WatchInterval = 2000;

/// Whether the icon is a window embedded in the notification area, which gets real clicks. The toolkit makes a window
/// of this class only then.
bool IsEmbedded()
{
    const QWidgetList windows = QApplication::topLevelWidgets();
    return std::any_of(windows.begin(), windows.end(),
                       [](const QWidget* window) { return window->inherits("QSystemTrayIconSys"); });
}

void Iconify(QWidget& window)
{
    if (!window.isVisible())
        window.showMinimized();
}

} // namespace

double TwipsPerPixel()
{
    // Qt's device-independent pixels are 1/96 inch on every screen. A larger font of the desktop's makes what is
    // measured in twips larger, too: announcements, whose text is in points, keep their shape.
    constexpr double pixelsPerInch = 96;
    return TwipsPerInch / pixelsPerInch / FontScale();
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
    // A status notifier reports no clicks: it is activated by whatever opens a program on that desktop, one click or
    // two.
    const bool activation = viaNotifier_ && reason == QSystemTrayIcon::Trigger;
    if (reason == QSystemTrayIcon::DoubleClick || activation)
        box.UserMouseMove(WM_LBUTTONDBLCLK * TwipsPerPixel());
    else if (reason == QSystemTrayIcon::Context)
        box.UserMouseMove(WM_RBUTTONUP * TwipsPerPixel());
}

void QtTray::ExportMenu(const PictureBox& box)
{
    auto* peer = box.IconMenu ? static_cast<MenuPeer*>(box.IconMenu->GetPeer()) : nullptr;
    if (peer && peer->Submenu())
        icon_->setContextMenu(peer->Submenu());
}

bool QtTray::Notify(std::uint32_t message, const TrayIconData& data, QWidget* window)
{
    if (message == NIM_DELETE) {
        const bool was = icon_ != nullptr;
        watch_.stop();
        icon_.reset();
        return was;
    }
    if (message == NIM_MODIFY) {
        // A panel is told only of what is new.
        const QString tip = QString::fromUtf8(data.tip.data());
        if (icon_ && (data.flags & NIF_TIP) != 0 && icon_->toolTip() != tip)
            icon_->setToolTip(tip);
        return icon_ != nullptr;
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
    icon_ = std::make_unique<QSystemTrayIcon>(icons_.Icon(ToQt(picture->second->Picture)));
    icon_->setToolTip(QString::fromUtf8(data.tip.data()));
    QObject::connect(icon_.get(), &QSystemTrayIcon::activated, icon_.get(),
                     [this, receiver = box->second](auto reason) {
                         // Deferred, because the panel waits for its call to return, and a menu may stay open for long.
                         QTimer::singleShot(0, icon_.get(), [=, this] { Activated(reason, *receiver); });
                     });
    icon_->show();
    viaNotifier_ = !IsEmbedded() && TrayIsOfItems();
    // For a status notifier without a menu some areas show one of their own, or none. An embedded icon reports the
    // right click as a message, and with a menu set the toolkit would open it a second time.
    if (viaNotifier_)
        ExportMenu(*box->second);
    watch_.disconnect();
    QObject::connect(&watch_, &QTimer::timeout, window, [this, window] {
        if (!window->isVisible() && !(viaNotifier_ ? TrayIsOfItems() : QSystemTrayIcon::isSystemTrayAvailable()))
            Iconify(*window);
    });
    watch_.start(WatchInterval);
    return true;
}

} // namespace voxmate::qt
