#include "qt/alerts/PlacedWindow.h"

#include "qt/alerts/ClassicDrawing.h"
#include "qt/system/Desktop.h"
#include "qt/widgets/AccessibleRole.h"

#include <QAccessible>
#include <QApplication>
#include <QCloseEvent>
#include <QEnterEvent>
#include <QMouseEvent>
#include <QPainter>
#include <QPainterPath>
#include <QWindow>

#include <utility>

namespace voxmate::qt
{

QColor ToQColor(std::uint32_t colour, const QPalette& palette)
{
    if (colour == vbButtonFace)
        return palette.color(QPalette::Button);
    if (colour == vbWindowBackground)
        return palette.color(QPalette::Base);
    return QColor(static_cast<int>(colour & 0xFF), static_cast<int>(colour >> 8 & 0xFF),
                  static_cast<int>(colour >> 16 & 0xFF));
}

// The window bypasses the window manager, which would not let it stand below the screen's edge or move as often and as
// exactly as it does. Qt::Tool, because a new window of that type leaves open menus and lists open.
PlacedWindow::PlacedWindow()
    : QWidget(nullptr, Qt::Tool | Qt::FramelessWindowHint | Qt::BypassWindowManagerHint | Qt::WindowStaysOnTopHint |
                           Qt::WindowDoesNotAcceptFocus | Qt::NoDropShadowWindowHint)
{
    // Screen readers report an announcement, not just another window.
    SetAccessibleRole(*this, QAccessible::AlertMessage);
    SetAccessiblePress(*this, [this] { Press(); });
    setAttribute(Qt::WA_TranslucentBackground);
    setAttribute(Qt::WA_ShowWithoutActivating);
    setFocusPolicy(Qt::NoFocus);
    Clear(vbButtonFace);
    connect(&Compositor::Instance(), &Compositor::Changed, this, [this] {
        Invalidate();
        UpdateShape();
    });
}

QPoint WithinDevicePixels(const QRect& rect, qreal ratio)
{
    // Qt rounds position and size separately.
    const auto fits = [ratio](int from, int length) {
        return qRound(from * ratio) + qRound(length * ratio) <= (from + length) * ratio;
    };
    return {fits(rect.x(), rect.width()) ? rect.x() : rect.x() - 1,
            fits(rect.y(), rect.height()) ? rect.y() : rect.y() - 1};
}

void PlacedWindow::Place(const QRect& rect)
{
    if (rect.size() != size()) {
        setFixedSize(rect.size());
        Invalidate();
        UpdateShape();
    }
    const QPoint topLeft = WithinDevicePixels(rect, devicePixelRatioF());
    if (topLeft != pos())
        move(topLeft);
}

void PlacedWindow::Display()
{
    if (isVisible())
        return;
    if (!created_) {
        winId();
        created_ = true;
        // Set before the native window exists it would have no effect.
        setAttribute(Qt::WA_X11NetWmWindowTypeNotification);
        // Another screen may have another pixel ratio.
        connect(windowHandle(), &QWindow::screenChanged, this, [this] {
            Invalidate();
            UpdateShape();
        });
        UpdateShape();
    }
    const QWidget* modal = QApplication::activeModalWidget();
    windowHandle()->setTransientParent(modal ? modal->windowHandle() : nullptr);
    show();
    QAccessibleEvent announced(this, QAccessible::Alert);
    QAccessible::updateAccessibility(&announced);
}

// A window that bypasses the window manager is kept above all managed ones. Without a window manager the window raised
// last is the uppermost.
void PlacedWindow::SetTopmost(bool topmost)
{
    if (topmost)
        raise();
}

void PlacedWindow::SetOpacity(int alpha)
{
    setWindowOpacity(alpha / 255.0);
    Flush();
}

void PlacedWindow::SetShape(const RoundShape& shape)
{
    shape_ = shape;
    Invalidate();
    UpdateShape();
}

void PlacedWindow::Draw(Drawing drawing)
{
    drawings_.push_back(std::move(drawing));
    Invalidate();
}

void PlacedWindow::Clear(std::uint32_t colour)
{
    drawings_.clear();
    Draw([this, colour](QImage& image) { image.fill(ToQColor(colour, palette())); });
}

void PlacedWindow::Invalidate()
{
    drawn_ = {};
    update();
}

QImage PlacedWindow::Drawn()
{
    const qreal ratio = devicePixelRatioF();
    if (!drawn_.isNull() && drawn_.devicePixelRatio() == ratio)
        return drawn_;
    drawn_ = QImage((QSizeF(size()) * ratio).toSize(), QImage::Format_RGB32);
    drawn_.setDevicePixelRatio(ratio);
    for (const Drawing& draw : drawings_)
        draw(drawn_);

    shown_ = drawn_.convertToFormat(QImage::Format_ARGB32_Premultiplied);
    if (shape_ && Compositor::Instance().Running()) {
        QImage mask(shown_.size(), QImage::Format_ARGB32_Premultiplied);
        mask.setDevicePixelRatio(ratio);
        mask.fill(Qt::transparent);
        QPainter cut(&mask);
        cut.setRenderHint(QPainter::Antialiasing);
        cut.setPen(Qt::NoPen);
        cut.setBrush(Qt::black);
        cut.drawRoundedRect(shape_->rect, shape_->ellipse.width() / 2.0, shape_->ellipse.height() / 2.0);
        cut.end();
        QPainter painter(&shown_);
        painter.setCompositionMode(QPainter::CompositionMode_DestinationIn);
        painter.drawImage(0, 0, mask);
    }
    return drawn_;
}

/// With a compositor the corners are smooth and translucent, and the shape limits only where the window takes the
/// mouse. Without one the window is cut to the shape.
void PlacedWindow::UpdateShape()
{
    if (!created_)
        return;
    if (!shape_) {
        ClearBoundingShape(*windowHandle());
        return;
    }
    const QRegion region = RoundRectRegion(shape_->rect, shape_->ellipse, devicePixelRatioF());
    SetInputShape(*windowHandle(), region);
    if (Compositor::Instance().Running())
        ClearBoundingShape(*windowHandle());
    else
        SetBoundingShape(*windowHandle(), region);
}

bool PlacedWindow::event(QEvent* event)
{
    // The drawing uses the theme's colours.
    if (event->type() == QEvent::PaletteChange)
        Invalidate();
    return QWidget::event(event);
}

void PlacedWindow::paintEvent(QPaintEvent* event)
{
    Drawn();
    QPainter painter(this);
    painter.setClipRegion(event->region());
    painter.setCompositionMode(QPainter::CompositionMode_Source);
    painter.drawImage(0, 0, shown_);
}

// Announcements may overlap; the one under the mouse pointer is raised so that it can be read.
void PlacedWindow::enterEvent(QEnterEvent* event)
{
    QWidget::enterEvent(event);
    raise();
}

void PlacedWindow::mouseReleaseEvent(QMouseEvent* event)
{
    if (rect().contains(event->position().toPoint()))
        Press();
}

void PlacedWindow::Press()
{
    // Copied, because the form may release its window inside the call.
    const auto click = OnClick;
    if (click)
        click();
}

// Only its form closes it.
void PlacedWindow::closeEvent(QCloseEvent* event)
{
    event->ignore();
}

} // namespace voxmate::qt
