// Exports the pictures and sounds of a character file to files of their own.
#pragma once

#include "agent/file/AcsFile.h"

#include <QString>

namespace voxmate::characters
{

/// Writes every frame, composed without a mouth, as ANIMATION_NNN.png and every sound as sound_NNN.wav into `folder`,
/// which is made if needed. Characters not allowed in a file name become "_"; when names become equal, "~2", "~3" are
/// appended to the later ones. Raises SourceError when something cannot be written, agent::AcsError when something
/// cannot be decoded.
void Export(const agent::AcsFile& file, const QString& folder);

} // namespace voxmate::characters
