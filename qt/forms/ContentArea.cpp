#include "qt/forms/ContentArea.h"

#include "qt/system/DesktopWatch.h"

#include <QApplication>
#include <QEvent>
#include <QMainWindow>
#include <QMenuBar>
#include <QScreen>
#include <QScrollBar>
#include <QStatusBar>

namespace voxmate::qt
{

namespace
{

/// Device-independent pixels that a window manager's frame is expected to take, title bar included. A window that is
/// not shown yet has none.
constexpr QSize ExpectedFrame{2, 36};

/// The height of a bar of the window; 0 when it has none or shows none. menuBar() and statusBar() would make one.
int HeightOf(const QWidget* bar)
{
    return bar && !bar->isHidden() ? bar->sizeHint().height() : 0;
}

} // namespace

ContentArea::ContentArea(QWidget* content, QWidget* window) : QScrollArea(window)
{
    setFrameShape(QFrame::NoFrame);
    setFocusPolicy(Qt::NoFocus);
    setWidgetResizable(true);
    setWidget(content);
    viewport()->setAutoFillBackground(false);
    content->setAutoFillBackground(false);
    // The toolkit follows the Tab key only, and neither access keys nor a field that the form itself gives the focus.
    connect(qApp, &QApplication::focusChanged, this, [this](QWidget*, QWidget* now) {
        if (now && this->widget()->isAncestorOf(now))
            ensureWidgetVisible(now);
    });
    connect(&DesktopWatch::Instance(), &DesktopWatch::ScreensChanged, this, [this] { updateGeometry(); });
}

QSize ContentArea::sizeHint() const
{
    return Within(widget()->sizeHint());
}

QSize ContentArea::minimumSizeHint() const
{
    return Within(widget()->minimumSizeHint());
}

QSize ContentArea::Within(QSize wanted) const
{
    const QSize room = Room();
    // Where one direction scrolls, its bar takes from the other.
    if (wanted.height() > room.height())
        wanted.rwidth() += verticalScrollBar()->sizeHint().width();
    if (wanted.width() > room.width())
        wanted.rheight() += horizontalScrollBar()->sizeHint().height();
    return wanted.boundedTo(room);
}

QSize ContentArea::Room() const
{
    const QWidget* top = window();
    const QScreen* screen = top->screen();
    if (!screen)
        return {QWIDGETSIZE_MAX, QWIDGETSIZE_MAX};
    // Not the frame alone once it is there: a window that grew with it would reach beyond the screen's edge.
    const QSize frame = (top->frameGeometry().size() - top->size()).expandedTo(ExpectedFrame);
    const int bars = HeightOf(top->findChild<QMenuBar*>(QString(), Qt::FindDirectChildrenOnly)) +
                     HeightOf(top->findChild<QStatusBar*>(QString(), Qt::FindDirectChildrenOnly));
    return DesktopWatch::Instance().WorkArea(*screen).size() - frame - QSize(0, bars);
}

bool ContentArea::event(QEvent* event)
{
    // The content's own wishes have changed, as with the desktop's font, or the window has come to another screen.
    if (event->type() == QEvent::LayoutRequest || event->type() == QEvent::ScreenChangeInternal)
        updateGeometry();
    return QScrollArea::event(event);
}

bool ContentArea::eventFilter(QObject* watched, QEvent* event)
{
    if (watched == widget() && event->type() == QEvent::LayoutRequest)
        updateGeometry();
    return QScrollArea::eventFilter(watched, event);
}

} // namespace voxmate::qt
