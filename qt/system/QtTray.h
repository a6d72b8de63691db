// The notification-area icon on a Qt desktop: a status notifier or a system-tray icon, whichever the desktop supports.
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

    /// As WindowSystem::Shell_NotifyIconA. Where the desktop has no notification area, or loses it, a hidden `window`
    /// is minimised instead, so that the user can still reach it.
    bool Notify(std::uint32_t message, const TrayIconData& data, QWidget* window);
    /// A handle for this picture box, valid from now on.
    std::uint32_t HandleOf(PictureBox& box);

private:
    /// Gives the icon's menu to the notification area, which shows it itself.
    void ExportMenu(const PictureBox& box);
    void Activated(QSystemTrayIcon::ActivationReason reason, PictureBox& box);

    const IconSet& icons_;
    std::map<std::uint32_t, PictureBox*> boxes_;
    std::unique_ptr<QSystemTrayIcon> icon_;
    QTimer watch_;             ///< checks whether the area still exists
    bool viaNotifier_ = false; ///< the icon is a status notifier, announced over the session's bus
};

/// Twips per pixel of the primary screen.
double TwipsPerPixel();

} // namespace voxmate::qt
