// The desktop's fonts, followed while the program runs.
#pragma once

#include <QFileSystemWatcher>
#include <QObject>
#include <QString>

namespace voxmate::qt
{

/// Takes the fonts from the KDE desktop's settings again whenever these change; all windows follow. The toolkit reads
/// those fonts only at start. It follows changes of the colours by itself, and takes no fonts from other desktops.
class DesktopFonts : public QObject
{
public:
    DesktopFonts();

private:
    void Watch();
    void Read();

    const QString file_; ///< the desktop's settings file; empty if the desktop is not KDE
    QString general_;    ///< the fonts of windows and of menus as the settings name them
    QString menus_;
    QFileSystemWatcher watcher_;
};

} // namespace voxmate::qt
