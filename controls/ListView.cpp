#include "controls/ListView.h"

#include "base/Text.h"

#include <algorithm>
#include <numeric>

namespace voxmate
{

const std::string& ListItem::TextOf(std::size_t column) const
{
    static const std::string nothing;
    if (column == 0)
        return Text;
    return column <= SubItems.size() ? SubItems[column - 1] : nothing;
}

void ListView::ClearItems()
{
    if (items_.empty() && selected_ == 0)
        return;
    items_.clear();
    selected_ = 0;
    TellItems();
}

void ListView::SelectItem(std::size_t number)
{
    if (number < 1 || number > items_.size() || number == selected_)
        return;
    selected_ = number;
    Changed(Property::Selection);
}

void ListView::UserItemClick(std::size_t number)
{
    if (!Enabled || number < 1 || number > items_.size())
        return;
    selected_ = number;
    Raise(ItemClick, number);
}

void ListView::UserColumnClick(int column)
{
    if (Enabled)
        Raise(ColumnClick, column);
}

const std::vector<std::uint32_t>& ListView::Rows()
{
    if (!told_ && rows_.size() == items_.size())
        return rows_;
    told_ = false;
    rows_.resize(items_.size());
    std::iota(rows_.begin(), rows_.end(), 1U);
    if (!Sorted || SortKey < 0)
        return rows_;
    // Each text is put into capitals once, not in every comparison.
    const auto column = static_cast<std::size_t>(SortKey.get());
    std::vector<std::string> keys;
    keys.reserve(items_.size());
    for (const ListItem& item : items_)
        keys.push_back(UCase(item.TextOf(column)));
    if (Order == SortOrder::Ascending)
        std::stable_sort(rows_.begin(), rows_.end(),
                         [&keys](std::uint32_t a, std::uint32_t b) { return keys[a - 1] < keys[b - 1]; });
    else
        std::stable_sort(rows_.begin(), rows_.end(),
                         [&keys](std::uint32_t a, std::uint32_t b) { return keys[b - 1] < keys[a - 1]; });
    return rows_;
}

void ListView::Changed(Property property)
{
    if (property == Property::Items)
        TellItems();
    else
        Control::Changed(property);
}

void ListView::TellItems()
{
    if (!told_) {
        told_ = true;
        Control::Changed(Property::Items);
    }
}

} // namespace voxmate
