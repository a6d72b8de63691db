// From a source and its drawing to the description of a character file: frames, exits, mouths, shared images.
#pragma once

#include "Drawing.h"
#include "Source.h"

#include "agent/file/AcsWriter.h"

namespace voxmate::characters
{

/// Renders every frame and puts the character together; raises SourceError. `error` gets the mean distance of a
/// pixel's colour from the palette's, in steps of 1/255.
agent::AcsDescription Assemble(const Source& source, const Drawing& drawing, double& error);

} // namespace voxmate::characters
