// The folder picker.
#pragma once

#include <string>

class QWidget;

namespace voxmate::qt
{

/// Lets the user choose an existing folder. `prompt` is shown above the list, which begins in `start`, or in the home
/// folder when `start` does not exist. Returns the path, empty when the user cancels.
std::string ShowFolderDialog(QWidget* over, const std::string& prompt, const std::string& start);

} // namespace voxmate::qt
