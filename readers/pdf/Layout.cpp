#include "readers/pdf/Layout.h"

#include "base/Text.h"
#include "readers/markup/Numbering.h"
#include "readers/pdf/Columns.h"
#include "readers/pdf/Tables.h"
#include "readers/text/Clean.h"
#include "readers/text/ListMarks.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <optional>
#include <utility>

namespace voxmate::readers
{

namespace
{

constexpr std::size_t Ahead = 2; ///< pages
// In units of the font's size, or of the usual distance of lines.
constexpr double UsualLeading = 1.2;
constexpr double WideLeading = 1.3;
constexpr double Indent = 0.7;
constexpr double OtherSize = 0.08;
constexpr double LargeHeading = 1.6;
constexpr double MiddleHeading = 1.3;
constexpr double SmallHeading = 1.1;
constexpr double NoteSize = 0.93;
constexpr std::size_t LongestHeading = 300; ///< bytes
constexpr std::size_t LongestBoldHeading = 120;

bool IsSentenceEnd(std::string_view text)
{
    constexpr std::array<std::string_view, 12> ends{
        ".", "!", "?", ":", "\"", "\xE2\x80\x9D", "\xE2\x80\x9C", "\xC2\xBB", ")", ";", "\xE3\x80\x82", "\xE2\x80\xA6"};
    text = Trimmed(text);
    return std::any_of(ends.begin(), ends.end(), [&](auto end) { return text.ends_with(end); });
}

bool BeginsSmall(std::string_view text)
{
    const std::string first(Left(Trimmed(text), 1));
    return !first.empty() && UCase(first) != first;
}

// The raised marks in lines: references to footnotes.
std::vector<std::string> RaisedMarks(const std::vector<PdfLine>& lines)
{
    constexpr std::size_t sign = 3; // bytes of MarkBegin
    std::vector<std::string> marks;
    for (const PdfLine& line : lines)
        for (std::size_t at = line.text.find(MarkBegin); at != std::string::npos;
             at = line.text.find(MarkBegin, at + 1))
            marks.emplace_back(
                Trimmed(std::string_view(line.text).substr(at + sign, line.text.find(MarkEnd, at) - at - sign)));
    return marks;
}

// Puts bullets and numbers that stand by themselves in front of the lines to their right.
void JoinListMarks(std::vector<PdfLine>& lines)
{
    std::vector<bool> gone(lines.size(), false);
    for (std::size_t i = 0; i < lines.size(); ++i) {
        const PdfLine& mark = lines[i];
        const std::string text(Trimmed(mark.text));
        if (ListMark(text + " x") != text.size())
            continue;
        std::size_t nearest = lines.size();
        for (std::size_t j = 0; j < lines.size(); ++j) {
            const bool beside = j != i && !gone[j] && std::abs(lines[j].bottom - mark.bottom) < mark.size / 3 &&
                                lines[j].left >= mark.right && lines[j].left - mark.right < 5 * mark.size;
            if (beside && (nearest == lines.size() || lines[j].left < lines[nearest].left))
                nearest = j;
        }
        if (nearest == lines.size())
            continue;
        lines[nearest].text = text + " " + lines[nearest].text;
        lines[nearest].left = mark.left;
        gone[i] = true;
    }
    std::size_t at = 0;
    std::erase_if(lines, [&](const PdfLine&) { return gone[at++]; });
}

} // namespace

// The lines of one column, one below the other.
struct Layout::Flow {
    std::size_t begin;
    std::size_t end;
    double left;
    double right;
};

Layout::Layout(BlockSink sink, const std::map<std::string, int>& headings)
    : writer_(std::move(sink)), headings_(headings), leading_(UsualLeading)
{
}

void Layout::Add(const PdfPage& page)
{
    pages_.push_back({page.label, ColumnLinesOf(page)});
    for (const PdfLine& line : pages_.back().lines)
        vocabulary_.Add(line.text);
    Measure(pages_.back().lines);
    if (pages_.size() > next_ + Ahead)
        Compose(next_);
}

void Layout::Finish()
{
    while (next_ < pages_.size())
        Compose(next_);
    noteOpen_ = false;
    for (Note& note : notes_)
        note.due = true;
    EndParagraph();
    writer_.Finish();
}

// Learns the size of most of the text.
void Layout::Measure(const std::vector<PdfLine>& lines)
{
    for (const PdfLine& line : lines)
        sizes_[static_cast<int>(std::clamp(line.size, 0.0, 1000.0) * 10)] += line.text.size();
    const auto most =
        std::max_element(sizes_.begin(), sizes_.end(), [](auto& a, auto& b) { return a.second < b.second; });
    body_ = most == sizes_.end() ? 0 : most->first / 10.0;
}

void Layout::Compose(std::size_t at)
{
    std::deque<const std::vector<PdfLine>*> neighbours;
    for (const Page& page : pages_)
        neighbours.push_back(&page.lines);
    const std::vector<bool> heads = heads_.Find(neighbours, at, pages_[at].label);
    std::vector<PdfLine> lines;
    for (std::size_t i = 0; i < heads.size(); ++i)
        if (!heads[i])
            lines.push_back(pages_[at].lines[i]);
    pageMarks_.push_back(pages_[at].label);
    if (text_.empty())
        Pending();
    marks_.clear();
    if (lines.size() <= MostLines)
        lines = InReadingOrder(CutAtColumns(std::move(lines), columns_), columns_);
    PdfColumns own = ColumnsOf(lines, columns_);
    Lines(TakeNotes(std::move(lines)));
    columns_ = std::move(own);
    ++page_;
    ++next_;
    while (next_ > Ahead) {
        pages_.pop_front();
        --next_;
    }
}

// Takes the footnotes from the page's foot: small lines below all others, of which the first begins with a mark.
std::vector<PdfLine> Layout::TakeNotes(std::vector<PdfLine> lines)
{
    const auto isSmall = [&](const PdfLine& line) { return line.size <= body_ * NoteSize; };
    const std::vector<double> gutters = Gutters(lines, columns_);
    // The foot of the text in each column, and across all.
    std::vector<double> feet(gutters.size() + 2, 0);
    for (const PdfLine& line : lines)
        if (!isSmall(line))
            feet[ColumnOf(line, gutters)] = std::max(feet[ColumnOf(line, gutters)], line.bottom);
    const std::vector<std::string> references = RaisedMarks(lines);
    std::vector<PdfLine> rest;
    std::optional<Note> note;
    double size = 0; // of the last note's font
    const auto end = [&] {
        if (note)
            notes_.push_back(std::move(*note));
        note.reset();
    };
    std::vector<Note> before = std::exchange(notes_, {});
    for (PdfLine& line : lines) {
        const std::size_t column = ColumnOf(line, gutters);
        const double foot =
            column > gutters.size() ? *std::max_element(feet.begin(), feet.end()) : std::max(feet[column], feet.back());
        const bool small = isSmall(line) && line.top > foot - line.size / 2;
        const std::string text = WithoutMarks(line.text, {});
        std::size_t mark = 0;
        while (mark < text.size() && mark < 3 && (IsDigit(text[mark]) || text[mark] == '*'))
            ++mark;
        const bool begins =
            small && mark > 0 &&
            (line.marked || std::find(references.begin(), references.end(), text.substr(0, mark)) != references.end());
        if (begins) {
            end();
            note = Note{text.substr(0, mark), std::string(Trimmed(std::string_view(text).substr(mark))), page_};
            size = line.size;
            marks_.push_back(note->label);
        } else if (small && note && (note->text.empty() || std::abs(line.size - size) < OtherSize * size)) {
            size = line.size;
            AppendLine(note->text, text, vocabulary_);
        } else if (small && noteOpen_ && !before.empty()) {
            AppendLine(before.back().text, text, vocabulary_);
        } else {
            rest.push_back(std::move(line));
        }
    }
    end();
    noteOpen_ = !notes_.empty() && !IsSentenceEnd(notes_.back().text);
    // Those of the page before belong to a paragraph that has ended, or to the present one.
    for (Note& old : before)
        old.due = true;
    notes_.insert(notes_.begin(), std::make_move_iterator(before.begin()), std::make_move_iterator(before.end()));
    return rest;
}

void Layout::Lines(std::vector<PdfLine> lines)
{
    if (lines.size() <= MostLines)
        JoinListMarks(lines);
    // Where each table stands among the lines: at its first one.
    std::vector<std::vector<std::size_t>> tableAt(lines.size());
    std::vector<bool> inTable(lines.size(), false);
    std::vector<std::vector<PdfRow>> tables;
    if (lines.size() <= MostLines)
        tables = FindTables(lines, columns_);
    for (std::size_t t = 0; t < tables.size(); ++t) {
        std::size_t first = lines.size();
        for (const PdfRow& row : tables[t])
            for (const std::size_t i : row.lines) {
                inTable[i] = true;
                first = std::min(first, i);
            }
        tableAt[first].push_back(t);
    }
    // Lines side by side that are no table's are one line with a wide blank in it.
    std::vector<PdfLine> whole;
    std::vector<std::vector<std::size_t>> tablesBefore;
    std::vector<std::size_t> waiting;
    for (std::size_t i = 0; i < lines.size(); ++i) {
        waiting.insert(waiting.end(), tableAt[i].begin(), tableAt[i].end());
        if (inTable[i])
            continue;
        if (!whole.empty() && waiting.empty() && std::abs(whole.back().bottom - lines[i].bottom) < lines[i].size / 4 &&
            lines[i].left >= whole.back().right) {
            whole.back().text += " " + lines[i].text;
            whole.back().right = lines[i].right;
            continue;
        }
        whole.push_back(lines[i]);
        tablesBefore.push_back(std::exchange(waiting, {}));
    }
    std::vector<Flow> flows;
    std::vector<double> distances;
    for (std::size_t i = 0; i < whole.size(); ++i) {
        const PdfLine& line = whole[i];
        const bool goesOn = !flows.empty() && tablesBefore[i].empty() && line.bottom > whole[i - 1].bottom &&
                            line.top - whole[i - 1].bottom < 6 * line.size &&
                            std::min(line.right, flows.back().right) > std::max(line.left, flows.back().left);
        if (!goesOn) {
            flows.push_back({i, i + 1, line.left, line.right});
            continue;
        }
        flows.back().end = i + 1;
        flows.back().left = std::min(flows.back().left, line.left);
        flows.back().right = std::max(flows.back().right, line.right);
        const double distance = (line.bottom - whole[i - 1].bottom) / std::max(line.size, 1.0);
        if (distance < 2.5 && std::abs(line.size - body_) < OtherSize * body_)
            distances.push_back(distance);
    }
    constexpr std::size_t enough = 5;
    if (distances.size() >= enough) {
        const auto middle = distances.begin() + static_cast<std::ptrdiff_t>(distances.size() / 2);
        std::nth_element(distances.begin(), middle, distances.end());
        leading_ = *middle;
    }
    const auto tell = [&](const std::vector<std::size_t>& which) {
        for (const std::size_t t : which)
            for (const PdfRow& row : tables[t])
                Row(row);
    };
    for (const Flow& flow : flows) {
        for (std::size_t i = flow.begin; i < flow.end; ++i) {
            tell(tablesBefore[i]);
            Line(whole[i], flow, i > flow.begin);
        }
    }
    tell(waiting);
}

bool Layout::IsListItem(const PdfLine& line, bool sameFlow) const
{
    const std::string text = WithoutMarks(line.text, marks_);
    if (ListMark(Trimmed(text)) == 0)
        return false;
    if (text_.empty() || item_ || !sameFlow || IsSentenceEnd(text_))
        return true;
    // In the middle of a sentence a dash or a number may come first in a line by chance.
    return std::abs(line.left - lines_.back().left) > Indent * line.size;
}

// Whether a line belongs to the present paragraph.
bool Layout::GoesOn(const PdfLine& line, const Flow& flow, bool sameFlow) const
{
    if (text_.empty())
        return false;
    const PdfLine& before = lines_.back();
    if (std::abs(line.size - before.size) > OtherSize * std::max(line.size, before.size))
        return false;
    if (line.bold != before.bold && (lineCount_ == 1 || (before.bold && lines_.front().bold)) &&
        text_.size() < LongestBoldHeading)
        return false;
    if (IsListItem(line, sameFlow))
        return false;
    const double indent = Indent * line.size;
    if (!sameFlow) {
        // Over a column's or page's end: the sentence goes on there.
        return HeadingLevel() == 0 &&
               (BeginsSmall(line.text) || (!IsSentenceEnd(text_) && line.left < flow.left + indent));
    }
    if (line.bottom - before.bottom > WideLeading * leading_ * std::max(line.size, before.size))
        return false;
    if (line.left > before.left + indent) // an item's second line hangs
        return (item_ && lineCount_ == 1) || HeadingLevel() > 0;
    if (line.left < before.left - indent && lineCount_ > 1 && HeadingLevel() == 0)
        return false;
    if (line.left < before.left - indent && item_)
        return false;
    // A line that leaves room for the next one's first word was the last one.
    const double room = flowRight_ - before.right;
    const std::string text = WithoutMarks(line.text, marks_);
    const std::string_view word = std::string_view(text).substr(0, text.find(' '));
    const double needed = line.Width() * static_cast<double>(word.size() + 1) /
                          static_cast<double>(std::max<std::size_t>(text.size(), 1));
    if (HeadingLevel() == 0 && room > needed + line.size && room > flowWidth_ / 8)
        return !IsSentenceEnd(text_) && BeginsSmall(text);
    return true;
}

void Layout::Line(const PdfLine& line, const Flow& flow, bool sameFlow)
{
    if (!GoesOn(line, flow, sameFlow)) {
        EndParagraph();
        std::string text(Trimmed(WithoutMarks(line.text, marks_)));
        item_ = false;
        if (const std::size_t mark = ListMark(text); mark > 0) {
            item_ = true;
            label_ = text.substr(0, mark);
            text.erase(0, mark);
            text = Trim(std::move(text));
        }
        text_ = text;
        lines_.clear();
        lineCount_ = 0;
    } else {
        AppendLine(text_, WithoutMarks(line.text, marks_), vocabulary_);
    }
    for (std::string& mark : RaisedMarks({line}))
        references_.emplace_back(page_, std::move(mark));
    PdfLine place = line;
    place.text.clear();
    if (lines_.size() > 1)
        lines_.pop_back();
    lines_.push_back(place);
    ++lineCount_;
    flowRight_ = flow.right;
    flowWidth_ = flow.right - flow.left;
    if (text_.size() > LongestText / 2)
        EndParagraph();
}

// The level of the present paragraph if it is a heading, otherwise 0.
int Layout::HeadingLevel() const
{
    if (text_.size() > LongestHeading || lines_.empty() || body_ <= 0)
        return 0;
    if (const auto found = headings_.find(LowerAscii(Clean(label_.empty() ? text_ : label_ + " " + text_)));
        found != headings_.end())
        return found->second;
    const double ratio = lines_.front().size / body_;
    if (ratio >= LargeHeading)
        return 1;
    if (ratio >= MiddleHeading)
        return 2;
    if (ratio >= SmallHeading)
        return 3;
    const bool bold = lines_.front().bold && lines_.back().bold && ratio > NoteSize && lineCount_ <= 2 &&
                      text_.size() <= LongestBoldHeading && !text_.ends_with('.') && !text_.ends_with(',') &&
                      !(item_ && IsBullet(label_));
    return bold ? 4 : 0;
}

void Layout::EndParagraph()
{
    if (!text_.empty()) {
        const int heading = HeadingLevel();
        const double left = lines_.empty() ? 0 : lines_.front().left;
        if (heading > 0) {
            writer_.Begin(BlockKind::Heading, heading, label_);
            depths_.clear();
        } else if (item_) {
            const double same = 0.5 * std::max(body_, 1.0);
            while (!depths_.empty() && depths_.back() > left + same)
                depths_.pop_back();
            if (depths_.empty() || depths_.back() < left - same)
                depths_.push_back(left);
            writer_.Begin(BlockKind::ListItem, static_cast<int>(depths_.size()), IsBullet(label_) ? Bullet : label_);
        } else {
            writer_.Begin(BlockKind::Paragraph);
            depths_.clear();
        }
        writer_.Text(text_);
        writer_.End();
    }
    for (const auto& [page, mark] : std::exchange(references_, {})) {
        const auto note = std::find_if(notes_.begin(), notes_.end(), [&, &page = page, &mark = mark](const Note& one) {
            return !one.due && one.page == page && one.label == mark;
        });
        if (note != notes_.end())
            note->due = true;
    }
    text_.clear();
    label_.clear();
    item_ = false;
    Pending();
}

// What waited for the paragraph's end.
void Layout::Pending()
{
    std::vector<Note> notes = std::exchange(notes_, {});
    for (std::size_t i = 0; i < notes.size(); ++i) {
        Note& note = notes[i];
        if (!note.due || (noteOpen_ && i + 1 == notes.size())) {
            notes_.push_back(std::move(note));
            continue;
        }
        writer_.Begin(BlockKind::Footnote, 0, note.label);
        writer_.Text(note.text);
        writer_.End();
    }
    for (const std::string& label : std::exchange(pageMarks_, {}))
        writer_.Mark(BlockKind::Page, label);
}

void Layout::Row(const PdfRow& row)
{
    EndParagraph();
    writer_.BeginRow();
    for (const std::vector<std::string>& cell : row.cells) {
        writer_.BeginCell();
        std::string text;
        for (const std::string& line : cell)
            AppendLine(text, WithoutMarks(line, marks_), vocabulary_);
        writer_.Text(text);
        writer_.EndCell();
    }
    writer_.EndRow();
}

} // namespace voxmate::readers
