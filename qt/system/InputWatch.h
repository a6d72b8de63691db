// The time since the last input to the program's own windows.
#pragma once

#include <QObject>

#include <chrono>

namespace voxmate::qt
{

/// Sees all events of the program on their way. The application object must exist, and outlive this object.
class InputWatch : public QObject
{
public:
    InputWatch();

    /// At first since this object was made.
    std::chrono::milliseconds SinceInput() const;

    bool eventFilter(QObject* receiver, QEvent* event) override;

private:
    std::chrono::steady_clock::time_point last_ = std::chrono::steady_clock::now();
};

} // namespace voxmate::qt
