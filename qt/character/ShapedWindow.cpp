#include "qt/character/ShapedWindow.h"

#include "qt/alerts/PlacedWindow.h"
#include "qt/character/StageWindow.h"
#include "qt/system/Desktop.h"
#include "qt/system/DesktopWatch.h"
#include "qt/widgets/AccessibleRole.h"

#include <QApplication>
#include <QCloseEvent>
#include <QMouseEvent>
#include <QPainter>

#include <algorithm>
#include <utility>
#include <vector>

namespace voxmate::qt
{

namespace
{

/// Pixels of at least this alpha (half opaque) take the mouse and, without a compositor, are drawn.
constexpr int AlphaThreshold = 128;

/// The part of a window in which two of its pictures differ, in device-independent pixels; empty when they are the
/// same, and all of it when they cannot be compared.
QRect Changed(const QImage& before, const QImage& after)
{
    if (before.size() != after.size() || before.depth() != 32 || after.depth() != 32 ||
        before.devicePixelRatio() != after.devicePixelRatio())
        return {QPoint(0, 0), (QSizeF(after.size()) / after.devicePixelRatio()).toSize() + QSize(1, 1)};
    const int width = after.width();
    int left = width;
    int right = 0;
    int top = after.height();
    int bottom = 0;
    for (int y = 0; y < after.height(); ++y) {
        const auto* old = reinterpret_cast<const QRgb*>(before.constScanLine(y));
        const auto* now = reinterpret_cast<const QRgb*>(after.constScanLine(y));
        if (std::equal(old, old + width, now))
            continue;
        top = std::min(top, y);
        bottom = y + 1;
        left = static_cast<int>(std::mismatch(old, old + left, now).first - old);
        int last = width;
        while (last > right && old[last - 1] == now[last - 1])
            --last;
        right = last;
    }
    if (top >= bottom)
        return {};
    const qreal ratio = after.devicePixelRatio();
    return QRectF(left / ratio, top / ratio, (right - left) / ratio, (bottom - top) / ratio).toAlignedRect();
}

/// Makes every drawn pixel of the cut-out fully opaque; otherwise the smooth edges would be black.
void MakeOpaque(QImage& image)
{
    const int width = image.width();
    for (int y = 0; y < image.height(); ++y) {
        auto* pixels = reinterpret_cast<QRgb*>(image.scanLine(y));
        for (int x = 0; x < width; ++x)
            pixels[x] = qAlpha(pixels[x]) < AlphaThreshold ? 0 : qUnpremultiply(pixels[x]) | 0xFF000000;
    }
}

} // namespace

QRegion ShapeOf(const QImage& image)
{
    std::vector<QRect> rects;
    std::size_t band = 0; // first rectangle of the row above
    std::vector<QRect> row;
    const int width = image.width();
    for (int y = 0; y < image.height(); ++y) {
        const auto* pixels = reinterpret_cast<const QRgb*>(image.constScanLine(y));
        row.clear();
        for (int x = 0; x < width;) {
            if (qAlpha(pixels[x]) < AlphaThreshold) {
                ++x;
                continue;
            }
            const int from = x;
            while (x < width && qAlpha(pixels[x]) >= AlphaThreshold)
                ++x;
            row.emplace_back(from, y, x - from, 1);
        }
        bool sameAsAbove = !row.empty() && row.size() == rects.size() - band && rects[band].bottom() == y - 1;
        for (std::size_t i = 0; sameAsAbove && i < row.size(); ++i)
            sameAsAbove = rects[band + i].left() == row[i].left() && rects[band + i].right() == row[i].right();
        if (sameAsAbove) {
            for (std::size_t i = band; i < rects.size(); ++i)
                rects[i].setBottom(y);
        } else if (!row.empty()) {
            band = rects.size();
            rects.insert(rects.end(), row.begin(), row.end());
        }
    }
    QRegion region;
    region.setRects(rects.data(), static_cast<int>(rects.size()));
    return region;
}

ShapedImage Shaped(QImage image, bool cutOut)
{
    if (cutOut)
        MakeOpaque(image);
    QRegion shape = ShapeOf(image);
    return {std::move(image), std::move(shape)};
}

ShapedWindow::ShapedWindow(const QString& name)
    : QWidget(StageWindow::Instance(), StageWindow::Instance()
                                           ? Qt::WindowFlags(Qt::Widget)
                                           : Qt::Window | Qt::FramelessWindowHint | Qt::WindowStaysOnTopHint |
                                                 Qt::WindowDoesNotAcceptFocus | Qt::NoDropShadowWindowHint)
{
    if (!ManagerPlacesWindows())
        setWindowFlag(Qt::BypassWindowManagerHint);
    SetAccessibleRole(*this, QAccessible::Animation);
    setObjectName(name);
    setWindowTitle(name);
    setAccessibleName(name);
    setAttribute(Qt::WA_TranslucentBackground);
    setAttribute(Qt::WA_ShowWithoutActivating);
    setFocusPolicy(Qt::NoFocus);
    connect(&Compositor::Instance(), &Compositor::Changed, this, [this] { Refresh(); });
    connect(&DesktopWatch::Instance(), &DesktopWatch::Changed, this, [this] {
        ComeOrGo();
        StayOnTop();
    });
}

void ShapedWindow::LiveBeside(QWindow* modal)
{
    // Qt does not block the transient windows of a modal window. It has no public access to the tray icon's window,
    // which is therefore found by its class name.
    for (QWidget* window : QApplication::topLevelWidgets()) {
        const bool lives = dynamic_cast<ShapedWindow*>(window) || dynamic_cast<StageWindow*>(window) ||
                           dynamic_cast<PlacedWindow*>(window) || window->inherits("QSystemTrayIconSys");
        if (lives && window->windowHandle())
            window->windowHandle()->setTransientParent(modal);
    }
}

void ShapedWindow::Display(bool visible)
{
    wanted_ = visible;
    ComeOrGo();
}

void ShapedWindow::Place(QPoint topLeft)
{
    move(topLeft);
    ComeOrGo();
    if (auto* stage = StageWindow::Instance())
        stage->Settle();
}

bool ShapedWindow::InTheWay() const
{
    const QScreen* screen = ScreenNearest(geometry().center());
    return screen && DesktopWatch::Instance().Filled(*screen);
}

/// Shows or hides the window. While another program's full-screen window fills its screen it stays hidden, even if
/// wanted.
void ShapedWindow::ComeOrGo()
{
    if (StageWindow::Instance()) {
        ComeOrGoOnStage();
        return;
    }
    const bool visible = wanted_ && !InTheWay();
    if (visible == isVisible())
        return;
    if (!visible) {
        hide();
        return;
    }
    if (const auto tell = OnShow)
        tell();
    if (!created_) {
        winId();
        created_ = true;
        // Another screen may have another pixel ratio.
        connect(windowHandle(), &QWindow::screenChanged, this, [this] { Refresh(); });
    }
    MakeDesktopCompanion(*windowHandle());
    const QWidget* modal = QApplication::activeModalWidget();
    windowHandle()->setTransientParent(modal ? modal->windowHandle() : nullptr);
    const QPoint place = pos();
    Refresh();
    // For a new window Qt closes every open menu and list, which the user may be using; it does not for a Qt::Tool.
    const Qt::WindowFlags flags = windowFlags();
    overrideWindowFlags((flags & ~Qt::WindowType_Mask) | Qt::Tool);
    show();
    overrideWindowFlags(flags);
    KeepDesktopCompanion(*windowHandle());
    // The window manager may have chosen another position.
    move(place);
}

/// A compositor that draws such windows above all others still leaves the order in its X server, which decides where
/// clicks go, to the program. A menu or list that is open stays above.
void ShapedWindow::StayOnTop()
{
    const bool bypasses = windowFlags().testFlag(Qt::BypassWindowManagerHint);
    if (bypasses && isVisible() && !QApplication::activePopupWidget())
        raise();
}

void ShapedWindow::ComeOrGoOnStage()
{
    if (wanted_ != isHidden())
        return;
    if (wanted_) {
        if (const auto tell = OnShow)
            tell();
        created_ = true;
        Refresh();
    }
    setVisible(wanted_);
    if (wanted_)
        raise();
    StageWindow::Instance()->Settle();
}

QRegion ShapedWindow::TakesMouse() const
{
    const qreal ratio = image_.devicePixelRatio();
    QRegion region;
    for (const QRect& rect : shape_)
        region += QRectF(QPointF(rect.topLeft()) / ratio, QSizeF(rect.size()) / ratio).toAlignedRect();
    return region;
}

/// Once the mouse has gone further than a click may, the compositor moves the window, which then gets no more mouse
/// events. The owner is told of a drag that ends where it began: within the window nothing has moved.
void ShapedWindow::DragStage(const QMouseEvent& event)
{
    const QPoint at = event.position().toPoint();
    if (!held_ || (at - heldAt_).manhattanLength() < QApplication::startDragDistance())
        return;
    held_ = false;
    const auto tell = OnMouse;
    if (!tell)
        return;
    const auto told = [this](agent::MouseAction action, QPoint where) {
        agent::MouseEvent mouse;
        mouse.action = action;
        mouse.button = action == agent::MouseAction::Release ? 1 : 0;
        mouse.at = {where.x(), where.y()};
        mouse.screen = {x() + where.x(), y() + where.y()};
        return mouse;
    };
    const QPoint before = pos();
    agent::MouseEvent back = told(agent::MouseAction::Move, heldAt_);
    agent::MouseEvent end = told(agent::MouseAction::Release, heldAt_);
    tell(told(agent::MouseAction::Move, at));
    tell(back);
    tell(end);
    if (pos() != before)
        Place(before);
    StageWindow::Instance()->Drag();
}

void ShapedWindow::Refresh()
{
    if (!created_ || !Draw)
        return;
    const qreal ratio = devicePixelRatioF();
    const bool cutOut = !Compositor::Instance().Running();
    ShapedImage drawn = Draw(ratio, cutOut);
    const QImage before = std::exchange(image_, std::move(drawn.image));
    image_.setDevicePixelRatio(ratio);
    const QRect changed = Changed(before, image_);
    if (auto* stage = StageWindow::Instance()) {
        shape_ = std::move(drawn.shape);
        stage->Settle();
        update(changed);
        return;
    }
    if (drawn.shape != shape_ || cutOut != cutOut_) {
        shape_ = std::move(drawn.shape);
        SetInputShape(*windowHandle(), shape_);
        if (cutOut)
            SetBoundingShape(*windowHandle(), shape_);
        else if (cutOut_)
            ClearBoundingShape(*windowHandle());
        cutOut_ = cutOut;
    }
    update(changed);
}

void ShapedWindow::paintEvent(QPaintEvent* event)
{
    QPainter painter(this);
    painter.setClipRegion(event->region());
    // On a stage another drawing may lie beneath.
    if (isWindow())
        painter.setCompositionMode(QPainter::CompositionMode_Source);
    painter.drawImage(0, 0, image_);
}

void ShapedWindow::Tell(agent::MouseAction action, const QMouseEvent& event)
{
    agent::MouseEvent told;
    told.action = action;
    if (action != agent::MouseAction::Move) {
        told.button = event.button() == Qt::LeftButton ? 1 : event.button() == Qt::RightButton ? 2 : 0;
        if (told.button == 0)
            return;
    }
    const auto modifiers = event.modifiers();
    told.shift = (modifiers & Qt::ShiftModifier ? 1 : 0) | (modifiers & Qt::ControlModifier ? 2 : 0) |
                 (modifiers & Qt::AltModifier ? 4 : 0);
    const QPoint at = event.position().toPoint();
    const QPoint screen = isWindow() ? event.globalPosition().toPoint() : pos() + at;
    told.at = {at.x(), at.y()};
    told.screen = {screen.x(), screen.y()};
    // Copied, because the owner may release the window inside the call.
    if (const auto tell = OnMouse)
        tell(told);
}

void ShapedWindow::mousePressEvent(QMouseEvent* event)
{
    held_ = event->button() == Qt::LeftButton;
    heldAt_ = event->position().toPoint();
    Tell(agent::MouseAction::Press, *event);
}
void ShapedWindow::mouseMoveEvent(QMouseEvent* event)
{
    const auto* stage = StageWindow::Instance();
    if (stage && !stage->CoversScreen()) {
        DragStage(*event);
        return;
    }
    Tell(agent::MouseAction::Move, *event);
}
void ShapedWindow::mouseReleaseEvent(QMouseEvent* event)
{
    held_ = false;
    Tell(agent::MouseAction::Release, *event);
}
void ShapedWindow::mouseDoubleClickEvent(QMouseEvent* event)
{
    Tell(agent::MouseAction::DoubleClick, *event);
}

void ShapedWindow::moveEvent(QMoveEvent* event)
{
    QWidget::moveEvent(event);
    if (const auto tell = OnMove)
        tell();
}

// Only the program hides the character.
void ShapedWindow::closeEvent(QCloseEvent* event)
{
    event->ignore();
}

} // namespace voxmate::qt
