// The dialogs for opening a file and for saving one.
#pragma once

#include "platform/WindowSystem.h"
#include "qt/dialogs/RecentFolders.h"

#include <optional>
#include <string>

class QWidget;

namespace voxmate::qt
{

/// Lets the user choose a file or type a name, which need not exist. The dialog begins in `folder`, or in the documents
/// folder when `folder` does not exist, and sets `folder` to the one it was left in. The folders of the documents that
/// were opened last are at its side; the chosen file's becomes the latest of them. Returns the full path, nothing
/// when the user cancels.
std::optional<std::string> ShowOpenDialog(QWidget* over, const CommonDialog& settings, std::string& folder,
                                          RecentFolders& recent);

/// Lets the user choose where a file is to be saved; `settings.FileName` is the proposed name. Asks before a file that
/// exists is chosen; a name without an extension gets that of the first pattern in the filter, unless the desktop's own
/// dialog was shown. Folders as for opening. Returns the full path, nothing when the user cancels.
std::optional<std::string> ShowSaveDialog(QWidget* over, const CommonDialog& settings, std::string& folder);

} // namespace voxmate::qt
