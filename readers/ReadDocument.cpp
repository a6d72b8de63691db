#include "readers/ReadDocument.h"

#include "platform/LocalTime.h"
#include "readers/Refusal.h"
#include "readers/calendar/Calendar.h"
#include "readers/markup/Page.h"
#include "readers/office/Docx.h"
#include "readers/office/Epub.h"
#include "readers/office/Odt.h"
#include "readers/office/Package.h"
#include "readers/pdf/Pdf.h"
#include "readers/rtf/Rtf.h"
#include "readers/text/Markdown.h"
#include "readers/text/PlainText.h"

#include <ctime>
#include <string>

namespace voxmate::readers
{

namespace
{

void Read(Kind kind, std::string_view bytes, const BlockSink& sink)
{
    std::string own;
    switch (kind) {
    case Kind::Text:
        return ReadPlainText(TextOf(bytes, own), sink);
    case Kind::Markdown:
        return ReadMarkdown(TextOf(bytes, own), sink);
    case Kind::Page:
        return ReadPage(bytes, sink);
    case Kind::Docx:
        return ReadDocx(*OpenPackage(bytes), sink);
    case Kind::Odt:
        return ReadOdt(*OpenPackage(bytes), sink);
    case Kind::FlatOdt:
        return ReadFlatOdt(bytes, sink);
    case Kind::Epub:
        return ReadEpub(*OpenPackage(bytes), sink);
    case Kind::Pdf:
        return ReadPdf(bytes, sink);
    case Kind::Rtf:
        return ReadRtf(bytes, sink);
    case Kind::Calendar:
        return ReadCalendar(bytes, LocalTime(std::time(nullptr)), sink);
    }
}

} // namespace

void ReadDocument(std::string_view bytes, const std::function<void(Kind)>& tellKind, const BlockSink& sink)
{
    if (bytes.size() > LargestFile)
        throw Refused(Refusal::TooLarge);
    const Kind kind = FindKind(bytes);
    tellKind(kind);
    bool any = false;
    Read(kind, bytes, [&](Block&& block) {
        any = any || !block.text.empty();
        sink(std::move(block));
    });
    if (!any)
        throw Refused(Refusal::NoText);
}

} // namespace voxmate::readers
