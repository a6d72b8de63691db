// A printed page as a PDF file gives it: words and where they stand.
#pragma once

#include <cstddef>
#include <string>
#include <vector>

namespace voxmate::readers
{

/// Lengths are in points (1/72 inch), from the page's upper left corner.
struct PdfWord {
    std::string text; ///< UTF-8
    double left = 0;
    double top = 0;
    double right = 0;
    double bottom = 0;
    double size = 0; ///< of the font
    bool bold = false;
    bool blank = true; ///< a blank follows, or the line's end
};

struct PdfPage {
    std::string label;          ///< its number as the document counts
    std::vector<PdfWord> words; ///< block by block, column by column
};

/// Words side by side. A wide gap, as between columns, ends a line.
struct PdfLine {
    std::string text; ///< with soft hyphens; raised marks stand between MarkBegin and MarkEnd
    double left = 0;
    double top = 0;
    double right = 0;
    double bottom = 0;
    double size = 0; ///< that of most characters
    bool bold = false;
    bool marked = false; ///< begins with a raised mark, as a footnote does
    struct Word {
        double left;
        double right;
        std::size_t at; ///< where it begins in the text
    };
    std::vector<Word> words;

    double Width() const { return right - left; }
};

/// A page with more lines than this is no page of a text; it is read without looking for columns and tables.
inline constexpr std::size_t MostLines = 5000;

/// Around a raised mark in a line's text (private characters).
inline constexpr const char* MarkBegin = "\xEE\x80\x80";
inline constexpr const char* MarkEnd = "\xEE\x80\x81";

/// The lines of a page in the order of its words. A gap over one of `gutters` ends a line although it is narrow.
std::vector<PdfLine> LinesOf(const PdfPage& page, const std::vector<double>& gutters = {});

/// A text without the raised marks that are among `marks`; of others the characters stay.
std::string WithoutMarks(const std::string& text, const std::vector<std::string>& marks);

} // namespace voxmate::readers
