// The direction in which a text runs, as far as a balloon needs to know it.
#pragma once

#include <string_view>

namespace voxmate::agent
{

/// Whether a paragraph (UTF-8) runs from right to left. The first direction mark or letter with a direction of its own
/// decides; false when there is none.
bool RunsRightToLeft(std::string_view paragraph);

} // namespace voxmate::agent
