// Where a window goes that comes by itself, without the user having asked for it.
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

} // namespace voxmate::qt
