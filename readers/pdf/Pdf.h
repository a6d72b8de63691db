// PDF files.
#pragma once

#include "readers/Block.h"

#include <string_view>

namespace voxmate::readers
{

/// Raises Refused.
void ReadPdf(std::string_view bytes, const BlockSink& sink);

} // namespace voxmate::readers
