// What parts the words of a text: counted alike in the balloon, in the segments of a Speak and by the voices.
#pragma once

#include <cstddef>
#include <string_view>

namespace voxmate::agent
{

/// Bytes of the blank that stands at byte `at` of a UTF-8 text, 0 when there is none. Blanks are spaces, no-break
/// spaces, control characters, byte-order marks and U+FFFD, which stands for what could not be decoded.
std::size_t BlankAt(std::string_view text, std::size_t at);

/// Bytes of the character at byte `at` of a UTF-8 text, at least 1.
std::size_t CharacterAt(std::string_view text, std::size_t at);

/// Whether there is anything but blanks in a text.
bool HasWord(std::string_view text);

} // namespace voxmate::agent
