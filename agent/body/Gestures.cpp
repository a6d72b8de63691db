#include "agent/body/Gestures.h"

#include <cstdlib>

namespace voxmate::agent
{

void Gestures::Handle(const MouseEvent& event)
{
    if (event.action != MouseAction::Move && event.button != 1 && event.button != 2)
        return;
    switch (event.action) {
    case MouseAction::Press:
    case MouseAction::DoubleClick:
        Press(event);
        break;
    case MouseAction::Move:
        Move(event);
        break;
    case MouseAction::Release:
        Release(event);
        break;
    }
}

void Gestures::Press(const MouseEvent& event)
{
    // Only one button counts at a time; a second one pressed meanwhile changes nothing.
    if (button_ != 0)
        return;
    button_ = event.button;
    dragging_ = false;
    double_ = event.action == MouseAction::DoubleClick;
    pressed_ = event;
    if (double_)
        DblClick(event.button, event.shift, event.at);
}

void Gestures::Move(const MouseEvent& event)
{
    if (button_ == 0)
        return;
    const int movedX = event.screen.x - pressed_.screen.x;
    const int movedY = event.screen.y - pressed_.screen.y;
    if (!dragging_) {
        if (std::abs(movedX) <= DragThreshold && std::abs(movedY) <= DragThreshold)
            return;
        dragging_ = true;
        DragStart(pressed_.button, pressed_.shift, pressed_.at);
    }
    Drag({event.screen.x - pressed_.at.x, event.screen.y - pressed_.at.y}, event.screen);
}

void Gestures::Release(const MouseEvent& event)
{
    if (event.button != button_)
        return;
    button_ = 0;
    if (dragging_) {
        dragging_ = false;
        DragComplete(event.button, event.shift, event.at);
        return;
    }
    // The second press of a double click has already raised DblClick.
    if (!double_)
        Click(event.button, event.shift, event.at);
    if (event.button == 2)
        Menu(event.screen);
}

} // namespace voxmate::agent
