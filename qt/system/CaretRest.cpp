#include "qt/system/CaretRest.h"

#include <QGuiApplication>
#include <QStyleHints>

namespace voxmate::qt
{

namespace
{

constexpr int Still = 0;
/// Not set by the program: what the desktop says holds.
constexpr int Desktops = -1;

} // namespace

CaretRest::CaretRest()
{
    timer_.setSingleShot(true);
    timer_.setInterval(Blinking);
    timer_.callOnTimeout([] { QGuiApplication::styleHints()->setCursorFlashTime(Still); });
}

void CaretRest::Saw(QEvent::Type type)
{
    if (type != QEvent::KeyPress && type != QEvent::MouseButtonPress && type != QEvent::FocusIn &&
        type != QEvent::InputMethod)
        return;
    if (!timer_.isActive())
        QGuiApplication::styleHints()->setCursorFlashTime(Desktops);
    timer_.start();
}

} // namespace voxmate::qt
