// The pictures and sounds of a character file as files of their own.
#pragma once

#include "agent/file/AcsFile.h"

#include <QString>

namespace voxmate::characters
{

/// Writes every frame, composed without a mouth, as ANIMATION_NNN.png and every sound as sound_NNN.wav into a folder,
/// which is made if need be. What cannot stand in a file's name becomes "_"; the later ones of names that come out
/// alike get "~2", "~3" behind them. Raises SourceError when something cannot be written, agent::AcsError when
/// something cannot be decoded.
void Export(const agent::AcsFile& file, const QString& folder);

} // namespace voxmate::characters
