// Which way a text runs, as far as a balloon has to know.
#pragma once

#include <string_view>

namespace voxmate::agent
{

/// Whether a paragraph (UTF-8) runs from right to left: its first letter, of those that have a direction of their own,
/// or direction mark decides; false without any.
bool RunsRightToLeft(std::string_view paragraph);

} // namespace voxmate::agent
