// Fuzzing of documents in packages. The first byte chooses the kind; the rest, cut at NUL bytes, is the content of its
// parts in turn.
#include "documents.h"

#include "readers/office/Docx.h"
#include "readers/office/Epub.h"
#include "readers/office/Odt.h"
#include "tests/unit/readers/FakeParts.h"

#include <array>
#include <string>

using namespace voxmate::readers;
using voxmate::fuzz::ReadAndCheck;

namespace
{

test::FakeParts Fill(std::string_view bytes, const std::vector<std::string>& names)
{
    test::FakeParts parts;
    for (const std::string& name : names) {
        const std::size_t end = std::min(bytes.find('\0'), bytes.size());
        parts.parts[name] = bytes.substr(0, end);
        bytes.remove_prefix(std::min(end + 1, bytes.size()));
    }
    return parts;
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    if (size == 0)
        return 0;
    const std::string_view bytes(reinterpret_cast<const char*>(data) + 1, size - 1);
    if (data[0] % 3 == 0) {
        test::FakeParts parts = Fill(bytes, {"word/document.xml", "word/styles.xml", "word/numbering.xml",
                                             "word/footnotes.xml", "word/_rels/document.xml.rels"});
        parts.parts["_rels/.rels"] = "<R><Relationship Type='x/officeDocument' Target='word/document.xml'/></R>";
        if (parts.parts["word/_rels/document.xml.rels"].empty())
            parts.parts["word/_rels/document.xml.rels"] =
                "<R><Relationship Type='x/styles' Target='styles.xml'/><Relationship Type='x/numbering' "
                "Target='numbering.xml'/><Relationship Type='x/footnotes' Target='footnotes.xml'/></R>";
        ReadAndCheck("a .docx document is read", [&](const BlockSink& sink) { ReadDocx(parts, sink); });
    } else if (data[0] % 3 == 1) {
        test::FakeParts parts = Fill(bytes, {"content.xml", "styles.xml", "META-INF/manifest.xml"});
        for (const char* name : {"styles.xml", "META-INF/manifest.xml"})
            if (parts.parts[name].empty())
                parts.parts.erase(name);
        ReadAndCheck("a .odt document is read", [&](const BlockSink& sink) { ReadOdt(parts, sink); });
    } else {
        test::FakeParts parts = Fill(bytes, {"b", "c", "n", "META-INF/encryption.xml"});
        parts.parts["META-INF/container.xml"] = "<c><rootfile full-path='b'/></c>";
        ReadAndCheck("a book is read", [&](const BlockSink& sink) { ReadEpub(parts, sink); });
    }
    return 0;
}
