// The notification-area icon on a Qt desktop: a status-notifier or system-tray icon, whatever the desktop has.
#pragma once

#include "platform/WindowSystem.h"
#include "qt/widgets/IconSet.h"

#include <QSystemTrayIcon>
#include <QTimer>
#include <QWidget>

#include <map>
#include <memory>

namespace voxmate::qt
{

class QtTray
{
public:
    explicit QtTray(const IconSet& icons) : icons_(icons) {}

    /// As WindowSystem says. Where the desktop has no such area, or loses it, `window` comes back iconified once it has
    /// been hidden, so that nobody loses it.
    bool Notify(std::uint32_t message, const TrayIconData& data, QWidget* window);
    /// A number that stands for this picture box from now on.
    std::uint32_t HandleOf(PictureBox& box);

private:
    /// Makes the icon's menu known to the area, which shows it itself.
    void ExportMenu(const PictureBox& box);
    void Activated(QSystemTrayIcon::ActivationReason reason, PictureBox& box);

    const IconSet& icons_;
    std::map<std::uint32_t, PictureBox*> boxes_;
    std::unique_ptr<QSystemTrayIcon> icon_;
    QTimer watch_;             ///< looks whether the area is still there
    bool viaNotifier_ = false; ///< the icon is one of the status-notifier kind, told of over the session's bus
};

/// Twips a pixel of the primary screen.
double TwipsPerPixel();

} // namespace voxmate::qt
