// What is printed on every page beside its text: running heads and feet, and page numbers.
#pragma once

#include "readers/pdf/PdfPage.h"

#include <cstddef>
#include <deque>
#include <vector>

namespace voxmate::readers
{

/// Finds them by what neighbouring pages have in the same place.
class RunningHeads
{
public:
    /// Which lines of a page are no text of its own. `pages` are neighbouring ones in their order, `at` the page's
    /// place among them; two before and two behind are enough.
    std::vector<bool> Find(const std::deque<const std::vector<PdfLine>*>& pages, std::size_t at,
                           const std::string& label);

private:
    bool IsHead(const std::deque<const std::vector<PdfLine>*>& pages, std::size_t at, const PdfLine& line, bool upper,
                const std::string& label) const;

    std::vector<double> places_; ///< the feet of those found before
};

} // namespace voxmate::readers
