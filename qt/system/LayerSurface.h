// A window in a layer of the screen, as compositors of Wayland sessions offer it. Each platform links in its own
// implementation; what is in reach when the build is configured decides.
#pragma once

#include <QWindow>

namespace voxmate::qt
{

/// Makes a window that has not been shown yet one above the ordinary windows and beneath those that fill the screen, as
/// large as what the panels leave of its screen. It never gets the keyboard. Returns false, and leaves the window as it
/// is, where the compositor has no such layer or the program was built without the library for it.
bool PutInLayer(QWindow& window);

} // namespace voxmate::qt
