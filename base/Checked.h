// 16- and 32-bit arithmetic that raises run-time error 6 "Overflow" instead of wrapping around.
#pragma once

#include "base/RuntimeError.h"

#include <cmath>
#include <cstdint>
#include <limits>

namespace voxmate
{

/// The values of True and False in 16-bit booleans.
using Boolean = std::int16_t;
inline constexpr Boolean True = -1;
inline constexpr Boolean False = 0;

/// Narrows to 16 bits; raises "Overflow" when the value does not fit.
inline std::int16_t ToInt16(std::int64_t value)
{
    if (value < std::numeric_limits<std::int16_t>::min() || value > std::numeric_limits<std::int16_t>::max())
        throw Overflow();
    return static_cast<std::int16_t>(value);
}

/// Narrows to 32 bits; raises "Overflow" when the value does not fit.
inline std::int32_t ToInt32(std::int64_t value)
{
    if (value < std::numeric_limits<std::int32_t>::min() || value > std::numeric_limits<std::int32_t>::max())
        throw Overflow();
    return static_cast<std::int32_t>(value);
}

inline std::int16_t MultiplyInt16(std::int16_t a, std::int16_t b)
{
    return ToInt16(std::int64_t{a} * b);
}
inline std::int32_t AddInt32(std::int32_t a, std::int32_t b)
{
    return ToInt32(std::int64_t{a} + b);
}

/// Rounds to the nearest whole number, halves to the even one (IEEE 754 roundTiesToEven).
inline std::int64_t RoundHalfEven(double value)
{
    const double down = std::floor(value);
    const double rest = value - down;
    const auto low = static_cast<std::int64_t>(down);
    if (rest < 0.5)
        return low;
    if (rest > 0.5)
        return low + 1;
    return low % 2 == 0 ? low : low + 1;
}

} // namespace voxmate
