// The dialog for opening a file.
#pragma once

#include "platform/WindowSystem.h"

#include <optional>
#include <string>

class QWidget;

namespace voxmate::qt
{

/// Lets the user choose a file, or type the name of one, which need not exist. Begins in `folder`, or in the documents
/// folder when there is no such folder, and leaves there the folder the user was in. Returns the full path, none when
/// the user cancels.
std::optional<std::string> ShowOpenDialog(QWidget* over, const CommonDialog& settings, std::string& folder);

} // namespace voxmate::qt
