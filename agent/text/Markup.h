// The output tags inside a text to be spoken: \Pit=100\, \Emp\, \Map="spoken"="shown"\ and the others.
#pragma once

#include "speech/VoiceOutput.h"

#include <string>
#include <string_view>
#include <vector>

namespace voxmate::agent
{

struct ParsedText {
    std::vector<speech::Segment> segments; ///< what is to be heard
    std::string shown;                     ///< what the balloon shows: UTF-8, no blanks at its ends
    int words = 0;                         ///< words in `shown`
    bool sayLastAgain = false;             ///< the text was only \Lst\: the last text is to be said again
};

/// Reads a text with output tags; never fails. Names are compared without case. Two backslashes are one literal
/// backslash. An unknown or malformed tag is dropped; the text behind a tag that is never closed stays. Quotes inside a
/// quoted text belong to it.
///
/// A backslash that begins no tag is itself text. That is so when a blank stands between it and the next backslash,
/// unless the two enclose a known tag with misplaced blanks, and when no other backslash follows in its line.
///
/// Pauses are clamped to 10 to 2550 ms, but a pause of 0 is none. Volumes above 65535 mean 65535. A pitch or speed of 0
/// is malformed, and so is any number below 0 or of more than 32 bits. A bookmark's `firstWord` is the word it stands
/// before.
ParsedText ParseMarkup(std::string_view text);

} // namespace voxmate::agent
