// Documents of Office Open XML (ISO/IEC 29500), .docx.
#pragma once

#include "readers/Block.h"
#include "readers/office/Package.h"

#include <string>

namespace voxmate::readers
{

/// The name of the part that holds the document's text; empty when the package is no such document.
std::string DocxMainPart(const Parts& parts);

/// Raises Refused.
void ReadDocx(const Parts& parts, const BlockSink& sink);

} // namespace voxmate::readers
