#include "platform/FreeMemory.h"

#include <malloc.h>

namespace voxmate
{

namespace
{

// The C library's own initial thresholds, in bytes. Setting them keeps it from raising them, up to 64 MB, with the size
// of what was freed.
constexpr int LargeBlock = 128 * 1024;
constexpr int HeaviestTop = 128 * 1024;
// One heap for the user interface, and one for the threads beside it, which seldom allocate at the same time.
constexpr int Heaps = 2;

} // namespace

void KeepHeapSmall()
{
    mallopt(M_MMAP_THRESHOLD, LargeBlock);
    mallopt(M_TRIM_THRESHOLD, HeaviestTop);
    mallopt(M_ARENA_MAX, Heaps);
}

void ReturnFreeMemory()
{
    malloc_trim(0);
}

} // namespace voxmate
