// Makes a character file (.acs, version 2) from a plain description.
#pragma once

#include "agent/file/AcsFile.h"

#include <cstdint>
#include <string>
#include <utility>
#include <vector>

namespace voxmate::agent
{

/// Everything a character file holds. Voice and balloon are written when they are there, and their flags with them.
struct AcsDescription : AcsContent {
    std::vector<IndexedImage> images;
    std::vector<std::vector<std::uint8_t>> sounds; ///< whole RIFF wave files
    bool compress = true;                          ///< images, where it makes them smaller
};

/// The file's bytes. Numbers are written as they are, even those that make no sense; raises std::length_error when a
/// count or an image does not fit its field or its own size.
std::vector<std::uint8_t> WriteAcs(const AcsDescription& description);

} // namespace voxmate::agent
