// Where the program's windows are on the screen, for the character, which is not to stand over what they show.
#pragma once

#include "base/Geometry.h"

#include <cstdint>
#include <functional>
#include <vector>

namespace voxmate
{

/// One visible window. Lengths are device-independent pixels of the screen.
struct WindowPlace {
    std::uintptr_t Id = 0; ///< the same as long as the window exists
    bool Active = false;   ///< it has the keyboard
    bool Alert = false; ///< it announces a reminder: it never has the keyboard, and may still be sliding to its place
    /// What must stay visible: buttons, fields, lists, texts and pictures, as far as they are on show; an alert as a
    /// whole.
    std::vector<Rect> Controls;
    int Page = 0; ///< differs when the window shows other tabs
    bool operator==(const WindowPlace&) const = default;
};

class WindowPlaces
{
public:
    virtual ~WindowPlaces() = default;
    /// Whether the desktop tells where windows are.
    virtual bool Known() const = 0;
    /// The program's visible windows, without character, balloon, menus, lists that drop down and tool tips. None
    /// where the desktop does not tell their places.
    virtual std::vector<WindowPlace> Windows() = 0;
    /// The part without panels of the screen that holds `point`, or of the nearest screen.
    virtual Rect WorkArea(Point point) = 0;
    /// A window has come, gone, moved, changed its size, turned to another tab, or got or lost the keyboard, or the
    /// character has appeared. Called from the event loop, once for several changes; for an alert before it is seen.
    std::function<void()> Changed;
};

} // namespace voxmate
