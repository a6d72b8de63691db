// Reads XML as it comes. Nothing outside the document is ever opened, and entities that it declares are not replaced.
#pragma once

#include <cstddef>
#include <functional>
#include <string>
#include <string_view>

namespace voxmate::readers
{

/// A start tag's attributes. Valid while the handler runs.
class XmlAttributes
{
public:
    virtual ~XmlAttributes() = default;
    /// The value of an attribute of this name, with its prefix as in XmlHandler; empty where there is none.
    virtual std::string_view Get(std::string_view name) const = 0;
    virtual bool Has(std::string_view name) const = 0;
};

/// Told what is in a document. Names have the usual prefix of their namespace whatever prefix the document uses
/// ("w:p", "text:h"), those of XHTML and of no or an unknown namespace have none.
class XmlHandler
{
public:
    virtual ~XmlHandler() = default;
    virtual void Start(std::string_view name, const XmlAttributes& attributes) = 0;
    virtual void End(std::string_view name) = 0;
    virtual void Text(std::string_view text) = 0;
};

/// Fills a part of the buffer with the next bytes and returns how many; 0 at the end.
using ByteSource = std::function<std::size_t(char* buffer, std::size_t size)>;
/// The bytes of a text that outlives the source.
ByteSource BytesOf(std::string_view text);

/// Whether the document is well-formed to its end. What the handler and the source throw is passed on. The entities of
/// HTML ("&nbsp;") are known.
bool ParseXml(const ByteSource& source, XmlHandler& handler);

/// A page: its elements' names are in lower case and without a namespace, and errors are repaired as the parser can.
/// The source's text is UTF-8.
void ParseHtml(const ByteSource& source, XmlHandler& handler);

} // namespace voxmate::readers
