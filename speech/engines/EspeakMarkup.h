// The markup in which text is passed to eSpeak NG, and the mapping of its positions back to the text.
#pragma once

#include "speech/text/MarkedText.h"

#include <cstddef>
#include <string>
#include <vector>

namespace voxmate::speech
{

struct EspeakMarkup {
    explicit EspeakMarkup(const MarkedText& text);

    /// The shown word at a position that eSpeak NG reports: a character of the markup, counted from 1. -1 for none.
    int ShownWordAt(int position) const;

    /// A UTF-8 <speak> element, left open when the next piece continues the same sentence. Its mark names are indices
    /// into `marks`.
    std::string ssml;
    std::vector<MarkedText::Mark> marks;

private:
    std::vector<int> shownWord_; // of each character of the markup
};

} // namespace voxmate::speech
