#include "readers/office/Odt.h"

#include "readers/BlockWriter.h"
#include "readers/Refusal.h"
#include "readers/markup/Numbering.h"
#include "readers/office/OdtStyles.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <map>
#include <vector>

namespace voxmate::readers
{

namespace
{

int Number(std::string_view text, int otherwise)
{
    int number = 0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number);
    return error == std::errc() && number >= 0 && number < 1'000'000 ? number : otherwise;
}

// The numbers of a list's items, by depth.
using Counts = std::array<int, OdtStyles::Depths>;

// The label of the item last counted at a depth.
std::string LabelAt(const std::array<OdtStyles::Level, OdtStyles::Depths>& levels, const Counts& counts,
                    std::size_t depth)
{
    const OdtStyles::Level& level = levels.at(depth);
    if (level.bullet)
        return Bullet;
    if (level.format.empty())
        return "";
    std::string label = level.before;
    const auto shown = std::min(static_cast<std::size_t>(level.shown), depth + 1);
    for (std::size_t at = depth + 1 - shown; at <= depth; ++at)
        label += (at + shown > depth + 1 ? "." : "") + InFormat(counts.at(at), levels.at(at).format);
    return label + level.behind;
}

class Body : public XmlHandler
{
public:
    Body(OdtStyles& styles, const BlockSink& sink) : styles_(styles), writer_(sink) {}

    void Start(std::string_view name, const XmlAttributes& attributes) override
    {
        Element element = elements_.empty() ? Element{} : elements_.back();
        element.paragraph = false;
        if (name == "office:text") {
            element.body = true;
            found_ = true;
        } else if (!element.body) {
            styles_.Start(name, attributes);
        } else if (!element.skipped) {
            StartInBody(name, attributes, element);
        }
        elements_.push_back(element);
    }

    void End(std::string_view name) override
    {
        if (elements_.empty())
            return;
        const Element element = elements_.back();
        elements_.pop_back();
        if (!element.body)
            styles_.End(name);
        else if (!element.skipped)
            EndInBody(name);
    }

    void Text(std::string_view text) override
    {
        if (elements_.empty() || !elements_.back().text || elements_.back().skipped || elements_.back().hidden)
            return;
        if (citation_)
            noteLabel_.append(text.substr(0, LongestLabel));
        else
            writer_.Text(text);
    }

    void Finish() { writer_.Finish(); }
    bool Found() const { return found_; }

private:
    struct Element {
        bool body = false;
        bool skipped = false; ///< nothing in it is read
        bool text = false;    ///< its characters are text, not just layout of the XML file
        bool hidden = false;
        bool paragraph = false;
    };
    struct List {
        std::string style;
        bool item = false;   ///< an item has begun and has no paragraph yet
        bool header = false; ///< the item is the list's header, without a number
        int start = -1;      ///< the item's own number
    };

    // A text box, a note or a cell begins lists of its own.
    struct Lists {
        std::vector<List> open;
    };

    void StartInBody(std::string_view name, const XmlAttributes& attributes, Element& element)
    {
        if (name == "text:p" || name == "text:h") {
            element.text = true;
            element.paragraph = true;
            const std::string_view style = attributes.Get("text:style-name");
            element.hidden = styles_.Hides("paragraph", style, element.hidden);
            writer_.Language(styles_.Language("paragraph", style));
            if (name == "text:h")
                Heading(attributes, style);
            else
                Paragraph();
        } else if (name == "text:span") {
            const std::string_view style = attributes.Get("text:style-name");
            element.hidden = styles_.Hides("text", style, element.hidden);
            if (const std::string language = styles_.Language("text", style); !language.empty() && !writer_.HasText())
                writer_.Language(language);
        } else if (name == "text:s" || name == "text:tab") {
            if (element.text && !element.hidden)
                writer_.Text(" ");
        } else if (name == "text:line-break") {
            if (element.text && !element.hidden)
                writer_.Break();
        } else if (name == "text:list") {
            BeginList(attributes);
        } else if (name == "text:list-item" || name == "text:list-header") {
            if (!Open().empty()) {
                Open().back().item = true;
                Open().back().header = name == "text:list-header";
                Open().back().start = Number(attributes.Get("text:start-value"), -1);
            }
        } else if (name == "table:table-row") {
            writer_.BeginRow();
            element.text = false;
        } else if (name == "table:table-cell") {
            writer_.BeginCell();
            lists_.push_back({});
            element.text = false;
        } else if (name == "text:note") {
            noteLabel_.clear();
        } else if (name == "text:note-citation") {
            citation_ = true;
        } else if (name == "text:note-body") {
            writer_.BeginNote(noteLabel_);
            lists_.push_back({});
            element.text = false;
        } else if (name == "draw:text-box") {
            writer_.BeginAside();
            lists_.push_back({});
            element.text = false;
        } else {
            element.skipped = IsSkipped(name);
            element.text = element.text && !name.starts_with("table:") && !name.starts_with("draw:");
        }
        element.hidden = element.hidden || attributes.Get("text:display") == "none" ||
                         (name == "text:section" && attributes.Get("text:display") == "none");
    }

    void EndInBody(std::string_view name)
    {
        if (name == "text:p" || name == "text:h") {
            writer_.End();
        } else if (name == "text:list") {
            if (!Open().empty())
                Open().pop_back();
        } else if (name == "table:table-row") {
            writer_.EndRow();
        } else if (name == "table:table-cell") {
            writer_.EndCell();
            LeaveLists();
        } else if (name == "text:note-citation") {
            citation_ = false;
        } else if (name == "text:note-body" || name == "draw:text-box") {
            writer_.EndNote();
            LeaveLists();
        }
    }

    static bool IsSkipped(std::string_view name)
    {
        constexpr std::array<std::string_view, 8> parts{
            "text:tracked-changes", "text:ruby-text",      "text:number",         "text:script",
            "text:hidden-text",     "text:sequence-decls", "text:variable-decls", "text:user-field-decls"};
        constexpr std::array<std::string_view, 5> kinds{"svg:", "office:", "form:", "math:", "dc:"};
        const bool drawing = name.starts_with("draw:") && name != "draw:frame" && name != "draw:a" &&
                             name != "draw:g" && name != "draw:custom-shape" && name != "draw:rect";
        return drawing || std::find(parts.begin(), parts.end(), name) != parts.end() ||
               std::any_of(kinds.begin(), kinds.end(), [&](auto kind) { return name.starts_with(kind); }) ||
               (name.starts_with("text:") && name.ends_with("-source"));
    }

    std::vector<List>& Open()
    {
        if (lists_.empty())
            lists_.push_back({});
        return lists_.back().open;
    }

    void LeaveLists()
    {
        if (lists_.size() > 1)
            lists_.pop_back();
    }

    void BeginList(const XmlAttributes& attributes)
    {
        List list;
        list.style = attributes.Get("text:style-name");
        if (list.style.empty() && !Open().empty())
            list.style = Open().back().style;
        if (Open().empty()) {
            // A list that goes on keeps its numbers; any other begins anew.
            const bool goesOn =
                attributes.Get("text:continue-numbering") == "true" || attributes.Has("text:continue-list");
            if (!goesOn)
                counts_[list.style] = Counts{};
        }
        Open().push_back(std::move(list));
    }

    void Paragraph()
    {
        std::vector<List>& open = Open();
        if (open.empty() || !open.back().item || open.back().header)
            return writer_.Begin(BlockKind::Paragraph);
        open.back().item = false;
        // The paragraph is the first one of items at several depths when these begin together.
        const std::size_t depth = std::min(open.size(), OdtStyles::Depths) - 1;
        writer_.Begin(BlockKind::ListItem, static_cast<int>(depth) + 1, NextLabel(open.back(), depth));
    }

    std::string NextLabel(const List& list, std::size_t depth)
    {
        const auto* const levels = styles_.List(list.style);
        if (!levels)
            return Bullet;
        Counts& counts = counts_[list.style];
        Count(*levels, counts, depth, list.start);
        return LabelAt(*levels, counts, depth);
    }

    static void Count(const std::array<OdtStyles::Level, OdtStyles::Depths>& levels, Counts& counts, std::size_t depth,
                      int start)
    {
        int& count = counts.at(depth);
        count = start >= 0 ? start : count == 0 ? levels.at(depth).start : count + 1;
        std::fill(counts.begin() + static_cast<std::ptrdiff_t>(depth) + 1, counts.end(), 0);
    }

    void Heading(const XmlAttributes& attributes, std::string_view /*style*/)
    {
        const int level = std::clamp(Number(attributes.Get("text:outline-level"), 1), 1, 9);
        const auto depth = static_cast<std::size_t>(level - 1);
        std::string label;
        if (attributes.Get("text:is-list-header") != "true") {
            Count(styles_.Outline(), outline_, depth, -1);
            label = LabelAt(styles_.Outline(), outline_, depth);
        }
        writer_.Begin(BlockKind::Heading, level, label);
        if (!Open().empty())
            Open().back().item = false;
    }

    OdtStyles& styles_;
    BlockWriter writer_;
    std::vector<Element> elements_;
    std::vector<Lists> lists_;
    std::map<std::string, Counts> counts_; ///< by list style
    Counts outline_{};
    std::string noteLabel_;
    bool citation_ = false;
    bool found_ = false;
};

// Takes the styles only.
class StylesPart : public XmlHandler
{
public:
    explicit StylesPart(OdtStyles& styles) : styles_(styles) {}
    void Start(std::string_view name, const XmlAttributes& attributes) override { styles_.Start(name, attributes); }
    void End(std::string_view name) override { styles_.End(name); }
    void Text(std::string_view /*text*/) override {}

private:
    OdtStyles& styles_;
};

// Whether the manifest tells that the text is encrypted.
class Manifest : public XmlHandler
{
public:
    void Start(std::string_view name, const XmlAttributes& attributes) override
    {
        if (name == "manifest:file-entry")
            content_ = attributes.Get("manifest:full-path") == "content.xml" ||
                       attributes.Get("manifest:full-path") == "encrypted-package";
        else if (name == "manifest:encryption-data")
            encrypted = encrypted || content_;
    }
    void End(std::string_view /*name*/) override {}
    void Text(std::string_view /*text*/) override {}

    bool encrypted = false;

private:
    bool content_ = false;
};

void ReadContent(const ByteSource& source, OdtStyles& styles, const BlockSink& sink)
{
    Body body(styles, sink);
    if (!ParseXml(source, body) || !body.Found())
        throw Refused(Refusal::Damaged);
    body.Finish();
}

} // namespace

void ReadOdt(const Parts& parts, const BlockSink& sink)
{
    if (const std::optional<ByteSource> source = parts.Open("META-INF/manifest.xml")) {
        Manifest manifest;
        ParseXml(*source, manifest);
        if (manifest.encrypted)
            throw Refused(Refusal::Protected);
    }
    OdtStyles styles;
    if (const std::optional<ByteSource> source = parts.Open("styles.xml")) {
        StylesPart handler(styles);
        if (!ParseXml(*source, handler))
            throw Refused(Refusal::Damaged);
    }
    const std::optional<ByteSource> source = parts.Open("content.xml");
    if (!source)
        throw Refused(Refusal::Damaged);
    ReadContent(*source, styles, sink);
}

void ReadFlatOdt(std::string_view document, const BlockSink& sink)
{
    OdtStyles styles;
    ReadContent(BytesOf(document), styles, sink);
}

} // namespace voxmate::readers
