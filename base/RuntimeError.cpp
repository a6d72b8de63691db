#include "base/RuntimeError.h"

#include <new>
#include <stdexcept>

namespace voxmate
{

RuntimeError AsRuntimeError(const std::exception& error)
{
    constexpr std::int32_t InternalError = 51;
    if (const auto* known = dynamic_cast<const RuntimeError*>(&error))
        return *known;
    if (dynamic_cast<const std::bad_alloc*>(&error) || dynamic_cast<const std::length_error*>(&error))
        return OutOfMemory();
    return {InternalError, error.what()};
}

} // namespace voxmate
