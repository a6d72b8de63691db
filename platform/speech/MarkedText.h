// An utterance as the engines want it: stretches of text spoken in one manner, each character knowing which shown word
// it belongs to, and pauses between them.
#pragma once

#include "platform/speech/Engine.h"

#include <cstddef>
#include <span>
#include <string>
#include <vector>

namespace voxmate::speech
{

struct MarkedText {
    struct Mark {
        std::size_t at = 0; ///< the character before which it stands; text.size() for one behind the last
        int number = 0;
    };
    int pauseMilliseconds = 0; ///< not 0: a pause and nothing else
    Prosody prosody;
    std::u32string text;          ///< control characters and invalid bytes are blanks
    std::vector<int> shownWord;   ///< of each character; -1 before the first word
    std::vector<bool> emphasised; ///< of each character
    std::vector<Mark> marks;      ///< in order of place
};

/// Joins neighbouring segments that are spoken in the same manner, so that a bookmark or a stressed word in the middle
/// of a sentence does not break its melody. Nothing is left out; a bookmark belongs to the stretch it follows.
std::vector<MarkedText> Arrange(std::span<const Segment> segments);

/// Follows the shown words while an engine works through a text: each is reported once, and never an earlier one again.
class WordFollower
{
public:
    /// True when `shownWord` is later than all so far.
    bool Advances(int shownWord)
    {
        if (shownWord <= last_)
            return false;
        last_ = shownWord;
        return true;
    }

private:
    int last_ = -1;
};

} // namespace voxmate::speech
