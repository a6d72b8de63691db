#include "qt/widgets/Widgets.h"

#include "qt/widgets/FontScale.h"
#include "qt/widgets/ReadableStyle.h"

#include <QApplication>
#include <QHelpEvent>
#include <QMouseEvent>
#include <QPainter>
#include <QPainterPath>
#include <QPointer>
#include <QStyleOptionSlider>
#include <QToolTip>

namespace voxmate::qt
{

namespace
{

// Sizes in device-independent pixels.
constexpr int IconSize = 24;
constexpr int LargeIconSize = 30;
constexpr int PictureButtonSize = 40;
constexpr int LargePictureButtonSize = 52;
constexpr qreal Rounding = 6;
constexpr int BarHeight = 22;
constexpr int PanelPadding = 8;
constexpr int ButtonMargin = 16; // on both sides of a button's text together

constexpr qreal DisabledOpacity = 0.4;

/// A red on which white reaches a contrast of 5 to 1.
constexpr QColor HaltColour(0xCC, 0x33, 0x33);

/// The colour of lines on a widget: its text colour, a little softer.
QColor Ink(const QWidget& widget)
{
    const QPalette& palette = widget.palette();
    return Mix(palette.color(QPalette::Active, QPalette::ButtonText), palette.color(QPalette::Active, QPalette::Button),
               0.2);
}

/// The face of what can be pressed: lighter than the window, in light and in dark themes.
QColor Face(const QWidget& widget)
{
    const QPalette& palette = widget.palette();
    const QColor window = palette.color(QPalette::Window);
    return window.lightness() < 128 ? Mix(palette.color(QPalette::Button), palette.color(QPalette::WindowText), 0.07)
                                    : Mix(palette.color(QPalette::Button), palette.color(QPalette::Base), 0.8);
}

/// The ring around the widget that has the focus.
void DrawFocusRing(QPainter& painter, const QWidget& widget, const QRectF& rect, qreal rounding)
{
    painter.setBrush(Qt::NoBrush);
    painter.setPen(QPen(widget.palette().color(QPalette::Highlight), 2));
    painter.drawRoundedRect(rect.adjusted(1, 1, -1, -1), rounding, rounding);
}

} // namespace

QColor Mix(const QColor& first, const QColor& second, qreal share)
{
    const auto between = [share](int a, int b) { return qRound(a + (b - a) * share); };
    return QColor(between(first.red(), second.red()), between(first.green(), second.green()),
                  between(first.blue(), second.blue()));
}

Button::Button(const IconSet& icons, const QString& picture, CommandButton::Role role, QWidget* parent)
    : QPushButton(parent), icons_(icons), picture_(picture), role_(role)
{
    if (!picture_.isEmpty())
        setSizePolicy(QSizePolicy::Fixed, QSizePolicy::Fixed);
    setAttribute(Qt::WA_Hover);
}

QSize Button::sizeHint() const
{
    if (!picture_.isEmpty()) {
        const int side = Scaled(role_ == CommandButton::Role::Other ? PictureButtonSize : LargePictureButtonSize);
        return {side, side};
    }
    // A comfortable minimum size to click, however short the text.
    // The style's own margin around the text has one size.
    const QSize margin(Scaled(ButtonMargin) - ButtonMargin, (Scaled(ButtonMargin) - ButtonMargin) / 2);
    return (QPushButton::sizeHint() + margin).expandedTo({84, 30});
}

bool Button::event(QEvent* event)
{
    // The picture uses the palette's colours.
    if (event->type() == QEvent::PaletteChange)
        update();
    return QPushButton::event(event);
}

void Button::paintEvent(QPaintEvent* event)
{
    if (picture_.isEmpty()) {
        QPushButton::paintEvent(event);
        return;
    }
    const bool filled = role_ != CommandButton::Role::Other;
    const QColor face = filled ? Filling() : Face(*this);
    // A filled button is darkened where others take on the accent's colour.
    const QColor accent = filled ? QColor(Qt::black) : palette().color(QPalette::Highlight);
    QColor fill = face;
    QColor line = filled ? Mix(face, palette().color(QPalette::WindowText), 0.3) : Outline(palette());
    if (isDown()) {
        fill = Mix(face, accent, 0.35);
        line = filled ? fill : accent;
    } else if (underMouse() && isEnabled()) {
        fill = Mix(face, accent, 0.14);
        line = Mix(line, accent, filled ? 0 : 0.6);
    }

    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setOpacity(isEnabled() ? 1.0 : DisabledOpacity);
    painter.setPen(QPen(line, 1));
    painter.setBrush(fill);
    painter.drawRoundedRect(QRectF(rect()).adjusted(0.5, 0.5, -0.5, -0.5), Rounding, Rounding);
    const int size = Scaled(filled ? LargeIconSize : IconSize);
    const QColor onColour = Contrast(face, Qt::white) >= Contrast(face, Qt::black) ? Qt::white : Qt::black;
    if (hasFocus() && filled) {
        // Within the colour, because the usual ring has that very colour.
        painter.setPen(QPen(onColour, 2));
        painter.setBrush(Qt::NoBrush);
        painter.drawRoundedRect(QRectF(rect()).adjusted(4, 4, -4, -4), Rounding - 2, Rounding - 2);
    } else if (hasFocus()) {
        DrawFocusRing(painter, *this, rect(), Rounding - 0.5);
    }
    const QPixmap pixmap = icons_.Pixmap(filled ? picture_ + QStringLiteral("-filled") : picture_, size,
                                         devicePixelRatioF(), filled ? onColour : Ink(*this));
    painter.drawPixmap(QPoint((width() - size) / 2, (height() - size) / 2), pixmap);
}

/// The colour of a button that acts or halts.
QColor Button::Filling() const
{
    return role_ == CommandButton::Role::Act ? palette().color(QPalette::Highlight) : HaltColour;
}

void Button::TellMouseUp(int button)
{
    // Copied, because the form may be destroyed inside the call.
    if (const auto tell = OnMouseUp)
        tell(button);
}

void Button::mouseReleaseEvent(QMouseEvent* event)
{
    const int button = event->button() == Qt::LeftButton ? 1 : event->button() == Qt::RightButton ? 2 : 0;
    const bool over = rect().contains(event->position().toPoint());
    const QPointer<Button> alive(this);
    QPushButton::mouseReleaseEvent(event);
    if (alive && over && button != 0)
        TellMouseUp(button);
}

void Button::keyPressEvent(QKeyEvent* event)
{
    if (event->key() == Qt::Key_Return || event->key() == Qt::Key_Enter) {
        if (!event->isAutoRepeat())
            animateClick();
        return;
    }
    if (event->key() == Qt::Key_F10 && event->modifiers() == Qt::ShiftModifier) {
        TellMouseUp(2);
        return;
    }
    QPushButton::keyPressEvent(event);
}

void Button::contextMenuEvent(QContextMenuEvent* event)
{
    // A mouse click has already been reported by its release event.
    if (event->reason() == QContextMenuEvent::Keyboard)
        TellMouseUp(2);
    event->accept();
}

ValueBar::ValueBar(QWidget* parent) : QScrollBar(Qt::Horizontal, parent)
{
    // It does not draw all of its rectangle, as a scroll bar is taken to do unless the style says otherwise.
    setAttribute(Qt::WA_OpaquePaintEvent, false);
    setFocusPolicy(Qt::StrongFocus);
    setContextMenuPolicy(Qt::NoContextMenu);
    // An ordinary scroll bar's keys and wheel scroll a document; here up and right mean a higher value.
    setInvertedControls(false);
    setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Fixed);
    setAttribute(Qt::WA_Hover);
}

QSize ValueBar::sizeHint() const
{
    return {Scaled(160), Scaled(BarHeight)};
}

QSize ValueBar::minimumSizeHint() const
{
    return {Scaled(100), Scaled(BarHeight)};
}

bool ValueBar::event(QEvent* event)
{
    switch (event->type()) {
    case QEvent::FocusIn:
    case QEvent::FocusOut:
    case QEvent::HoverMove:
    case QEvent::HoverLeave:
    case QEvent::PaletteChange:
        update();
        break;
    default:
        break;
    }
    return QScrollBar::event(event);
}

void ValueBar::paintEvent(QPaintEvent* /*event*/)
{
    QStyleOptionSlider option;
    initStyleOption(&option);
    const auto part = [&](QStyle::SubControl control) {
        return QRectF(style()->subControlRect(QStyle::CC_ScrollBar, &option, control, this));
    };
    const QRectF handle = part(QStyle::SC_ScrollBarSlider);
    const QRectF groove = part(QStyle::SC_ScrollBarGroove);
    const QPointF mouse = mapFromGlobal(QCursor::pos());
    const bool hover = isEnabled() && underMouse();
    const QColor accent = palette().color(QPalette::Highlight);
    const QColor ink = Ink(*this);

    const qreal scale = FontScale();
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setOpacity(isEnabled() ? 1.0 : DisabledOpacity);

    // A style may have no arrows, or both at one end. Each is drawn where the style takes its clicks.
    for (const bool less : {true, false}) {
        const QRectF arrow = part(less ? QStyle::SC_ScrollBarSubLine : QStyle::SC_ScrollBarAddLine);
        if (arrow.width() < 4)
            continue;
        const bool points = less != (layoutDirection() == Qt::RightToLeft);
        const bool hot = hover && arrow.contains(mouse);
        const QPointF middle = arrow.center();
        const qreal x = (points ? -1.5 : 1.5) * scale;
        const qreal y = 3.5 * scale;
        painter.setPen(QPen(hot ? accent : ink, 1.75 * scale, Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin));
        painter.drawPolyline(QPolygonF{middle + QPointF(-x, -y), middle + QPointF(x, 0), middle + QPointF(-x, y)});
    }

    const qreal middle = groove.center().y();
    const QRectF track(groove.left() + 2, middle - 2, groove.width() - 4, 4);
    painter.setPen(Qt::NoPen);
    painter.setBrush(Mix(palette().color(QPalette::Window), palette().color(QPalette::WindowText), 0.2));
    painter.drawRoundedRect(track, 2, 2);
    QRectF filled = track;
    if (layoutDirection() == Qt::RightToLeft)
        filled.setLeft(handle.center().x());
    else
        filled.setRight(handle.center().x());
    painter.setBrush(accent);
    painter.drawRoundedRect(filled, 2, 2);

    const bool pressed = isSliderDown();
    const bool hot = pressed || (hover && handle.contains(mouse));
    const QRectF whole(0, 0, 22 * scale, 16 * scale);
    QRectF knob(0, 0, std::min(handle.width(), whole.width()), whole.height());
    knob.moveCenter({handle.center().x(), middle});
    if (hasFocus()) {
        painter.setBrush(Qt::NoBrush);
        painter.setPen(QPen(accent, 2));
        painter.drawRoundedRect(knob.adjusted(-2, -2, 2, 2), whole.height() / 2 + 2, whole.height() / 2 + 2);
    }
    const QColor face = Face(*this);
    painter.setBrush(pressed ? Mix(face, accent, 0.35) : face);
    painter.setPen(QPen(hot ? accent : Mix(Outline(palette()), ink, 0.3), 1));
    painter.drawRoundedRect(knob.adjusted(0.5, 0.5, -0.5, -0.5), whole.height() / 2 - 0.5, whole.height() / 2 - 0.5);
}

void ValueBar::keyPressEvent(QKeyEvent* event)
{
    const bool mirrored = isRightToLeft();
    switch (event->key()) {
    case Qt::Key_Left:
        triggerAction(mirrored ? SliderSingleStepAdd : SliderSingleStepSub);
        break;
    case Qt::Key_Right:
        triggerAction(mirrored ? SliderSingleStepSub : SliderSingleStepAdd);
        break;
    // The page keys work as in a classic scroll bar: Page Down moves forward.
    case Qt::Key_PageUp:
        triggerAction(SliderPageStepSub);
        break;
    case Qt::Key_PageDown:
        triggerAction(SliderPageStepAdd);
        break;
    default:
        QScrollBar::keyPressEvent(event);
        break;
    }
}

void ValueBar::wheelEvent(QWheelEvent* event)
{
    if (hasFocus())
        QScrollBar::wheelEvent(event);
    else
        event->ignore();
}

StatusPanel::StatusPanel(int chars, QWidget* parent) : QLabel(parent), chars_(chars)
{
    setTextFormat(Qt::PlainText);
    setSizePolicy(chars_ > 0 ? QSizePolicy::Fixed : QSizePolicy::Ignored, QSizePolicy::Fixed);
}

QSize StatusPanel::sizeHint() const
{
    const QFontMetrics metrics = fontMetrics();
    // Measured by a digit, because digits and capitals are wider than a font's average of small letters.
    return {chars_ * metrics.horizontalAdvance(u'0') + 2 * PanelPadding, metrics.height() + 8};
}

bool StatusPanel::event(QEvent* event)
{
    if (event->type() == QEvent::ToolTip) {
        const QRect inside = rect().adjusted(PanelPadding, 0, -PanelPadding, 0);
        if (fontMetrics().horizontalAdvance(text()) > inside.width())
            QToolTip::showText(static_cast<QHelpEvent*>(event)->globalPos(), text().toHtmlEscaped(), this);
        else
            QToolTip::hideText();
        return true;
    }
    return QLabel::event(event);
}

void StatusPanel::paintEvent(QPaintEvent* /*event*/)
{
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    const QRectF frame = QRectF(rect()).adjusted(0.5, 0.5, -0.5, -0.5);
    const QColor window = palette().color(QPalette::Window);
    const QColor text = palette().color(QPalette::WindowText);
    painter.setPen(QPen(Mix(window, text, 0.16), 1));
    painter.setBrush(Mix(window, text, 0.045));
    painter.drawRoundedRect(frame, 4, 4);

    const QRect inside = rect().adjusted(PanelPadding, 0, -PanelPadding, 0);
    painter.setPen(text);
    painter.drawText(inside,
                     static_cast<int>(Qt::AlignVCenter | Qt::TextSingleLine) |
                         static_cast<int>(alignment() & Qt::AlignHorizontal_Mask),
                     fontMetrics().elidedText(this->text(), Qt::ElideRight, inside.width()));
}

void GroupFrame::ShowTitle(const QString& title)
{
    setTitle(title);
    updateGeometry();
}

QSize GroupFrame::minimumSizeHint() const
{
    QFont heading = font();
    heading.setWeight(QFont::DemiBold);
    const int caption = QFontMetrics(heading).horizontalAdvance(title()) + 2 * Margin + 4;
    return QGroupBox::minimumSizeHint().expandedTo({caption, 0});
}

void GroupFrame::paintEvent(QPaintEvent* /*event*/)
{
    QStyleOptionGroupBox option;
    initStyleOption(&option);
    const int top = style()->subControlRect(QStyle::CC_GroupBox, &option, QStyle::SC_GroupBoxContents, this).top();
    const QColor window = palette().color(QPalette::Window);
    const QColor text = palette().color(QPalette::WindowText);
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(QPen(Mix(window, text, 0.16), 1));
    painter.setBrush(Mix(window, text, 0.025));
    painter.drawRoundedRect(QRectF(rect()).adjusted(0.5, 0.5, -0.5, -0.5), Rounding, Rounding);

    QFont heading = font();
    heading.setWeight(QFont::DemiBold);
    painter.setFont(heading);
    // Between the edge and the content's first line, which begins `Margin` below the space that the style keeps free.
    const QRect caption(Margin + 1, 0, width() - 2 * Margin - 2, top + Margin);
    style()->drawItemText(&painter, caption, Qt::AlignLeft | Qt::AlignVCenter | Qt::TextShowMnemonic, palette(),
                          isEnabled(), title(), QPalette::WindowText);
}

Picture::Picture(const IconSet& icons, const QString& name, int size, QWidget* parent)
    : QWidget(parent), icons_(icons), name_(name), size_(size)
{
    setSizePolicy(QSizePolicy::Fixed, QSizePolicy::Fixed);
}

QSize Picture::sizeHint() const
{
    return {Scaled(size_), Scaled(size_)};
}

void Picture::paintEvent(QPaintEvent* /*event*/)
{
    QPainter painter(this);
    painter.drawPixmap(0, 0, icons_.Pixmap(name_, width(), devicePixelRatioF(), palette().color(QPalette::WindowText)));
}

} // namespace voxmate::qt
