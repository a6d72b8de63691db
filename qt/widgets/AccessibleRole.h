// What screen readers are told about the program's own kinds of widgets.
#pragma once

#include <QAccessible>
#include <QWidget>

#include <functional>

namespace voxmate::qt
{

/// Gives a widget that draws itself a role; without one screen readers take it for a mere container. Must be called
/// before the widget gets its name, because the name makes it known to them. Not for the toolkit's widgets: the call
/// would replace their own roles and actions.
void SetAccessibleRole(QWidget& widget, QAccessible::Role role);
/// Lets screen readers press a widget that has been given a role, so that it can be pressed without a mouse.
void SetAccessiblePress(QWidget& widget, const std::function<void()>& press);

} // namespace voxmate::qt
