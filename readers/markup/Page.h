// Web pages, and the chapters of electronic books.
#pragma once

#include "readers/Block.h"
#include "readers/BlockWriter.h"
#include "readers/markup/Xml.h"

#include <memory>
#include <string>
#include <string_view>

namespace voxmate::readers
{

/// Turns a page's elements into blocks. Left out is what a person does not see or hear as the page's text: scripts,
/// what is hidden, navigation, the fields of forms, and the marks that lead to a footnote and back.
std::unique_ptr<XmlHandler> PageHandler(BlockWriter& writer);

/// Reads a page of any encoding.
void ReadPage(std::string_view bytes, const BlockSink& sink);

/// Reads a chapter: XHTML or, if it is not well-formed, as a browser would read it.
void ReadChapter(std::string_view bytes, std::string_view language, const BlockSink& sink);

/// Whether a text, in any encoding, begins like a page.
bool LooksLikePage(std::string_view beginning);

} // namespace voxmate::readers
