// Where windows are placed: those that appear without the user having asked for them, and those that stand over others.
#pragma once

#include <QList>
#include <QPoint>
#include <QRect>
#include <QSize>

class QWidget;

namespace voxmate::qt
{

/// The first position in `area` where a window of `size` covers none of `taken`, tried from the upper right corner
/// downwards, then column by column to the left. When all are taken, the same positions are tried again a title bar's
/// height lower and further left, so that a part of every window stays visible.
QPoint FreePlace(const QRect& area, const QSize& size, const QList<QRect>& taken);

/// Moves a window to a free position among the other windows that, like it, appear without taking the keyboard focus,
/// on the primary screen. The window must have its size.
void PlaceAmongOthers(QWidget& window);

/// `place` moved the shortest way, horizontally or vertically, so that it does not touch `taken` and stays in `area`.
/// Returned unchanged when it does not touch `taken` or there is no such way.
QRect ClearOf(const QRect& area, const QRect& place, const QRect& taken);

/// Centres a window on another one, or on the primary screen if `over` is null, hidden or minimised. Where there is
/// room it is moved beside the character, which stands above all windows. The window must have its size.
void Centre(QWidget& window, const QWidget* over);

/// Moves a visible window that reaches beyond its screen's work area back into it, as far as it has room there.
void KeepOnScreen(QWidget& window);

} // namespace voxmate::qt
