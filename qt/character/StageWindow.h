// The window that holds character and balloon where a program cannot place its windows: under Wayland without an X
// server. Both are parts of one surface there, because the compositor chooses the place of each window, and a balloon
// in a window of its own would not point at its speaker. What is not drawn on is transparent and lets clicks through.
// Where the compositor has layers the window covers the screen in one, and character and balloon move within it. A
// small one that follows the character could not be dragged: while a button is held, some compositors count the
// pointer's place from where the window was when it was pressed.
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

    /// Whether the window covers what the panels leave of the screen. The character then moves within it.
    bool CoversScreen() const { return inLayer_; }
    /// The part of the window in which character and balloon may stand, in its own device-independent pixels. It is
    /// what the screen is elsewhere.
    QRect Area() const { return rect(); }
    /// Makes the window large enough for a character of this size with a balloon above it, unless it covers the screen.
    void MakeRoom(QSize character);
    /// What stands in the window has come, gone, moved or changed its shape: shows the window while there is anything,
    /// and lets the mouse through everywhere else.
    void Settle();
    /// Lets the user move the window with the mouse button that is held down, where it does not cover the screen.
    void Drag();

Q_SIGNALS:
    /// Area has changed. Emitted from the event loop.
    void Resized();

protected:
    void closeEvent(QCloseEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;

private:
    StageWindow();

    bool inLayer_ = false;
    bool dismissed_ = false; ///< by the compositor, and not yet shown again
};

} // namespace voxmate::qt
