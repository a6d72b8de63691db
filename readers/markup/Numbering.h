// The numbers in front of list items.
#pragma once

#include <string>
#include <string_view>

namespace voxmate::readers
{

inline constexpr const char* Bullet = "\xE2\x80\xA2";

/// A number as "1" (also for an unknown `format`), "a", "A", "i" or "I" writes it. Roman numerals end at 3999, letters
/// go on with "aa"; numbers below 1 are always written in digits.
std::string InFormat(int number, std::string_view format);

} // namespace voxmate::readers
