#include "qt/character/StageWindow.h"

#include "qt/character/ShapedWindow.h"
#include "qt/system/LayerSurface.h"
#include "qt/widgets/FontScale.h"

#include <QCloseEvent>
#include <QGuiApplication>
#include <QScreen>
#include <QTimer>
#include <QWindow>

#include <algorithm>
#include <chrono>

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
    inLayer_ = PutInLayer(*windowHandle());
    if (inLayer_ && screen())
        resize(screen()->size()); // until the compositor tells how much the panels leave
    MakeRoom({});
}

void StageWindow::MakeRoom(QSize character)
{
    if (inLayer_)
        return;
    const QSize room = BalloonRoom * std::max(1.0, FontScale());
    const QSize wanted(std::max(room.width(), character.width() + Margins.width()),
                       room.height() + character.height() + Margins.height());
    if (wanted == size())
        return;
    // A window of a fixed size is not tiled by the compositors that tile.
    setFixedSize(wanted);
}

void StageWindow::resizeEvent(QResizeEvent* event)
{
    QWidget::resizeEvent(event);
    QMetaObject::invokeMethod(
        this, [this] { Q_EMIT Resized(); }, Qt::QueuedConnection);
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
    if (!inLayer_ || !event->spontaneous())
        return;
    dismissed_ = true;
    hide();
    QTimer::singleShot(Absence, this, [this] {
        dismissed_ = false;
        Settle();
    });
}

} // namespace voxmate::qt
