#include "platform/linux/word/FlatText.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <exception>
#include <memory>
#include <new>
#include <set>
#include <unordered_map>
#include <utility>
#include <vector>

#include <expat.h>

namespace voxmate::linux_platform
{

namespace
{

constexpr char ParagraphEnd = '\r';
constexpr char LineBreak = '\v';

// A start tag. Names and values belong to the parser.
class Tag
{
public:
    Tag(const char* name, const char** attributes) : name_(name), attributes_(attributes) {}

    std::string_view Name() const { return name_; }

    std::string Attribute(std::string_view name) const
    {
        for (const char** at = attributes_; *at; at += 2)
            if (name == *at)
                return at[1];
        return {};
    }

private:
    std::string_view name_;
    const char** attributes_; ///< names and values in turn, nullptr after the last
};

// Knows which styles hide their text. Word's styles inherit from each other; the nearest setting counts.
class Styles
{
public:
    void Begin(const Tag& style)
    {
        current_ = &styles_[style.Attribute("style:family") + ' ' + style.Attribute("style:name")];
        const std::string parent = style.Attribute("style:parent-style-name");
        current_->parent = parent.empty() ? parent : style.Attribute("style:family") + ' ' + parent;
    }
    void End() { current_ = nullptr; }

    void TextProperties(const Tag& properties)
    {
        if (current_)
            current_->display = properties.Attribute("text:display");
    }

    // Whether text of this style is hidden. `around` is the answer when neither the style nor its parents say so.
    bool Hides(const char* family, const std::string& name, bool around) const
    {
        std::string key = std::string(family) + ' ' + name;
        // A longer chain has a cycle.
        for (std::size_t depth = 0; depth <= styles_.size(); ++depth) {
            const auto found = styles_.find(key);
            if (found == styles_.end())
                break;
            if (!found->second.display.empty())
                return found->second.display == "none";
            key = found->second.parent;
        }
        return around;
    }

private:
    struct Style {
        std::string parent;
        std::string display; ///< "none", "true", or nothing
    };
    std::unordered_map<std::string, Style> styles_;
    Style* current_ = nullptr;
};

// Collects the main text from the document's tags and texts in order. The namespace prefixes are those that LibreOffice
// always writes.
class Reader
{
public:
    void Start(const Tag& tag)
    {
        Element element = elements_.empty() ? Element{} : elements_.back();
        element.paragraph = false;
        element.style = false;
        const std::string_view name = tag.Name();
        if (name == "office:text") {
            element.body = true;
        } else if (!element.body) {
            if (name == "style:style") {
                styles_.Begin(tag);
                element.style = true;
            } else if (name == "style:text-properties") {
                styles_.TextProperties(tag);
            }
        } else if (!element.skipped) {
            StartInBody(tag, element);
        }
        if (name == "text:changed-region")
            region_ = tag.Attribute("text:id");
        else if (name == "text:deletion")
            deletions_.insert(region_);
        elements_.push_back(element);
    }

    void End()
    {
        const Element element = elements_.back();
        elements_.pop_back();
        if (element.style)
            styles_.End();
        if (element.paragraph)
            EndParagraph();
    }

    void Text(std::string_view text)
    {
        if (elements_.empty() || !elements_.back().text || elements_.back().skipped)
            return;
        for (const char c : text) {
            if (c == ' ' || c == '\t' || c == '\r' || c == '\n')
                Blank();
            else
                Add({&c, 1});
        }
    }

    std::string TakeText() { return std::move(text_); }

private:
    struct Element {
        bool body = false;
        bool skipped = false; ///< nothing in it is main text
        bool text = false;    ///< its characters are text, not just layout of the XML file
        bool hidden = false;
        bool paragraph = false;
        bool style = false;
    };
    struct Paragraph {
        bool hidden;       ///< the paragraph or some of its text is hidden
        bool seen = false; ///< some of its text is visible
        bool blank = true; ///< at its beginning or after a blank: further blanks are dropped
    };

    void StartInBody(const Tag& tag, Element& element)
    {
        const std::string_view name = tag.Name();
        if (name == "text:p" || name == "text:h") {
            element.paragraph = true;
            element.text = true;
            element.hidden = styles_.Hides("paragraph", tag.Attribute("text:style-name"), element.hidden);
            paragraphs_.push_back({element.hidden});
        } else if (name == "text:span") {
            element.hidden = styles_.Hides("text", tag.Attribute("text:style-name"), element.hidden);
        } else if (name == "text:s") {
            AddSpaces(tag);
        } else if (name == "text:tab") {
            AddMark('\t');
        } else if (name == "text:line-break") {
            AddMark(LineBreak);
        } else if (name == "text:change-start") {
            deleted_ += deletions_.contains(tag.Attribute("text:change-id")) ? 1 : 0;
        } else if (name == "text:change-end") {
            deleted_ -= deletions_.contains(tag.Attribute("text:change-id")) && deleted_ > 0 ? 1 : 0;
        } else if (name == "field:fieldmark-start") {
            fields_.push_back(text_.size());
        } else if (name == "field:fieldmark-separator") {
            // What precedes the separator is the field's code.
            if (!fields_.empty())
                text_.resize(std::min(text_.size(), fields_.back()));
        } else if (name == "field:fieldmark-end") {
            if (!fields_.empty())
                fields_.pop_back();
        } else if (name == "draw:frame") {
            // Word's positioned paragraphs and floating tables belong to the main text and become frames anchored to a
            // paragraph. Its text boxes do not belong to it and become frames anchored to a character.
            element.skipped = tag.Attribute("text:anchor-type") != "paragraph";
            element.text = false;
            element.hidden = false;
        } else if (name == "draw:text-box" || name.starts_with("table:")) {
            element.text = false;
        } else {
            element.skipped = IsOutside(name);
        }
        element.hidden = element.hidden || tag.Attribute("text:display") == "none";
    }

    static bool IsOutside(std::string_view name)
    {
        constexpr std::array<std::string_view, 7> parts{
            "text:note",   "text:tracked-changes", "text:ruby-text",     "text:number",
            "text:script", "text:hidden-text",     "text:sequence-decls"};
        constexpr std::array<std::string_view, 6> kinds{"draw:", "svg:", "office:", "form:", "math:", "dc:"};
        return std::find(parts.begin(), parts.end(), name) != parts.end() ||
               std::any_of(kinds.begin(), kinds.end(), [&](auto kind) { return name.starts_with(kind); }) ||
               (name.starts_with("text:") && name.ends_with("-source"));
    }

    void Add(std::string_view text)
    {
        if (paragraphs_.empty())
            return;
        paragraphs_.back().blank = false;
        AddAsItIs(text);
    }

    void AddAsItIs(std::string_view text)
    {
        if (elements_.back().hidden) {
            paragraphs_.back().hidden = true;
        } else if (deleted_ == 0) {
            paragraphs_.back().seen = true;
            text_ += text;
        }
    }

    void Blank()
    {
        if (paragraphs_.empty() || std::exchange(paragraphs_.back().blank, true))
            return;
        AddAsItIs(" ");
    }

    void AddMark(char mark)
    {
        if (elements_.back().text)
            Add({&mark, 1});
    }

    void AddSpaces(const Tag& tag)
    {
        if (!elements_.back().text)
            return;
        constexpr int most = 10000;
        const std::string count = tag.Attribute("text:c");
        int spaces = 1;
        std::from_chars(count.data(), count.data() + count.size(), spaces);
        Add(std::string(static_cast<std::size_t>(std::clamp(spaces, 0, most)), ' '));
    }

    void EndParagraph()
    {
        const Paragraph paragraph = paragraphs_.back();
        paragraphs_.pop_back();
        const bool gone = paragraph.hidden && !paragraph.seen;
        if (!gone && deleted_ == 0)
            text_ += ParagraphEnd;
    }

    Styles styles_;
    std::vector<Element> elements_;
    std::vector<Paragraph> paragraphs_; ///< the open ones; a frame's paragraphs are inside the one it is anchored to
    std::vector<std::size_t> fields_;   ///< where the open fields begin
    std::set<std::string> deletions_;
    std::string region_;
    int deleted_ = 0;
    std::string text_;
};

/// Passes the parser's reports on to a reader. An exception must not pass through the parser, which is C: it is kept,
/// and the parser stops.
class Parsing
{
public:
    Parsing() : parser_(XML_ParserCreate(nullptr), &XML_ParserFree)
    {
        if (!parser_)
            throw std::bad_alloc();
        XML_SetUserData(parser_.get(), this);
        XML_SetElementHandler(
            parser_.get(),
            [](void* self, const char* name, const char** attributes) {
                static_cast<Parsing*>(self)->Tell([&](Reader& reader) { reader.Start(Tag(name, attributes)); });
            },
            [](void* self, const char* /*name*/) {
                static_cast<Parsing*>(self)->Tell([](Reader& reader) { reader.End(); });
            });
        XML_SetCharacterDataHandler(parser_.get(), [](void* self, const char* text, int length) {
            static_cast<Parsing*>(self)->Tell([&](Reader& reader) {
                reader.Text({text, static_cast<std::size_t>(length)});
            });
        });
    }

    /// False when the document is no well-formed XML.
    bool Parse(std::string_view part, bool last)
    {
        const bool ok = XML_Parse(parser_.get(), part.data(), static_cast<int>(part.size()), last) == XML_STATUS_OK;
        if (error_)
            std::rethrow_exception(error_);
        if (!ok && XML_GetErrorCode(parser_.get()) == XML_ERROR_NO_MEMORY)
            throw std::bad_alloc();
        return ok;
    }
    std::string TakeText() { return reader_.TakeText(); }

private:
    template <class Act>
    void Tell(const Act& act)
    {
        // A parser that was stopped still reports the end of the element it was in.
        if (error_)
            return;
        try {
            act(reader_);
        } catch (...) {
            error_ = std::current_exception();
            XML_StopParser(parser_.get(), XML_FALSE);
        }
    }

    Reader reader_;
    std::unique_ptr<XML_ParserStruct, decltype(&XML_ParserFree)> parser_;
    std::exception_ptr error_;
};

} // namespace

std::optional<std::string> MainText(std::string_view document)
{
    Parsing parsing;
    // The parser counts in int.
    constexpr std::size_t block = 1 << 20;
    bool last = false;
    while (!last) {
        const std::string_view part = document.substr(0, block);
        document.remove_prefix(part.size());
        last = document.empty();
        if (!parsing.Parse(part, last))
            return std::nullopt;
    }
    return parsing.TakeText();
}

} // namespace voxmate::linux_platform
