// The markup in which a text is handed to eSpeak NG, and the way back from its positions.
#pragma once

#include "speech/text/MarkedText.h"

#include <cstddef>
#include <string>
#include <vector>

namespace voxmate::speech
{

struct EspeakMarkup {
    explicit EspeakMarkup(const MarkedText& text);

    /// The shown word at a position as eSpeak NG reports it: in characters of the markup, from 1 on; -1 for none.
    int ShownWordAt(int position) const;

    std::string
        ssml; ///< a <speak> element, left open where a sentence goes on, UTF-8; mark names are indices into `marks`
    std::vector<MarkedText::Mark> marks;

private:
    std::vector<int> shownWord_; // of each character of the markup
};

} // namespace voxmate::speech
