// Fuzzing of pages and chapters, and of the texts that are told from them by their content.
#include "documents.h"

#include "readers/Kind.h"
#include "readers/markup/Page.h"
#include "readers/text/Markdown.h"
#include "readers/text/PlainText.h"

#include <string>

using namespace voxmate::readers;
using voxmate::fuzz::ReadAndCheck;

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    const std::string_view bytes(reinterpret_cast<const char*>(data), size);
    ReadAndCheck("the kind of a file is found", [&](const BlockSink&) { FindKind(bytes); });
    ReadAndCheck("a page is read", [&](const BlockSink& sink) { ReadPage(bytes, sink); });
    ReadAndCheck("a chapter is read", [&](const BlockSink& sink) { ReadChapter(bytes, "en", sink); });
    std::string own;
    const std::string_view text = TextOf(bytes, own);
    ReadAndCheck("a plain text is read", [&](const BlockSink& sink) { ReadPlainText(text, sink); });
    ReadAndCheck("Markdown is read", [&](const BlockSink& sink) { ReadMarkdown(text, sink); });
    return 0;
}
