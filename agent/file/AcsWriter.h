// Makes a character file (.acs, version 2) from a plain description.
#pragma once

#include "agent/file/AcsFile.h"

#include <cstdint>
#include <string>
#include <utility>
#include <vector>

namespace voxmate::agent
{

/// Everything a character file holds. Voice and balloon, and their flags, are written when they are there.
struct AcsDescription : AcsContent {
    std::vector<IndexedImage> images;
    std::vector<std::vector<std::uint8_t>> sounds; ///< whole RIFF wave files
    bool compress = true;                          ///< pack images where that makes them smaller
};

/// The file's bytes. Numbers are written as they are, even if they make no sense. Raises std::length_error when a count
/// does not fit its field, or an image does not hold width times height pixels.
std::vector<std::uint8_t> WriteAcs(const AcsDescription& description);

} // namespace voxmate::agent
