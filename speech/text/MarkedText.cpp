#include "speech/text/MarkedText.h"

#include "base/Text.h"

#include <algorithm>
#include <cstdint>
#include <string_view>
#include <utility>

namespace voxmate::speech
{

namespace
{

// Line ends are kept, because one may end a heading without a full stop; other control characters would only confuse
// the engine.
char32_t Clean(char32_t c)
{
    if (c == U'\n')
        return c;
    if (c < 0x20 || (c >= 0x7F && c < 0xA0) || c == 0xFFFD || c == 0xFEFF)
        return U' ';
    return c;
}

// The bytes decoded at a time.
constexpr std::size_t BlockSize = 4096;

} // namespace

std::u32string NextCharacters(std::string_view text, std::size_t& at)
{
    std::string_view block = text.substr(at, BlockSize);
    if (at + block.size() < text.size())
        block = block.substr(0, WholeUtf8(block));
    at += block.size();
    std::u32string points = DecodeUtf8(block);
    std::transform(points.begin(), points.end(), points.begin(), Clean);
    return points;
}

bool IsBlank(char32_t c)
{
    return c == U' ' || c == U'\n' || c == 0xA0;
}

int CountWords(std::string_view text)
{
    int words = 0;
    bool blank = true;
    for (std::size_t at = 0; at < text.size();)
        for (const char32_t point : NextCharacters(text, at)) {
            if (blank && !IsBlank(point))
                ++words;
            blank = IsBlank(point);
        }
    return words;
}

namespace
{

bool EndsWideSentence(char32_t c)
{
    return c == U'。' || c == U'！' || c == U'？';
}

/// Places to cut, from the worst to the best: within a word; behind a comma or a mark that may not end a sentence (its
/// pause may be lost); between two words; at a line's end; at the probable end of a sentence; at its certain end.
enum class CutPlace { None, Stop, Blank, Line, Likely, Sentence };

/// How good it is to cut a text before its character `at`.
CutPlace PlaceAt(std::u32string_view text, std::size_t at)
{
    if (IsBlank(text[at]))
        return CutPlace::None;
    std::size_t end = at; // end of the preceding word
    int lines = 0;
    for (; end > 0 && IsBlank(text[end - 1]); --end)
        lines += text[end - 1] == U'\n' ? 1 : 0;
    if (end == 0)
        return CutPlace::None;
    if (EndsWideSentence(text[end - 1]))
        return CutPlace::Sentence;
    if (end == at)
        return CutPlace::None;
    if (lines > 1)
        return CutPlace::Sentence;
    // A mark followed by a closing quote is not counted: the sentence may go on behind it.
    const char32_t stop = text[end - 1];
    if (stop == U'!' || stop == U'?')
        return CutPlace::Sentence;
    // A full stop behind a short word may belong to an abbreviation ("No.", "approx."); before a small letter it does.
    constexpr std::size_t longerThanMost = 4;
    constexpr std::size_t longerThanAll = 7;
    if (stop == U'.' && !(text[at] >= U'a' && text[at] <= U'z')) {
        std::size_t letters = 0;
        while (letters < longerThanAll && letters + 1 < end) {
            const char32_t letter = text[end - 2 - letters];
            if (IsBlank(letter) || letter == U'.')
                break;
            ++letters;
        }
        if (letters >= longerThanMost)
            return letters == longerThanAll ? CutPlace::Sentence : CutPlace::Likely;
    }
    if (lines > 0)
        return CutPlace::Line;
    return std::u32string_view(U".,;:").find(stop) == std::u32string_view::npos ? CutPlace::Blank : CutPlace::Stop;
}

struct Cut {
    std::size_t at = 0;
    CutPlace place = CutPlace::None;
};

/// The best place to cut a text that is longer than a piece.
Cut FindCut(std::u32string_view text)
{
    Cut best{Arranger::LongestPiece, CutPlace::None};
    for (std::size_t at = Arranger::LongestPiece; at > Arranger::LongestPiece / 2; --at)
        if (const CutPlace place = PlaceAt(text, at); place > best.place) {
            best = {at, place};
            if (place == CutPlace::Sentence)
                break;
        }
    return best;
}

} // namespace

std::optional<MarkedText> Arranger::Next()
{
    Gather();
    if (open_) {
        if (gathered_.text.size() > LongestPiece) {
            const Cut cut = FindCut(gathered_.text);
            return CutOff(cut.at, cut.place >= CutPlace::Likely ? MarkedText::End::Sentence : MarkedText::End::Inside);
        }
        open_ = false;
        hasText_ = false;
        lastShown_ = -1;
        return std::exchange(gathered_, {});
    }
    if (segments_.empty())
        return std::nullopt;
    MarkedText pause;
    pause.pauseMilliseconds = segments_.front().milliseconds;
    segments_ = segments_.subspan(1);
    return pause;
}

/// Gathers segments until more than one piece of the current stretch is there, or all of it.
void Arranger::Gather()
{
    for (; !segments_.empty() && gathered_.text.size() <= LongestPiece; segments_ = segments_.subspan(1)) {
        const Segment& segment = segments_.front();
        switch (segment.kind) {
        case Segment::Kind::Pause:
            if (segment.milliseconds > 0)
                return;
            break;
        case Segment::Kind::Bookmark:
            open_ = true;
            gathered_.marks.push_back({gathered_.text.size(), segment.bookmark});
            break;
        case Segment::Kind::Text:
            if (!begun_ && !BeginText(segment))
                return;
            GatherText();
            if (begun_)
                return;
            break;
        }
    }
}

/// Begins a text segment; false when its prosody differs from the current stretch's.
bool Arranger::BeginText(const Segment& segment)
{
    if (open_ && hasText_ && gathered_.prosody != segment.prosody)
        return false;
    open_ = true;
    gathered_.prosody = segment.prosody;
    begun_ = true;
    at_ = 0;
    word_ = -1;
    words_ = segment.shownWords > 0 ? CountWords(segment.text) : 0;
    blank_ = true;
    return true;
}

/// Continues the begun text segment until a little more than one piece is gathered.
void Arranger::GatherText()
{
    const Segment& segment = segments_.front();
    while (at_ < segment.text.size() && gathered_.text.size() <= LongestPiece)
        for (const char32_t point : NextCharacters(segment.text, at_)) {
            if (blank_ && !IsBlank(point))
                ++word_;
            blank_ = IsBlank(point);
            if (word_ >= 0 && segment.shownWords < 0)
                lastShown_ = segment.firstWord + word_;
            else if (word_ >= 0 && segment.shownWords > 0)
                lastShown_ = segment.firstWord + static_cast<int>(std::int64_t{word_} * segment.shownWords / words_);
            gathered_.text.push_back(point);
            gathered_.shownWord.push_back(lastShown_);
            gathered_.emphasised.push_back(segment.emphasis && word_ == 0 && !blank_);
            hasText_ = true;
        }
    begun_ = at_ < segment.text.size();
}

/// Removes and returns the first `length` characters of the current stretch.
MarkedText Arranger::CutOff(std::size_t length, MarkedText::End end)
{
    const auto count = static_cast<std::ptrdiff_t>(length);
    MarkedText rest;
    rest.prosody = gathered_.prosody;
    rest.text = gathered_.text.substr(length);
    rest.shownWord.assign(gathered_.shownWord.begin() + count, gathered_.shownWord.end());
    rest.emphasised.assign(gathered_.emphasised.begin() + count, gathered_.emphasised.end());
    MarkedText piece = std::exchange(gathered_, std::move(rest));
    piece.text.resize(length);
    piece.shownWord.resize(length);
    piece.emphasised.resize(length);
    piece.end = end;
    const auto kept =
        std::find_if(piece.marks.begin(), piece.marks.end(), [&](const auto& mark) { return mark.at >= length; });
    for (auto mark = kept; mark != piece.marks.end(); ++mark)
        gathered_.marks.push_back({mark->at - length, mark->number});
    piece.marks.erase(kept, piece.marks.end());
    return piece;
}

} // namespace voxmate::speech
