#include "readers/pdf/PdfPage.h"

#include "base/Text.h"
#include "readers/text/Clean.h"

#include <algorithm>
#include <cmath>
#include <map>
#include <string_view>

namespace voxmate::readers
{

namespace
{

// In units of the font's size.
constexpr double WordGap = 0.12;     ///< the narrowest blank
constexpr double WideBlank = 4;      ///< the widest, in a line that fills its width
constexpr double ColumnGap = 0.35;   ///< where there is no blank: what follows is another line's
constexpr double NarrowGutter = 0.4; ///< between columns there is more than a blank
constexpr double LooseHyphen = 0.25; ///< before a hyphen at a line's end
constexpr double Raised = 0.15;      ///< a mark's foot is at least so far above the line's
constexpr double SmallMark = 0.82;   ///< and it is at most so large

bool IsMark(std::string_view text)
{
    const bool digits = text.size() <= 3 && std::all_of(text.begin(), text.end(), IsDigit);
    return digits || text == "*" || text == "**" || text == "\xE2\x80\xA0" /* † */ || text == "\xE2\x80\xA1" /* ‡ */;
}

bool OnOneLine(const PdfWord& before, const PdfWord& word, const std::vector<double>& gutters)
{
    const double overlap = std::min(before.bottom, word.bottom) - std::max(before.top, word.top);
    const double height = std::min(before.bottom - before.top, word.bottom - word.top);
    const double size = std::max(before.size, word.size);
    const double gap = word.left - before.right;
    if (std::any_of(gutters.begin(), gutters.end(),
                    [&](double gutter) { return word.left >= gutter && before.right <= gutter - NarrowGutter * size; }))
        return false;
    return overlap > height / 2 && gap > -size / 2 && gap < (before.blank ? WideBlank : ColumnGap) * size;
}

// Whether a small raised mark stands right behind a word.
bool IsRaisedBehind(const PdfWord& word, const PdfWord& mark)
{
    const double overlap = std::min(word.bottom, mark.bottom) - std::max(word.top, mark.top);
    return mark.size < word.size * SmallMark && std::abs(mark.left - word.right) < ColumnGap * word.size &&
           overlap > (mark.bottom - mark.top) / 2 && mark.bottom < word.bottom - Raised * word.size;
}

// A raised mark may come with the line above it, or that of the next column, where its foot is nearer to that one's.
void MoveMarksBehindTheirWords(std::vector<PdfWord>& words, const std::vector<double>& gutters)
{
    constexpr std::size_t farthest = 50; // some four lines
    for (std::size_t i = 0; i < words.size(); ++i) {
        if (!IsMark(Trimmed(words[i].text)) || (i > 0 && OnOneLine(words[i - 1], words[i], gutters)))
            continue;
        const auto at = words.begin() + static_cast<std::ptrdiff_t>(i);
        const auto begin = words.begin() + static_cast<std::ptrdiff_t>(i - std::min(i, farthest));
        const auto end = words.begin() + static_cast<std::ptrdiff_t>(std::min(i + farthest, words.size()));
        const auto word = std::find_if(begin, end, [&](const PdfWord& each) { return IsRaisedBehind(each, *at); });
        if (word == end)
            continue;
        if (word < at)
            std::rotate(word + 1, at, at + 1);
        else
            std::rotate(at, at + 1, word + 1);
    }
}

PdfLine LineOf(const PdfWord* first, const PdfWord* last)
{
    PdfLine line;
    line.left = first->left;
    line.top = first->top;
    std::map<int, std::size_t> sizes; // characters by tenths of a point
    std::size_t bold = 0;
    std::size_t all = 0;
    for (const PdfWord* word = first; word != last; ++word) {
        line.left = std::min(line.left, word->left);
        line.top = std::min(line.top, word->top);
        line.right = std::max(line.right, word->right);
        sizes[static_cast<int>(word->size * 10)] += word->text.size();
        bold += word->bold ? word->text.size() : 0;
        all += word->text.size();
    }
    const auto most =
        std::max_element(sizes.begin(), sizes.end(), [](auto& a, auto& b) { return a.second < b.second; });
    line.size = most->first / 10.0;
    line.bold = bold * 10 >= all * 9;
    for (const PdfWord* word = first; word != last; ++word)
        if (word->size > line.size * SmallMark)
            line.bottom = std::max(line.bottom, word->bottom);
    for (const PdfWord* word = first; word != last; ++word) {
        const bool mark = word->size < line.size * SmallMark && word->bottom < line.bottom - Raised * line.size &&
                          IsMark(Trimmed(word->text));
        line.marked = line.marked || (mark && word == first);
        line.words.push_back({word->left, word->right, line.text.size()});
        line.text += mark ? MarkBegin + word->text + MarkEnd : word->text;
        if (word + 1 == last)
            break;
        const double gap = (word + 1)->left - word->right;
        const bool hyphen = word + 2 == last && (word + 1)->text == "-" && gap < LooseHyphen * line.size;
        if (!hyphen && (word->blank || gap > WordGap * line.size))
            line.text += ' ';
    }
    return line;
}

// A file says anything about places. Beyond these bounds there is no page.
void Bound(PdfWord& word)
{
    constexpr double farthest = 1e6;
    for (double* const number : {&word.left, &word.top, &word.right, &word.bottom, &word.size})
        *number = std::isfinite(*number) ? std::clamp(*number, -farthest, farthest) : 0;
    word.right = std::max(word.right, word.left);
    word.bottom = std::max(word.bottom, word.top);
    word.size = std::max(word.size, 0.1);
}

} // namespace

std::vector<PdfLine> LinesOf(const PdfPage& page, const std::vector<double>& gutters)
{
    std::vector<PdfLine> lines;
    std::vector<PdfWord> words = page.words;
    for (PdfWord& word : words)
        Bound(word);
    MoveMarksBehindTheirWords(words, gutters);
    for (std::size_t begin = 0; begin < words.size();) {
        std::size_t end = begin + 1;
        while (end < words.size() && OnOneLine(words[end - 1], words[end], gutters))
            ++end;
        PdfLine line = LineOf(words.data() + begin, words.data() + end);
        if (!Clean(line.text).empty())
            lines.push_back(std::move(line));
        begin = end;
    }
    return lines;
}

std::string WithoutMarks(const std::string& text, const std::vector<std::string>& marks)
{
    constexpr std::size_t sign = 3; // bytes of MarkBegin and of MarkEnd
    std::string plain;
    std::size_t at = 0;
    while (true) {
        const std::size_t begin = text.find(MarkBegin, at);
        const std::size_t end = begin == std::string::npos ? begin : text.find(MarkEnd, begin);
        plain += text.substr(at, (end == std::string::npos ? text.size() : begin) - at);
        if (end == std::string::npos)
            return plain;
        const std::string mark(Trimmed(std::string_view(text).substr(begin + sign, end - begin - sign)));
        if (std::find(marks.begin(), marks.end(), mark) == marks.end())
            plain += mark;
        at = end + sign;
    }
}

} // namespace voxmate::readers
