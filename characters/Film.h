// An animation as an animated picture (GIF), for documents and to look at it in motion.
#pragma once

#include "agent/file/AcsFile.h"

#include <QByteArray>

namespace voxmate::characters
{

/// The animation as it plays to its end, on a light ground, in the file's own colours and times; it repeats forever. A
/// loop that never ends is shown once. Where all its frames have mouths, the figure speaks. Raises std::runtime_error
/// if the animation shows nothing.
QByteArray Film(const agent::AcsFile& file, const agent::Animation& animation);

} // namespace voxmate::characters
