// Tables on a printed page, which has no marks for them.
#pragma once

#include "readers/pdf/Columns.h"
#include "readers/pdf/PdfPage.h"

#include <cstddef>
#include <string>
#include <vector>

namespace voxmate::readers
{

struct PdfRow {
    std::vector<std::vector<std::string>> cells; ///< their lines, with soft hyphens and raised marks as in PdfLine
    std::vector<std::size_t> lines;              ///< the lines it is made of
};

/// Cuts lines where the level above or below shows that a column begins: cells may be no farther apart than words.
/// `before` are the columns of prose of the page before.
std::vector<PdfLine> CutAtColumns(std::vector<PdfLine> lines, const PdfColumns& before);

/// Finds rows of lines that stand side by side in columns, and are no columns of prose: their cells are short, or fill
/// their column badly.
std::vector<std::vector<PdfRow>> FindTables(const std::vector<PdfLine>& lines, const PdfColumns& before);

} // namespace voxmate::readers
