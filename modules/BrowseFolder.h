// The folder picker.
#pragma once

#include <string>

namespace voxmate
{

/// Lets the user choose a folder under `prompt`, beginning in the characters' folder in use. Returns its path without a
/// separator at its end (a root keeps its own), empty when the user cancels.
std::string BrowseForFolder(const std::string& prompt);

} // namespace voxmate
