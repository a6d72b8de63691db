// The folder picker.
#pragma once

#include "platform/WindowSystem.h"

#include <string>

namespace voxmate
{

/// Lets the user choose a folder under `prompt`, beginning in folder `start`. Returns its path without a separator at
/// its end (a root keeps its own), empty when the user cancels.
std::string BrowseForFolder(WindowSystem& windows, const std::string& prompt, const std::string& start);

} // namespace voxmate
