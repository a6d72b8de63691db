// The program's own folder and that of the shared data.
#pragma once

#include <string>

namespace voxmate::windows_platform
{

/// %VOXMATE_HOME% where that is a full path, or Voxmate in the user's local application data; created if it is missing.
std::string ProgramFolder();
/// What stands for the program's folder in the names of the system's objects: 200 characters at most, without
/// backslashes.
std::wstring NameOfFolder(const std::string& folder);
/// The path of the running program.
std::string RunningProgram();
/// The shared data, share\voxmate beside the program. It stands in for the Windows directory, into which only an
/// administrator may put characters.
std::string SharedDataFolder();
/// Copies the shipped tips into the program's folder, unless a file of that name exists: the user's own is kept.
void PlaceTips(const std::string& sharedFolder, const std::string& programFolder);

} // namespace voxmate::windows_platform
