// The output tags inside a text to be spoken: \Pit=100\, \Emp\, \Map="spoken"="shown"\ and the others.
#pragma once

#include "speech/VoiceOutput.h"

#include <string>
#include <string_view>
#include <vector>

namespace voxmate::agent
{

struct MarkedText {
    std::vector<speech::Segment> segments; ///< what is heard
    std::string shown;                     ///< what stands in the balloon: UTF-8, no blanks at its ends
    int words = 0;                         ///< words in `shown`
    bool sayLastAgain = false;             ///< the text was nothing but \Lst\: the last text is said again
};

/// Reads a text with output tags; never fails. Names are compared without case. Two backslashes are one literal
/// backslash; an unknown or malformed tag is dropped; of one that is never closed the text behind it stays. Quotes
/// inside a quoted text belong to it. A backslash that begins no tag is itself text: what follows it has a blank before
/// the next backslash and is not a tag with misplaced blanks, or there is no other backslash in its line. Pauses
/// outside 10 to 2550 ms are brought into that range, a pause of 0 is none; volumes above 65535 mean 65535; a pitch or
/// speed of 0 is malformed, and so is any number below 0 or of more than 32 bits. A bookmark's `firstWord` is the word
/// it stands before.
MarkedText ParseMarkup(std::string_view text);

} // namespace voxmate::agent
