// The folder picker.
#pragma once

#include <string>

class QWidget;

namespace voxmate::qt
{

/// Lets the user choose an existing folder, `prompt` above the list, beginning in `start` (or in the home folder when
/// there is no such folder). Returns its path, empty when the user cancels.
std::string ShowFolderDialog(QWidget* over, const std::string& prompt, const std::string& start);

} // namespace voxmate::qt
