// An utterance in the form engines take: stretches of text spoken with the same prosody, each character with the shown
// word it belongs to, and pauses between them.
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

/// Decodes the next few thousand characters of a text from byte `at` on, cleaned for an engine, and moves `at` behind
/// them.
std::u32string NextCharacters(std::string_view text, std::size_t& at);
/// Whether a (cleaned) character separates words.
bool IsBlank(char32_t c);
int CountWords(std::string_view text);

struct MarkedText {
    struct Mark {
        std::size_t at = 0; ///< index of the character it precedes; text.size() when it follows the last
        int number = 0;
    };
    /// How the piece ends. Stretch: the stretch ends with it. Sentence: the next piece of the stretch begins a new
    /// sentence. Inside: the next piece continues the same sentence.
    enum class End { Stretch, Sentence, Inside };

    int pauseMilliseconds = 0; ///< when not 0, this is a pause and has no text
    Prosody prosody;
    std::u32string text;        ///< control characters other than line ends, and invalid bytes, are replaced by blanks
    std::vector<int> shownWord; ///< of each character; -1 before the first word
    std::vector<bool> emphasised; ///< of each character
    std::vector<Mark> marks;      ///< in order of place
    End end = End::Stretch;
};

/// Divides an utterance into pieces for an engine, one at a time, so that a book needs no more memory than a page and
/// starts as soon. Neighbouring segments with the same prosody form one stretch, so that a bookmark or a stressed word
/// in the middle of a sentence does not break its intonation. Nothing is left out; a bookmark belongs to the stretch it
/// follows.
class Arranger
{
public:
    /// The most characters in a piece. A longer stretch is cut where the cut is heard least: at the end of a paragraph
    /// or sentence, failing that at a line's end, at a blank, or anywhere.
    static constexpr std::size_t LongestPiece = 4096;

    /// The segments must outlive the Arranger.
    explicit Arranger(std::span<const Segment> segments) : segments_(segments) {}
    /// The next pause, stretch or piece of a stretch; nothing at the end.
    std::optional<MarkedText> Next();

private:
    bool BeginText(const Segment& segment);
    void Gather();
    void GatherText();
    MarkedText CutOff(std::size_t length, MarkedText::End end);

    std::span<const Segment> segments_; ///< still to be processed; the first may be partly processed
    MarkedText gathered_;               ///< the part of the current stretch not yet returned
    bool open_ = false;                 ///< a stretch has begun
    bool hasText_ = false;              ///< the current stretch has text, even if that was already returned
    int lastShown_ = -1;                ///< the shown word of the stretch's last character so far

    // The text segment being gathered.
    bool begun_ = false;
    std::size_t at_ = 0; ///< first byte not gathered
    int word_ = -1;      ///< index of its last word so far
    int words_ = 0;      ///< its number of words, when they are spread over other shown words
    bool blank_ = true;  ///< whether its last character so far is a blank
};

/// Tracks the shown words while an engine works through a text, so that each is reported once and never after a later
/// one.
class WordFollower
{
public:
    /// True when `shownWord` is later than all before it.
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
