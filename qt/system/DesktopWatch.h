// The desktop round the program: what panels leave of each screen, and which screens another program's full-screen
// window fills. The toolkit knows the first for a single screen only and the second not at all. On a desktop that is
// not X11 it is the toolkit's answer, and no screen is filled.
#pragma once

#include "qt/system/Screens.h"

#include <QAbstractNativeEventFilter>
#include <QObject>
#include <QScreen>
#include <QSet>
#include <QTimer>

#include <cstdint>
#include <functional>

namespace voxmate::qt
{

/// Watches the properties of the windows of all programs. Costs nothing while none of them changes.
class DesktopWatch : public QObject, private QAbstractNativeEventFilter
{
    Q_OBJECT

public:
    /// The one watch of the program; made when first asked for, after the application object.
    static DesktopWatch& Instance();

    /// The part of a screen that no panel covers, in the device-independent pixels that lie wholly in it.
    QRect WorkArea(const QScreen& screen) const;
    /// Whether another program's full-screen window is what is seen of a screen.
    bool Filled(const QScreen& screen) const;

Q_SIGNALS:
    /// What is seen of the screens may be another. Told from the event loop, once for several changes.
    void Changed();
    /// Screens or work areas are others; likewise.
    void ScreensChanged();
    /// The screens are becoming others; told at once, before window managers have moved windows for it.
    void ScreensChanging();

private:
    explicit DesktopWatch(QObject* parent);
    ~DesktopWatch() override;
    bool nativeEventFilter(const QByteArray& type, void* message, qintptr* result) override;

    void WatchScreens();
    void Look();
    QList<QRect> WorkAreas() const;
    QRect NativeScreen(const QScreen& screen) const;

    QTimer changes_;              ///< one change of the desktop comes as several events
    bool screensChanged_ = false; ///< since the last look

    // What was seen last, in device pixels.
    QRect desktop_;
    QList<QRect> monitors_;
    QList<QRect> reported_;  ///< work areas that the window manager reports
    QList<QRect> workAreas_; ///< of all screens, in their own pixels
    QList<Strut> struts_;
    QList<ListedWindow> windows_;
    QSet<std::uint32_t> watched_; ///< other programs' windows whose changes are told
};

/// The screen that holds a point, or the nearest one; nullptr where there is none.
QScreen* ScreenNearest(QPoint point);

} // namespace voxmate::qt
