// Turns a source and its drawing into the description of a character file: frames, exits, mouths, shared images.
#pragma once

#include "Drawing.h"
#include "Source.h"

#include "agent/file/AcsWriter.h"

namespace voxmate::characters
{

/// Renders every frame and assembles the character; raises SourceError. `error` receives the mean distance between a
/// pixel's colour and its palette colour, in steps of 1/255.
agent::AcsDescription Assemble(const Source& source, const Drawing& drawing, double& error);

} // namespace voxmate::characters
