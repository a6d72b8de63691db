// OpenDocument texts (ISO/IEC 26300), .odt, and the same in one XML file, .fodt.
#pragma once

#include "readers/Block.h"
#include "readers/office/Package.h"

#include <string_view>

namespace voxmate::readers
{

/// Raise Refused.
void ReadOdt(const Parts& parts, const BlockSink& sink);
void ReadFlatOdt(std::string_view document, const BlockSink& sink);

} // namespace voxmate::readers
