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
// For all threads together. More than the threads that ask for much at once: where a voice shares a heap with the
// windows, the ten megabytes that a sentence takes for a moment leave its holes between what stays (5 MB more after
// some minutes of all kinds of use). Those that end leave theirs to the next.
constexpr int Heaps = 8;

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
