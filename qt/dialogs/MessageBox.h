// The message box as a function of its own: both the window system and the application, for uncaught errors, show it.
#pragma once

#include <string>

class QWidget;

namespace voxmate::qt
{

class IconSet;

/// Shows a modal box with `text` as it is (line breaks kept, no markup) and with the icon and buttons of `style`.
/// Returns the pressed button; closing the box or Escape means Cancel, or No where there is no Cancel, or else OK. The
/// box is centred on `over`, or on the screen if `over` is not visible, and stands above any splash. A text too high
/// for the screen scrolls by wheel, arrows, Page Up and Page Down. Without `icons` the style's own icons are used.
int ShowMessageBox(QWidget* over, const IconSet* icons, const std::string& text, int style, const std::string& title);

} // namespace voxmate::qt
