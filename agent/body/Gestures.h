// Tells clicks from drags on the character's window.
#pragma once

#include "agent/Stage.h"

#include <functional>

namespace voxmate::agent
{

class Gestures
{
public:
    /// Buttons, shift keys and points are those of MouseEvent; `at` is within the character.
    std::function<void(int button, int shift, Point at)> Click;
    std::function<void(int button, int shift, Point at)> DblClick;
    std::function<void(int button, int shift, Point at)> DragStart;
    std::function<void(int button, int shift, Point at)> DragComplete;
    /// The pointer has moved during a drag: where the window's upper left corner should be, and where the pointer is.
    std::function<void(Point topLeft, Point pointer)> Drag;
    /// A right click: where on the screen the menu should open.
    std::function<void(Point screen)> Menu;

    void Handle(const MouseEvent& event);
    /// Forgets a button held down, because the window has gone.
    void Reset() { button_ = 0; }
    /// Whether a button is held down on the character.
    bool Holds() const { return button_ != 0; }

    /// A press becomes a drag when the pointer moves more than this many pixels horizontally or vertically.
    static constexpr int DragThreshold = 4;

private:
    void Press(const MouseEvent& event);
    void Move(const MouseEvent& event);
    void Release(const MouseEvent& event);

    int button_ = 0; ///< the button held down; 0: none
    bool double_ = false;
    bool dragging_ = false;
    MouseEvent pressed_;
};

} // namespace voxmate::agent
