// The columns of a printed page.
#pragma once

#include "readers/pdf/PdfPage.h"

#include <cstddef>
#include <vector>

namespace voxmate::readers
{

/// The lines of a page, of which none reaches from one column of prose into the next.
std::vector<PdfLine> ColumnLinesOf(const PdfPage& page);

/// The columns of prose of a page, for those of the next.
struct PdfColumns {
    double left = 0;             ///< where most lines of the first begin
    std::vector<double> gutters; ///< as in Gutters
};

/// Where columns of prose are parted, from left to right. Empty for a page of one column. A page with few lines, as a
/// text's last, may not show what they are; it has the columns of the page before if its lines fill them.
std::vector<double> Gutters(const std::vector<PdfLine>& lines, const PdfColumns& before);

PdfColumns ColumnsOf(const std::vector<PdfLine>& lines, const PdfColumns& before);

/// The number of the column, from 0, in which a line stands; the number of columns for one that reaches over several.
std::size_t ColumnOf(const PdfLine& line, const std::vector<double>& gutters);

/// Lines on one level.
struct PdfLevel {
    std::vector<std::size_t> lines; ///< from left to right
    double bottom = 0;
    double size = 0; ///< of the first line's font
};
/// From top to bottom.
std::vector<PdfLevel> LevelsOf(const std::vector<PdfLine>& lines);

/// On a page of several columns (see Gutters): column by column, between the lines that reach over several. Otherwise
/// unchanged.
std::vector<PdfLine> InReadingOrder(std::vector<PdfLine> lines, const PdfColumns& before);

} // namespace voxmate::readers
