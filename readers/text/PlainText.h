// Plain texts.
#pragma once

#include "readers/Block.h"

#include <string>
#include <string_view>

namespace voxmate::readers
{

/// The largest plain text, as for the text files the program reads line by line.
inline constexpr std::size_t LargestText = std::size_t{256} << 20;

/// A file's text in UTF-8. `own` keeps it where that is not what the file holds. Raises Refused when it is too large.
std::string_view TextOf(std::string_view bytes, std::string& own);

/// Reads a text in UTF-8. Paragraphs are what empty lines part. The lines of a paragraph are joined when it is plain
/// from their lengths that they were broken to fit a width; otherwise, as in poems, their ends stay.
void ReadPlainText(std::string_view text, const BlockSink& sink);

/// Whether a file's beginning is a text's: without control characters that texts do not have.
bool LooksLikeText(std::string_view beginning);

} // namespace voxmate::readers
