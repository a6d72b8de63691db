#include "readers/markup/Xml.h"

#include "base/Text.h"

#include <algorithm>
#include <array>
#include <cstring>
#include <exception>
#include <map>
#include <memory>
#include <new>
#include <utility>

#include <libxml/HTMLparser.h>
#include <libxml/parser.h>
#include <libxml/parserInternals.h>

namespace voxmate::readers
{

namespace
{

constexpr std::size_t PieceSize = std::size_t{32} * 1024;

std::string_view View(const xmlChar* text)
{
    return text ? std::string_view(reinterpret_cast<const char*>(text)) : std::string_view();
}

// Namespaces with a prefix of their own here. Office documents have two addresses for each (ISO/IEC 29500 transitional
// and strict).
std::string_view Prefix(std::string_view address)
{
    using Pair = std::pair<std::string_view, std::string_view>;
    constexpr std::array<Pair, 25> known{{
        {"http://schemas.openxmlformats.org/wordprocessingml/2006/main", "w:"},
        {"http://purl.oclc.org/ooxml/wordprocessingml/main", "w:"},
        {"http://schemas.openxmlformats.org/officeDocument/2006/relationships", "r:"},
        {"http://purl.oclc.org/ooxml/officeDocument/relationships", "r:"},
        {"http://schemas.openxmlformats.org/officeDocument/2006/math", "m:"},
        {"http://purl.oclc.org/ooxml/officeDocument/math", "m:"},
        {"http://schemas.openxmlformats.org/markup-compatibility/2006", "mc:"},
        {"http://schemas.openxmlformats.org/drawingml/2006/main", "a:"},
        {"http://purl.oclc.org/ooxml/drawingml/main", "a:"},
        {"urn:oasis:names:tc:opendocument:xmlns:office:1.0", "office:"},
        {"urn:oasis:names:tc:opendocument:xmlns:text:1.0", "text:"},
        {"urn:oasis:names:tc:opendocument:xmlns:table:1.0", "table:"},
        {"urn:oasis:names:tc:opendocument:xmlns:style:1.0", "style:"},
        {"urn:oasis:names:tc:opendocument:xmlns:drawing:1.0", "draw:"},
        {"urn:oasis:names:tc:opendocument:xmlns:xsl-fo-compatible:1.0", "fo:"},
        {"urn:oasis:names:tc:opendocument:xmlns:svg-compatible:1.0", "svg:"},
        {"urn:oasis:names:tc:opendocument:xmlns:presentation:1.0", "presentation:"},
        {"urn:oasis:names:tc:opendocument:xmlns:form:1.0", "form:"},
        {"urn:oasis:names:tc:opendocument:xmlns:manifest:1.0", "manifest:"},
        {"http://www.w3.org/1998/Math/MathML", "math:"},
        {"http://www.w3.org/2000/svg", "svgdoc:"},
        {"http://www.idpf.org/2007/ops", "epub:"},
        {"http://purl.org/dc/elements/1.1/", "dc:"},
        {"http://www.w3.org/XML/1998/namespace", "xml:"},
        {"http://www.w3.org/2001/04/xmlenc#", "enc:"},
    }};
    const auto* const found =
        std::find_if(known.begin(), known.end(), [&](const Pair& one) { return one.first == address; });
    return found == known.end() ? std::string_view() : found->second;
}

std::string FullName(const xmlChar* local, const xmlChar* address)
{
    return std::string(address ? Prefix(View(address)) : std::string_view()) + std::string(View(local));
}

/// Five pointers for each attribute: local name, prefix, namespace, begin and end of the value.
class NamespaceAttributes : public XmlAttributes
{
public:
    NamespaceAttributes(int count, const xmlChar** fields) : count_(count), fields_(fields) {}

    std::string_view Get(std::string_view name) const override
    {
        const xmlChar** const at = Find(name);
        if (!at)
            return {};
        return {reinterpret_cast<const char*>(at[3]), static_cast<std::size_t>(at[4] - at[3])};
    }
    bool Has(std::string_view name) const override { return Find(name) != nullptr; }

private:
    const xmlChar** Find(std::string_view name) const
    {
        for (int i = 0; i < count_; ++i) {
            const xmlChar** const at = fields_ + std::ptrdiff_t{i} * 5;
            if (name.ends_with(View(at[0])) && name == FullName(at[0], at[2]))
                return at;
        }
        return nullptr;
    }

    int count_;
    const xmlChar** fields_;
};

/// Names and values in turn, a null pointer after the last.
class PlainAttributes : public XmlAttributes
{
public:
    explicit PlainAttributes(const xmlChar** fields) : fields_(fields) {}

    std::string_view Get(std::string_view name) const override
    {
        const xmlChar** const at = Find(name);
        return at ? View(at[1]) : std::string_view();
    }
    bool Has(std::string_view name) const override { return Find(name) != nullptr; }

private:
    const xmlChar** Find(std::string_view name) const
    {
        for (const xmlChar** at = fields_; at && *at; at += 2)
            if (EqualNoCase(View(*at), name))
                return at;
        return nullptr;
    }

    const xmlChar** fields_;
};

/// Passes the parser's reports on. An exception must not pass through the parser, which is C: it is kept, and the
/// parser stops.
class Parsing
{
public:
    explicit Parsing(XmlHandler& handler) : handler_(handler) {}

    template <class Act>
    void Tell(const Act& act)
    {
        if (error_)
            return;
        try {
            act(handler_);
        } catch (...) {
            error_ = std::current_exception();
            xmlStopParser(parser);
        }
    }
    void Rethrow() const
    {
        if (error_)
            std::rethrow_exception(error_);
        if (parser->errNo == XML_ERR_NO_MEMORY)
            throw std::bad_alloc();
    }

    // An entity of XML or HTML. It counts as predefined, so that its text is told like any other.
    xmlEntityPtr Entity(const xmlChar* name)
    {
        if (xmlEntityPtr predefined = xmlGetPredefinedEntity(name))
            return predefined;
        const htmlEntityDesc* const described = htmlEntityLookup(name);
        if (!described)
            return nullptr;
        auto [at, added] = entities_.try_emplace(described->name);
        Known& known = at->second;
        if (added) {
            AppendUtf8(known.text, described->value);
            known.entity.type = XML_ENTITY_DECL;
            known.entity.etype = XML_INTERNAL_PREDEFINED_ENTITY;
            known.entity.name = reinterpret_cast<const xmlChar*>(described->name);
            known.entity.content = reinterpret_cast<xmlChar*>(known.text.data());
            known.entity.orig = known.entity.content;
            known.entity.length = static_cast<int>(known.text.size());
        }
        return &known.entity;
    }

    xmlParserCtxtPtr parser = nullptr;

private:
    struct Known {
        std::string text;
        xmlEntity entity{};
    };

    XmlHandler& handler_;
    std::exception_ptr error_;
    std::map<std::string, Known> entities_;
};

Parsing& Of(void* data)
{
    return *static_cast<Parsing*>(data);
}

void TellText(void* data, const xmlChar* text, int length)
{
    Of(data).Tell([&](XmlHandler& handler) {
        handler.Text({reinterpret_cast<const char*>(text), static_cast<std::size_t>(length)});
    });
}

xmlSAXHandler XmlReports()
{
    xmlSAXHandler reports{};
    reports.initialized = XML_SAX2_MAGIC;
    reports.startElementNs = [](void* data, const xmlChar* local, const xmlChar* /*prefix*/, const xmlChar* address,
                                int /*namespaces*/, const xmlChar** /*list*/, int count, int /*defaulted*/,
                                const xmlChar** fields) {
        Of(data).Tell(
            [&](XmlHandler& handler) { handler.Start(FullName(local, address), NamespaceAttributes(count, fields)); });
    };
    reports.endElementNs = [](void* data, const xmlChar* local, const xmlChar* /*prefix*/, const xmlChar* address) {
        Of(data).Tell([&](XmlHandler& handler) { handler.End(FullName(local, address)); });
    };
    reports.characters = TellText;
    reports.ignorableWhitespace = TellText;
    reports.cdataBlock = TellText;
    reports.getEntity = [](void* data, const xmlChar* name) { return Of(data).Entity(name); };
    return reports;
}

xmlSAXHandler HtmlReports()
{
    xmlSAXHandler reports{};
    reports.startElement = [](void* data, const xmlChar* name, const xmlChar** fields) {
        Of(data).Tell([&](XmlHandler& handler) { handler.Start(View(name), PlainAttributes(fields)); });
    };
    reports.endElement = [](void* data, const xmlChar* name) {
        Of(data).Tell([&](XmlHandler& handler) { handler.End(View(name)); });
    };
    reports.characters = TellText;
    reports.ignorableWhitespace = TellText;
    return reports;
}

// Gives the source piece by piece to `parse`, whose second argument tells that there is no more.
template <class Parse>
void Feed(const ByteSource& source, const Parse& parse)
{
    std::string piece(PieceSize, '\0');
    std::size_t got = 0;
    while ((got = source(piece.data(), piece.size())) > 0)
        if (!parse(std::string_view(piece).substr(0, got), false))
            return;
    parse({}, true);
}

} // namespace

ByteSource BytesOf(std::string_view text)
{
    return [text](char* buffer, std::size_t size) mutable {
        const std::size_t part = std::min(size, text.size());
        std::memcpy(buffer, text.data(), part);
        text.remove_prefix(part);
        return part;
    };
}

bool ParseXml(const ByteSource& source, XmlHandler& handler)
{
    xmlSAXHandler reports = XmlReports();
    Parsing parsing(handler);
    const std::unique_ptr<xmlParserCtxt, decltype(&xmlFreeParserCtxt)> parser(
        xmlCreatePushParserCtxt(&reports, &parsing, nullptr, 0, nullptr), &xmlFreeParserCtxt);
    if (!parser)
        throw std::bad_alloc();
    parsing.parser = parser.get();
    // "Replace entities" makes attributes whole. What a document declares stays unknown, as its declarations are not
    // listened to.
    xmlCtxtUseOptions(parser.get(), XML_PARSE_NONET | XML_PARSE_NOENT | XML_PARSE_NOERROR | XML_PARSE_NOWARNING);
    bool good = true;
    Feed(source, [&](std::string_view piece, bool last) {
        good = xmlParseChunk(parser.get(), piece.data(), static_cast<int>(piece.size()), last) == 0;
        parsing.Rethrow();
        return good;
    });
    if (parser->myDoc) {
        xmlFreeDoc(parser->myDoc);
        parser->myDoc = nullptr;
    }
    return good && parser->wellFormed;
}

void ParseHtml(const ByteSource& source, XmlHandler& handler)
{
    xmlSAXHandler reports = HtmlReports();
    Parsing parsing(handler);
    const std::unique_ptr<xmlParserCtxt, decltype(&htmlFreeParserCtxt)> parser(
        htmlCreatePushParserCtxt(&reports, &parsing, nullptr, 0, nullptr, XML_CHAR_ENCODING_UTF8), &htmlFreeParserCtxt);
    if (!parser)
        throw std::bad_alloc();
    parsing.parser = parser.get();
    htmlCtxtUseOptions(parser.get(), HTML_PARSE_RECOVER | HTML_PARSE_NONET | HTML_PARSE_NOERROR | HTML_PARSE_NOWARNING |
                                         HTML_PARSE_IGNORE_ENC | HTML_PARSE_COMPACT);
    Feed(source, [&](std::string_view piece, bool last) {
        htmlParseChunk(parser.get(), piece.data(), static_cast<int>(piece.size()), last);
        parsing.Rethrow();
        return true;
    });
    if (parser->myDoc) {
        xmlFreeDoc(parser->myDoc);
        parser->myDoc = nullptr;
    }
}

} // namespace voxmate::readers
