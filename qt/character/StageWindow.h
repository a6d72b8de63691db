// The window that holds character and balloon where a program cannot place its windows: under Wayland without an X
// server. Both are parts of one surface there, because the compositor chooses the place of each window, and a balloon
// in a window of its own would not point at its speaker. What is not drawn on is transparent and lets clicks through.
// Where the compositor has layers the window goes where the character goes, with room for a balloon all around it.
#pragma once

#include "qt/system/LayerSurface.h"

#include <QRect>
#include <QWidget>

#include <memory>

namespace voxmate::qt
{

class StageWindow : public QWidget
{
    Q_OBJECT

public:
    /// The program's only one, made on first use; nullptr where windows can be placed.
    static StageWindow* Instance();

    /// Whether the program chooses the window's place: then it follows the character, else the user moves it (Drag).
    bool Placed() const { return layer_ != nullptr; }
    /// Where character and balloon may stand, from (0, 0) on, in device-independent pixels: what the screen is
    /// elsewhere. The screen itself if the window is Placed, else the window.
    QRect Area() const;
    /// The point of Area in the window's upper left corner.
    QPoint Origin() const { return origin_; }
    /// The point of Area that the mouse is at when it is reported at this point of the window. It differs from the
    /// window's Origin while the compositor has not yet moved the window.
    QPoint PointedAt(QPoint at) const { return answered_ + at; }
    /// Makes the window large enough for a character of this size with its balloon.
    void MakeRoom(QSize character);
    /// The character stands at this point of Area: takes the window there if it is Placed.
    void StandAround(QPoint character);
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
    void MoveSoon();
    void Move();
    void GoTo(QPoint origin);

    std::unique_ptr<LayerSurface> layer_;
    QPoint origin_;
    QPoint answered_; ///< the Origin from which the compositor counts in the events that are handled now
    QPoint wanted_;
    bool moving_ = false;
    bool dismissed_ = false; ///< by the compositor, and not yet shown again
};

} // namespace voxmate::qt
