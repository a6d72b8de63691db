// Names of files, made of titles.
#pragma once

#include <string>
#include <string_view>

namespace voxmate::recording
{

/// As much of a title as a file's name may hold, on other systems, too; empty where nothing of it may.
std::string FileTitle(std::string_view title);

/// The name of a chapter's file: its number, of two digits at least, and its title. "01 The Beginning.ogg".
std::string ChapterName(int number, std::string_view title, std::string_view kind);

} // namespace voxmate::recording
