// Prepares a Word document's file for the word processor, because it may hold something other than a Word document.
#pragma once

#include "platform/linux/files/CodePage.h"

#include <string>

namespace voxmate::linux_platform
{

/// Puts a document at `target`, a new path, for the word processor. A file that begins like a word processor's document
/// is linked unchanged. A text is rewritten in UTF-8 with its mark, because the word processor guesses encodings badly,
/// unless it is markup that declares its encoding. Of a web archive its page is written, because the word processor
/// cannot read archives. False for other bytes, which the word processor would read as meaningless text, and when
/// `document` is no regular file or cannot be read.
bool PlaceDocument(const std::string& document, const std::string& target,
                   const CodePage& codePage = CodePage::OfUser());

} // namespace voxmate::linux_platform
