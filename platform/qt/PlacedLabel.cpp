#include "platform/qt/PlacedLabel.h"

#include <QFontMetricsF>
#include <QMouseEvent>
#include <QPainter>
#include <QTextLayout>

#include <algorithm>
#include <cmath>

namespace voxmate::qt
{

namespace
{

/// Least room, in pixels, between the text and the window's lower edge.
constexpr int LowerMargin = 6;

/// Breaks a text into lines; line ends of every kind count.
class Lines
{
public:
    Lines(QString text, const QFont& font, int width) : width_(width)
    {
        text.replace(QStringLiteral("\r\n"), QStringLiteral("\n"));
        text.replace(QLatin1Char('\r'), QChar::LineSeparator);
        text.replace(QLatin1Char('\n'), QChar::LineSeparator);
        layout_.setText(text);
        layout_.setFont(font);
        QTextOption option(Qt::AlignLeft);
        option.setWrapMode(QTextOption::WrapAtWordBoundaryOrAnywhere);
        option.setTextDirection(text.isRightToLeft() ? Qt::RightToLeft : Qt::LeftToRight);
        layout_.setTextOption(option);
        layout_.beginLayout();
        for (QTextLine line = layout_.createLine(); line.isValid(); line = layout_.createLine()) {
            line.setLineWidth(width);
            line.setPosition({0, height_});
            height_ += std::ceil(line.height());
        }
        layout_.endLayout();
    }

    int Height() const { return static_cast<int>(height_); }

    /// Draws as many lines as `room` pixels hold; the last one ends in an ellipsis when there are more.
    void Draw(QPainter& painter, int room) const
    {
        const int count = layout_.lineCount();
        int shown = 0;
        while (shown < count && Bottom(shown) <= room)
            ++shown;
        const bool cut = shown < count;
        for (int i = 0; i < shown - (cut ? 1 : 0); ++i)
            layout_.lineAt(i).draw(&painter, {0, 0});
        if (!cut || shown == 0)
            return;
        const QTextLine last = layout_.lineAt(shown - 1);
        const QTextOption option = layout_.textOption();
        painter.setFont(layout_.font());
        painter.drawText(QRectF(0, last.y(), width_, std::ceil(last.height())), Ellipsed(last), option);
    }

private:
    qreal Bottom(int line) const { return layout_.lineAt(line).y() + std::ceil(layout_.lineAt(line).height()); }

    /// The last line that has room, and what would have come after it in the same paragraph as far as it goes.
    QString Ellipsed(const QTextLine& line) const
    {
        const QChar ellipsis(0x2026);
        const QString text = layout_.text();
        const qsizetype end = text.indexOf(QChar::LineSeparator, line.textStart());
        const QString rest = text.mid(line.textStart(), end < 0 ? -1 : end - line.textStart());
        const QFontMetricsF metrics(layout_.font());
        const QString whole = rest.trimmed() + ellipsis;
        return metrics.elidedText(whole, Qt::ElideRight, width_);
    }

    const int width_;
    qreal height_ = 0;
    QTextLayout layout_;
};

} // namespace

int PlainTextHeight(const QString& text, const QFont& font, int width)
{
    return Lines(text, font, width).Height();
}

PlacedLabel::PlacedLabel(QWidget* parent) : QLabel(parent)
{
    setTextFormat(Qt::PlainText);
    setTextInteractionFlags(Qt::NoTextInteraction);
    // The window is pale in every theme.
    QPalette ink = palette();
    ink.setColor(QPalette::WindowText, Qt::black);
    setPalette(ink);
}

void PlacedLabel::paintEvent(QPaintEvent* /*event*/)
{
    QPainter painter(this);
    painter.setPen(palette().color(QPalette::WindowText));
    const Lines lines(text(), font(), width());
    lines.Draw(painter, std::min(height(), window()->height() - y() - LowerMargin));
}

void PlacedLabel::mousePressEvent(QMouseEvent* event)
{
    event->accept();
}

void PlacedLabel::mouseReleaseEvent(QMouseEvent* event)
{
    // A copy: the form may let its window go from within.
    const auto click = OnClick;
    if (click && rect().contains(event->position().toPoint()))
        click();
}

} // namespace voxmate::qt
