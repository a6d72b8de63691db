// The desktop around the program: the area that panels leave of each screen, and the screens that another program's
// full-screen window fills. The toolkit knows the first for a single screen only and the second not at all. On a
// desktop other than X11 the areas are the toolkit's, and no screen counts as filled.
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
    /// The program's only instance, made on first use, which must be after the application object exists.
    static DesktopWatch& Instance();

    /// The part of a screen that no panel covers: the device-independent pixels that lie wholly in it.
    QRect WorkArea(const QScreen& screen) const;
    /// Whether another program's full-screen window covers a screen, as IsFilled decides.
    bool Filled(const QScreen& screen) const;

Q_SIGNALS:
    /// What is visible on the screens may have changed. Emitted from the event loop, once for several changes.
    void Changed();
    /// Screens or work areas have changed. Emitted from the event loop, once for several changes.
    void ScreensChanged();
    /// The screens are changing. Emitted at once, before window managers have moved windows because of it.
    void ScreensChanging();

private:
    explicit DesktopWatch(QObject* parent);
    ~DesktopWatch() override;
    bool nativeEventFilter(const QByteArray& type, void* message, qintptr* result) override;

    void WatchScreens();
    void Look();
    QList<QRect> WorkAreas() const;
    QRect NativeScreen(const QScreen& screen) const;

    QTimer changes_;              ///< collects the several events of one change of the desktop
    bool screensChanged_ = false; ///< since the last look

    // The state last read, in device pixels.
    QRect desktop_;
    QList<QRect> monitors_;
    QList<QRect> reported_;  ///< work areas as the window manager reports them
    QList<QRect> workAreas_; ///< of all screens, in device-independent pixels
    QList<Strut> struts_;
    QList<ListedWindow> windows_;
    QSet<std::uint32_t> watched_; ///< other programs' windows whose changes are subscribed to
};

/// The screen that contains a point, or else the nearest one; nullptr if there is no screen.
QScreen* ScreenNearest(QPoint point);

} // namespace voxmate::qt
