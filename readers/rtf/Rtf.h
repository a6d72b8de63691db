// Rich text. Read by code of our own: the systems we build on have no library for it.
#pragma once

#include "readers/Block.h"

#include <string_view>

namespace voxmate::readers
{

/// Raises Refused: unknown when it does not begin like rich text, damaged when it ends before its last group does.
void ReadRtf(std::string_view bytes, const BlockSink& sink);

} // namespace voxmate::readers
