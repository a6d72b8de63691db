#include "readers/pdf/Columns.h"

#include "base/Text.h"

#include <algorithm>
#include <cmath>
#include <numeric>
#include <tuple>
#include <utility>

namespace voxmate::readers
{

namespace
{

constexpr double SameLevel = 0.3; ///< in units of the font's size

// Lines that may be a column.
struct Side {
    double left = 1e9;
    double right = -1e9;
    double top = 1e9;
    double bottom = -1e9;
    std::vector<const PdfLine*> lines;

    void Add(const PdfLine& line)
    {
        left = std::min(left, line.left);
        right = std::max(right, line.right);
        top = std::min(top, line.top);
        bottom = std::max(bottom, line.bottom);
        lines.push_back(&line);
    }

    // Whether this is a column of prose: many of its lines are long and fill it.
    bool IsProse() const
    {
        constexpr std::size_t enough = 8;
        constexpr std::size_t shortest = 18; // characters
        constexpr double filled = 0.8;
        constexpr std::size_t share = 3;
        const auto full = static_cast<std::size_t>(std::count_if(lines.begin(), lines.end(), [&](const PdfLine* line) {
            return line->Width() >= filled * (right - left) && Len(line->text) >= shortest;
        }));
        return full >= enough && full * share >= lines.size();
    }
};

// The places at which many things begin, from left to right.
std::vector<double> CommonEdges(std::vector<double> lefts)
{
    constexpr double same = 1.5; // points
    constexpr std::size_t many = 8;
    std::sort(lefts.begin(), lefts.end());
    std::vector<double> edges;
    for (std::size_t begin = 0; begin < lefts.size();) {
        std::size_t end = begin;
        while (end < lefts.size() && lefts[end] - lefts[begin] < same)
            ++end;
        if (end - begin >= many)
            edges.push_back(lefts[begin]);
        begin = end;
    }
    return edges;
}

constexpr double Margin = 1.5; ///< points: so far before its column's left edge a gutter ends
constexpr std::size_t MostColumns = 10;

// Where columns may begin: where many words do so, and few lines reach over it.
std::vector<double> PossibleGutters(const std::vector<PdfLine>& lines)
{
    std::vector<double> lefts;
    for (const PdfLine& line : lines)
        for (const PdfLine::Word& word : line.words)
            lefts.push_back(word.left);
    std::vector<double> gutters;
    for (const double edge : CommonEdges(std::move(lefts))) {
        const double gutter = edge - Margin;
        std::size_t begin = 0;
        std::size_t across = 0;
        bool within = false;
        for (const PdfLine& line : lines) {
            const auto word = std::find_if(line.words.begin(), line.words.end(),
                                           [&](const PdfLine::Word& one) { return one.left >= gutter; });
            const bool begins = word != line.words.end() && word->left < gutter + 2 * Margin;
            const bool reaches = line.left < gutter && line.right > gutter;
            begin += begins ? 1 : 0;
            across += !begins && reaches ? 1 : 0;
            within = within || reaches;
        }
        if (within && across < begin)
            gutters.push_back(gutter);
    }
    return gutters;
}

// Columns that a page's own lines show.
std::vector<double> OwnGutters(const std::vector<PdfLine>& lines)
{
    std::vector<double> lefts;
    lefts.reserve(lines.size());
    for (const PdfLine& line : lines)
        lefts.push_back(line.left);
    std::vector<double> gutters;
    for (const double edge : CommonEdges(std::move(lefts))) {
        const double gutter = edge - Margin;
        const double before = gutters.empty() ? -1e9 : gutters.back();
        Side left;
        Side right;
        std::size_t across = 0;
        for (const PdfLine& line : lines) {
            if (line.left >= gutter && line.left < gutter + 2 * Margin)
                right.Add(line);
            else if (line.left >= before && line.right <= gutter)
                left.Add(line);
            else if (line.left < gutter && line.right > gutter)
                ++across;
        }
        const bool beside = std::min(left.bottom, right.bottom) > std::max(left.top, right.top);
        // Titles and tables may reach over several columns, but not most of the page.
        if (beside && left.IsProse() && right.IsProse() && across * 4 < left.lines.size() + right.lines.size() &&
            gutters.size() < MostColumns)
            gutters.push_back(gutter);
    }
    return gutters;
}

// Whether lines from `left` on fill a column up to a gutter and others begin behind it, as prose does that goes on from
// the page before.
bool FillColumn(const std::vector<PdfLine>& lines, double left, double gutter)
{
    constexpr double filled = 0.8;
    Side column;
    Side next;
    std::size_t full = 0;
    std::size_t across = 0;
    for (const PdfLine& line : lines) {
        if (line.left >= gutter && line.left < gutter + 2 * Margin) {
            next.Add(line);
        } else if (std::abs(line.left - left) < Margin && line.right <= gutter) {
            column.Add(line);
            full += line.Width() >= filled * (gutter - left) ? 1 : 0;
        } else if (line.left < gutter && line.right > gutter) {
            ++across;
        }
    }
    const bool beside = std::min(column.bottom, next.bottom) > std::max(column.top, next.top);
    return beside && full * 3 >= column.lines.size() * 2 && across * 4 < column.lines.size() + next.lines.size();
}

} // namespace

std::vector<PdfLine> ColumnLinesOf(const PdfPage& page)
{
    std::vector<PdfLine> lines = LinesOf(page);
    if (lines.size() > MostLines)
        return lines;
    std::vector<double> possible = PossibleGutters(lines);
    if (possible.empty())
        return lines;
    const std::vector<double> gutters = Gutters(LinesOf(page, possible), {});
    // Within a list or a table no prose is parted.
    std::erase_if(possible, [&](double one) {
        return std::none_of(gutters.begin(), gutters.end(),
                            [&](double gutter) { return std::abs(gutter - one) < Margin; });
    });
    return possible.empty() ? lines : LinesOf(page, possible);
}

std::vector<double> Gutters(const std::vector<PdfLine>& lines, const PdfColumns& before)
{
    std::vector<double> own = OwnGutters(lines);
    if (!own.empty())
        return own;
    double left = before.left;
    for (const double gutter : before.gutters) {
        if (!FillColumn(lines, left, gutter))
            return {};
        left = gutter + Margin;
    }
    return before.gutters;
}

PdfColumns ColumnsOf(const std::vector<PdfLine>& lines, const PdfColumns& before)
{
    PdfColumns columns{before.left, Gutters(lines, before)};
    if (columns.gutters.empty() || columns.gutters == before.gutters)
        return columns;
    std::vector<double> lefts;
    for (const PdfLine& line : lines)
        if (line.left < columns.gutters.front())
            lefts.push_back(line.left);
    std::sort(lefts.begin(), lefts.end());
    std::size_t most = 0;
    for (std::size_t begin = 0, end = 0; begin < lefts.size(); ++begin) {
        while (end < lefts.size() && lefts[end] - lefts[begin] < Margin)
            ++end;
        if (end - begin > most) {
            most = end - begin;
            columns.left = lefts[begin];
        }
    }
    return columns;
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

std::vector<PdfLine> InReadingOrder(std::vector<PdfLine> lines, const PdfColumns& before)
{
    const std::vector<double> gutters = Gutters(lines, before);
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
