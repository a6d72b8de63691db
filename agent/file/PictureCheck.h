// Finds images of a character file that cannot be decoded. Checking the file's structure does not reveal them.
#pragma once

#include "agent/file/AcsFile.h"

#include <stop_token>
#include <string>
#include <vector>

namespace voxmate::agent
{

/// What is wrong with the images of a file.
struct PictureFaults {
    std::string first;         ///< message of the first fault, which names the file; empty when all are sound
    std::vector<bool> damaged; ///< for each image, by number: whether it cannot be decoded
};

/// Decodes every image; one that several entries of the list share is decoded once. May run on any thread. When asked
/// to stop, it returns what it has found so far.
PictureFaults CheckPictures(const AcsFile& file, const std::stop_token& stop = {});

} // namespace voxmate::agent
