// How much memory the process has allocated.
#pragma once

#include <cstddef>

namespace voxmate::speech
{

/// In bytes, of the C library's heap.
std::size_t HeapInUse();

} // namespace voxmate::speech
