// Makes paragraphs, headings, lists, tables and footnotes of printed pages again.
#pragma once

#include "readers/Block.h"
#include "readers/BlockWriter.h"
#include "readers/pdf/Columns.h"
#include "readers/pdf/PdfPage.h"
#include "readers/pdf/RunningHeads.h"
#include "readers/pdf/Tables.h"
#include "readers/text/Hyphens.h"

#include <deque>
#include <map>
#include <string>
#include <vector>

namespace voxmate::readers
{

/// Takes pages one by one and gives their blocks as soon as the two next pages are known, which tell what is printed on
/// every page. A paragraph that goes on over the page's end is one block; its page's footnotes, and the mark of the
/// next page, come after it.
class Layout
{
public:
    /// `headings` are the titles in the document's outline and their levels, from 1.
    Layout(BlockSink sink, const std::map<std::string, int>& headings);

    void Add(const PdfPage& page);
    void Finish();

private:
    struct Page {
        std::string label;
        std::vector<PdfLine> lines;
    };
    struct Flow;
    struct Note {
        std::string label;
        std::string text;
        std::size_t page; ///< the count of pages before its own
        bool due = false; ///< to come after the present paragraph
    };

    void Compose(std::size_t at);
    void Measure(const std::vector<PdfLine>& lines);
    std::vector<PdfLine> TakeNotes(std::vector<PdfLine> lines);
    void Lines(std::vector<PdfLine> lines);
    void Line(const PdfLine& line, const Flow& flow, bool sameFlow);
    bool GoesOn(const PdfLine& line, const Flow& flow, bool sameFlow) const;
    bool IsListItem(const PdfLine& line, bool sameFlow) const;
    void Row(const PdfRow& row);
    void EndParagraph();
    int HeadingLevel() const;
    void Pending();

    BlockWriter writer_;
    const std::map<std::string, int>& headings_;
    std::deque<Page> pages_;
    std::size_t next_ = 0; ///< the page in `pages_` that is to be composed next
    PdfColumns columns_;   ///< of the page before the one that is composed
    RunningHeads heads_;
    Vocabulary vocabulary_;
    std::map<int, std::size_t> sizes_; ///< characters by tenths of a point
    double body_ = 0;                  ///< the size of most of the text
    double leading_ = 0;               ///< the usual distance of lines, in units of their size

    // The present paragraph.
    std::string text_;
    std::string label_;
    std::vector<PdfLine> lines_; ///< its first line, its last but one and its last, without text
    std::size_t lineCount_ = 0;
    double flowRight_ = 0; ///< the right edge of the column of its last line
    double flowWidth_ = 0;
    bool item_ = false;
    std::vector<double> depths_; ///< the left edges of the open lists

    std::vector<std::string> marks_;                              ///< the footnotes' marks on the present page
    std::vector<Note> notes_;                                     ///< those not given yet
    std::vector<std::pair<std::size_t, std::string>> references_; ///< the present paragraph's, with their pages
    std::size_t page_ = 0;
    bool noteOpen_ = false; ///< the last one may go on at the next page's foot
    std::vector<std::string> pageMarks_;
};

} // namespace voxmate::readers
