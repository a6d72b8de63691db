// Where the sentences of a text end.
#pragma once

#include <cstddef>
#include <string_view>
#include <vector>

namespace voxmate::readers
{

/// The ends of a UTF-8 text's sentences as byte positions, in order; the last is the text's size. A sentence takes the
/// blanks behind it along, and a line end ends one. Empty for an empty text. By Unicode's rules (UAX #29), except
/// behind abbreviations of English that do not end a sentence ("Dr."). Only for one thread.
std::vector<std::size_t> SentenceEnds(std::string_view text);

} // namespace voxmate::readers
