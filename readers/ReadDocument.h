// Reads a document of any kind, in the process that calls. What comes from a stranger is better read in a process of
// its own: see Reading.h.
#pragma once

#include "readers/Block.h"
#include "readers/Kind.h"

#include <cstddef>
#include <functional>
#include <string_view>

namespace voxmate::readers
{

/// The largest file that is read.
inline constexpr std::size_t LargestFile = std::size_t{1} << 30;

/// Tells what the document is, and then its blocks as they are found. Raises Refused, at once or after some blocks:
/// also when it has no text.
void ReadDocument(std::string_view bytes, const std::function<void(Kind)>& tellKind, const BlockSink& sink);

} // namespace voxmate::readers
