// How a form's controls are arranged: a small tree of rows, columns and grids with stretch and minimum sizes. Each
// front end lays it out with its own fonts, scale and theme.
#pragma once

#include <utility>
#include <vector>

namespace voxmate
{

class Control;

struct Layout {
    enum class Kind { Item, Row, Column, Grid, Space };

    Kind kind = Kind::Space;
    Control* control = nullptr;   ///< Item: the control; a Frame's item holds its content as the only child, a
                                  ///< TabStrip's the content of each page
    std::vector<Layout> children; ///< Grid: row by row, `columns` cells each
    int columns = 0;
    int stretch = 0;  ///< share of the spare room along the parent's direction
    int minWidth = 0; ///< in device-independent pixels; 0: as the control needs
    int minHeight = 0;
    int spacing = -1; ///< between the children; -1: the platform's own

    Layout Stretch(int share) &&
    {
        stretch = share;
        return std::move(*this);
    }
    Layout Min(int width, int height) &&
    {
        minWidth = width;
        minHeight = height;
        return std::move(*this);
    }
    Layout Spacing(int pixels) &&
    {
        spacing = pixels;
        return std::move(*this);
    }
};

inline Layout Item(Control& control)
{
    return {Layout::Kind::Item, &control, {}};
}
inline Layout Framed(Control& frame, Layout content)
{
    return {Layout::Kind::Item, &frame, {std::move(content)}};
}
/// A tab strip with the content of its pages, one page for each tab, in the order of the tabs.
inline Layout Tabbed(Control& strip, std::vector<Layout> pages)
{
    return {Layout::Kind::Item, &strip, std::move(pages)};
}
inline Layout Row(std::vector<Layout> children)
{
    return {Layout::Kind::Row, nullptr, std::move(children)};
}
inline Layout Column(std::vector<Layout> children)
{
    return {Layout::Kind::Column, nullptr, std::move(children)};
}
inline Layout Grid(int columns, std::vector<Layout> children)
{
    return {Layout::Kind::Grid, nullptr, std::move(children), columns};
}
/// Empty room that takes `share` of the spare room.
inline Layout Space(int share = 1)
{
    return Layout{}.Stretch(share);
}

} // namespace voxmate
