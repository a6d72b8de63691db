// Lets the text caret stand still while nobody works with the program.
#pragma once

#include <QEvent>
#include <QTimer>

#include <chrono>

namespace voxmate::qt
{

/// A blinking caret wakes the program up six times a second. It stops blinking, in sight, ten seconds after the last
/// key, click or change of focus, and goes on with the next one: the desktop's own rate is in force again then.
class CaretRest
{
public:
    /// As long as GTK's text fields blink by default (gtk-cursor-blink-timeout).
    static constexpr std::chrono::seconds Blinking{10};

    CaretRest();

    /// To be told of every event of the program.
    void Saw(QEvent::Type type);

private:
    QTimer timer_;
};

} // namespace voxmate::qt
