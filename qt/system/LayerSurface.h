// A window that the compositor of a Wayland session keeps above ordinary windows and puts where the program asks: one
// in a layer of the screen. Each platform links in its own implementation; what is in reach decides while it is built.
#pragma once

#include <QWindow>

#include <functional>
#include <memory>

namespace voxmate::qt
{

class LayerSurface
{
public:
    virtual ~LayerSurface() = default;

    /// Puts the window's lower right corner so many device-independent pixels left of and above the one that the panels
    /// leave of its screen; negative numbers lead beyond that. Holds from the next drawing on.
    virtual void Place(int fromRight, int fromBottom) = 0;
    /// Calls `done` from the event loop once the compositor has carried out what has been drawn so far: only then do
    /// its events count from the window's new place. Not called after the surface is destroyed.
    virtual void WhenPlaced(std::function<void()> done) = 0;
};

/// Makes a window that has not been shown yet one above the ordinary windows and beneath those that fill the screen. It
/// never gets the keyboard. Returns nullptr, and leaves the window as it is, where the compositor has no such layer or
/// the program was built without the library for it.
std::unique_ptr<LayerSurface> PutInLayer(QWindow& window);

} // namespace voxmate::qt
