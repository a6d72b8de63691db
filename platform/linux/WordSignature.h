// Telling Word's documents from files that only bear their extension.
#pragma once

#include <string>

namespace voxmate::linux_platform
{

/// Whether the file is a Word document by what is in it: a compound file with a stream "WordDocument" in its root, a
/// ZIP archive with Word's main part, or rich text. False for everything else and for what cannot be read. Reads a few
/// blocks, whatever the file's size.
bool IsWordDocument(const std::string& path);

} // namespace voxmate::linux_platform
