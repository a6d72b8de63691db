// The room of a form's controls in its window. On a screen with too little room for all of them they scroll.
#pragma once

#include <QScrollArea>

namespace voxmate::qt
{

class ContentArea : public QScrollArea
{
public:
    /// Takes `content` over. Its layout must be set.
    ContentArea(QWidget* content, QWidget* window);

    /// As the content wants it, but no larger than the work area of the window's screen leaves beside the window's
    /// frame, menus and status bar.
    QSize sizeHint() const override;
    QSize minimumSizeHint() const override;

protected:
    bool event(QEvent* event) override;
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    QSize Room() const;
    QSize Within(QSize wanted) const;
};

} // namespace voxmate::qt
