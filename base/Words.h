// What separates the words of a text. The balloon, the segments of a Speak, the voices and what follows them in a text
// all count words in this way.
#pragma once

#include <cstddef>
#include <string_view>

namespace voxmate
{

/// The length in bytes of the blank at byte `at` of a UTF-8 text; 0 when no blank stands there. Blanks are spaces,
/// no-break spaces, control characters, byte-order marks and U+FFFD, which stands for what could not be decoded.
std::size_t BlankAt(std::string_view text, std::size_t at);

/// The length in bytes of the character at byte `at` of a UTF-8 text, at least 1.
std::size_t CharacterAt(std::string_view text, std::size_t at);

/// Whether a text holds anything but blanks.
bool HasWord(std::string_view text);

} // namespace voxmate
