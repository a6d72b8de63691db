#include "readers/office/Epub.h"

#include "readers/BlockWriter.h"
#include "readers/Refusal.h"
#include "readers/markup/Page.h"
#include "readers/text/Clean.h"

#include <algorithm>
#include <map>
#include <set>
#include <string>
#include <utility>
#include <vector>

namespace voxmate::readers
{

namespace
{

// The largest chapter: a book of ten thousand pages in one file.
constexpr std::size_t LargestChapter = std::size_t{64} << 20;

/// META-INF/container.xml: where the book's package document is.
class Container : public XmlHandler
{
public:
    void Start(std::string_view name, const XmlAttributes& attributes) override
    {
        if (name == "rootfile" && package.empty())
            package = PartName("", attributes.Get("full-path"));
    }
    void End(std::string_view /*name*/) override {}
    void Text(std::string_view /*text*/) override {}

    std::string package;
};

/// META-INF/encryption.xml: which parts are encrypted.
class Encryption : public XmlHandler
{
public:
    void Start(std::string_view name, const XmlAttributes& attributes) override
    {
        if (name == "enc:CipherReference")
            parts.insert(PartName("", attributes.Get("URI")));
    }
    void End(std::string_view /*name*/) override {}
    void Text(std::string_view /*text*/) override {}

    std::set<std::string> parts;
};

/// The package document: the book's parts and their order.
class PackageDocument : public XmlHandler
{
public:
    struct Item {
        std::string part;
        std::string type;
        bool navigation = false;
    };

    explicit PackageDocument(std::string part) : part_(std::move(part)) {}

    void Start(std::string_view name, const XmlAttributes& attributes) override
    {
        language_ = name == "dc:language" && language.empty();
        if (name == "item") {
            Item item;
            item.part = PartName(part_, attributes.Get("href"));
            item.type = attributes.Get("media-type");
            item.navigation = attributes.Get("properties").find("nav") != std::string_view::npos;
            items[std::string(attributes.Get("id"))] = std::move(item);
        } else if (name == "itemref") {
            (attributes.Get("linear") == "no" ? others : chapters).emplace_back(attributes.Get("idref"));
        }
    }
    void End(std::string_view /*name*/) override { language_ = false; }
    void Text(std::string_view text) override
    {
        if (language_)
            language += text;
    }

    std::map<std::string, Item> items;
    std::vector<std::string> chapters; ///< in order
    std::vector<std::string> others;
    std::string language;

private:
    std::string part_;
    bool language_ = false;
};

/// The table of contents, of EPUB 3 (links in a page) or of EPUB 2 (points with a label and a target).
class Contents : public XmlHandler
{
public:
    explicit Contents(std::string part) : part_(std::move(part)) {}

    void Start(std::string_view name, const XmlAttributes& attributes) override
    {
        if (name == "a") {
            target_ = PartName(part_, attributes.Get("href"));
            text_ = true;
            title_.clear();
        } else if (name == "text") {
            text_ = true;
            title_.clear();
        } else if (name == "content") {
            titles.try_emplace(PartName(part_, attributes.Get("src")), CleanLabel(title_));
        }
    }
    void End(std::string_view name) override
    {
        if (name == "a")
            titles.try_emplace(target_, CleanLabel(title_));
        if (name == "a" || name == "text")
            text_ = false;
    }
    void Text(std::string_view text) override
    {
        if (text_ && title_.size() < LongestLabel)
            title_ += text;
    }

    std::map<std::string, std::string> titles; ///< by the part's name; a part with several has the first

private:
    std::string part_;
    std::string target_;
    std::string title_;
    bool text_ = false;
};

std::map<std::string, std::string> Titles(const Parts& parts, const PackageDocument& book)
{
    for (const auto& [id, item] : book.items) {
        if (!item.navigation && item.type != "application/x-dtbncx+xml")
            continue;
        const std::optional<ByteSource> source = parts.Open(item.part);
        Contents contents(item.part);
        // A book without a table of contents, or with a damaged one, can be read all the same.
        if (source && ParseXml(*source, contents) && !contents.titles.empty())
            return contents.titles;
    }
    return {};
}

} // namespace

void ReadEpub(const Parts& parts, const BlockSink& sink)
{
    Container container;
    const std::optional<ByteSource> source = parts.Open("META-INF/container.xml");
    if (!source || !ParseXml(*source, container))
        throw Refused(Refusal::Damaged);
    const std::optional<ByteSource> packageSource = parts.Open(container.package);
    PackageDocument book(container.package);
    if (!packageSource || !ParseXml(*packageSource, book))
        throw Refused(Refusal::Damaged);
    Encryption encryption;
    if (const std::optional<ByteSource> list = parts.Open("META-INF/encryption.xml"))
        ParseXml(*list, encryption);

    const std::map<std::string, std::string> titles = Titles(parts, book);
    std::vector<std::string> order = book.chapters;
    order.insert(order.end(), book.others.begin(), book.others.end());
    std::set<std::string> read;
    for (const std::string& id : order) {
        const auto found = book.items.find(id);
        if (found == book.items.end() || found->second.navigation || !read.insert(found->second.part).second)
            continue;
        const std::string& part = found->second.part;
        if (found->second.type.find("html") == std::string::npos || !parts.Has(part))
            continue;
        if (encryption.parts.contains(part))
            throw Refused(Refusal::Protected);
        bool marked = false;
        const auto title = titles.find(part);
        ReadChapter(parts.Whole(part, LargestChapter), Clean(book.language), [&](Block&& block) {
            if (!std::exchange(marked, true)) {
                Block mark;
                mark.kind = BlockKind::Chapter;
                mark.label = title == titles.end() ? "" : title->second;
                mark.language = block.language;
                sink(std::move(mark));
            }
            sink(std::move(block));
        });
    }
}

} // namespace voxmate::readers
