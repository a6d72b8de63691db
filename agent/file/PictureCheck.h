// Looks for images of a character file that cannot be decoded, which its structure does not show.
#pragma once

#include "agent/file/AcsFile.h"

#include <stop_token>
#include <string>
#include <vector>

namespace voxmate::agent
{

/// What is wrong with the images of a file.
struct PictureFaults {
    std::string first;         ///< the message of the first fault, which names the file; empty when all are sound
    std::vector<bool> damaged; ///< of each image, by its number, whether it cannot be decoded
};

/// Decodes every image, those that several entries of the list share once. May run on any thread; when it is asked to
/// stop it answers with what it has found so far.
PictureFaults CheckPictures(const AcsFile& file, std::stop_token stop = {});

} // namespace voxmate::agent
