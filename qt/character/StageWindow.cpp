#include "qt/character/StageWindow.h"

#include "qt/character/ShapedWindow.h"
#include "qt/widgets/FontScale.h"

#include <QCloseEvent>
#include <QGuiApplication>
#include <QWindow>

#include <algorithm>

namespace voxmate::qt
{

namespace
{

/// Room for a balloon above the character and on both sides, in pixels with a font of the usual size.
constexpr QSize BalloonRoom(420, 150);
/// The room beside and below the character in which the server places it.
constexpr QSize Margins(80, 16);

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
    MakeRoom({});
}

void StageWindow::MakeRoom(QSize character)
{
    const QSize room = BalloonRoom * std::max(1.0, FontScale());
    const QSize wanted(std::max(room.width(), character.width() + Margins.width()),
                       room.height() + character.height() + Margins.height());
    if (wanted == size())
        return;
    // A window of a fixed size is not tiled by the compositors that tile.
    setFixedSize(wanted);
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
    if (any && windowHandle() == nullptr)
        winId();
    // A mask would also cut off the drawing's soft edges if it were the widget's. An empty one means the whole window.
    if (windowHandle())
        windowHandle()->setMask(taking.isEmpty() ? QRegion(-1, -1, 1, 1) : taking);
    if (any != isVisible())
        setVisible(any);
}

void StageWindow::Drag()
{
    if (windowHandle())
        windowHandle()->startSystemMove();
}

// Only the program hides the character.
void StageWindow::closeEvent(QCloseEvent* event)
{
    event->ignore();
}

} // namespace voxmate::qt
