#include "qt/system/DesktopWatch.h"

#include "qt/system/Desktop.h"

#include <QGuiApplication>

#include <algorithm>
#include <cmath>
#include <limits>
#include <utility>

namespace voxmate::qt
{

namespace
{

/// Milliseconds within which all property changes of one change of the desktop arrive.
constexpr int ChangeTime = 20;

/// Squared distance from a point to a rectangle.
std::int64_t Distance(const QRect& rect, QPoint point)
{
    const std::int64_t dx = std::max({rect.left() - point.x(), 0, point.x() - rect.right()});
    const std::int64_t dy = std::max({rect.top() - point.y(), 0, point.y() - rect.bottom()});
    return dx * dx + dy * dy;
}

} // namespace

QScreen* ScreenNearest(QPoint point)
{
    QScreen* nearest = nullptr;
    std::int64_t least = std::numeric_limits<std::int64_t>::max();
    for (QScreen* screen : QGuiApplication::screens()) {
        const std::int64_t distance = Distance(screen->geometry(), point);
        if (distance < least) {
            least = distance;
            nearest = screen;
        }
    }
    return nearest;
}

DesktopWatch& DesktopWatch::Instance()
{
    static DesktopWatch* const instance = new DesktopWatch(qGuiApp);
    return *instance;
}

DesktopWatch::DesktopWatch(QObject* parent) : QObject(parent)
{
    changes_.setSingleShot(true);
    changes_.setInterval(ChangeTime);
    connect(&changes_, &QTimer::timeout, this, [this] {
        const QList<QRect> before = workAreas_;
        Look();
        Q_EMIT Changed();
        if (std::exchange(screensChanged_, false) || workAreas_ != before)
            Q_EMIT ScreensChanged();
    });
    WatchScreens();
    Look();
    qGuiApp->installNativeEventFilter(this);
}

DesktopWatch::~DesktopWatch() = default;

void DesktopWatch::WatchScreens()
{
    const auto changed = [this] {
        screensChanged_ = true;
        changes_.start();
        Q_EMIT ScreensChanging();
    };
    const auto watch = [this, changed](QScreen* screen) {
        connect(screen, &QScreen::geometryChanged, this, changed);
        connect(screen, &QScreen::availableGeometryChanged, this, changed);
    };
    for (QScreen* screen : QGuiApplication::screens())
        watch(screen);
    connect(qGuiApp, &QGuiApplication::screenAdded, this, watch);
    connect(qGuiApp, &QGuiApplication::screenAdded, this, changed);
    connect(qGuiApp, &QGuiApplication::screenRemoved, this, changed);
    connect(qGuiApp, &QGuiApplication::primaryScreenChanged, this, changed);
}

bool DesktopWatch::nativeEventFilter(const QByteArray& /*type*/, void* message, qintptr* /*result*/)
{
    if (!changes_.isActive() && TellsOfDesktop(message, watched_))
        changes_.start();
    return false;
}

void DesktopWatch::Look()
{
    DesktopState seen = LookAtDesktop(watched_);
    desktop_ = seen.extent;
    monitors_ = std::move(seen.monitors);
    reported_ = std::move(seen.workAreas);
    struts_ = std::move(seen.struts);
    windows_ = std::move(seen.windows);
    watched_ = std::move(seen.watched);
    workAreas_ = WorkAreas();
}

QList<QRect> DesktopWatch::WorkAreas() const
{
    QList<QRect> areas;
    for (const QScreen* screen : QGuiApplication::screens())
        areas.append(WorkArea(*screen));
    return areas;
}

/// A screen in device pixels. The toolkit reports its first pixel exactly, but its size rounded.
QRect DesktopWatch::NativeScreen(const QScreen& screen) const
{
    const QRect told = screen.geometry();
    for (const QRect& monitor : monitors_) {
        if (monitor.topLeft() == told.topLeft())
            return monitor;
    }
    // The smallest size that the toolkit would report as this one.
    const auto least = [&screen](int size) {
        return static_cast<int>(std::ceil((size - 0.5) * screen.devicePixelRatio()));
    };
    return {told.x(), told.y(), least(told.width()), least(told.height())};
}

QRect DesktopWatch::WorkArea(const QScreen& screen) const
{
    if (desktop_.isEmpty())
        return screen.availableGeometry();
    const QRect whole = NativeScreen(screen);
    QRect area = WithoutPanels(whole, desktop_.size(), struts_);
    for (const QRect& reported : reported_) {
        // A work area that spans several screens says nothing about a single one.
        if (whole.contains(reported) && reported.intersects(area))
            area = area.intersected(reported);
    }
    return WholePixels(area, whole.topLeft(), screen.devicePixelRatio());
}

bool DesktopWatch::Filled(const QScreen& screen) const
{
    return IsFilled(NativeScreen(screen), windows_);
}

} // namespace voxmate::qt
