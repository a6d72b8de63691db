// A small calendar: the days of one month, of which one is chosen, drawn in the palette's colours.
#pragma once

#include <QDate>
#include <QLabel>
#include <QPushButton>
#include <QWidget>

#include <array>
#include <functional>

namespace voxmate::qt
{

/// Shows the chosen day's month in the desktop's own language, its week beginning as the locale has it, and marks
/// today. Arrow keys go by days and weeks, Page Up and Down by months (with Control by years), Home and End to the
/// month's ends; the arrows above and the mouse do the same.
class MonthCalendar : public QWidget
{
public:
    explicit MonthCalendar(QWidget* parent);

    const QDate& Date() const { return date_; }
    /// Shows a day as the chosen one; tells nobody.
    void SetDate(const QDate& date);

    /// The user chose another day.
    std::function<void(const QDate& date)> OnSelect;

protected:
    void keyPressEvent(QKeyEvent* event) override;
    void focusInEvent(QFocusEvent* event) override;
    void focusOutEvent(QFocusEvent* event) override;
    void changeEvent(QEvent* event) override;
    void showEvent(QShowEvent* event) override;
    void paintEvent(QPaintEvent* event) override;

private:
    static constexpr int Weeks = 6;
    static constexpr int DaysOfWeek = 7;

    void Choose(const QDate& date);
    void Fill();
    void FillTitles();
    /// The day at the upper left.
    QDate FirstShown() const;

    QDate date_;
    QLabel* title_;
    std::array<QLabel*, DaysOfWeek> weekdays_{};
    std::array<QPushButton*, Weeks * DaysOfWeek> days_{};
    QPushButton* today_;
};

} // namespace voxmate::qt
