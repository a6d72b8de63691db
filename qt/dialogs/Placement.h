// Where windows go: those that come by themselves, without the user having asked for them, and those over others.
#pragma once

#include <QList>
#include <QPoint>
#include <QRect>
#include <QSize>

class QWidget;

namespace voxmate::qt
{

/// The first place in `area` where a window of `size` covers none of `taken`: from the upper right corner downwards,
/// then column by column to the left. When all places are taken they are gone through again, each time a title's height
/// lower and further left, so that something of every window stays in sight.
QPoint FreePlace(const QRect& area, const QSize& size, const QList<QRect>& taken);

/// Moves a window that knows its size and shows without taking the keyboard to a free place among the others like it,
/// on the primary screen.
void PlaceAmongOthers(QWidget& window);

/// `place` moved by the shortest way, along one edge of the screen, so that it does not touch `taken` and is still in
/// `area`; as it is when it does not touch it or there is no such way.
QRect ClearOf(const QRect& area, const QRect& place, const QRect& taken);

/// Moves a window that knows its size into the middle of another, or of the primary screen when that is none, not
/// visible or minimised, and beside the character, which stands above all windows, where there is room.
void Centre(QWidget& window, const QWidget* over);

} // namespace voxmate::qt
