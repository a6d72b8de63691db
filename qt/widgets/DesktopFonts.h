// The desktop's fonts, followed while the program runs.
#pragma once

#include <QFileSystemWatcher>
#include <QObject>
#include <QString>

namespace voxmate::qt
{

/// Where the toolkit took the fonts from the KDE desktop's settings at start, takes them from there again when they
/// change, and so do all windows. The colours it follows by itself, and of other desktops it takes no fonts.
class DesktopFonts : public QObject
{
public:
    DesktopFonts();

private:
    void Watch();
    void Read();

    const QString file_; ///< the settings of the desktop; empty on another one
    QString general_;    ///< the font of windows and that of menus, as the settings have them
    QString menus_;
    QFileSystemWatcher watcher_;
};

} // namespace voxmate::qt
