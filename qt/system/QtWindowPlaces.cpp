#include "qt/system/QtWindowPlaces.h"

#include "qt/alerts/PlacedWindow.h"
#include "qt/character/ShapedWindow.h"
#include "qt/character/StageWindow.h"
#include "qt/system/DesktopWatch.h"
#include "qt/widgets/Widgets.h"

#include <QAbstractButton>
#include <QApplication>
#include <QEvent>
#include <QLabel>
#include <QMenuBar>
#include <QScrollArea>
#include <QStackedWidget>
#include <QTabWidget>
#include <QWidget>

namespace voxmate::qt
{

namespace
{

Rect OnScreen(const QWidget& widget, const QRect& part)
{
    const QPoint topLeft = widget.mapToGlobal(part.topLeft());
    return {topLeft.x(), topLeft.y(), part.width(), part.height()};
}

// Not counted: windows that are not on the screen, that belong to the character, or that are gone with the next click.
bool IsCounted(const QWidget& window)
{
    return window.isVisible() && !window.isMinimized() && !window.testAttribute(Qt::WA_DontShowOnScreen) &&
           window.windowType() != Qt::Popup && window.windowType() != Qt::ToolTip &&
           !dynamic_cast<const ShapedWindow*>(&window);
}

// Something to use, or to read or look at. What only holds others takes the keyboard in some classes, too.
bool IsControl(const QWidget& widget)
{
    if (const auto* label = qobject_cast<const QLabel*>(&widget))
        return !label->text().isEmpty() || !label->pixmap(Qt::ReturnByValue).isNull() || label->movie();
    if (qobject_cast<const QScrollArea*>(&widget) || qobject_cast<const QTabWidget*>(&widget) ||
        qobject_cast<const QStackedWidget*>(&widget))
        return false;
    return widget.focusPolicy() != Qt::NoFocus || qobject_cast<const QAbstractButton*>(&widget) ||
           dynamic_cast<const Picture*>(&widget);
}

void AddControls(const QWidget& parent, WindowPlace& place)
{
    for (QObject* child : parent.children()) {
        const auto* widget = qobject_cast<const QWidget*>(child);
        if (!widget || widget->isWindow() || !widget->isVisible())
            continue;
        if (const auto* menus = qobject_cast<const QMenuBar*>(widget)) {
            for (QAction* menu : menus->actions())
                if (const QRect shown = menus->actionGeometry(menu); !shown.isEmpty())
                    place.Controls.push_back(OnScreen(*menus, shown));
        } else if (!IsControl(*widget)) {
            if (const auto* pages = qobject_cast<const QStackedWidget*>(widget))
                place.Page = place.Page * (pages->count() + 1) + pages->currentIndex();
            AddControls(*widget, place);
        } else if (const QRect seen = widget->visibleRegion().boundingRect(); !seen.isEmpty()) {
            place.Controls.push_back(OnScreen(*widget, seen));
        }
    }
}

} // namespace

QtWindowPlaces::QtWindowPlaces()
{
    changes_.setSingleShot(true);
    changes_.callOnTimeout([this] { Tell(); });
    QCoreApplication::instance()->installEventFilter(this);
}

void QtWindowPlaces::Tell()
{
    if (const auto changed = Changed)
        changed();
}

bool QtWindowPlaces::Known() const
{
    return !StageWindow::Instance();
}

std::vector<WindowPlace> QtWindowPlaces::Windows()
{
    std::vector<WindowPlace> places;
    if (!Known())
        return places;
    for (const QWidget* window : QApplication::topLevelWidgets()) {
        if (!IsCounted(*window))
            continue;
        WindowPlace place;
        place.Id = reinterpret_cast<std::uintptr_t>(window);
        place.Active = window->isActiveWindow();
        place.Alert = dynamic_cast<const PlacedWindow*>(window) != nullptr;
        if (place.Alert)
            place.Controls.push_back(OnScreen(*window, window->rect()));
        else
            AddControls(*window, place);
        places.push_back(std::move(place));
    }
    return places;
}

Rect QtWindowPlaces::WorkArea(Point point)
{
    const QScreen* screen = ScreenNearest({point.x, point.y});
    if (!screen)
        return {};
    const QRect area = DesktopWatch::Instance().WorkArea(*screen);
    return {area.x(), area.y(), area.width(), area.height()};
}

bool QtWindowPlaces::eventFilter(QObject* watched, QEvent* event)
{
    switch (event->type()) {
    case QEvent::Show:
    case QEvent::Hide:
    case QEvent::Move:
    case QEvent::Resize:
    case QEvent::WindowActivate:
    case QEvent::WindowDeactivate:
    case QEvent::WindowStateChange: {
        const auto* window = watched->isWidgetType() ? static_cast<const QWidget*>(watched) : nullptr;
        if (!window)
            break;
        // Qt tells of it just before it shows the window.
        if (event->type() == QEvent::Show && dynamic_cast<const PlacedWindow*>(window)) {
            Tell();
            break;
        }
        const bool turned =
            event->type() == QEvent::Show && qobject_cast<const QStackedWidget*>(window->parentWidget());
        if (!(window->isWindow() || turned) || changes_.isActive())
            break;
        const bool moves = event->type() == QEvent::Move || event->type() == QEvent::Resize;
        if (!moves || !dynamic_cast<const ShapedWindow*>(window))
            changes_.start(0);
        break;
    }
    default:
        break;
    }
    return QObject::eventFilter(watched, event);
}

} // namespace voxmate::qt
