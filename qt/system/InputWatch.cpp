#include "qt/system/InputWatch.h"

#include <QCoreApplication>
#include <QEvent>

namespace voxmate::qt
{

InputWatch::InputWatch()
{
    QCoreApplication::instance()->installEventFilter(this);
}

std::chrono::milliseconds InputWatch::SinceInput() const
{
    return std::chrono::duration_cast<std::chrono::milliseconds>(std::chrono::steady_clock::now() - last_);
}

bool InputWatch::eventFilter(QObject* /*receiver*/, QEvent* event)
{
    switch (event->type()) {
    case QEvent::KeyPress:
    case QEvent::MouseButtonPress:
    case QEvent::MouseMove:
    case QEvent::Wheel:
    case QEvent::TouchBegin:
        last_ = std::chrono::steady_clock::now();
        break;
    default:
        break;
    }
    return false;
}

} // namespace voxmate::qt
