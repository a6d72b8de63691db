#include "readers/pdf/Tables.h"

#include "base/Text.h"

#include <algorithm>
#include <cmath>
#include <numeric>
#include <optional>

namespace voxmate::readers
{

namespace
{

// In units of the font's size.
constexpr double SameRow = 0.3;
constexpr double SameColumn = 0.5;
constexpr double NextLine = 1.45; ///< the distance of lines within a cell is at most this
constexpr double NextRow = 4;     ///< and that of rows this
// Cells with fewer characters on average are no prose, nor are columns of which this share is not filled.
constexpr double ShortCell = 14;
constexpr double FullColumn = 0.8;

struct Row {
    std::vector<std::size_t> lines; ///< from left to right
    double bottom = 0;
    double size = 0;
};

std::vector<Row> RowsOf(const std::vector<PdfLine>& lines)
{
    std::vector<std::size_t> order(lines.size());
    std::iota(order.begin(), order.end(), std::size_t{0});
    std::sort(order.begin(), order.end(), [&](std::size_t a, std::size_t b) { return lines[a].bottom < lines[b].bottom; });
    std::vector<Row> rows;
    for (const std::size_t i : order) {
        const PdfLine& line = lines[i];
        if (rows.empty() || line.bottom - rows.back().bottom > SameRow * line.size)
            rows.push_back({{}, line.bottom, line.size});
        rows.back().lines.push_back(i);
    }
    for (Row& row : rows)
        std::sort(row.lines.begin(), row.lines.end(), [&](std::size_t a, std::size_t b) { return lines[a].left < lines[b].left; });
    return rows;
}

// A run of rows that may be a table.
class Run
{
public:
    explicit Run(const std::vector<PdfLine>& lines) : lines_(lines) {}

    bool Empty() const { return rows_.empty(); }

    // Whether a row goes on with the run; if so it is taken.
    bool Take(const Row& row)
    {
        if (row.lines.size() < 2)
            return !Empty() && TakeRest(row);
        if (!Empty() && (row.bottom - bottom_ > NextRow * row.size || !Fits(row)))
            return false;
        for (const std::size_t i : row.lines)
            Column(lines_[i]);
        rows_.push_back(row.lines);
        bottom_ = row.bottom;
        return true;
    }

    std::vector<PdfRow> Table()
    {
        if (rows_.size() < 2 || columns_.size() < 2 || IsProse())
            return {};
        std::vector<PdfRow> table;
        for (const std::vector<std::size_t>& row : rows_) {
            PdfRow one;
            one.cells.resize(columns_.size());
            for (const std::size_t i : row) {
                std::string& cell = one.cells[Column(lines_[i])];
                cell += (cell.empty() ? "" : " ") + lines_[i].text;
                one.lines.push_back(i);
            }
            table.push_back(std::move(one));
        }
        return table;
    }

private:
    struct Extent {
        double left;
        double right;
    };

    // The column in which a line stands: where it overlaps one, or a new one.
    std::size_t Column(const PdfLine& line)
    {
        std::size_t best = columns_.size();
        double most = 0;
        for (std::size_t i = 0; i < columns_.size(); ++i) {
            const double overlap = std::min(columns_[i].right, line.right) - std::max(columns_[i].left, line.left);
            if (overlap > most) {
                most = overlap;
                best = i;
            }
        }
        if (best < columns_.size()) {
            columns_[best].left = std::min(columns_[best].left, line.left);
            columns_[best].right = std::max(columns_[best].right, line.right);
            return best;
        }
        const auto at = std::find_if(columns_.begin(), columns_.end(), [&](const Extent& one) { return one.left > line.left; });
        return static_cast<std::size_t>(columns_.insert(at, {line.left, line.right}) - columns_.begin());
    }

    // Whether no line of a row would join two columns.
    bool Fits(const Row& row) const
    {
        return std::all_of(row.lines.begin(), row.lines.end(), [&](std::size_t i) {
            return std::count_if(columns_.begin(), columns_.end(), [&](const Extent& one) {
                       return std::min(one.right, lines_[i].right) - std::max(one.left, lines_[i].left) > 0;
                   }) <= 1;
        });
    }

    // A line by itself below a row is the rest of one of its cells.
    bool TakeRest(const Row& row)
    {
        const PdfLine& line = lines_[row.lines[0]];
        const bool near = row.bottom - bottom_ < NextLine * line.size;
        // In the first column it might be the text below the table.
        const bool inColumn = std::any_of(columns_.begin() + 1, columns_.end(), [&](const Extent& one) {
            return std::abs(one.left - line.left) < SameColumn * line.size;
        });
        if (!near || !inColumn || !Fits(row))
            return false;
        rows_.back().push_back(row.lines[0]);
        Column(line);
        bottom_ = row.bottom;
        return true;
    }

    bool IsProse()
    {
        std::vector<double> widths(columns_.size());
        std::vector<double> counts(columns_.size());
        double characters = 0;
        double lines = 0;
        for (const auto& row : rows_) {
            for (const std::size_t i : row) {
                const std::size_t column = Column(lines_[i]);
                widths[column] += lines_[i].Width();
                ++counts[column];
                ++lines;
                characters += static_cast<double>(Len(lines_[i].text));
            }
        }
        if (characters / lines <= ShortCell)
            return false;
        for (std::size_t i = 0; i < columns_.size(); ++i)
            if (counts[i] > 0 && widths[i] / counts[i] < FullColumn * (columns_[i].right - columns_[i].left))
                return false;
        return true;
    }

    const std::vector<PdfLine>& lines_;
    std::vector<std::vector<std::size_t>> rows_;
    std::vector<Extent> columns_;
    double bottom_ = 0;
};

} // namespace

std::vector<std::vector<PdfRow>> FindTables(const std::vector<PdfLine>& lines)
{
    std::vector<std::vector<PdfRow>> tables;
    const std::vector<Row> rows = RowsOf(lines);
    // Rows with more lines than any table has columns are no table's, and would take long.
    constexpr std::size_t mostColumns = 40;
    std::optional<Run> run(lines);
    const auto end = [&] {
        if (std::vector<PdfRow> table = run->Table(); !table.empty())
            tables.push_back(std::move(table));
    };
    for (const Row& row : rows) {
        if (row.lines.size() <= mostColumns && run->Take(row))
            continue;
        end();
        run.emplace(lines);
        if (row.lines.size() <= mostColumns)
            run->Take(row);
    }
    end();
    return tables;
}

} // namespace voxmate::readers
