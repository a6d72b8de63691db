#include "qt/alerts/PlacedLabel.h"

#include <QFontInfo>
#include <QMouseEvent>
#include <QPainter>
#include <QTextLayout>

#include <algorithm>
#include <cmath>
#include <memory>

namespace voxmate::qt
{

namespace
{

/// Least distance, in pixels, between the text and the window's lower edge.
constexpr int LowerMargin = 6;

// In points. Smaller letters are hard to read, so a text gives up its line breaks before it becomes smaller than this.
constexpr qreal LeastSize = 6;
constexpr qreal SizeStep = 0.25;

/// Breaks a text into lines; all kinds of line ends count.
class Lines
{
public:
    Lines(QString text, const QFont& font, int width)
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

    void Draw(QPainter& painter) const { layout_.draw(&painter, {0, 0}); }

private:
    qreal height_ = 0;
    QTextLayout layout_;
};

/// The text laid out in `font`, or in as much smaller letters as it takes to fit into `room` pixels of height, so that
/// no word is left out. If it does not fit at LeastSize, its lines are joined and the letters become as small as that
/// takes.
std::unique_ptr<Lines> Fitted(const QString& text, const QFont& font, int width, int room)
{
    const QString runningOn = text.simplified();
    const auto tried = [&](const QString& shown, qreal points) {
        QFont smaller = font;
        smaller.setPointSizeF(points);
        return std::make_unique<Lines>(shown, smaller, width);
    };
    std::unique_ptr<Lines> lines = std::make_unique<Lines>(text, font, width);
    const qreal own = QFontInfo(font).pointSizeF();
    for (qreal points = own - SizeStep; lines->Height() > room && points >= LeastSize; points -= SizeStep)
        lines = tried(text, points);
    for (qreal points = own; lines->Height() > room && points >= SizeStep; points -= SizeStep)
        lines = tried(runningOn, points);
    return lines;
}

} // namespace

int PlainTextHeight(const QString& text, const QFont& font, int width)
{
    return Lines(text, font, width).Height();
}

PlacedLabel::PlacedLabel(QWidget* parent) : QLabel(parent)
{
    setTextFormat(Qt::PlainText);
    setTextInteractionFlags(Qt::NoTextInteraction);
    // The window's background is light in every theme.
    QPalette ink = palette();
    ink.setColor(QPalette::WindowText, Qt::black);
    setPalette(ink);
}

void PlacedLabel::paintEvent(QPaintEvent* /*event*/)
{
    QPainter painter(this);
    painter.setPen(palette().color(QPalette::WindowText));
    const int room = std::min(height(), window()->height() - y() - LowerMargin);
    Fitted(text(), font(), width(), room)->Draw(painter);
}

void PlacedLabel::mousePressEvent(QMouseEvent* event)
{
    event->accept();
}

void PlacedLabel::mouseReleaseEvent(QMouseEvent* event)
{
    // Copied, because the form may release its window inside the call.
    const auto click = OnClick;
    if (click && rect().contains(event->position().toPoint()))
        click();
}

} // namespace voxmate::qt
