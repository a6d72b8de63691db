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

constexpr double SamePlace = 3;  ///< points
constexpr double ExactPlace = 1; ///< points
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

bool HasAlike(const std::vector<PdfLine>& lines, bool upper, const PdfLine& line, const std::string& shape)
{
    const std::vector<std::size_t> edge = Edge(lines, upper);
    return std::any_of(edge.begin(), edge.end(), [&](std::size_t i) {
        return std::abs(lines[i].bottom - line.bottom) < SamePlace && Shape(lines[i]) == shape;
    });
}

} // namespace

std::vector<bool> RunningHeads::Find(const std::deque<const std::vector<PdfLine>*>& pages, std::size_t at,
                                     const std::string& label)
{
    const std::vector<PdfLine>& lines = *pages.at(at);
    std::vector<bool> found(lines.size(), false);
    for (const bool upper : {true, false}) {
        // From the edge inwards: behind the first line of the page's own text there is none.
        for (const std::size_t i : Edge(lines, upper)) {
            const PdfLine& line = lines[i];
            const std::string shape = Shape(line);
            bool head = false;
            for (std::size_t other = at < 2 ? 0 : at - 2; other < pages.size() && other <= at + 2; ++other)
                head = head ||
                       (other != at && line.text.size() <= LongestHead && HasAlike(*pages[other], upper, line, shape));
            // The page's own number by itself, at the foot.
            head = head || (!upper && lines.size() > 1 && !label.empty() && Clean(line.text) == label);
            // Heads with titles that change from page to page stand where others stood.
            head = head ||
                   (line.text.size() <= LongestHead && std::any_of(places_.begin(), places_.end(), [&](double place) {
                        return std::abs(place - line.bottom) < ExactPlace;
                    }));
            if (!head)
                break;
            found[i] = true;
        }
    }
    for (std::size_t i = 0; i < lines.size() && places_.size() < MostPlaces; ++i)
        if (found[i] && std::none_of(places_.begin(), places_.end(),
                                     [&](double place) { return std::abs(place - lines[i].bottom) < ExactPlace; }))
            places_.push_back(lines[i].bottom);
    return found;
}

} // namespace voxmate::readers
