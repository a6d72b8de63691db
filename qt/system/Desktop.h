// The front end's interface to the desktop for what Qt has no public call for. Each platform links in its own
// implementation; what a desktop cannot do falls back to what Qt offers.
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

/// Limits the part of a window that takes the mouse to `region`, in device pixels of the window.
void SetInputShape(QWindow& window, const QRegion& region);
/// Limits the part of a window that is drawn to `region`, in device pixels of the window. For screens without a
/// compositor, where transparent pixels would be black.
void SetBoundingShape(QWindow& window, const QRegion& region);
/// Removes the limit that SetBoundingShape set.
void ClearBoundingShape(QWindow& window);
/// Keeps a window out of the task bar and the window switcher and shows it on every virtual desktop. Must be called
/// each time before the window is shown, because window managers forget these states when it is hidden.
void MakeDesktopCompanion(QWindow& window);
/// Asks for the same once more, for a window that has just been shown: a window manager that has only now noticed the
/// earlier hiding forgets what was set in between.
void KeepDesktopCompanion(QWindow& window);
/// Gives a window of the program the keyboard because the user has asked for that outside of it: by an icon in a panel
/// or a launcher. Without these words window managers that guard the keyboard would only let its task bar button blink.
void BringToFront(QWindow& window);
/// Whether the window manager puts a new window where it asks to stand. Those of some Wayland compositors for their X
/// server do not, and one draws a shadow around every window's whole rectangle: under these a window that places itself
/// has to bypass them, which is harmless there, because they keep such windows above all others.
bool ManagerPlacesWindows();
/// Sends requests to the desktop that are still queued. Qt itself does so only after it has drawn or received
/// something.
void Flush();

/// Whether a panel shows tray icons itself, from data it reads over the session's bus. Such a panel reports only that
/// an icon was activated, not the clicks.
bool TrayIsOfItems();

/// Whether a panel takes tray icons in as windows (freedesktop.org's system tray protocol).
bool TrayIsEmbedding();

/// The desktop and the other programs' windows on it, in device pixels.
struct DesktopState {
    QRect extent;                ///< all screens together; empty where only Qt knows the desktop
    QList<QRect> monitors;       ///< empty if the desktop does not report them
    QList<QRect> workAreas;      ///< of the current workspace
    QList<Strut> struts;         ///< of the visible panels
    QList<ListedWindow> windows; ///< the visible ones, lowest first
    QSet<std::uint32_t> watched; ///< the other programs' windows, visible or not
};

/// Reads the desktop's state and subscribes to its changes, which then reach the program's native event filters.
/// `watched` are the windows that are subscribed to already.
DesktopState LookAtDesktop(const QSet<std::uint32_t>& watched);
/// Whether LookAtDesktop may give another answer after this native event.
bool TellsOfDesktop(const void* event, const QSet<std::uint32_t>& watched);

/// Watches whether a compositor runs on the screen, that is, whether windows can be translucent. Costs nothing while
/// nothing changes.
class Compositor : public QObject, private QAbstractNativeEventFilter
{
    Q_OBJECT

public:
    /// The program's only instance, made on first use, which must be after the application object exists.
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
