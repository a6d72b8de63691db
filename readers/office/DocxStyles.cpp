#include "readers/office/DocxStyles.h"

#include "base/Text.h"
#include "readers/Refusal.h"
#include "readers/markup/Numbering.h"

#include <algorithm>
#include <charconv>

namespace voxmate::readers
{

namespace
{

std::optional<int> Number(std::string_view text)
{
    int number = 0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number);
    constexpr int most = 1'000'000;
    if (error != std::errc() || number < 0 || number > most)
        return std::nullopt;
    return number;
}

// A part that may be missing.
void ReadPart(const Parts& parts, const std::string& part, XmlHandler& handler)
{
    if (part.empty())
        return;
    const std::optional<ByteSource> source = parts.Open(part);
    if (source && !ParseXml(*source, handler))
        throw Refused(Refusal::Damaged);
}

class Relations : public XmlHandler
{
public:
    explicit Relations(std::string part) : part_(std::move(part)) {}

    void Start(std::string_view name, const XmlAttributes& attributes) override
    {
        if (name != "Relationship")
            return;
        const std::string_view type = attributes.Get("Type");
        DocxRelation one;
        one.id = attributes.Get("Id");
        one.type = type.substr(type.find_last_of('/') + 1);
        if (attributes.Get("TargetMode") != "External")
            one.target = PartName(part_, attributes.Get("Target"));
        relations.push_back(std::move(one));
    }
    void End(std::string_view /*name*/) override {}
    void Text(std::string_view /*text*/) override {}

    std::vector<DocxRelation> relations;

private:
    std::string part_;
};

bool IsOn(std::string_view value)
{
    return value != "0" && value != "false" && value != "off" && value != "none";
}

} // namespace

std::vector<DocxRelation> DocxRelations(const Parts& parts, const std::string& part)
{
    const std::size_t slash = part.find_last_of('/');
    const std::string folder = slash == std::string::npos ? "" : part.substr(0, slash + 1);
    const std::string name = slash == std::string::npos ? part : part.substr(slash + 1);
    Relations relations(part);
    ReadPart(parts, folder + "_rels/" + name + ".rels", relations);
    return std::move(relations.relations);
}

class DocxStylesHandler : public XmlHandler
{
public:
    explicit DocxStylesHandler(DocxStyles& styles) : styles_(styles) {}

    void Start(std::string_view name, const XmlAttributes& attributes) override
    {
        const std::string_view value = attributes.Get("w:val");
        if (name == "w:style") {
            style_ = &styles_.styles_[std::string(attributes.Get("w:styleId"))];
            if (IsOn(attributes.Get("w:default")) && attributes.Has("w:default") &&
                attributes.Get("w:type") == "paragraph")
                styles_.styles_[""].base = attributes.Get("w:styleId");
        } else if (name == "w:lang" && styles_.language_.empty()) {
            styles_.language_ = value;
        } else if (!style_) {
            return;
        } else if (name == "w:basedOn") {
            style_->base = value;
        } else if (name == "w:name") {
            // The names of built-in styles are the same in every language.
            const std::string heading = LowerAscii(value);
            if (heading.starts_with("heading ") && heading.size() == 9 && heading[8] >= '1' && heading[8] <= '9' &&
                !style_->paragraph.outline)
                style_->paragraph.outline = heading[8] - '1';
            if (heading == "title")
                style_->paragraph.outline = 0;
        } else if (name == "w:outlineLvl") {
            style_->paragraph.outline = Number(value);
        } else if (name == "w:numId") {
            style_->paragraph.list = std::string(value);
        } else if (name == "w:ilvl") {
            style_->paragraph.depth = Number(value);
        } else if (name == "w:vanish") {
            style_->hidden = IsOn(value);
        }
    }
    void End(std::string_view name) override
    {
        if (name == "w:style")
            style_ = nullptr;
    }
    void Text(std::string_view /*text*/) override {}

private:
    DocxStyles& styles_;
    DocxStyles::Style* style_ = nullptr;
};

void DocxStyles::Read(const Parts& parts, const std::string& part)
{
    DocxStylesHandler handler(*this);
    ReadPart(parts, part, handler);
}

DocxParagraph DocxStyles::Complete(DocxParagraph paragraph) const
{
    std::string name = paragraph.style;
    // A longer chain has a cycle.
    for (std::size_t depth = 0; depth <= styles_.size(); ++depth) {
        const auto found = styles_.find(name);
        if (found == styles_.end())
            break;
        const DocxParagraph& style = found->second.paragraph;
        if (!paragraph.outline)
            paragraph.outline = style.outline;
        if (!paragraph.list)
            paragraph.list = style.list;
        if (!paragraph.depth)
            paragraph.depth = style.depth;
        name = found->second.base;
        if (name.empty())
            break;
    }
    return paragraph;
}

bool DocxStyles::Hides(const std::string& style) const
{
    std::string name = style;
    for (std::size_t depth = 0; depth <= styles_.size() && !name.empty(); ++depth) {
        const auto found = styles_.find(name);
        if (found == styles_.end())
            break;
        if (found->second.hidden)
            return *found->second.hidden;
        name = found->second.base;
    }
    return false;
}

class DocxListsHandler : public XmlHandler
{
public:
    explicit DocxListsHandler(DocxLists& lists) : lists_(lists) {}

    void Start(std::string_view name, const XmlAttributes& attributes) override
    {
        const std::string_view value = attributes.Get("w:val");
        if (name == "w:abstractNum") {
            kind_ = &lists_.kinds_[std::string(attributes.Get("w:abstractNumId"))];
        } else if (name == "w:num") {
            list_ = &lists_.lists_[std::string(attributes.Get("w:numId"))];
        } else if (name == "w:abstractNumId" && list_) {
            list_->kind = value;
        } else if (name == "w:lvl" || name == "w:lvlOverride") {
            depth_ =
                static_cast<std::size_t>(std::min(Number(attributes.Get("w:ilvl")).value_or(0), DocxLists::Depths - 1));
        } else if (name == "w:startOverride" && list_) {
            list_->starts.at(depth_) = Number(value).value_or(1);
        } else if (kind_ && name == "w:numFmt") {
            kind_->levels.at(depth_).format = value;
        } else if (kind_ && name == "w:lvlText") {
            kind_->levels.at(depth_).text = value;
        } else if (kind_ && name == "w:start") {
            kind_->levels.at(depth_).start = Number(value).value_or(1);
        }
    }
    void End(std::string_view name) override
    {
        if (name == "w:abstractNum")
            kind_ = nullptr;
        else if (name == "w:num")
            list_ = nullptr;
    }
    void Text(std::string_view /*text*/) override {}

private:
    DocxLists& lists_;
    DocxLists::Kind* kind_ = nullptr;
    DocxLists::List* list_ = nullptr;
    std::size_t depth_ = 0;
};

void DocxLists::Read(const Parts& parts, const std::string& part)
{
    DocxListsHandler handler(*this);
    ReadPart(parts, part, handler);
}

std::string DocxLists::NextLabel(const std::string& list, int depth)
{
    const auto found = lists_.find(list);
    if (found == lists_.end())
        return Bullet;
    Kind& kind = kinds_[found->second.kind];
    const auto at = static_cast<std::size_t>(std::clamp(depth, 0, Depths - 1));
    if (!found->second.begun) {
        for (std::size_t i = 0; i < kind.levels.size(); ++i)
            if (found->second.starts.at(i))
                kind.counts.at(i) = *found->second.starts.at(i) - 1;
        found->second.begun = true;
    }
    std::optional<int>& count = kind.counts.at(at);
    count = count ? *count + 1 : kind.levels.at(at).start;
    std::fill(kind.counts.begin() + static_cast<std::ptrdiff_t>(at) + 1, kind.counts.end(), std::nullopt);

    const Level& level = kind.levels.at(at);
    if (level.format == "bullet")
        return Bullet;
    if (level.format == "none")
        return "";
    // "%1.%2" stands for the numbers at the depths 1 and 2.
    std::string label;
    for (std::size_t i = 0; i < level.text.size() && label.size() < 200; ++i) {
        const char digit = i + 1 < level.text.size() ? level.text[i + 1] : '\0';
        if (level.text[i] != '%' || digit < '1' || digit > '9') {
            label += level.text[i];
            continue;
        }
        const auto of = static_cast<std::size_t>(digit - '1');
        const std::string& format = kind.levels.at(of).format;
        label += InFormat(kind.counts.at(of).value_or(kind.levels.at(of).start), format == "lowerLetter"   ? "a"
                                                                                 : format == "upperLetter" ? "A"
                                                                                 : format == "lowerRoman"  ? "i"
                                                                                 : format == "upperRoman"  ? "I"
                                                                                                           : "1");
        ++i;
    }
    return label;
}

} // namespace voxmate::readers
