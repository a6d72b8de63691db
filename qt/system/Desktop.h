// The seam to the desktop that the front end stands on: what Qt has no public call for. Each platform has its own
// implementation, which is linked in; where a desktop cannot do something, it falls back to what Qt has.
#pragma once

#include "qt/system/Screens.h"

#include <QAbstractNativeEventFilter>
#include <QObject>
#include <QRegion>
#include <QSet>
#include <QWindow>

#include <cstdint>

namespace voxmate::qt
{

/// Limits where a window takes the mouse to `region`, in device pixels of the window.
void SetInputShape(QWindow& window, const QRegion& region);
/// Limits where a window is drawn at all to `region`, in device pixels of the window. For screens without a compositor,
/// where transparent pixels would be black.
void SetBoundingShape(QWindow& window, const QRegion& region);
/// Lets a window be drawn wherever it is again.
void ClearBoundingShape(QWindow& window);
/// Keeps a window out of task bar and window switcher and shows it on every virtual desktop. Before each time it is
/// shown: window managers forget that of a window that goes.
void MakeDesktopCompanion(QWindow& window);
/// Asks for the same once more, of a window that has just been shown: a window manager that has not yet seen it go
/// forgets what was set in between.
void KeepDesktopCompanion(QWindow& window);
/// Sends what has been asked of the desktop and still waits to be sent. Qt does so only when it has drawn or heard
/// something.
void Flush();

/// Whether a panel keeps tray icons itself, as items that it asks for over the session's bus. Such a panel tells of an
/// icon's activation only, not of clicks.
bool TrayIsOfItems();

/// The desktop and the other programs' windows on it, in device pixels.
struct DesktopState {
    QRect extent;                ///< all screens together; empty where only Qt knows of the desktop
    QList<QRect> monitors;       ///< none where it does not tell
    QList<QRect> workAreas;      ///< of the workspace on show
    QList<Strut> struts;         ///< of the panels on show
    QList<ListedWindow> windows; ///< those on show, the lowest first
    QSet<std::uint32_t> watched; ///< the other programs' windows, on show or not
};

/// Reads the desktop, and has changes of it told to the program's native event filters. `watched` are the windows of
/// which that is asked already.
DesktopState LookAtDesktop(const QSet<std::uint32_t>& watched);
/// Whether a native event is one after which LookAtDesktop may answer differently.
bool TellsOfDesktop(const void* event, const QSet<std::uint32_t>& watched);

/// Watches whether a compositor runs on the screen, that is, whether windows can be translucent. Costs nothing while
/// nothing changes.
class Compositor : public QObject, private QAbstractNativeEventFilter
{
    Q_OBJECT

public:
    /// The one watch of the program; made when first asked for, after the application object.
    static Compositor& Instance();

    bool Running() const { return running_; }

Q_SIGNALS:
    void Changed();

private:
    explicit Compositor(QObject* parent);
    ~Compositor() override;
    bool nativeEventFilter(const QByteArray& type, void* message, qintptr* result) override;

    bool running_ = true;
    std::uint8_t selectionNotify_ = 0;
    std::uint32_t selection_ = 0;
};

} // namespace voxmate::qt
