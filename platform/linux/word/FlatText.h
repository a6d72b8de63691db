// The main text of a document in flat OpenDocument XML.
#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace voxmate::linux_platform
{

/// The document's main text in UTF-8. Every paragraph and table cell ends with one CR, a line break is VT, a tab is a
/// tab, and a field is its result. Footnotes, endnotes, comments, headers, footers, text boxes, list labels, hidden and
/// deleted text are left out. Nothing when the document is not complete.
std::optional<std::string> MainText(std::string_view document);

} // namespace voxmate::linux_platform
