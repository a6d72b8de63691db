// Electronic books (EPUB 2 and 3).
#pragma once

#include "readers/Block.h"
#include "readers/office/Package.h"

namespace voxmate::readers
{

/// Reads the chapters in the book's order, those outside of it (as some books keep their notes) last, and without the
/// navigation. Before each there is a mark with the chapter's title from the table of contents, if it has one. Raises
/// Refused.
void ReadEpub(const Parts& parts, const BlockSink& sink);

} // namespace voxmate::readers
