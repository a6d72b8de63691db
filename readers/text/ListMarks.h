// List items in texts that have no markup.
#pragma once

#include <cstddef>
#include <string_view>

namespace voxmate::readers
{

/// The length of the mark at a line's beginning: a bullet ("•", "-", "*"), or a number or single letter with ")" or "."
/// behind it. There is a blank behind the mark; what follows must not be empty. 0 when there is none.
std::size_t ListMark(std::string_view line);

/// Whether a mark is a bullet.
bool IsBullet(std::string_view mark);

} // namespace voxmate::readers
