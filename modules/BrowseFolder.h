// The folder picker.
#pragma once

#include "platform/WindowSystem.h"

#include <string>

namespace voxmate
{

/// Shows the folder picker with `prompt` above the folders, beginning in folder `start`. Returns the path of the chosen
/// folder without a separator at its end (a root keeps its own); empty when the user cancels.
std::string BrowseForFolder(WindowSystem& windows, const std::string& prompt, const std::string& start);

} // namespace voxmate
