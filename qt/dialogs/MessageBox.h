// The message box, by itself: the window system shows it, and so does the application for an error nobody caught.
#pragma once

#include <string>

class QWidget;

namespace voxmate::qt
{

class IconSet;

/// Shows a modal box with `text` as it is (line breaks kept, no markup) and the icon and buttons of `style`; returns
/// the button pressed. Closing it and Escape mean Cancel, or No where there is no Cancel, or else OK. It stands in the
/// middle of `over`, of the screen where that is not to be seen, and above any splash. A text too high for the screen
/// scrolls, by wheel, arrows, Page Up and Down. Without `icons` the style's own icons are taken.
int ShowMessageBox(QWidget* over, const IconSet* icons, const std::string& text, int style, const std::string& title);

} // namespace voxmate::qt
