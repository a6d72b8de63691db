#include "readers/office/OdtStyles.h"

#include <algorithm>
#include <charconv>

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

std::string Key(std::string_view family, std::string_view style)
{
    return std::string(family) + ' ' + std::string(style);
}

} // namespace

void OdtStyles::Start(std::string_view name, const XmlAttributes& attributes)
{
    if (name == "style:style" || name == "style:default-style") {
        family_ = attributes.Get("style:family");
        current_ = &styles_[Key(family_, attributes.Get("style:name"))];
        current_->parent = attributes.Get("style:parent-style-name");
        if (attributes.Has("style:list-style-name"))
            current_->list = std::string(attributes.Get("style:list-style-name"));
    } else if (name == "style:text-properties" && current_) {
        if (attributes.Has("text:display"))
            current_->display = attributes.Get("text:display");
        const std::string_view language = attributes.Get("fo:language");
        const std::string_view country = attributes.Get("fo:country");
        if (!language.empty() && language != "none" && language != "zxx")
            current_->language = std::string(language) + (country.empty() || country == "none" ? "" : "-") +
                                 (country == "none" ? "" : std::string(country));
    } else if (name == "text:list-style") {
        list_ = &lists_[std::string(attributes.Get("style:name"))];
    } else if (name == "text:outline-style") {
        list_ = &outline_;
    } else if (name.starts_with("text:list-level-style-") || name == "text:outline-level-style") {
        const int depth = Number(attributes.Get("text:level"), 1) - 1;
        if (!list_ || depth < 0 || depth >= static_cast<int>(Depths))
            return;
        Level& level = list_->at(static_cast<std::size_t>(depth));
        level.bullet = name != "text:list-level-style-number" && name != "text:outline-level-style";
        level.format = attributes.Get("style:num-format");
        level.before = attributes.Get("style:num-prefix");
        level.behind = attributes.Get("style:num-suffix");
        level.shown = std::max(Number(attributes.Get("text:display-levels"), 1), 1);
        level.start = Number(attributes.Get("text:start-value"), 1);
    }
}

void OdtStyles::End(std::string_view name)
{
    if (name == "style:style" || name == "style:default-style")
        current_ = nullptr;
    else if (name == "text:list-style" || name == "text:outline-style")
        list_ = nullptr;
}

// Tells `found` of the style and its parents until it returns true; at last of the family's default.
template <class Found>
void OdtStyles::Climb(std::string_view family, std::string_view style, const Found& found) const
{
    std::string name(style);
    // A longer chain has a cycle.
    for (std::size_t depth = 0; depth <= styles_.size(); ++depth) {
        const auto at = styles_.find(Key(family, name));
        if (at == styles_.end() || found(at->second) || name.empty())
            return;
        name = at->second.parent;
    }
}

bool OdtStyles::Hides(std::string_view family, std::string_view style, bool around) const
{
    bool hides = around;
    Climb(family, style, [&](const Style& one) {
        if (one.display.empty())
            return false;
        hides = one.display == "none";
        return true;
    });
    return hides;
}

std::string OdtStyles::Language(std::string_view family, std::string_view style) const
{
    std::string language;
    Climb(family, style, [&](const Style& one) {
        language = one.language;
        return !language.empty();
    });
    return language;
}

std::string OdtStyles::ListStyle(std::string_view paragraphStyle) const
{
    std::string list;
    Climb("paragraph", paragraphStyle, [&](const Style& one) {
        list = one.list.value_or("");
        return one.list.has_value();
    });
    return list;
}

const std::array<OdtStyles::Level, OdtStyles::Depths>* OdtStyles::List(std::string_view style) const
{
    const auto found = lists_.find(style);
    return found == lists_.end() ? nullptr : &found->second;
}

} // namespace voxmate::readers
