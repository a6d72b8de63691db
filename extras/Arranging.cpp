#include "extras/Arranging.h"

#include <algorithm>
#include <cstddef>

namespace voxmate
{

namespace
{

/// The layout that has the control's item among its children, and at which place; no layout when there is none.
struct Found {
    Layout* parent = nullptr;
    std::size_t at = 0;
};

Found ParentOf(Layout& layout, const Control& control)
{
    for (std::size_t at = 0; at < layout.children.size(); ++at) {
        if (layout.children[at].control == &control)
            return {&layout, at};
        if (const Found inside = ParentOf(layout.children[at], control); inside.parent)
            return inside;
    }
    return {};
}

} // namespace

bool StretchTo(Layout& arrangement, const Control& control)
{
    const bool found =
        arrangement.control == &control || std::any_of(arrangement.children.begin(), arrangement.children.end(),
                                                       [&control](Layout& child) { return StretchTo(child, control); });
    if (found)
        arrangement.stretch = std::max(arrangement.stretch, 1);
    return found;
}

Layout* ItemOf(Layout& arrangement, const Control& control)
{
    const Found found = ParentOf(arrangement, control);
    return found.parent ? &found.parent->children[found.at] : nullptr;
}

Layout TakeOut(Layout& arrangement, const Control& control)
{
    const Found found = ParentOf(arrangement, control);
    if (!found.parent)
        return {};
    const auto place = found.parent->children.begin() + static_cast<std::ptrdiff_t>(found.at);
    Layout item = std::move(*place);
    found.parent->children.erase(place);
    return item;
}

bool PutBehind(Layout& arrangement, const Control& control, Layout what)
{
    const Found found = ParentOf(arrangement, control);
    if (!found.parent)
        return false;
    found.parent->children.insert(found.parent->children.begin() + static_cast<std::ptrdiff_t>(found.at) + 1,
                                  std::move(what));
    return true;
}

bool PutAtEnd(Layout& arrangement, const Control& frame, Layout what)
{
    const Found found = ParentOf(arrangement, frame);
    if (!found.parent || found.parent->children[found.at].children.empty())
        return false;
    found.parent->children[found.at].children.front().children.push_back(std::move(what));
    return true;
}

} // namespace voxmate
