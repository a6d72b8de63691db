// The folders of the XDG base directory standard, the program's own folder and that of the shared data.
#pragma once

#include <string>
#include <vector>

namespace voxmate::linux_platform
{

/// $HOME, or what the system's list of users says.
std::string HomeFolder();
/// $XDG_DATA_HOME, or ~/.local/share.
std::string DataFolder();
/// $XDG_CONFIG_HOME, or ~/.config. Relative paths in a variable are ignored, as that standard requires.
std::string ConfigFolder();
/// $XDG_STATE_HOME, or ~/.local/state.
std::string StateFolder();
/// $XDG_CONFIG_DIRS, or /etc/xdg; last, unless it is among them, where an installation puts its defaults: etc/xdg of
/// its prefix, which is /etc/xdg for /usr (packaging/InstallWithPrefix.cmake).
std::vector<std::string> SystemConfigFolders();
/// $VOXMATE_HOME, or voxmate in $XDG_DATA_HOME (~/.local/share); created if it is missing.
std::string ProgramFolder();
/// The path of the running program, also after an upgrade has put another file in its place.
std::string RunningProgram();
/// The shared data: share/voxmate beside the program (a build tree) or one level above its folder (an installation).
std::string SharedDataFolder();
/// Copies the shipped tips into the program's folder, unless a file of that name exists: the user's own is kept.
void PlaceTips(const std::string& sharedFolder, const std::string& programFolder);
/// The possible paths of the lock file that keeps a second program from working on the same folder: in the program's
/// folder, or in $XDG_RUNTIME_DIR where that folder cannot be written or supports no locks.
std::vector<std::string> LockFilePaths();

} // namespace voxmate::linux_platform
