#include "tests/unit/speech/HeapInUse.h"

#include <malloc.h>

namespace voxmate::speech
{

std::size_t HeapInUse()
{
    std::size_t bytes = 0;
    _HEAPINFO block{};
    while (_heapwalk(&block) == _HEAPOK)
        if (block._useflag == _USEDENTRY)
            bytes += block._size;
    return bytes;
}

} // namespace voxmate::speech
