// Text in the form Flite reads: plain ASCII, one sentence at a time so that speech starts early, with the mapping of
// its positions back to the marked text.
#pragma once

#include "speech/text/MarkedText.h"

#include <cstddef>
#include <string>
#include <vector>

namespace voxmate::speech
{

struct FliteSentence {
    std::string text;
    std::vector<std::size_t> source; ///< for each byte, the index of its character in the marked text

    /// The index in the marked text for a token that Flite reports having read up to `filePosition`.
    std::size_t SourceOfToken(int filePosition) const;
};

/// Splits at the ends of sentences, and at clauses where a sentence has more than 400 characters. Sentences with
/// nothing to say are left out.
std::vector<FliteSentence> SplitForFlite(const MarkedText& text);

} // namespace voxmate::speech
