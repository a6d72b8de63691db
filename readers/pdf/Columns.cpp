#include "readers/pdf/Columns.h"

#include "base/Text.h"

#include <algorithm>
#include <numeric>
#include <tuple>
#include <utility>

namespace voxmate::readers
{

namespace
{

constexpr double SameLevel = 0.3; ///< in units of the font's size

// Lines one below the other, as their order on the page goes.
struct Chain {
    double left;
    double right;
    double top;
    double bottom;
    double widths;
    double characters;
    double lines;

    // Whether this is a column of prose: long lines that fill their column.
    bool IsProse() const
    {
        constexpr double enough = 8;
        constexpr double shortest = 18;
        constexpr double filled = 0.7;
        return lines >= enough && characters >= shortest * lines && widths >= filled * lines * (right - left);
    }
};

std::vector<Chain> ChainsOf(const std::vector<PdfLine>& lines)
{
    std::vector<Chain> chains;
    double before = 0; // the foot of the line before
    for (const PdfLine& line : lines) {
        const bool goesOn = !chains.empty() && line.bottom > before && line.top - before < 6 * line.size &&
                            std::min(line.right, chains.back().right) > std::max(line.left, chains.back().left);
        if (!goesOn)
            chains.push_back({line.left, line.right, line.top, line.bottom, 0, 0, 0});
        Chain& chain = chains.back();
        chain.left = std::min(chain.left, line.left);
        chain.right = std::max(chain.right, line.right);
        chain.bottom = before = line.bottom;
        chain.widths += line.Width();
        chain.characters += static_cast<double>(Len(line.text));
        ++chain.lines;
    }
    return chains;
}

} // namespace

std::vector<double> Gutters(const std::vector<PdfLine>& lines)
{
    std::vector<Chain> columns = ChainsOf(lines);
    std::erase_if(columns, [](const Chain& chain) { return !chain.IsProse(); });
    // A page has a few columns; more of them are none.
    constexpr std::size_t mostColumns = 20;
    if (columns.size() > mostColumns)
        return {};
    std::vector<double> gutters;
    for (const Chain& left : columns)
        for (const Chain& right : columns)
            if (left.right < right.left && std::min(left.bottom, right.bottom) - std::max(left.top, right.top) > 0)
                gutters.push_back((left.right + right.left) / 2);
    std::sort(gutters.begin(), gutters.end());
    // Those of other pairs are where a column is.
    std::erase_if(gutters, [&](double gutter) {
        return std::any_of(columns.begin(), columns.end(),
                           [&](const Chain& one) { return one.left < gutter && gutter < one.right; });
    });
    return gutters;
}

std::size_t ColumnOf(const PdfLine& line, const std::vector<double>& gutters)
{
    const auto first = std::lower_bound(gutters.begin(), gutters.end(), line.left) - gutters.begin();
    const auto last = std::lower_bound(gutters.begin(), gutters.end(), line.right) - gutters.begin();
    return first == last ? static_cast<std::size_t>(first) : gutters.size() + 1;
}

std::vector<PdfLevel> LevelsOf(const std::vector<PdfLine>& lines)
{
    std::vector<std::size_t> order(lines.size());
    std::iota(order.begin(), order.end(), std::size_t{0});
    std::stable_sort(order.begin(), order.end(),
                     [&](std::size_t a, std::size_t b) { return lines[a].bottom < lines[b].bottom; });
    std::vector<PdfLevel> levels;
    for (const std::size_t i : order) {
        const PdfLine& line = lines[i];
        if (levels.empty() || line.bottom - levels.back().bottom > SameLevel * line.size)
            levels.push_back({{}, line.bottom, line.size});
        levels.back().lines.push_back(i);
    }
    for (PdfLevel& level : levels)
        std::stable_sort(level.lines.begin(), level.lines.end(),
                         [&](std::size_t a, std::size_t b) { return lines[a].left < lines[b].left; });
    return levels;
}

std::vector<PdfLine> InReadingOrder(std::vector<PdfLine> lines)
{
    const std::vector<double> gutters = Gutters(lines);
    if (gutters.empty())
        return lines;
    // Each line's band, which ends at a line that reaches over several columns; its column; its place there.
    std::vector<std::tuple<std::size_t, std::size_t, std::size_t, std::size_t>> order;
    std::size_t band = 0;
    std::size_t place = 0;
    for (const PdfLevel& level : LevelsOf(lines)) {
        const bool across = std::any_of(level.lines.begin(), level.lines.end(),
                                        [&](std::size_t i) { return ColumnOf(lines[i], gutters) > gutters.size(); });
        band += across ? 1 : 0;
        for (const std::size_t i : level.lines)
            order.emplace_back(band, across ? 0 : ColumnOf(lines[i], gutters), place++, i);
        band += across ? 1 : 0;
    }
    std::sort(order.begin(), order.end());
    std::vector<PdfLine> sorted;
    sorted.reserve(lines.size());
    for (const auto& one : order)
        sorted.push_back(std::move(lines[std::get<3>(one)]));
    return sorted;
}

} // namespace voxmate::readers
