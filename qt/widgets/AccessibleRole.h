// What screen readers are told that a widget of our own is.
#pragma once

#include <QAccessible>
#include <QWidget>

#include <functional>

namespace voxmate::qt
{

/// Gives a widget that draws itself a role; without one it would be a mere container. To be called before the widget
/// has a name, with which it becomes known to screen readers. Widgets of the toolkit have roles of their own, which
/// this would replace along with what they can do.
void SetAccessibleRole(QWidget& widget, QAccessible::Role role);
/// Lets screen readers press a widget that was given a role: who has no mouse can press it, too.
void SetAccessiblePress(QWidget& widget, std::function<void()> press);

} // namespace voxmate::qt
