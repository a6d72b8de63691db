// Texts marked up with Markdown.
#pragma once

#include "readers/Block.h"

#include <string_view>

namespace voxmate::readers
{

/// Reads a text in UTF-8, in the dialect with tables and footnotes.
void ReadMarkdown(std::string_view text, const BlockSink& sink);

/// Whether a text in UTF-8 has marks at its beginning that plain text does not have. A text larger than a parser should
/// keep at once counts as plain.
bool LooksLikeMarkdown(std::string_view text);

} // namespace voxmate::readers
