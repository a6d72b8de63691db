#include "qt/system/Screens.h"

#include <algorithm>
#include <cmath>

namespace voxmate::qt
{

namespace
{

QRect Taken(const Strut& strut, const QSize& desktop)
{
    const int length = strut.end - strut.start + 1;
    if (length <= 0)
        return {};
    switch (strut.edge) {
    case Strut::Left:
        return {0, strut.start, strut.depth, length};
    case Strut::Right:
        return {desktop.width() - strut.depth, strut.start, strut.depth, length};
    case Strut::Top:
        return {strut.start, 0, length, strut.depth};
    case Strut::Bottom:
        return {strut.start, desktop.height() - strut.depth, length, strut.depth};
    }
    return {};
}

} // namespace

QRect WithoutPanels(const QRect& screen, const QSize& desktop, const QList<Strut>& struts)
{
    QRect area = screen;
    for (const Strut& strut : struts) {
        const QRect taken = Taken(strut, desktop).intersected(screen);
        const bool upright = strut.edge == Strut::Left || strut.edge == Strut::Right;
        if (taken.isEmpty() || (upright ? taken.width() == screen.width() : taken.height() == screen.height()))
            continue;
        if (strut.edge == Strut::Left)
            area.setLeft(std::max(area.left(), taken.right() + 1));
        else if (strut.edge == Strut::Right)
            area.setRight(std::min(area.right(), taken.left() - 1));
        else if (strut.edge == Strut::Top)
            area.setTop(std::max(area.top(), taken.bottom() + 1));
        else
            area.setBottom(std::min(area.bottom(), taken.top() - 1));
    }
    return area.isValid() ? area : screen;
}

QRect WholePixels(const QRect& area, QPoint origin, qreal ratio)
{
    const auto first = [ratio](int from, int to) { return from + static_cast<int>(std::ceil((to - from) / ratio)); };
    const auto end = [ratio](int from, int to) { return from + static_cast<int>(std::floor((to - from) / ratio)); };
    const QPoint topLeft(first(origin.x(), area.left()), first(origin.y(), area.top()));
    return {topLeft, QPoint(end(origin.x(), area.right() + 1) - 1, end(origin.y(), area.bottom() + 1) - 1)};
}

bool IsFilled(const QRect& screen, const QList<ListedWindow>& windows)
{
    for (auto window = windows.rbegin(); window != windows.rend(); ++window) {
        const bool here = screen.contains(window->rect.center()) || window->rect.contains(screen.center());
        if (!here || (window->own && !window->active))
            continue;
        if (window->fullScreen)
            return !window->own;
        if (window->ordinary)
            return false;
    }
    return false;
}

} // namespace voxmate::qt
