#include "platform/FreeMemory.h"

#include <malloc.h>

namespace voxmate
{

namespace
{

// The C library's own initial thresholds, in bytes. Setting them keeps it from raising them with the size of what was
// freed.
constexpr int LargeBlock = 128 * 1024;
constexpr int HeaviestTop = 128 * 1024;
// For all threads together; without a limit there may be one for each.
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
