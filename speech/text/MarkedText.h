// An utterance as the engines want it: stretches of text spoken in one manner, each character knowing which shown word
// it belongs to, and pauses between them.
#pragma once

#include "speech/Engine.h"

#include <cstddef>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace voxmate::speech
{

/// The next characters of a text from byte `at` on, a few thousand at a time, cleaned as an engine gets them; moves
/// `at` behind them.
std::vector<char32_t> NextCharacters(std::string_view text, std::size_t& at);
/// Whether a (cleaned) character stands between words.
bool IsBlank(char32_t c);
int CountWords(std::string_view text);

struct MarkedText {
    struct Mark {
        std::size_t at = 0; ///< the character before which it stands; text.size() for one behind the last
        int number = 0;
    };
    /// What is behind the last character: nothing of this stretch, or its next piece, with a sentence between them or
    /// cutting through one.
    enum class End { Stretch, Sentence, Inside };

    int pauseMilliseconds = 0; ///< not 0: a pause and nothing else
    Prosody prosody;
    std::u32string text;          ///< control characters and invalid bytes are blanks
    std::vector<int> shownWord;   ///< of each character; -1 before the first word
    std::vector<bool> emphasised; ///< of each character
    std::vector<Mark> marks;      ///< in order of place
    End end = End::Stretch;
};

/// Takes an utterance apart for an engine, one piece after the other, so that a book needs no more memory than a page
/// and is heard as soon. Neighbouring segments that are spoken in the same manner are one stretch, so that a bookmark
/// or a stressed word in the middle of a sentence does not break its melody. Nothing is left out; a bookmark belongs to
/// the stretch it follows.
class Arranger
{
public:
    /// No piece has more characters. A longer stretch is cut where it is heard least: at a paragraph's end or a
    /// sentence's, failing that at a line's end, at a blank, anywhere.
    static constexpr std::size_t LongestPiece = 4096;

    /// The segments must outlive it.
    explicit Arranger(std::span<const Segment> segments) : segments_(segments) {}
    /// The next pause, stretch or piece of a stretch; none when all are taken.
    std::optional<MarkedText> Next();

private:
    bool BeginText(const Segment& segment);
    void Gather();
    void GatherText();
    MarkedText CutOff(std::size_t length, MarkedText::End end);

    std::span<const Segment> segments_; ///< that are still to come, the first of them maybe begun
    MarkedText gathered_;               ///< of the stretch at hand
    bool open_ = false;                 ///< there is a stretch at hand
    bool hasText_ = false;              ///< with text in it, be it taken already
    int lastShown_ = -1;                ///< the shown word of its last character

    // The text segment that is being gathered.
    bool begun_ = false;
    std::size_t at_ = 0; ///< first byte not gathered
    int word_ = -1;      ///< its last word so far
    int words_ = 0;      ///< all its words, where they have to be spread
    bool blank_ = true;  ///< its last character so far is one
};

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
