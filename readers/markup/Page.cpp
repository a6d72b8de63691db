#include "readers/markup/Page.h"

#include "base/Text.h"
#include "base/TextEncoding.h"
#include "platform/TextDecoding.h"
#include "readers/Refusal.h"
#include "readers/markup/Numbering.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <optional>
#include <vector>

namespace voxmate::readers
{

namespace
{

template <std::size_t Size>
bool IsOneOf(std::string_view name, const std::array<std::string_view, Size>& names)
{
    return std::find(names.begin(), names.end(), name) != names.end();
}

// Whether a list of words separated by blanks has the word.
bool HasWord(std::string_view words, std::string_view word)
{
    for (std::size_t at = words.find(word); at != std::string_view::npos; at = words.find(word, at + 1)) {
        const std::size_t end = at + word.size();
        if ((at == 0 || words[at - 1] == ' ') && (end == words.size() || words[end] == ' '))
            return true;
    }
    return false;
}

bool IsLeftOut(std::string_view name)
{
    constexpr std::array<std::string_view, 27> names{
        "head",   "script",   "style", "template", "object", "iframe",   "applet",   "audio",  "video",
        "canvas", "svg",      "nav",   "select",   "button", "input",    "textarea", "title",  "meta",
        "link",   "datalist", "rp",    "rt",       "map",    "noframes", "embed",    "dialog", "noscript"};
    // An XHTML parser gives drawings and scripts in them under their own namespace.
    return IsOneOf(name, names) || name.starts_with("svgdoc:");
}

bool IsBlockElement(std::string_view name)
{
    constexpr std::array<std::string_view, 36> names{
        "p",       "div",    "section", "article", "aside",      "header", "footer",     "main",    "body",
        "address", "figure", "hr",      "ul",      "ol",         "dl",     "dt",         "dd",      "pre",
        "form",    "center", "details", "summary", "fieldset",   "legend", "figcaption", "table",   "caption",
        "thead",   "tbody",  "tfoot",   "hgroup",  "blockquote", "menu",   "dir",        "listing", "xmp"};
    return IsOneOf(name, names);
}

int HeadingLevel(std::string_view name)
{
    return name.size() == 2 && name[0] == 'h' && name[1] >= '1' && name[1] <= '6' ? name[1] - '0' : 0;
}

std::optional<int> Number(std::string_view text)
{
    int number = 0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number);
    constexpr int most = 1'000'000;
    if (error != std::errc() || number < -most || number > most)
        return std::nullopt;
    return number;
}

// What an element is by its role, in books also by its type.
bool HasRole(const XmlAttributes& attributes, std::string_view role, std::string_view type)
{
    return HasWord(attributes.Get("role"), role) || HasWord(attributes.Get("epub:type"), type);
}

bool IsNote(std::string_view name, const XmlAttributes& attributes)
{
    if (name != "aside" && name != "li" && name != "p" && name != "div" && name != "section")
        return false;
    // The last two are the names LibreOffice gives.
    return HasRole(attributes, "doc-footnote", "footnote") || HasRole(attributes, "doc-endnote", "endnote") ||
           HasWord(attributes.Get("epub:type"), "rearnote") || attributes.Get("class").starts_with("sdfootnote") ||
           attributes.Get("class").starts_with("sdendnote");
}

// A part of the page with footnotes as the items of a list.
bool HoldsNotes(const XmlAttributes& attributes)
{
    return HasWord(attributes.Get("class"), "footnotes") || HasRole(attributes, "doc-endnotes", "endnotes") ||
           HasWord(attributes.Get("epub:type"), "footnotes") || HasWord(attributes.Get("epub:type"), "rearnotes");
}

bool IsNoteMark(std::string_view name, const XmlAttributes& attributes)
{
    if (name != "a" && name != "sup")
        return false;
    const std::string_view kind = attributes.Get("class");
    return HasRole(attributes, "doc-noteref", "noteref") || HasRole(attributes, "doc-backlink", "backlink") ||
           HasWord(kind, "footnote-ref") || HasWord(kind, "footnote-back") || HasWord(kind, "footnote-backref") ||
           HasWord(kind, "sdfootnoteanc") || HasWord(kind, "sdendnoteanc");
}

bool IsHidden(const XmlAttributes& attributes)
{
    if (attributes.Has("hidden") || attributes.Get("aria-hidden") == "true")
        return true;
    std::string style = LowerAscii(attributes.Get("style"));
    std::erase(style, ' ');
    // LibreOffice's names for what is printed on every page.
    if (attributes.Get("title") == "header" || attributes.Get("title") == "footer")
        return true;
    return style.find("display:none") != std::string::npos || style.find("visibility:hidden") != std::string::npos;
}

class Page : public XmlHandler
{
public:
    explicit Page(BlockWriter& writer) : writer_(writer) {}

    void Start(std::string_view name, const XmlAttributes& attributes) override
    {
        Element element;
        element.name = name;
        element.language = elements_.empty() ? "" : elements_.back().language;
        element.verbatim = !elements_.empty() && elements_.back().verbatim;
        element.inNote = !elements_.empty() && elements_.back().inNote;
        element.notes = (!elements_.empty() && elements_.back().notes) || HoldsNotes(attributes);
        const bool left = leftOut_ > 0 || IsLeftOut(name) || IsHidden(attributes) ||
                          (IsNoteMark(name, attributes) && !IsSign(element, attributes));
        if (const std::string_view language = LanguageOf(attributes); !language.empty())
            element.language = language;
        if (left) {
            element.leftOut = true;
            ++leftOut_;
        } else {
            writer_.Language(element.language);
            Begin(element, attributes);
        }
        elements_.push_back(std::move(element));
    }

    void End(std::string_view name) override
    {
        // A parser that repairs tells ends in order, but better not to rely on that.
        if (elements_.empty() || elements_.back().name != name)
            return;
        const Element element = std::move(elements_.back());
        elements_.pop_back();
        if (element.leftOut) {
            --leftOut_;
            return;
        }
        Finish(element);
        writer_.Language(elements_.empty() ? "" : elements_.back().language);
    }

    void Text(std::string_view text) override
    {
        if (leftOut_ > 0 || elements_.empty())
            return;
        if (elements_.back().noteSign)
            return sign_.append(text.substr(0, LongestLabel)), void();
        if (behindSign_) {
            // "1. Text", of which only the number is a link.
            text.remove_prefix(std::min(text.find_first_not_of(".): \t\r\n"), text.size()));
            behindSign_ = text.empty();
        }
        if (!elements_.back().verbatim)
            return writer_.Text(text);
        while (true) {
            const std::size_t end = text.find('\n');
            writer_.Text(text.substr(0, end));
            if (end == std::string_view::npos)
                return;
            writer_.Break();
            text.remove_prefix(end + 1);
        }
    }

private:
    struct Element {
        std::string name;
        std::string language;
        bool leftOut = false;
        bool verbatim = false; ///< its line ends count
        bool note = false;
        bool inNote = false;
        bool notes = false;    ///< the items of a list in it are footnotes
        bool noteSign = false; ///< the mark in front of a footnote's own text
    };
    struct List {
        std::string format; ///< empty for bullets
        int next = 1;
        int step = 1;
    };

    static std::string_view LanguageOf(const XmlAttributes& attributes)
    {
        const std::string_view language = attributes.Get("xml:lang");
        return language.empty() ? attributes.Get("lang") : language;
    }

    // A link at a footnote's beginning leads back and is its mark.
    bool IsSign(const Element& element, const XmlAttributes& attributes) const
    {
        return element.name == "a" && element.inNote && !writer_.HasText() &&
               attributes.Get("href").find('#') != std::string_view::npos;
    }

    void Begin(Element& element, const XmlAttributes& attributes)
    {
        const std::string_view name = element.name;
        const int depth = static_cast<int>(lists_.size());
        if (name == "br")
            return writer_.Break();
        if (IsSign(element, attributes)) {
            element.noteSign = true;
            sign_.clear();
            return;
        }
        if (name == "tr")
            return writer_.BeginRow();
        if (name == "td" || name == "th")
            return writer_.BeginCell();
        if (IsNote(name, attributes) || (element.notes && name == "li" && depth == 1)) {
            element.note = element.inNote = true;
            element.notes = false;
            const std::string sign = name == "li" ? ItemLabel(attributes) : "";
            writer_.End();
            writer_.BeginNote(sign.ends_with('.') ? sign.substr(0, sign.size() - 1) : sign);
        } else if (name == "li") {
            writer_.Begin(BlockKind::ListItem, std::max(depth, 1), ItemLabel(attributes));
            item_ = true;
            return;
        } else if (const int level = HeadingLevel(name)) {
            writer_.Begin(BlockKind::Heading, level);
        } else if (IsBlockElement(name)) {
            // A paragraph at a list item's beginning is the item's own.
            if (!item_ || writer_.HasText() || name == "ul" || name == "ol")
                writer_.Begin(BlockKind::Paragraph);
            if (name == "ul" || name == "ol" || name == "menu" || name == "dir")
                BeginList(name, attributes);
            element.verbatim = element.verbatim || name == "pre" || name == "listing" || name == "xmp";
            return;
        } else {
            return;
        }
        item_ = false;
    }

    void Finish(const Element& element)
    {
        const std::string_view name = element.name;
        if (element.noteSign) {
            behindSign_ = true;
            // An arrow is none.
            const auto marks = [](char c) { return IsDigit(c) || (c >= 'a' && c <= 'z') || c == '*'; };
            if (std::ranges::any_of(LowerAscii(sign_), marks))
                writer_.Become(BlockKind::Footnote, 0, sign_);
            return;
        }
        behindSign_ = behindSign_ && !element.note;
        if (element.note) {
            writer_.EndNote();
            writer_.End();
        } else if (name == "tr") {
            writer_.EndRow();
        } else if (name == "td" || name == "th") {
            writer_.EndCell();
        } else if (name == "li" || HeadingLevel(name) > 0 || IsBlockElement(name)) {
            writer_.End();
            if ((name == "ul" || name == "ol" || name == "menu" || name == "dir") && !lists_.empty())
                lists_.pop_back();
        } else {
            return;
        }
        item_ = false;
    }

    void BeginList(std::string_view name, const XmlAttributes& attributes)
    {
        List list;
        if (name == "ol") {
            const std::string_view type = attributes.Get("type");
            list.format = type.empty() ? "1" : type;
            list.next = Number(attributes.Get("start")).value_or(1);
            list.step = attributes.Has("reversed") ? -1 : 1;
        }
        lists_.push_back(list);
    }

    std::string ItemLabel(const XmlAttributes& attributes)
    {
        if (lists_.empty() || lists_.back().format.empty())
            return Bullet;
        List& list = lists_.back();
        list.next = Number(attributes.Get("value")).value_or(list.next);
        std::string label = InFormat(list.next, list.format) + ".";
        list.next += list.step;
        return label;
    }

    BlockWriter& writer_;
    std::vector<Element> elements_;
    std::vector<List> lists_;
    std::string sign_;
    bool behindSign_ = false; ///< the mark is read, and nothing of the footnote's own text
    int leftOut_ = 0;
    bool item_ = false; ///< a list item has begun and has no other block yet
};

// The encoding that a page names in its beginning, in a meta element or as XML; empty when it names none.
std::string DeclaredEncoding(std::string_view page)
{
    constexpr std::size_t searched = 4096;
    const std::string beginning = LowerAscii(page.substr(0, searched));
    std::size_t at = std::string::npos;
    if (beginning.starts_with("<?xml"))
        at = beginning.substr(0, beginning.find("?>")).find("encoding=");
    if (at == std::string::npos)
        at = beginning.find("charset=");
    if (at == std::string::npos)
        return "";
    at = beginning.find('=', at) + 1;
    while (at < beginning.size() && (beginning[at] == '"' || beginning[at] == '\'' || beginning[at] == ' '))
        ++at;
    return beginning.substr(at, beginning.find_first_of("\"' ;>/?", at) - at);
}

// A page's text in UTF-8. `own` keeps it where that is not what the file holds.
std::string_view Decoded(std::string_view bytes, std::string& own)
{
    const std::optional<ByteOrderMark> mark = FindByteOrderMark(bytes);
    const std::string_view beginning = bytes.substr(0, std::min<std::size_t>(bytes.size(), 4096) / 2 * 2);
    const bool wide = mark ? mark->encoding != TextEncoding::Utf8 : GuessUtf16(beginning).has_value();
    if (!wide && IsValidUtf8(bytes))
        return bytes.substr(mark ? mark->length : 0);
    const std::string encoding = wide || mark ? "" : DeclaredEncoding(bytes);
    std::optional<std::string> text;
    if (!encoding.empty() && encoding != "utf-8" && encoding != "utf8" && !encoding.starts_with("utf-16"))
        text = DecodeFrom(bytes, encoding);
    own = text ? std::move(*text) : DecodeUnknown(bytes);
    return own;
}

} // namespace

std::unique_ptr<XmlHandler> PageHandler(BlockWriter& writer)
{
    return std::make_unique<Page>(writer);
}

void ReadPage(std::string_view bytes, const BlockSink& sink)
{
    std::string own;
    const std::string_view text = Decoded(bytes, own);
    BlockWriter writer(sink);
    Page page(writer);
    ParseHtml(BytesOf(text), page);
    writer.Finish();
}

void ReadChapter(std::string_view bytes, std::string_view language, const BlockSink& sink)
{
    std::vector<Block> blocks;
    const auto collect = [&](Block&& block) {
        if (block.language.empty())
            block.language = language;
        blocks.push_back(std::move(block));
    };
    BlockWriter writer(collect);
    Page page(writer);
    if (ParseXml(BytesOf(bytes), page)) {
        writer.Finish();
    } else {
        blocks.clear();
        ReadPage(bytes, collect);
    }
    for (Block& block : blocks)
        sink(std::move(block));
}

bool LooksLikePage(std::string_view beginning)
{
    std::string text = LowerAscii(DecodeUnknown(beginning));
    std::string_view rest = text;
    while (true) {
        rest = Trimmed(rest, " \t\r\n");
        const bool comment = rest.starts_with("<!--");
        if (!comment && !rest.starts_with("<?xml"))
            break;
        const std::string_view close = comment ? "-->" : "?>";
        const std::size_t end = rest.find(close);
        if (end == std::string_view::npos)
            return false;
        rest.remove_prefix(end + close.size());
    }
    constexpr std::array<std::string_view, 16> beginnings{
        "<!doctype html", "<html", "<head", "<body", "<title", "<meta", "<p>",     "<p ",
        "<div",           "<h1",   "<h2",   "<h3",   "<table", "<ul>",  "<script", "<style"};
    return std::any_of(beginnings.begin(), beginnings.end(), [&](auto start) { return rest.starts_with(start); });
}

} // namespace voxmate::readers
