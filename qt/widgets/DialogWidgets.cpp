#include "qt/widgets/DialogWidgets.h"

#include "qt/widgets/FontScale.h"
#include "qt/widgets/Widgets.h"

#include <QMovie>
#include <QPainter>
#include <QPainterPath>
#include <QScrollBar>
#include <QShortcut>

#include <algorithm>
#include <utility>

namespace voxmate::qt
{

namespace
{

// Sizes in device-independent pixels.
constexpr qreal Rounding = 6;
constexpr qreal MovieRounding = 12;
constexpr int SampleHeight = 30;
constexpr int SampleWidth = 150;
constexpr int SamplePadding = 8;

QColor Line(const QWidget& widget)
{
    return Mix(widget.palette().color(QPalette::Window), widget.palette().color(QPalette::WindowText), 0.16);
}

} // namespace

MovieLabel::MovieLabel(const QString& path, const QString& darkPath, int size, QWidget* parent)
    : QLabel(parent), path_(path), darkPath_(darkPath), size_(size)
{
    setSizePolicy(QSizePolicy::Fixed, QSizePolicy::Fixed);
    Choose();
}

/// Takes the picture that suits the theme.
void MovieLabel::Choose()
{
    const QString& path = palette().color(QPalette::Window).lightness() < 128 ? darkPath_ : path_;
    QMovie* const before = movie();
    if (before && before->fileName() == path)
        return;
    auto* movie = new QMovie(path, {}, this);
    setMovie(movie);
    movie->jumpToFrame(0);
    if (isVisible())
        movie->start();
    delete before;
}

void MovieLabel::changeEvent(QEvent* event)
{
    QLabel::changeEvent(event);
    if (event->type() == QEvent::PaletteChange && movie())
        Choose();
}

QSize MovieLabel::sizeHint() const
{
    return {Scaled(size_), Scaled(size_)};
}

void MovieLabel::showEvent(QShowEvent* event)
{
    QLabel::showEvent(event);
    movie()->start();
}

void MovieLabel::hideEvent(QHideEvent* event)
{
    QLabel::hideEvent(event);
    movie()->stop();
}

void MovieLabel::paintEvent(QPaintEvent* /*event*/)
{
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    const QRectF square(rect());
    const QPixmap picture = movie()->currentPixmap();
    if (!picture.isNull()) {
        // Drawn as a brush, the picture has smooth rounded corners; a clip would leave steps.
        QBrush brush(picture);
        brush.setTransform(QTransform::fromScale(square.width() / picture.width(), square.height() / picture.height()));
        painter.setRenderHint(QPainter::SmoothPixmapTransform);
        painter.setBrush(brush);
    }
    painter.setPen(Qt::NoPen);
    painter.drawRoundedRect(square, MovieRounding, MovieRounding);
}

PaneArea::PaneArea(QWidget* parent) : QScrollArea(parent)
{
    setFrameShape(QFrame::NoFrame);
    setFocusPolicy(Qt::NoFocus);
    setWidgetResizable(true);
    setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    viewport()->setAutoFillBackground(false);
    auto* content = new QWidget;
    setWidget(content);
    content->setAutoFillBackground(false);
    // The form's buttons keep the focus and do not use these keys, which scroll the text.
    for (const auto& [key, action] : {std::pair{Qt::Key_PageUp, QAbstractSlider::SliderPageStepSub},
                                      std::pair{Qt::Key_PageDown, QAbstractSlider::SliderPageStepAdd}})
        connect(new QShortcut(key, this), &QShortcut::activated, verticalScrollBar(),
                [bar = verticalScrollBar(), action = action] { bar->triggerAction(action); });
}

void PaneArea::paintEvent(QPaintEvent* /*event*/)
{
    QPainter painter(viewport());
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(QPen(Line(*this), 1));
    painter.setBrush(palette().color(QPalette::Base));
    painter.drawRoundedRect(QRectF(viewport()->rect()).adjusted(0.5, 0.5, -0.5, -0.5), Rounding, Rounding);
}

SampleLabel::SampleLabel(QWidget* parent) : QLabel(parent)
{
    setTextFormat(Qt::PlainText);
    setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Fixed);
}

void SampleLabel::ShowIn(const QString& family, double points)
{
    family_ = family;
    points_ = points;
    update();
}

QSize SampleLabel::sizeHint() const
{
    return {Scaled(SampleWidth), Scaled(SampleHeight)};
}

void SampleLabel::paintEvent(QPaintEvent* /*event*/)
{
    QFont shown = font();
    if (!family_.isEmpty())
        shown.setFamily(family_);
    if (points_ > 0)
        shown.setPointSizeF(points_);
    const int room = height() - 4;
    // A font's height is proportional to its size.
    if (const int needed = QFontMetrics(shown).height(); needed > room)
        shown.setPointSizeF(std::max(1.0, shown.pointSizeF() * room / needed));

    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    const QColor window = palette().color(QPalette::Window);
    const QColor ink = palette().color(QPalette::WindowText);
    painter.setPen(QPen(Line(*this), 1));
    painter.setBrush(Mix(window, palette().color(QPalette::Base), isEnabled() ? 0.7 : 0));
    painter.drawRoundedRect(QRectF(rect()).adjusted(0.5, 0.5, -0.5, -0.5), 4, 4);
    painter.setFont(shown);
    painter.setPen(ink);
    const QRect inside = rect().adjusted(SamplePadding, 0, -SamplePadding, 0);
    painter.drawText(inside, static_cast<int>(Qt::AlignVCenter) | static_cast<int>(Qt::TextSingleLine),
                     QFontMetrics(shown).elidedText(text(), Qt::ElideRight, inside.width()));
}

} // namespace voxmate::qt
