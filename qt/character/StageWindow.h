// The window that holds character and balloon where a program cannot place its windows: under Wayland without an X
// server. Both are parts of one surface there, because the compositor chooses the place of each window, and a balloon
// in a window of its own would not point at its speaker. What is not drawn on is transparent and lets clicks through.
#pragma once

#include <QRect>
#include <QWidget>

namespace voxmate::qt
{

class StageWindow : public QWidget
{
    Q_OBJECT

public:
    /// The program's only one, made on first use; nullptr where windows can be placed.
    static StageWindow* Instance();

    /// The part of the window in which character and balloon may stand, in its own device-independent pixels. It is
    /// what the screen is elsewhere.
    QRect Area() const { return rect(); }
    /// Makes the window large enough for a character of this size with a balloon above it.
    void MakeRoom(QSize character);
    /// What stands in the window has come, gone, moved or changed its shape: shows the window while there is anything,
    /// and lets the mouse through everywhere else.
    void Settle();
    /// Lets the user move the window with the mouse button that is held down.
    void Drag();

Q_SIGNALS:
    /// Area has changed. Emitted from the event loop.
    void Resized();

protected:
    void closeEvent(QCloseEvent* event) override;

private:
    StageWindow();
};

} // namespace voxmate::qt
