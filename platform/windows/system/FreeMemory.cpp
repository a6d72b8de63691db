#include "platform/FreeMemory.h"

#include "platform/windows/system/WindowsApi.h"

namespace voxmate
{

void KeepHeapSmall()
{
    // Windows' heap has blocks of its own for large sizes and one heap for all threads as it is.
}

void ReturnFreeMemory()
{
    ::HeapCompact(::GetProcessHeap(), 0);
}

} // namespace voxmate
