// The places in which announcements pile up from the lower edge of the work area.
#pragma once

#include <cstdint>

namespace voxmate
{

/// The places that alert windows occupy: bit 0 is place 1, bit 7 is place 8.
inline std::uint8_t AlertSlotMask = 0;

} // namespace voxmate
