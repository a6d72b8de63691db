// A small calendar: the days of one month, one of them chosen, drawn in the palette's colours.
#pragma once

#include <QDate>
#include <QLabel>
#include <QPushButton>
#include <QWidget>

#include <array>
#include <functional>

namespace voxmate::qt
{

/// Shows the chosen day's month in the desktop's language, with weeks that begin on the locale's first day, and marks
/// today. Arrow keys move by days and weeks, Page Up and Page Down by months (with Control by years), Home and End to
/// the ends of the month. The arrow buttons above the days and the mouse do the same.
class MonthCalendar : public QWidget
{
public:
    explicit MonthCalendar(QWidget* parent);

    const QDate& Date() const { return date_; }
    /// Chooses a day without calling OnSelect.
    void SetDate(const QDate& date);

    /// Called when the user chooses another day.
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
    /// The day in the upper left cell.
    QDate FirstShown() const;

    QDate date_;
    QLabel* title_;
    std::array<QLabel*, DaysOfWeek> weekdays_{};
    std::array<QPushButton*, std::size_t{Weeks} * DaysOfWeek> days_{};
    QPushButton* today_;
};

} // namespace voxmate::qt
