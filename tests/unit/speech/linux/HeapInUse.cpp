#include "tests/unit/speech/HeapInUse.h"

#include <malloc.h>

namespace voxmate::speech
{

std::size_t HeapInUse()
{
    return mallinfo2().uordblks;
}

} // namespace voxmate::speech
