// Where things are: the folders of the XDG base directory standard, the program's own and the shared data.
#pragma once

#include <string>
#include <vector>

namespace voxmate::linux_platform
{

/// $XDG_CONFIG_HOME, or ~/.config. A relative path in a variable does not count, as that standard asks.
std::string ConfigFolder();
/// $XDG_CONFIG_DIRS, or /etc/xdg.
std::vector<std::string> SystemConfigFolders();
/// $VOXMATE_HOME, or voxmate below $XDG_DATA_HOME (~/.local/share); made if it is missing.
std::string ProgramFolder();
/// The shared data: share/voxmate beside the program (a build tree) or one level above its folder (an installation).
std::string SharedDataFolder();
/// Puts the shipped tips into the program's folder, unless a file of that name is there: the user's own stays.
void PlaceTips(const std::string& sharedFolder, const std::string& programFolder);
/// Where the lock file of the one program that works on the program's folder may stand: in that folder, or, where that
/// cannot be written or takes no locks, in $XDG_RUNTIME_DIR.
std::vector<std::string> LockFilePaths();

} // namespace voxmate::linux_platform
