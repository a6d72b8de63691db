#include "readers/pdf/Tables.h"

#include "base/Text.h"

#include <algorithm>
#include <cmath>
#include <optional>
#include <utility>

namespace voxmate::readers
{

namespace
{

// In units of the font's size.
constexpr double SameColumn = 0.5;
constexpr std::size_t MostColumns = 40; ///< rows with more lines are no table's, and would take long
constexpr double NextLine = 1.45;       ///< the distance of lines within a cell is at most this
constexpr double NextRow = 4;           ///< and that of rows this
// Cells with fewer characters on average are no prose, nor are columns of which this share is not filled.
constexpr double ShortCell = 14;
constexpr double FullColumn = 0.8;

constexpr double SameEdge = 1; // points

// The right edge of justified text; none where the lines end anywhere.
std::optional<double> JustifiedEdge(const std::vector<PdfLine>& lines)
{
    constexpr std::size_t enough = 8;
    constexpr std::size_t share = 3;
    std::vector<double> rights;
    rights.reserve(lines.size());
    for (const PdfLine& line : lines)
        rights.push_back(line.right);
    std::sort(rights.begin(), rights.end());
    std::size_t most = 0;
    double edge = 0;
    for (std::size_t begin = 0, end = 0; begin < rights.size(); ++begin) {
        while (end < rights.size() && rights[end] - rights[begin] < SameEdge)
            ++end;
        if (end - begin > most) {
            most = end - begin;
            edge = rights[begin];
        }
    }
    return most >= enough && most * share >= lines.size() ? std::optional(edge) : std::nullopt;
}

// A run of rows that may be a table. `justified` is where the lines of the text around it end, if they all do so.
class Run
{
public:
    Run(const std::vector<PdfLine>& lines, std::optional<double> justified) : lines_(lines), justified_(justified) {}

    bool Empty() const { return rows_.empty(); }

    // Whether a row goes on with the run; if so it is taken.
    bool Take(const PdfLevel& row)
    {
        if (row.lines.size() < 2)
            return !Empty() && TakeRest(row);
        if (!Empty() && (row.bottom - bottom_ > NextRow * row.size || !Fits(row)))
            return false;
        if (!Empty() && TakeRest(row))
            return true;
        for (const std::size_t i : row.lines)
            AddToColumns(lines_[i]);
        rows_.push_back(row.lines);
        bottom_ = row.bottom;
        return true;
    }

    std::vector<PdfRow> Table()
    {
        if (rows_.size() < 2 || columns_.size() < 2 || IsProse() || IsJustified())
            return {};
        std::vector<PdfRow> table;
        for (const std::vector<std::size_t>& row : rows_) {
            PdfRow one;
            one.cells.resize(columns_.size());
            for (const std::size_t i : row) {
                one.cells[Column(lines_[i])].push_back(lines_[i].text);
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

    // The column that a line overlaps most; the number of columns for none.
    std::size_t Overlapped(const PdfLine& line) const
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
        return best;
    }

    // Makes the columns what they are with another line in them.
    void AddToColumns(const PdfLine& line)
    {
        const std::size_t column = Overlapped(line);
        if (column < columns_.size()) {
            columns_[column].left = std::min(columns_[column].left, line.left);
            columns_[column].right = std::max(columns_[column].right, line.right);
            return;
        }
        const auto at =
            std::find_if(columns_.begin(), columns_.end(), [&](const Extent& one) { return one.left > line.left; });
        columns_.insert(at, {line.left, line.right});
    }

    // The column of a line that was added. One without any width overlaps none.
    std::size_t Column(const PdfLine& line) const
    {
        const std::size_t column = Overlapped(line);
        if (column < columns_.size())
            return column;
        const auto behind =
            std::find_if(columns_.begin(), columns_.end(), [&](const Extent& one) { return one.left > line.left; });
        return behind == columns_.begin() ? 0 : static_cast<std::size_t>(behind - columns_.begin()) - 1;
    }

    // Whether no line of a row would join two columns.
    bool Fits(const PdfLevel& row) const
    {
        return std::all_of(row.lines.begin(), row.lines.end(), [&](std::size_t i) {
            return std::count_if(columns_.begin(), columns_.end(), [&](const Extent& one) {
                       return std::min(one.right, lines_[i].right) - std::max(one.left, lines_[i].left) > 0;
                   }) <= 1;
        });
    }

    // Lines close below a row are the rest of its cells, unless there is one in the first column: that might begin the
    // next row, or the text below the table.
    bool TakeRest(const PdfLevel& row)
    {
        const bool near = row.bottom - bottom_ < NextLine * row.size;
        const bool inColumns = std::all_of(row.lines.begin(), row.lines.end(), [&](std::size_t i) {
            return std::any_of(columns_.begin() + 1, columns_.end(), [&](const Extent& one) {
                return std::abs(one.left - lines_[i].left) < SameColumn * lines_[i].size;
            });
        });
        if (!near || !inColumns || !Fits(row))
            return false;
        for (const std::size_t i : row.lines) {
            rows_.back().push_back(i);
            AddToColumns(lines_[i]);
        }
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

    // Whether these are lines of justified text with wide blanks. A table's last column may end where they do if it
    // holds numbers.
    bool IsJustified() const
    {
        if (!justified_)
            return false;
        const auto full = static_cast<std::size_t>(std::count_if(rows_.begin(), rows_.end(), [&](const auto& row) {
            return std::any_of(row.begin(), row.end(), [&](std::size_t i) {
                return std::abs(lines_[i].right - *justified_) < 2 * SameEdge &&
                       std::none_of(lines_[i].text.begin(), lines_[i].text.end(), IsDigit);
            });
        }));
        return full * 2 >= rows_.size();
    }

    const std::vector<PdfLine>& lines_;
    std::optional<double> justified_;
    std::vector<std::vector<std::size_t>> rows_;
    std::vector<Extent> columns_;
    double bottom_ = 0;
};

void FindIn(const std::vector<PdfLine>& lines, std::vector<std::vector<PdfRow>>& tables)
{
    const std::optional<double> justified = JustifiedEdge(lines);
    std::optional<Run> run(std::in_place, lines, justified);
    const auto end = [&] {
        if (std::vector<PdfRow> table = run->Table(); !table.empty())
            tables.push_back(std::move(table));
    };
    for (const PdfLevel& row : LevelsOf(lines)) {
        if (row.lines.size() <= MostColumns && run->Take(row))
            continue;
        end();
        run.emplace(lines, justified);
        if (row.lines.size() <= MostColumns)
            run->Take(row);
    }
    end();
}

// The lines of each of the page's columns, and those that reach over several.
std::vector<std::vector<std::size_t>> PartsOf(const std::vector<PdfLine>& lines, const PdfColumns& before)
{
    const std::vector<double> gutters = Gutters(lines, before);
    std::vector<std::vector<std::size_t>> parts(gutters.size() + 2);
    for (std::size_t i = 0; i < lines.size(); ++i)
        parts[ColumnOf(lines[i], gutters)].push_back(i);
    return parts;
}

// Where the lines of a level but the first begin.
void AddBegins(const std::vector<PdfLine>& lines, std::vector<double>& begins)
{
    double first = lines.empty() ? 0 : lines.front().left;
    for (const PdfLine& line : lines)
        first = std::min(first, line.left);
    for (const PdfLine& line : lines)
        if (line.left > first)
            begins.push_back(line.left);
}

// Cuts a line before a word that begins where one of `begins` is; the parts take its place.
void Cut(std::vector<PdfLine>& level, const std::vector<double>& begins)
{
    constexpr double exact = 0.6; // points
    for (std::size_t i = 0; i < level.size(); ++i) {
        const PdfLine& line = level[i];
        for (std::size_t w = 1; w < line.words.size(); ++w) {
            const PdfLine::Word& word = line.words[w];
            const bool begin =
                std::any_of(begins.begin(), begins.end(), [&](double x) { return std::abs(x - word.left) < exact; });
            if (!begin || word.left < line.words[w - 1].right)
                continue;
            PdfLine rest = line;
            rest.text = line.text.substr(word.at);
            rest.left = word.left;
            rest.marked = false;
            rest.words.assign(line.words.begin() + static_cast<std::ptrdiff_t>(w), line.words.end());
            for (PdfLine::Word& moved : rest.words)
                moved.at -= word.at;
            PdfLine& front = level[i];
            front.text = Trim(front.text.substr(0, word.at));
            front.right = front.words[w - 1].right;
            front.words.resize(w);
            level.insert(level.begin() + static_cast<std::ptrdiff_t>(i) + 1, std::move(rest));
            break;
        }
    }
}

} // namespace

std::vector<PdfLine> CutAtColumns(std::vector<PdfLine> lines, const PdfColumns& before)
{
    // Each line with what it was cut into, so that the order stays.
    std::vector<std::vector<PdfLine>> cut;
    cut.reserve(lines.size());
    for (const PdfLine& line : lines)
        cut.push_back({line});
    for (const std::vector<std::size_t>& part : PartsOf(lines, before)) {
        std::vector<PdfLine> own;
        own.reserve(part.size());
        for (const std::size_t i : part)
            own.push_back(lines[i]);
        const std::vector<PdfLevel> levels = LevelsOf(own);
        const auto pass = [&](const PdfLevel& from, const PdfLevel& to) {
            if (std::abs(to.bottom - from.bottom) > NextRow * to.size)
                return;
            std::vector<double> begins;
            std::vector<PdfLine> known;
            for (const std::size_t i : from.lines)
                known.insert(known.end(), cut[part[i]].begin(), cut[part[i]].end());
            AddBegins(known, begins);
            if (!begins.empty() && begins.size() < MostColumns)
                for (const std::size_t i : to.lines)
                    Cut(cut[part[i]], begins);
        };
        // Between two rows there may be a level with the rest of one cell only.
        for (std::size_t i = 1; i < levels.size(); ++i)
            for (std::size_t back = 1; back <= 2 && back <= i; ++back)
                pass(levels[i - back], levels[i]);
        for (std::size_t i = levels.size(); i-- > 1;)
            for (std::size_t back = 1; back <= 2 && back <= i; ++back)
                pass(levels[i], levels[i - back]);
    }
    std::vector<PdfLine> all;
    for (std::vector<PdfLine>& parts : cut)
        std::move(parts.begin(), parts.end(), std::back_inserter(all));
    return all;
}

std::vector<std::vector<PdfRow>> FindTables(const std::vector<PdfLine>& lines, const PdfColumns& before)
{
    std::vector<std::vector<PdfRow>> tables;
    for (const std::vector<std::size_t>& part : PartsOf(lines, before)) {
        std::vector<PdfLine> own;
        own.reserve(part.size());
        for (const std::size_t i : part)
            own.push_back(lines[i]);
        const std::size_t first = tables.size();
        FindIn(own, tables);
        for (std::size_t t = first; t < tables.size(); ++t)
            for (PdfRow& row : tables[t])
                for (std::size_t& i : row.lines)
                    i = part[i];
    }
    return tables;
}

} // namespace voxmate::readers
