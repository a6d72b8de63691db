#include "qt/dialogs/Placement.h"

#include "qt/character/ShapedWindow.h"
#include "qt/system/DesktopWatch.h"

#include <QApplication>
#include <QScreen>
#include <QWidget>

#include <algorithm>
#include <cstdlib>

namespace voxmate::qt
{

namespace
{

// Device-independent pixels.
constexpr int Gap = 14;  ///< between windows, and between a window and the screen's edges
constexpr int Step = 30; ///< offset from one round to the next: a title bar

// Size of the window manager's frame as long as a window has none yet: a high title bar and two borders.
constexpr QSize UnknownFrame(4, 32);

QSize FrameOf(const QWidget& window)
{
    const QSize frame = window.frameGeometry().size() - window.size();
    return frame.isNull() ? UnknownFrame : frame;
}

} // namespace

QPoint FreePlace(const QRect& area, const QSize& size, const QList<QRect>& taken)
{
    const int columns = std::max(1, (area.width() - Gap) / (size.width() + Gap));
    const int rows = std::max(1, (area.height() - Gap) / (size.height() + Gap));
    // Rounds end before their windows would leave the screen or cover the next column's titles.
    const int rounds = std::max(1, std::min(size.width(), size.height()) / Step);
    for (int round = 0; round < rounds; ++round) {
        for (int column = 0; column < columns; ++column) {
            for (int row = 0; row < rows; ++row) {
                QRect place(QPoint(0, 0), size);
                place.moveTopRight({area.right() - Gap - column * (size.width() + Gap) - round * Step,
                                    area.top() + Gap + row * (size.height() + Gap) + round * Step});
                place.moveLeft(std::max(place.left(), area.left()));
                place.moveTop(std::max(std::min(place.top(), area.bottom() - size.height()), area.top()));
                const bool free = std::none_of(taken.begin(), taken.end(), [&](const QRect& other) {
                    // In later rounds windows overlap; only their upper left corners must stay apart.
                    const QPoint apart = other.topLeft() - place.topLeft();
                    return round == 0 ? other.intersects(place)
                                      : std::abs(apart.x()) < Step / 2 && std::abs(apart.y()) < Step / 2;
                });
                if (free)
                    return place.topLeft();
            }
        }
    }
    return {std::max(area.right() - Gap - size.width() + 1, area.left()), area.top() + Gap};
}

void PlaceAmongOthers(QWidget& window)
{
    const QScreen* screen = QGuiApplication::primaryScreen();
    if (!screen)
        return;
    QSize frame = UnknownFrame;
    QList<QRect> taken;
    for (const QWidget* other : QApplication::topLevelWidgets()) {
        if (other == &window || !other->isVisible() || other->isMinimized() ||
            !other->testAttribute(Qt::WA_ShowWithoutActivating) || other->windowType() != Qt::Window)
            continue;
        frame = FrameOf(*other);
        taken.append({other->frameGeometry().topLeft(), other->size() + frame});
    }
    window.move(FreePlace(DesktopWatch::Instance().WorkArea(*screen), window.size() + frame, taken));
}

QRect ClearOf(const QRect& area, const QRect& place, const QRect& taken)
{
    if (!place.intersects(taken))
        return place;
    const QRect room = area.adjusted(0, 0, 1, 1); // QRect's right and lower edges are its last pixels
    QRect best;
    // Where there is no room for a gap, the window stands against the other one rather than over it.
    for (const int gap : {Gap, 0}) {
        const auto consider = [&](int dx, int dy) {
            const QRect moved = place.translated(dx, dy);
            const auto way = [&place](const QRect& to) { return (to.topLeft() - place.topLeft()).manhattanLength(); };
            if (room.contains(moved) && (best.isNull() || way(moved) < way(best)))
                best = moved;
        };
        consider(taken.left() - gap - place.right() - 1, 0);
        consider(taken.right() + gap - place.left() + 1, 0);
        consider(0, taken.top() - gap - place.bottom() - 1);
        consider(0, taken.bottom() + gap - place.top() + 1);
        if (!best.isNull())
            break;
    }
    return best.isNull() ? place : best;
}

void Centre(QWidget& window, const QWidget* over)
{
    if (over && (!over->isVisible() || over->isMinimized()))
        over = nullptr;
    const QScreen* screen = over ? over->screen() : QGuiApplication::primaryScreen();
    if (!screen)
        return;
    const QRect area = DesktopWatch::Instance().WorkArea(*screen);
    // The new window's frame is assumed to be as large as the other window's.
    const QSize frame = over ? over->frameGeometry().size() - over->size() : QSize(0, 0);
    QRect place(QPoint(0, 0), window.size() + frame);
    place.moveCenter(over ? over->frameGeometry().center() : area.center());
    place.moveLeft(std::max(std::min(place.left(), area.right() - place.width()), area.left()));
    place.moveTop(std::max(std::min(place.top(), area.bottom() - place.height()), area.top()));
    for (const QWidget* other : QApplication::topLevelWidgets()) {
        if (other->isVisible() && other->windowTitle() == QLatin1String(CharacterTitle))
            place = ClearOf(area, place, other->geometry());
    }
    window.move(place.topLeft());
}

void KeepOnScreen(QWidget& window)
{
    const QScreen* screen = window.screen();
    if (!screen || !window.isVisible() || window.isMaximized() || window.isFullScreen())
        return;
    const QRect area = DesktopWatch::Instance().WorkArea(*screen);
    QRect place = window.frameGeometry();
    place.moveLeft(std::max(std::min(place.left(), area.right() - place.width()), area.left()));
    place.moveTop(std::max(std::min(place.top(), area.bottom() - place.height()), area.top()));
    if (place != window.frameGeometry())
        window.move(place.topLeft());
}

} // namespace voxmate::qt
