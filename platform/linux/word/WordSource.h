// What a Word document's file may hold besides a Word document, made ready for the word processor.
#pragma once

#include "platform/linux/files/CodePage.h"

#include <string>

namespace voxmate::linux_platform
{

/// Puts a document's file where the word processor shall find it, under the new name. What begins as the documents of
/// word processors do stays as it is, as a link. A text is written anew in UTF-8 with its mark, for the word processor
/// would guess badly how it is encoded, unless it is markup that says that itself; of a web page archive its page is
/// written, for the word processor knows none. False for other bytes, which the word processor would take for a text of
/// nonsense, and for what is no file or cannot be read.
bool PlaceDocument(const std::string& document, const std::string& target,
                   const CodePage& codePage = CodePage::OfUser());

} // namespace voxmate::linux_platform
