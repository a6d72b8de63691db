// A text as Flite reads it: plain ASCII, one sentence at a time so that speech starts early, and the way back from its
// positions.
#pragma once

#include "speech/text/MarkedText.h"

#include <cstddef>
#include <string>
#include <vector>

namespace voxmate::speech
{

struct FliteSentence {
    std::string text;
    std::vector<std::size_t> source; ///< of each byte, the character of the marked text it comes from

    /// The marked text's character for a token that Flite says it read up to `filePosition`.
    std::size_t SourceOfToken(int filePosition) const;
};

/// Splits where a sentence ends (or, in one of more than 400 characters, at a clause); sentences without anything to
/// say are left out.
std::vector<FliteSentence> SplitForFlite(const MarkedText& text);

} // namespace voxmate::speech
