// A list of rows with columns, headers and small pictures; and the list of those pictures.
#pragma once

#include "controls/Control.h"

#include <cstddef>
#include <cstdint>
#include <functional>
#include <string>
#include <vector>

namespace voxmate
{

/// Pictures that mark the items of a list, counted from 1. An image list has no window of its own.
class ImageList : public Control
{
public:
    struct Image {
        std::string Picture;     ///< name of the icon, without folder and extension
        std::string Description; ///< what the picture says, for tool tip and screen reader
    };
    ImageList(Form* form, std::string name, std::vector<Image> images)
        : Control(form, std::move(name)), images_(std::move(images))
    {
    }
    /// Picture `number`, or nullptr when there is none.
    const Image* At(int number) const
    {
        return number < 1 || static_cast<std::size_t>(number) > images_.size()
                   ? nullptr
                   : &images_[static_cast<std::size_t>(number - 1)];
    }

private:
    std::vector<Image> images_;
};

enum class SortOrder { Ascending, Descending };

/// One row. Its text stands in the first column, beside the picture; the sub-items stand in the columns after it.
struct ListItem {
    std::string Text;
    int SmallIcon = 0; ///< number of its picture; 0: no picture
    std::vector<std::string> SubItems;

    /// The text in a column, counted from 0; empty when the column has none.
    const std::string& TextOf(std::size_t column) const;
};

/// A list in report style. Items are counted from 1 in the order in which they were added; sorting changes only where
/// they are shown. The peer is told of changes only once, at the first one, until it has asked for Rows; it does that
/// when the changes are over.
class ListView : public Control
{
public:
    struct ColumnHeader {
        std::string Text;
        int Chars = 0; ///< width in average characters; 0: takes the width that is left
    };
    ListView(Form* form, std::string name, std::vector<ColumnHeader> columns)
        : Control(form, std::move(name)), columns_(std::move(columns))
    {
    }

    const std::vector<ColumnHeader>& ColumnHeaders() const { return columns_; }
    const ImageList* SmallIcons = nullptr;
    std::string PlaceholderText; ///< shown while there is no item

    const std::vector<ListItem>& ListItems() const { return items_; }
    void AddItem(ListItem item)
    {
        items_.push_back(std::move(item));
        TellItems();
    }
    /// Removes every item; then none is selected.
    void ClearItems();

    Prop<bool> Sorted{*this, Property::Items, false};
    Prop<int> SortKey{*this, Property::Items, 0}; ///< the column to sort by, counted from 0
    Prop<SortOrder> Order{*this, Property::Items, SortOrder::Ascending};
    Prop<bool> FullRowSelect{*this, Property::Value, false}; ///< else only the first column shows the selection

    /// The number of the selected item; 0: none. Setting it from code raises no event; a number without an item is
    /// ignored.
    std::size_t SelectedItem() const { return selected_; }
    void SelectItem(std::size_t number);

    /// The user selected an item, or pressed the mouse button on the selected one.
    std::function<void(std::size_t number)> ItemClick;
    /// The user clicked the header of a column; columns are counted from 1.
    std::function<void(int column)> ColumnClick;

    void UserItemClick(std::size_t number);
    void UserColumnClick(int column);

    /// The numbers of the items in the order in which they are shown: sorted by the text of column SortKey without
    /// regard to case; items with equal text stay in the order in which they were added. The peer calls this, and is
    /// told of the next change only after it has.
    const std::vector<std::uint32_t>& Rows();

protected:
    void Changed(Property property) override;

private:
    void TellItems();

    std::vector<ColumnHeader> columns_;
    std::vector<ListItem> items_;
    std::vector<std::uint32_t> rows_;
    std::size_t selected_ = 0;
    bool told_ = false;
};

} // namespace voxmate
