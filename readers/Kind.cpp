#include "readers/Kind.h"

#include "base/Text.h"
#include "readers/Refusal.h"
#include "readers/markup/Page.h"
#include "readers/office/Docx.h"
#include "readers/office/Package.h"
#include "readers/text/Markdown.h"
#include "readers/text/PlainText.h"

#include <algorithm>
#include <array>
#include <string>

namespace voxmate::readers
{

namespace
{

constexpr std::size_t HeadSize = std::size_t{64} * 1024;

// A text in UTF-16 without its mark, as names in compound files are written.
std::string Wide(std::string_view ascii)
{
    std::string text;
    for (const char c : ascii)
        text += {c, '\0'};
    return text;
}

// A compound file ([MS-CFB]): the names of its streams tell what it is.
void RefuseCompound(std::string_view bytes)
{
    if (bytes.find(Wide("EncryptedPackage")) != std::string_view::npos)
        throw Refused(Refusal::Protected);
    if (bytes.find(Wide("WordDocument")) == std::string_view::npos)
        throw Refused(Refusal::Unknown);
    // The text's stream usually comes first. It begins with a signature; bit 8 of the flags at its byte 10 tells that
    // it is encrypted ([MS-DOC] 2.5.1).
    constexpr std::size_t stream = 512;
    if (bytes.size() > stream + 12 && bytes.substr(stream).starts_with("\xEC\xA5") && (bytes[stream + 11] & 1) != 0)
        throw Refused(Refusal::Protected);
    throw Refused(Refusal::NeedsConverter);
}

bool IsSound(std::string_view head)
{
    constexpr std::array<std::string_view, 8> beginnings{"fLaC", "OggS", "ID3",  ".snd",
                                                         "caff", "RIFX", "RF64", "Creative Voice File"};
    const std::string_view form = head.size() >= 12 ? head.substr(8, 4) : std::string_view();
    // The last is a frame of MPEG audio: eleven bits set, and then a layer.
    const bool frame = head.size() > 3 && head[0] == '\xFF' && (head[1] & 0xE0) == 0xE0 && (head[1] & 0x06) != 0 &&
                       head[1] != '\xFE' && head[1] != '\xFF' && (head[2] & 0xF0) != 0xF0;
    return (head.starts_with("RIFF") && form == "WAVE") ||
           (head.starts_with("FORM") && (form == "AIFF" || form == "AIFC")) ||
           std::any_of(beginnings.begin(), beginnings.end(), [&](auto begin) { return head.starts_with(begin); }) ||
           frame;
}

Kind KindOfPackage(std::string_view bytes)
{
    const std::unique_ptr<Parts> parts = OpenPackage(bytes);
    constexpr std::size_t longest = 200;
    const std::string type = parts->Has("mimetype") ? parts->Whole("mimetype", longest) : "";
    if (type.starts_with("application/epub+zip") || parts->Has("META-INF/container.xml"))
        return Kind::Epub;
    if (type.starts_with("application/vnd.oasis.opendocument.text"))
        return Kind::Odt;
    if (type.starts_with("application/vnd.sun.xml.writer"))
        throw Refused(Refusal::NeedsConverter);
    if (!parts->Has("[Content_Types].xml"))
        throw Refused(Refusal::Unknown);
    const std::string main = DocxMainPart(*parts);
    if (main.empty())
        throw Refused(Refusal::Damaged);
    // Sheets and presentations are packages of the same make.
    if (!main.starts_with("word/") && main.find("document") == std::string::npos)
        throw Refused(Refusal::Unknown);
    return Kind::Docx;
}

// XML that is not a page.
Kind KindOfXml(std::string_view head)
{
    if (head.find("urn:oasis:names:tc:opendocument:xmlns:office:1.0") != std::string_view::npos &&
        head.find("office:document") != std::string_view::npos)
        return Kind::FlatOdt;
    if (head.find("progid=\"Word.Document\"") != std::string_view::npos)
        throw Refused(Refusal::NeedsConverter);
    return Kind::Text;
}

// Pages stored like mail (RFC 2557).
bool IsWebArchive(std::string_view head)
{
    const std::string fields = LowerAscii(head.substr(0, 2048));
    return fields.find("mime-version:") != std::string::npos && fields.find("multipart/related") != std::string::npos &&
           (fields.starts_with("mime-version:") || fields.starts_with("from:") || fields.starts_with("content-"));
}

} // namespace

Kind FindKind(std::string_view bytes)
{
    const std::string_view head = bytes.substr(0, HeadSize);
    if (Trimmed(head, std::string_view(" \t\r\n\0", 5)).empty())
        throw Refused(bytes.size() > HeadSize ? Refusal::Unknown : Refusal::NoText);
    // Some programs put a few bytes before the signature; readers of PDF accept a kilobyte.
    if (head.substr(0, 1024).find("%PDF-") != std::string_view::npos)
        return Kind::Pdf;
    if (head.starts_with("PK\x03\x04") || head.starts_with("PK\x05\x06"))
        return KindOfPackage(bytes);
    if (head.starts_with("{\\rtf"))
        return Kind::Rtf;
    if (head.starts_with("\xD0\xCF\x11\xE0\xA1\xB1\x1A\xE1"))
        RefuseCompound(bytes);
    // The binary documents of two older word processors.
    if (head.starts_with("\xDB\xA5") || head.starts_with("\x31\xBE"))
        throw Refused(Refusal::NeedsConverter);
    if (IsSound(head))
        throw Refused(Refusal::Sound);
    if (!LooksLikeText(head))
        throw Refused(Refusal::Unknown);
    if (LooksLikePage(head))
        return Kind::Page;
    if (IsWebArchive(head))
        throw Refused(Refusal::NeedsConverter);
    const std::string_view begin = head.starts_with("\xEF\xBB\xBF") ? head.substr(3) : head;
    if (begin.starts_with("<?xml") || begin.starts_with("<office:document"))
        return KindOfXml(head);
    if (LowerAscii(Trimmed(begin.substr(0, 64), " \t\r\n")).starts_with("begin:vcalendar"))
        return Kind::Calendar;
    std::string own;
    return LooksLikeMarkdown(TextOf(bytes, own)) ? Kind::Markdown : Kind::Text;
}

} // namespace voxmate::readers
