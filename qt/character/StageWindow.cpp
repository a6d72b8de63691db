#include "qt/character/StageWindow.h"

#include "qt/character/ShapedWindow.h"
#include "qt/system/DesktopWatch.h"
#include "qt/widgets/FontScale.h"

#include <QCloseEvent>
#include <QGuiApplication>
#include <QScreen>
#include <QTimer>
#include <QWindow>

#include <algorithm>
#include <chrono>
#include <utility>

namespace voxmate::qt
{

namespace
{

/// Room for a balloon above the character and on both sides, in pixels with a font of the usual size.
constexpr QSize BalloonRoom(420, 150);
/// The room beside and below the character in which the server places it.
constexpr QSize Margins(80, 16);
/// After a compositor has dismissed the window, because its screen has gone, it is shown again so much later.
constexpr std::chrono::seconds Absence(1);

QSize RoomForBalloon()
{
    return BalloonRoom * std::max(1.0, FontScale());
}

} // namespace

StageWindow* StageWindow::Instance()
{
    // Only the platform's name tells; it may also be "wayland-egl".
    static StageWindow* const instance =
        QGuiApplication::platformName().startsWith(QLatin1String("wayland")) ? new StageWindow : nullptr;
    return instance;
}

StageWindow::StageWindow()
    : QWidget(nullptr, Qt::Window | Qt::FramelessWindowHint | Qt::WindowStaysOnTopHint | Qt::WindowDoesNotAcceptFocus)
{
    setObjectName(QStringLiteral("stage"));
    setWindowTitle(QString::fromLatin1(CharacterTitle));
    setAttribute(Qt::WA_TranslucentBackground);
    setAttribute(Qt::WA_ShowWithoutActivating);
    setFocusPolicy(Qt::NoFocus);
    winId();
    layer_ = PutInLayer(*windowHandle());
    if (layer_)
        connect(&DesktopWatch::Instance(), &DesktopWatch::ScreensChanged, this, [this] { MoveSoon(); });
    MakeRoom({});
}

QRect StageWindow::Area() const
{
    return layer_ && screen() ? QRect(QPoint(), screen()->size()) : rect();
}

void StageWindow::MakeRoom(QSize character)
{
    const QSize room = RoomForBalloon();
    const QSize wanted = layer_ ? character + 2 * room
                                : QSize(std::max(room.width(), character.width() + Margins.width()),
                                        room.height() + character.height() + Margins.height());
    if (wanted == size())
        return;
    // A window of a fixed size is not tiled by the compositors that tile.
    setFixedSize(wanted);
    if (layer_) {
        MoveSoon();
        return;
    }
    QMetaObject::invokeMethod(
        this, [this] { Q_EMIT Resized(); }, Qt::QueuedConnection);
}

void StageWindow::StandAround(QPoint character)
{
    if (!layer_)
        return;
    const QSize room = RoomForBalloon();
    wanted_ = character - QPoint(room.width(), room.height());
    if (!isVisible()) {
        GoTo(wanted_);
        answered_ = origin_;
    } else if (wanted_ != origin_) {
        MoveSoon();
    }
}

/// The balloon, which follows the character, is drawn at its new place in the same instant.
void StageWindow::MoveSoon()
{
    if (moving_)
        return;
    moving_ = true;
    QMetaObject::invokeMethod(
        this, [this] { Move(); }, Qt::QueuedConnection);
}

/// One move at a time: what is wanted meanwhile is drawn in the window's present place, where there is room for it.
void StageWindow::Move()
{
    GoTo(wanted_);
    repaint(0, 0, 1, 1);
    layer_->WhenPlaced([this] {
        moving_ = false;
        answered_ = origin_;
        if (wanted_ != origin_)
            MoveSoon();
    });
}

/// What stands in the window stays where it is on the screen.
void StageWindow::GoTo(QPoint origin)
{
    const QPoint before = std::exchange(origin_, origin);
    for (QObject* child : children()) {
        if (auto* shown = dynamic_cast<ShapedWindow*>(child))
            shown->move(shown->pos() + before - origin);
    }
    const QRect area = Area();
    layer_->Place(area.width() - origin.x() - width(), area.height() - origin.y() - height());
    Settle();
}

void StageWindow::Settle()
{
    QRegion taking;
    bool any = false;
    for (QObject* child : children()) {
        const auto* shown = dynamic_cast<const ShapedWindow*>(child);
        if (!shown || shown->isHidden())
            continue;
        any = true;
        taking += shown->TakesMouse().translated(shown->pos());
    }
    // A mask would also cut off the drawing's soft edges if it were the widget's. An empty one means the whole window.
    windowHandle()->setMask(taking.isEmpty() ? QRegion(-1, -1, 1, 1) : taking);
    const bool visible = any && !dismissed_;
    if (visible != isVisible())
        setVisible(visible);
}

void StageWindow::Drag()
{
    if (windowHandle())
        windowHandle()->startSystemMove();
}

// Only the program hides the character. A compositor closes what stands in a layer of a screen that goes.
void StageWindow::closeEvent(QCloseEvent* event)
{
    event->ignore();
    if (!layer_ || !event->spontaneous())
        return;
    dismissed_ = true;
    hide();
    QTimer::singleShot(Absence, this, [this] {
        dismissed_ = false;
        Settle();
    });
}

} // namespace voxmate::qt
