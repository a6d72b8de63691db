#include "platform/FreeMemory.h"

#include <malloc.h>

namespace voxmate
{

namespace
{

// In bytes. Setting the thresholds keeps the C library from raising them with the size of what was freed. A large block
// has pages of its own, which go back when it is freed: pictures of small characters, some 100 kB, would otherwise
// leave holes between what stays. The other is the library's own.
constexpr int LargeBlock = 32 * 1024;
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
