#include "readers/pdf/RunningHeads.h"

#include "base/Text.h"
#include "readers/text/Clean.h"

#include <algorithm>
#include <cmath>
#include <string>
#include <string_view>

namespace voxmate::readers
{

namespace
{

constexpr double SamePlace = 3;     ///< points
constexpr double ExactPlace = 1;    ///< points
constexpr double SmallestGap = 0.4; ///< between a head and the text, in units of its font's size
constexpr std::size_t MostPlaces = 20;
constexpr std::size_t RowsAtEdge = 3;    ///< heads of several lines
constexpr std::size_t LongestHead = 200; ///< bytes

bool IsRoman(std::string_view word)
{
    return !word.empty() && word.size() <= 7 && word.find_first_not_of("ivxlcIVXLC") == std::string_view::npos;
}

// A line with every number as "#", so that pages that differ in their number only are alike.
std::string Shape(const PdfLine& line)
{
    const std::string text = LowerAscii(Clean(WithoutMarks(line.text, {})));
    if (IsRoman(text))
        return "#";
    std::string shape;
    for (const char c : text) {
        if (!IsDigit(c))
            shape += c;
        else if (!shape.ends_with('#'))
            shape += '#';
    }
    return shape;
}

// The lines at a page's upper or lower edge, the outermost first.
std::vector<std::size_t> Edge(const std::vector<PdfLine>& lines, bool upper)
{
    std::vector<std::size_t> order(lines.size());
    for (std::size_t i = 0; i < order.size(); ++i)
        order[i] = i;
    const auto outer = [&](std::size_t a, std::size_t b) {
        return upper ? lines[a].bottom < lines[b].bottom : lines[a].bottom > lines[b].bottom;
    };
    // A row may have several lines side by side.
    const auto some = static_cast<std::ptrdiff_t>(std::min<std::size_t>(order.size(), 3 * RowsAtEdge));
    std::partial_sort(order.begin(), order.begin() + some, order.end(), outer);
    order.resize(static_cast<std::size_t>(some));
    std::size_t rows = 0;
    double row = 0;
    std::size_t count = 0;
    for (; count < order.size(); ++count) {
        const double bottom = lines[order[count]].bottom;
        if (count == 0 || std::abs(bottom - row) > SamePlace) {
            row = bottom;
            if (++rows > RowsAtEdge)
                break;
        }
    }
    order.resize(count);
    return order;
}

std::vector<long> Numbers(const PdfLine& line)
{
    std::vector<long> numbers;
    const std::string& text = line.text;
    for (std::size_t at = 0; at < text.size();) {
        if (!IsDigit(text[at])) {
            ++at;
            continue;
        }
        long number = 0;
        for (; at < text.size() && IsDigit(text[at]); ++at)
            number = (number * 10 + (text[at] - '0')) % 1'000'000'000;
        numbers.push_back(number);
    }
    return numbers;
}

// Whether two lines of one shape, `apart` pages from each other, can be the same head: their numbers are equal, or one
// counts the pages.
bool SameHead(const PdfLine& line, const PdfLine& other, const std::string& shape, long apart, bool upper)
{
    const std::vector<long> numbers = Numbers(line);
    const std::vector<long> others = Numbers(other);
    bool counts = false;
    for (std::size_t i = 0; i < std::min(numbers.size(), others.size()); ++i) {
        if (others[i] == numbers[i])
            continue;
        if (counts || others[i] - numbers[i] != apart)
            return false;
        counts = true;
    }
    // Footnotes whose numbers begin anew on each page may be the same on two ("1 Ibid.").
    return counts || upper || !shape.starts_with('#') || numbers.empty();
}

bool HasAlike(const std::vector<PdfLine>& lines, bool upper, const PdfLine& line, const std::string& shape, long apart)
{
    const std::vector<std::size_t> edge = Edge(lines, upper);
    return std::any_of(edge.begin(), edge.end(), [&](std::size_t i) {
        return std::abs(lines[i].bottom - line.bottom) < SamePlace && Shape(lines[i]) == shape &&
               SameHead(line, lines[i], shape, apart, upper);
    });
}

} // namespace

bool RunningHeads::IsHead(const std::deque<const std::vector<PdfLine>*>& pages, std::size_t at, const PdfLine& line,
                          bool upper, const std::string& label) const
{
    if (line.text.size() > LongestHead)
        return false;
    const std::string shape = Shape(line);
    for (std::size_t other = at < 2 ? 0 : at - 2; other < pages.size() && other <= at + 2; ++other)
        if (other != at &&
            HasAlike(*pages[other], upper, line, shape, static_cast<long>(other) - static_cast<long>(at)))
            return true;
    // The page's own number by itself, at the foot.
    if (!upper && pages[at]->size() > 1 && !label.empty() && Clean(line.text) == label)
        return true;
    // Heads with titles that change from page to page stand where others stood.
    return std::any_of(places_.begin(), places_.end(),
                       [&](double place) { return std::abs(place - line.bottom) < ExactPlace; });
}

std::vector<bool> RunningHeads::Find(const std::deque<const std::vector<PdfLine>*>& pages, std::size_t at,
                                     const std::string& label)
{
    const std::vector<PdfLine>& lines = *pages.at(at);
    std::vector<bool> found(lines.size(), false);
    for (const bool upper : {true, false}) {
        // From the edge inwards: behind the first line of the page's own text there is none.
        std::vector<std::size_t> heads;
        const PdfLine* inner = nullptr;
        for (const std::size_t i : Edge(lines, upper)) {
            if (!IsHead(pages, at, lines[i], upper, label)) {
                inner = &lines[i];
                break;
            }
            heads.push_back(i);
        }
        // A head stands off from the text. What does not is a line of it that happens to be like another page's.
        while (!heads.empty() && inner) {
            const PdfLine& last = lines[heads.back()];
            const double gap = upper ? inner->top - last.bottom : last.top - inner->bottom;
            if (gap > SmallestGap * last.size)
                break;
            inner = &last;
            heads.pop_back();
        }
        for (const std::size_t i : heads)
            found[i] = true;
    }
    for (std::size_t i = 0; i < lines.size() && places_.size() < MostPlaces; ++i)
        if (found[i] && std::none_of(places_.begin(), places_.end(),
                                     [&](double place) { return std::abs(place - lines[i].bottom) < ExactPlace; }))
            places_.push_back(lines[i].bottom);
    return found;
}

} // namespace voxmate::readers
