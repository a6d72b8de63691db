// What an X11 desktop can do that Qt has no public call for: input shapes, window lists, and whether a compositor runs.
// On any other desktop these calls fall back to what Qt has.
#pragma once

#include <QAbstractNativeEventFilter>
#include <QObject>
#include <QRegion>
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
/// Sends what has been asked of the X server and still waits to be sent. Qt does so only when it has drawn or heard
/// something.
void Flush();

/// Watches whether a compositor runs on the screen, that is, whether windows can be translucent. Costs nothing while
/// nothing changes: the X server reports the owner of the selection _NET_WM_CM_S<screen>.
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
