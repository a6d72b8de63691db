#include "platform/qt/QtTray.h"

#include "platform/qt/QtText.h"

#include <QGuiApplication>
#include <QScreen>
#include <QTimer>

#include <algorithm>

namespace voxmate::qt
{

namespace
{

constexpr double TwipsPerInch = 1440;

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

void QtTray::Activated(QSystemTrayIcon::ActivationReason reason, PictureBox& box) const
{
    if (reason == QSystemTrayIcon::DoubleClick)
        box.UserMouseMove(WM_LBUTTONDBLCLK * TwipsPerPixel());
    else if (reason == QSystemTrayIcon::Context)
        box.UserMouseMove(WM_RBUTTONUP * TwipsPerPixel());
}

bool QtTray::Notify(std::uint32_t message, const TrayIconData& data, QWidget* window)
{
    if (message == NIM_DELETE) {
        const bool was = icon_ != nullptr;
        icon_.reset();
        return was;
    }
    if (message != NIM_ADD)
        return false;
    if (!QSystemTrayIcon::isSystemTrayAvailable()) {
        QTimer::singleShot(0, window, [window] {
            if (!window->isVisible())
                window->showMinimized();
        });
        return false;
    }
    const auto box = boxes_.find(data.window);
    const auto picture = boxes_.find(data.icon);
    if (icon_ || box == boxes_.end() || picture == boxes_.end())
        return false;
    icon_ = std::make_unique<QSystemTrayIcon>(icons_.Icon(ToQt(picture->second->Picture)));
    icon_->setToolTip(QString::fromUtf8(data.tip.data()));
    QObject::connect(icon_.get(), &QSystemTrayIcon::activated, icon_.get(),
                     [this, receiver = box->second](auto reason) { Activated(reason, *receiver); });
    icon_->show();
    return true;
}

} // namespace voxmate::qt
