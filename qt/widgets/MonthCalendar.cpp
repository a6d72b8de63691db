#include "qt/widgets/MonthCalendar.h"

#include "controls/MonthView.h"
#include "qt/widgets/AccessibleRole.h"
#include "qt/widgets/FontScale.h"
#include "qt/widgets/ReadableStyle.h"
#include "qt/widgets/Widgets.h"

#include <QAccessible>
#include <QGridLayout>
#include <QHBoxLayout>
#include <QKeyEvent>
#include <QLocale>
#include <QPainter>
#include <QVBoxLayout>

#include <algorithm>
#include <utility>

namespace voxmate::qt
{

namespace
{

// Device-independent pixels.
constexpr int CellWidth = 32;
constexpr int CellHeight = 25;
constexpr int CellPadding = 14; // beside the figures of a day, at least
constexpr int ArrowWidth = 24;
constexpr int Padding = 6;
constexpr qreal Rounding = 5;

constexpr qreal Quiet = 0.45; ///< how far secondary text is blended into its background
constexpr qreal DisabledOpacity = 0.4;

/// The size of a day's cell, in which the widest figures and a weekday's first two letters have room.
QSize CellOf(const QWidget& widget)
{
    QFont bold = widget.font();
    bold.setWeight(QFont::DemiBold);
    const QFontMetrics figures(bold);
    return {std::max(CellWidth, figures.horizontalAdvance(QStringLiteral("00")) + CellPadding),
            std::max(CellHeight, figures.height() + CellPadding / 2)};
}

bool IsShown(const QDate& date)
{
    return date.isValid() && IsCalendarDate({date.year(), date.month(), date.day()});
}

QColor FieldGround(const QWidget& widget)
{
    return widget.palette().color(QPalette::Base);
}

/// One day; checked if it is the chosen one. The calendar keeps the focus.
class DayButton : public QPushButton
{
public:
    explicit DayButton(QWidget* calendar) : QPushButton(calendar)
    {
        setFocusPolicy(Qt::NoFocus);
        setCheckable(true);
        setSizePolicy(QSizePolicy::Fixed, QSizePolicy::Fixed);
        setAttribute(Qt::WA_Hover);
    }

    bool Today = false;
    bool OtherMonth = false;

    QSize sizeHint() const override { return CellOf(*this); }
    QSize minimumSizeHint() const override { return sizeHint(); }

protected:
    void paintEvent(QPaintEvent* /*event*/) override
    {
        const QColor ground = FieldGround(*this);
        const QColor accent = palette().color(QPalette::Active, QPalette::Highlight);
        QPainter painter(this);
        painter.setRenderHint(QPainter::Antialiasing);
        painter.setOpacity(isEnabled() ? 1.0 : DisabledOpacity);
        const QRectF cell = QRectF(rect()).adjusted(2, 1, -2, -1);
        painter.setPen(Qt::NoPen);
        if (isChecked()) {
            painter.setBrush(accent);
            painter.drawRoundedRect(cell, Rounding, Rounding);
            if (parentWidget()->hasFocus()) {
                painter.setBrush(Qt::NoBrush);
                painter.setPen(QPen(palette().color(QPalette::HighlightedText), 1));
                painter.drawRoundedRect(cell.adjusted(2, 2, -2, -2), Rounding - 2, Rounding - 2);
            }
        } else if (isDown() || underMouse()) {
            painter.setBrush(Mix(ground, accent, isDown() ? 0.4 : 0.18));
            painter.drawRoundedRect(cell, Rounding, Rounding);
        }
        if (Today && !isChecked()) {
            painter.setBrush(Qt::NoBrush);
            painter.setPen(QPen(accent, 1.5));
            painter.drawRoundedRect(cell.adjusted(0.75, 0.75, -0.75, -0.75), Rounding, Rounding);
        }
        QColor ink = palette().color(isChecked() ? QPalette::HighlightedText : QPalette::Text);
        if (OtherMonth && !isChecked())
            ink = Mix(ink, ground, Quiet);
        QFont figures = font();
        figures.setWeight(Today || isChecked() ? QFont::DemiBold : QFont::Normal);
        painter.setFont(figures);
        painter.setPen(ink);
        painter.drawText(rect(), Qt::AlignCenter, text());
    }
};

/// An arrow above the days, single for a month, double for a year.
class ArrowButton : public QPushButton
{
public:
    ArrowButton(QWidget* calendar, int months, const QString& what) : QPushButton(calendar), months_(months)
    {
        setFocusPolicy(Qt::NoFocus);
        setSizePolicy(QSizePolicy::Fixed, QSizePolicy::Fixed);
        setAutoRepeat(true);
        setAttribute(Qt::WA_Hover);
        setAccessibleName(what);
        setToolTip(what);
    }

    QSize sizeHint() const override { return {Scaled(ArrowWidth), CellOf(*this).height()}; }
    QSize minimumSizeHint() const override { return sizeHint(); }

protected:
    void paintEvent(QPaintEvent* /*event*/) override
    {
        const QColor ground = FieldGround(*this);
        const QColor accent = palette().color(QPalette::Active, QPalette::Highlight);
        QPainter painter(this);
        painter.setRenderHint(QPainter::Antialiasing);
        painter.setOpacity(isEnabled() ? 1.0 : DisabledOpacity);
        if (isDown() || underMouse()) {
            painter.setPen(Qt::NoPen);
            painter.setBrush(Mix(ground, accent, isDown() ? 0.4 : 0.18));
            painter.drawRoundedRect(QRectF(rect()).adjusted(1, 1, -1, -1), Rounding, Rounding);
        }
        const bool right = (months_ > 0) != (layoutDirection() == Qt::RightToLeft);
        const qreal scale = FontScale();
        const qreal x = (right ? 2 : -2) * scale;
        const qreal y = 4 * scale;
        const QPointF middle = QRectF(rect()).center();
        painter.setBrush(Qt::NoBrush);
        painter.setPen(QPen(Mix(palette().color(QPalette::Text), ground, 0.2), 1.75 * scale, Qt::SolidLine,
                            Qt::RoundCap, Qt::RoundJoin));
        const bool year = months_ > 1 || months_ < -1;
        for (const qreal shift : {-2.5 * scale, 2.5 * scale}) {
            const QPointF tip = middle + QPointF(year ? shift : 0, 0);
            painter.drawPolyline(QPolygonF{tip + QPointF(-x, -y), tip + QPointF(x, 0), tip + QPointF(-x, y)});
            if (!year)
                break;
        }
    }

private:
    const int months_;
};

/// The line at the bottom; a click goes to today.
class TodayButton : public QPushButton
{
public:
    explicit TodayButton(QWidget* calendar) : QPushButton(calendar)
    {
        setFocusPolicy(Qt::NoFocus);
        setSizePolicy(QSizePolicy::Preferred, QSizePolicy::Fixed);
        setAttribute(Qt::WA_Hover);
    }

    QSize sizeHint() const override
    {
        return {fontMetrics().horizontalAdvance(text()) + CellPadding, CellOf(*this).height()};
    }
    QSize minimumSizeHint() const override { return sizeHint(); }

protected:
    void paintEvent(QPaintEvent* /*event*/) override
    {
        const QColor ground = FieldGround(*this);
        const QColor accent = palette().color(QPalette::Active, QPalette::Highlight);
        QPainter painter(this);
        painter.setRenderHint(QPainter::Antialiasing);
        painter.setOpacity(isEnabled() ? 1.0 : DisabledOpacity);
        if (isDown() || underMouse()) {
            painter.setPen(Qt::NoPen);
            painter.setBrush(Mix(ground, accent, isDown() ? 0.4 : 0.18));
            painter.drawRoundedRect(QRectF(rect()).adjusted(2, 1, -2, -1), Rounding, Rounding);
        }
        painter.setPen(Mix(palette().color(QPalette::Text), ground, 0.15));
        painter.drawText(rect(), Qt::AlignCenter, text());
    }
};

} // namespace

MonthCalendar::MonthCalendar(QWidget* parent)
    : QWidget(parent), date_(QDate::currentDate()), title_(new QLabel(this)), today_(new TodayButton(this))
{
    setFocusPolicy(Qt::StrongFocus);
    setSizePolicy(QSizePolicy::Fixed, QSizePolicy::Fixed);
    SetAccessibleRole(*this, QAccessible::Grouping);

    auto* top = new QHBoxLayout;
    top->setSpacing(0);
    const auto arrow = [this, top](int months, const QString& what) {
        auto* button = new ArrowButton(this, months, what);
        connect(button, &QPushButton::clicked, this, [this, months] { Choose(date_.addMonths(months)); });
        top->addWidget(button);
    };
    arrow(-12, QStringLiteral("Year before"));
    arrow(-1, QStringLiteral("Month before"));
    title_->setAlignment(Qt::AlignCenter);
    title_->setTextFormat(Qt::PlainText);
    title_->setForegroundRole(QPalette::Text);
    QFont heading;
    heading.setWeight(QFont::DemiBold);
    title_->setFont(heading);
    top->addWidget(title_, 1);
    arrow(1, QStringLiteral("Month after"));
    arrow(12, QStringLiteral("Year after"));

    auto* grid = new QGridLayout;
    grid->setSpacing(0);
    for (int column = 0; column < DaysOfWeek; ++column) {
        auto* label = new QLabel(this);
        label->setAlignment(Qt::AlignCenter);
        label->setTextFormat(Qt::PlainText);
        weekdays_[static_cast<std::size_t>(column)] = label;
        grid->addWidget(label, 0, column);
    }
    for (int cell = 0; cell < Weeks * DaysOfWeek; ++cell) {
        auto* day = new DayButton(this);
        connect(day, &QPushButton::clicked, this, [this, cell] { Choose(FirstShown().addDays(cell)); });
        days_[static_cast<std::size_t>(cell)] = day;
        grid->addWidget(day, 1 + cell / DaysOfWeek, cell % DaysOfWeek);
    }
    connect(today_, &QPushButton::clicked, this, [this] { Choose(QDate::currentDate()); });

    auto* all = new QVBoxLayout(this);
    all->setContentsMargins(Padding, Padding, Padding, Padding);
    all->setSpacing(0);
    all->addLayout(top);
    all->addLayout(grid);
    all->addWidget(today_);
    FillTitles();
    Fill();
}

void MonthCalendar::SetDate(const QDate& date)
{
    if (!IsShown(date))
        return;
    date_ = date;
    Fill();
}

void MonthCalendar::Choose(const QDate& date)
{
    if (!IsShown(date) || date == date_) {
        Fill(); // the click has changed the button's own checked state
        return;
    }
    date_ = date;
    Fill();
    if (hasFocus()) {
        QAccessibleEvent moved(days_[static_cast<std::size_t>(FirstShown().daysTo(date_))], QAccessible::Focus);
        QAccessible::updateAccessibility(&moved);
    }
    // Copied, because the form may be destroyed inside the call.
    if (const auto tell = OnSelect)
        tell(date);
}

QDate MonthCalendar::FirstShown() const
{
    const QDate first(date_.year(), date_.month(), 1);
    const int before = (first.dayOfWeek() - QLocale().firstDayOfWeek() + DaysOfWeek) % DaysOfWeek;
    return first.addDays(-before);
}

void MonthCalendar::FillTitles()
{
    const QLocale locale;
    const QSize cell = CellOf(*this);
    const auto nameOf = [&locale](int column) {
        const int day = (locale.firstDayOfWeek() - 1 + column) % DaysOfWeek + 1;
        return std::pair(locale.standaloneDayName(day, QLocale::ShortFormat),
                         locale.standaloneDayName(day, QLocale::LongFormat));
    };
    // Where a name is too wide for its column, all are cut to their first two letters, as in printed calendars.
    bool fit = true;
    for (int column = 0; column < DaysOfWeek; ++column)
        fit = fit && fontMetrics().horizontalAdvance(nameOf(column).first) <= cell.width() - 2;
    for (int column = 0; column < DaysOfWeek; ++column) {
        QLabel& label = *weekdays_[static_cast<std::size_t>(column)];
        const auto [name, longName] = nameOf(column);
        label.setText(fit ? name : name.left(2));
        label.setFixedSize(cell.width(), cell.height() - 4);
        label.setAccessibleName(longName);
        QPalette quiet;
        quiet.setColor(QPalette::WindowText, Mix(palette().color(QPalette::Text), FieldGround(*this), Quiet));
        label.setPalette(quiet);
    }
}

void MonthCalendar::Fill()
{
    const QLocale locale;
    const QDate now = QDate::currentDate();
    title_->setText(locale.standaloneMonthName(date_.month()) + u' ' + QString::number(date_.year()));
    today_->setText(QStringLiteral("Today: ") + locale.toString(now, QLocale::ShortFormat));
    today_->setAccessibleName(QStringLiteral("Today, ") + locale.toString(now, QLocale::LongFormat));
    setAccessibleDescription(locale.toString(date_, QLocale::LongFormat));
    QDate shown = FirstShown();
    for (QPushButton* button : days_) {
        auto* day = static_cast<DayButton*>(button);
        const bool exists = IsShown(shown);
        day->setVisible(exists);
        day->setText(exists ? QString::number(shown.day()) : QString());
        day->setAccessibleName(exists ? locale.toString(shown, QLocale::LongFormat) : QString());
        day->setChecked(shown == date_);
        day->Today = shown == now;
        day->OtherMonth = shown.month() != date_.month();
        day->update();
        shown = shown.addDays(1);
    }
}

void MonthCalendar::keyPressEvent(QKeyEvent* event)
{
    const int forward = isRightToLeft() ? -1 : 1;
    const bool years = event->modifiers().testFlag(Qt::ControlModifier);
    switch (event->key()) {
    case Qt::Key_Left:
        Choose(date_.addDays(-forward));
        break;
    case Qt::Key_Right:
        Choose(date_.addDays(forward));
        break;
    case Qt::Key_Up:
        Choose(date_.addDays(-DaysOfWeek));
        break;
    case Qt::Key_Down:
        Choose(date_.addDays(DaysOfWeek));
        break;
    case Qt::Key_PageUp:
        Choose(years ? date_.addYears(-1) : date_.addMonths(-1));
        break;
    case Qt::Key_PageDown:
        Choose(years ? date_.addYears(1) : date_.addMonths(1));
        break;
    case Qt::Key_Home:
        Choose(QDate(date_.year(), date_.month(), 1));
        break;
    case Qt::Key_End:
        Choose(QDate(date_.year(), date_.month(), date_.daysInMonth()));
        break;
    default:
        QWidget::keyPressEvent(event);
        break;
    }
}

void MonthCalendar::focusInEvent(QFocusEvent* event)
{
    QWidget::focusInEvent(event);
    update();
}

void MonthCalendar::focusOutEvent(QFocusEvent* event)
{
    QWidget::focusOutEvent(event);
    update();
}

void MonthCalendar::changeEvent(QEvent* event)
{
    QWidget::changeEvent(event);
    if (event->type() == QEvent::PaletteChange || event->type() == QEvent::FontChange ||
        event->type() == QEvent::LocaleChange) {
        FillTitles();
        Fill();
    }
}

// Today may have changed while the calendar was hidden.
void MonthCalendar::showEvent(QShowEvent* event)
{
    QWidget::showEvent(event);
    Fill();
}

void MonthCalendar::paintEvent(QPaintEvent* /*event*/)
{
    const QColor ground = FieldGround(*this);
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(hasFocus() ? QPen(palette().color(QPalette::Highlight), 1.5) : QPen(Outline(palette()), 1));
    painter.setBrush(ground);
    painter.drawRoundedRect(QRectF(rect()).adjusted(0.75, 0.75, -0.75, -0.75), Rounding, Rounding);
    painter.setPen(QPen(Mix(ground, palette().color(QPalette::Text), 0.14), 1));
    const qreal under = weekdays_.front()->geometry().bottom() + 0.5;
    painter.drawLine(QPointF(Padding + 2, under), QPointF(width() - Padding - 2, under));
}

} // namespace voxmate::qt
