#include "qt/character/QtBalloonWindow.h"

#include "qt/system/Desktop.h"
#include "qt/widgets/QtText.h"

#include <QFontDatabase>
#include <QFontMetricsF>
#include <QPainter>
#include <QPainterPath>

#include <algorithm>

namespace voxmate::qt
{

namespace
{

constexpr qreal CornerRadius = 10;
constexpr qreal TailWidth = 18;
constexpr qreal OutlineWidth = 1.25;
/// Space around the bubble for outline and shadow, in device-independent pixels.
constexpr int Margin = 7;

QColor ToQColor(agent::Colour colour)
{
    return QColor(colour.red, colour.green, colour.blue);
}

QRect ToQRect(const Rect& rect)
{
    return QRect(rect.x, rect.y, rect.width, rect.height);
}

/// The rectangle of a balloon's window on the screen.
QRect Extent(const agent::BalloonView& view)
{
    return ToQRect(view.bubble)
        .united(QRect(view.tailTip.x, view.tailTip.y, 1, 1))
        .adjusted(-Margin, -Margin, Margin, Margin);
}

/// The tail: from the edge of `bubble` nearest to `tip`, bent a little like a drawn stroke. Empty if `tip` lies inside.
QPainterPath Tail(const QRectF& bubble, QPointF tip)
{
    const qreal above = bubble.top() - tip.y();
    const qreal below = tip.y() - bubble.bottom();
    const qreal left = bubble.left() - tip.x();
    const qreal right = tip.x() - bubble.right();
    const qreal furthest = std::max({above, below, left, right});
    QPainterPath tail;
    if (furthest <= 0)
        return tail;

    const qreal corner = CornerRadius + TailWidth / 2;
    // The root lies inside the edge so that both shapes unite without a seam.
    const qreal inside = OutlineWidth * 2;
    const bool upright = furthest == above || furthest == below;
    QPointF root;
    QPointF half;
    if (upright) {
        const qreal middle = bubble.center().x();
        const qreal x =
            bubble.width() > 2 * corner ? std::clamp(tip.x(), bubble.left() + corner, bubble.right() - corner) : middle;
        // A tail that leans from the bubble's middle looks like speech; one straight down would look like a map pin.
        const qreal lean = std::clamp((middle - x) * 0.25, -TailWidth, TailWidth);
        root = {x + lean, furthest == above ? bubble.top() + inside : bubble.bottom() - inside};
        half = {TailWidth / 2, 0};
    } else {
        const qreal y = bubble.height() > 2 * corner
                            ? std::clamp(tip.y(), bubble.top() + corner, bubble.bottom() - corner)
                            : bubble.center().y();
        root = {furthest == left ? bubble.left() + inside : bubble.right() - inside, y};
        half = {0, TailWidth / 2};
    }
    const QPointF bend = root + (tip - root) * 0.35;
    tail.moveTo(root - half);
    tail.quadTo(bend - half * 0.45, tip);
    tail.quadTo(bend + half * 0.45, root + half);
    tail.closeSubpath();
    return tail;
}

} // namespace

QFont ToQFont(const agent::BalloonFont& font)
{
    const QString family = ToQt(font.name);
    QFont result = QFontDatabase::hasFamily(family)
                       ? QFont(family)
                       : QFont(QFontDatabase::systemFont(QFontDatabase::GeneralFont).family());
    result.setPointSize(std::max(font.points, 1));
    result.setBold(font.bold);
    result.setItalic(font.italic);
    return result;
}

QtBalloonWindow::QtBalloonWindow()
{
    window_->Draw = [this](qreal ratio, bool cutOut) { return Shaped(Draw(ratio), cutOut); };
    window_->OnMouse = [this](const agent::MouseEvent& event) {
        if (const auto mouse = Mouse)
            mouse(event);
    };
}

void QtBalloonWindow::Show(const agent::BalloonView& view)
{
    view_ = view;
    const QRect all = Extent(view);
    if (all.size() != window_->size())
        window_->setFixedSize(all.size());
    if (all.topLeft() != window_->pos())
        window_->Place(all.topLeft());
    window_->Refresh();
    window_->Display(true);
}

QImage QtBalloonWindow::Draw(qreal ratio) const
{
    const QRect all = Extent(view_);
    QImage image((QSizeF(all.size()) * ratio).toSize(), QImage::Format_ARGB32_Premultiplied);
    image.fill(Qt::transparent);
    image.setDevicePixelRatio(ratio);
    QPainter painter(&image);
    painter.setRenderHint(QPainter::Antialiasing);

    const QRectF whole = QRectF(ToQRect(view_.bubble)).translated(-all.topLeft());
    // Moved in by half a pixel so that straight edges are sharp.
    const QRectF bubble = whole.adjusted(0.5, 0.5, -0.5, -0.5);
    const QPointF tip = QPointF(view_.tailTip.x + 0.5, view_.tailTip.y + 0.5) - QPointF(all.topLeft());

    QPainterPath outline;
    outline.addRoundedRect(bubble, CornerRadius, CornerRadius);
    outline = outline.united(Tail(bubble, tip));

    if (Compositor::Instance().Running()) {
        painter.save();
        painter.translate(0, 1);
        painter.setBrush(Qt::NoBrush);
        for (int width = 2; width <= 10; width += 2)
            painter.strokePath(outline, QPen(QColor(0, 0, 0, 12), width, Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin));
        painter.restore();
    }
    painter.setBrush(ToQColor(view_.background));
    painter.setPen(QPen(ToQColor(view_.border), OutlineWidth, Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin));
    painter.drawPath(outline);

    const QFont font = ToQFont(view_.font);
    painter.setFont(font);
    painter.setPen(ToQColor(view_.text));
    painter.setClipRect(bubble);
    const QFontMetricsF metrics(font);
    qreal y = whole.top() + agent::BalloonPadding + metrics.ascent();
    for (std::size_t i = 0; i < view_.lines.size(); ++i) {
        const QString line = ToQt(view_.lines[i]);
        const bool rightToLeft = i < view_.rightToLeft.size() && view_.rightToLeft[i];
        // The direction also decides on which side of the line a full stop stands.
        painter.setLayoutDirection(rightToLeft ? Qt::RightToLeft : Qt::LeftToRight);
        const qreal x = rightToLeft ? whole.right() - agent::BalloonPadding - metrics.horizontalAdvance(line)
                                    : whole.left() + agent::BalloonPadding;
        painter.drawText(QPointF(x, y), line);
        y += view_.lineHeight;
    }
    return image;
}

} // namespace voxmate::qt
